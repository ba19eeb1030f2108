#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

/// For as long as it lives the process finds these programs, and no others, along its PATH.
class StandIns {
public:
    StandIns() { qputenv("PATH", m_folder.path().toLocal8Bit()); }
    ~StandIns() { qputenv("PATH", m_before); }
    StandIns(const StandIns&) = delete;
    StandIns& operator=(const StandIns&) = delete;

    /// An executable of this name and text.
    bool put(const QString& name, const QByteArray& text)
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size()
            && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

private:
    QByteArray m_before = qgetenv("PATH");
    QTemporaryDir m_folder;
};
