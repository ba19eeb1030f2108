#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <string>

/// A folder of its own for one test, in which a settings file stands or is to be.
class SettingsFolder {
public:
    /// What valueOf gives for a key without a value.
    inline static const std::string noValue = "the default";

    bool isValid() const { return m_folder.isValid(); }
    QString folder() const { return m_folder.path(); }
    /// The settings file's name, as Qt and as the program under test want it.
    QString name() const { return m_folder.filePath("TAVO_QR9.ini"); }
    std::string path() const { return name().toStdString(); }

    /// Makes the file anew; the test fails when that cannot be done.
    void put(const QByteArray& text) const;
    /// The bytes of the file, or "no file".
    QByteArray text() const;
    /// What a reader of the file gets.
    std::string valueOf(const std::string& group, const std::string& key) const;
    /// Names of everything in the folder, hidden files included.
    QStringList entries() const;

private:
    QTemporaryDir m_folder;
};
