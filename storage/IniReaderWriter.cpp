#include "storage/IniReaderWriter.h"
#include "storage/SettingsFile.h"

#include <QByteArray>
#include <QDebug>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTextCodec>

namespace {

QString widened(const std::string& text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

/// The reader gives UTF-8, so that is what a value is taken for; bytes that are not are taken as Latin-1.
QString valueText(const std::string& value)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text
        = QTextCodec::codecForName("UTF-8")->toUnicode(value.data(), static_cast<int>(value.size()), &state);
    const bool isUtf8 = state.invalidChars == 0 && state.remainingChars == 0;
    return isUtf8 ? text : widened(value);
}

/// Defaults that stand in for a unit's calibration must not come without a word. A damaged file is told once,
/// as long as it stays as it is.
void logTrouble(const QSettings& settings, const QString& key)
{
    if (settings.status() == QSettings::NoError) {
        return;
    }
    const bool isDamaged = settings.status() == QSettings::FormatError;
    qDebug() << "[Error] : " << (isDamaged ? "settings damaged" : "settings cannot be read")
             << settings.fileName() << settings.group() << key;
}

} // namespace

int ini_read(
    std::string group, std::string key, std::string defaultValue, std::string& value, std::string file)
{
    QSettings settings(widened(file), QSettings::NativeFormat);
    settings.beginGroup(widened(group));
    const QString text = settings.value(widened(key)).toStringList().join(", ");
    logTrouble(settings, widened(key));
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
    if (!settings_file::read(name, text)
        || !settings_file::storeKey(name, widened(group), widened(key), valueText(value), text)
        || !settings_file::replace(name, text.replace("%20", " "))) {
        qDebug() << "[Error] : "
                 << "settings not stored" << name << widened(group) << widened(key);
    }
}
