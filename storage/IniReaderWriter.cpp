#include "storage/IniReaderWriter.h"

#include <QByteArray>
#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>
#include <QTextCodec>

namespace {

QString widened(const std::string& text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

QString valueText(const std::string& value)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text
        = QTextCodec::codecForName("UTF-8")->toUnicode(value.data(), static_cast<int>(value.size()), &state);
    const bool isUtf8 = state.invalidChars == 0 && state.remainingChars == 0;
    return isUtf8 ? text : widened(value);
}

bool readWhole(const QString& name, QByteArray& bytes)
{
    QFile file(name);
    if (!file.exists()) {
        return true;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    bytes = file.readAll();
    return file.error() == QFileDevice::NoError;
}

// Writes a scratch copy of the file, stores the key in it by the settings layer, and gives the resulting
// text. The copy's name is used once, so that what the settings layer remembers of a failed write is never
// asked for again.
bool textWithKey(
    const QString& file, const QString& group, const QString& key, const QString& value, QByteArray& text)
{
    QTemporaryFile scratch(file + ".XXXXXX");
    if (!scratch.open() || scratch.write(text) != text.size() || !scratch.flush()) {
        return false;
    }
    scratch.close();

    QSettings settings(scratch.fileName(), QSettings::NativeFormat);
    settings.beginGroup(group);
    settings.setValue(key, QVariant(value));
    settings.endGroup();
    settings.sync();
    return settings.status() != QSettings::AccessError && readWhole(scratch.fileName(), text);
}

bool replaceFile(const QString& name, const QByteArray& text)
{
    const QFileInfo before(name);
    QDateTime stamp = QDateTime::currentDateTime();
    if (before.exists() && stamp <= before.lastModified()) {
        stamp = before.lastModified().addMSecs(1);
    }
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush()
        && file.setFileTime(stamp, QFileDevice::FileModificationTime) && file.commit();
}

} // namespace

int ini_read(
    std::string group, std::string key, std::string defaultValue, std::string& value, std::string file)
{
    QSettings settings(widened(file), QSettings::NativeFormat);
    settings.beginGroup(widened(group));
    const QString text = settings.value(widened(key)).toStringList().join(", ");
    settings.endGroup();

    if (text.isEmpty()) {
        value = defaultValue;
        return 0;
    }
    value = text.toStdString();
    return 1;
}

void ini_write(std::string group, std::string key, std::string value, std::string file)
{
    const QString name = widened(file);
    QByteArray text;
    if (!readWhole(name, text) || !textWithKey(name, widened(group), widened(key), valueText(value), text)
        || !replaceFile(name, text.replace("%20", " "))) {
        qDebug() << "[Error] : "
                 << "settings not stored" << name << widened(group) << widened(key);
    }
}
