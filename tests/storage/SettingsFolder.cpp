#include "SettingsFolder.h"
#include "storage/IniReaderWriter.h"

#include <QDir>
#include <QFile>
#include <QTest>

void SettingsFolder::put(const QByteArray& text) const
{
    QFile file(name());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

QByteArray SettingsFolder::text() const
{
    QFile file(name());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file";
}

std::string SettingsFolder::valueOf(const std::string& group, const std::string& key) const
{
    std::string value = "untouched";
    ini_read(group, key, noValue, value, path());
    return value;
}

QStringList SettingsFolder::entries() const
{
    return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}
