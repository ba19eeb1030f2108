#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <sys/mount.h>

/// A disk of a few pages under the instrument's folder, for as long as it lives: it can be filled to the last
/// byte for real. Only in a room, where the test is root over mounts of its own; before the window is opened.
class SmallDisk {
public:
    /// `settings` becomes the settings file; null: no such file.
    explicit SmallDisk(const QByteArray& settings)
    {
        if (::mount("none", kFolder, "tmpfs", 0, "size=32k,mode=755") != 0)
            qFatal("no disk can be mounted: this test runs in a room");
        QDir::setCurrent(kFolder); // the program's working directory is on the new disk
        if (!settings.isNull())
            put("TAVO_QR9.ini", settings);
    }
    ~SmallDisk()
    {
        QDir::setCurrent("/");
        ::umount2(kFolder, MNT_DETACH);
        QDir::setCurrent(kFolder);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// Takes the last byte. False when there was none to take.
    bool fill()
    {
        QFile rest("rest");
        if (!rest.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return false;
        while (rest.write(QByteArray(4096, 'x')) == 4096) { }
        return rest.size() > 0;
    }
    bool makeRoom() { return QFile::remove("rest"); }

private:
    static void put(const QString& name, const QByteArray& text)
    {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write the settings file");
    }

    static constexpr const char* kFolder = "/root/TAVO_QR9";
};
