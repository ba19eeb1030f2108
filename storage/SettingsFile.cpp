#include "storage/SettingsFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QSaveFile>
#include <QSettings>
#include <QStringList>
#include <QTemporaryFile>

namespace {

using Values = QMap<QString, QStringList>;

/// Everything that can be asked for by its key; a damaged file can hold keys that begin with a slash, which
/// cannot.
Values readableValues(const QSettings& settings)
{
    Values values;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys) {
        if (key.isEmpty() || key.startsWith('/')) {
            continue;
        }
        const QStringList value = settings.value(key).toStringList();
        if (!value.join(QString()).isEmpty()) {
            values.insert(key, value);
        }
    }
    return values;
}

bool setTime(QFileDevice& file, const QDateTime& stamp)
{
    return file.setFileTime(stamp, QFileDevice::FileModificationTime);
}

QDateTime laterThan(const QString& file)
{
    const QDateTime now = QDateTime::currentDateTime();
    const QFileInfo info(file);
    return info.exists() && now <= info.lastModified() ? info.lastModified().addMSecs(1) : now;
}

} // namespace

namespace settings_file {

bool read(const QString& file, QByteArray& text)
{
    QFile source(file);
    if (!source.exists()) {
        text.clear();
        return true;
    }
    if (!source.open(QIODevice::ReadOnly)) {
        return false;
    }
    text = source.readAll();
    return source.error() == QFileDevice::NoError;
}

bool storeKey(
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
    const Values expected = readableValues(settings);
    settings.sync();
    if (settings.status() == QSettings::AccessError) {
        return false;
    }

    QFile written(scratch.fileName());
    if (!written.open(QIODevice::ReadWrite) || !setTime(written, laterThan(scratch.fileName()))) {
        return false;
    }
    settings.sync(); // the new time stamp makes it read the file again
    if (readableValues(settings) != expected) {
        return false;
    }
    text = written.readAll();
    return written.error() == QFileDevice::NoError && text.endsWith('\n');
}

bool replace(const QString& file, const QByteArray& text)
{
    const QDateTime stamp = laterThan(file);
    QSaveFile target(file);
    return target.open(QIODevice::WriteOnly) && target.write(text) == text.size() && target.flush()
        && setTime(target, stamp) && target.commit();
}

} // namespace settings_file
