#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// USB sticks for tests in a room: plugs them by the links below /dev/disk, and stands before the system's
/// mount and umount. A stick's files are a folder of its own, and mounts are real ones of the room.
class StickShelf {
public:
    /// What the next calls of a program do: its work; nothing, with an error; its work, and an error all the
    /// same; nothing, without an end.
    enum class Behaviour { works, fails, complains, hangs };

    /// Empties /media and /dev/disk, forgets all calls.
    StickShelf();
    /// Takes every mount away.
    ~StickShelf();
    StickShelf(const StickShelf&) = delete;
    StickShelf& operator=(const StickShelf&) = delete;

    /// Links appear as udev makes them; without a label there is no link to it. The device is one as
    /// "/dev/sdb1".
    void plug(const QString& device, const QString& uuid, const QString& labelLink = {}) const;
    void unplug(const QString& uuid, const QString& labelLink = {}) const;

    void setMounting(Behaviour behaviour) const;
    void setUnmounting(Behaviour behaviour) const;
    /// The stick has room for so many kilobytes from its next mount on; its files are lost with an umount.
    void makeSmall(const QString& device, int kilobytes) const;
    /// Mounts as another program would.
    void mountByHand(const QString& device, const QString& folder) const;
    /// A line of /etc/mtab that stays, whatever is mounted.
    void addMtabLine(const QByteArray& line) const;
    /// Ends a program that hangs, as soon as it has begun; returns at once.
    void endHangingProgramSoon() const;
    /// The process of the program that hung or hangs.
    static QString hangingProcess();

    /// Where the stick's files are, mounted or not.
    static QString filesOf(const QString& device);
    /// The calls of mount and umount since the start: "mount /dev/sdb1 /media/STICK".
    static QStringList calls();
};

/// Writes the text to the file, makes its folders; the test fails when that cannot be done.
void writeFile(const QString& path, const QByteArray& text);
/// The text of the file, or "no file".
QByteArray textOf(const QString& path);
