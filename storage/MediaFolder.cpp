#include "storage/MediaFolder.h"
#include "storage/MountTable.h"

#include <QDebug>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

constexpr char kFolder[] = "/media";

QString asFolderName(QString name)
{
    name.replace('/', '_');
    if (name.count('.') == name.size()) {
        name.replace('.', '_');
    }
    return name;
}

bool isOnFileSystemOfMedia(const QString& path)
{
    struct stat entry { };
    struct stat media { };
    return lstat(QFile::encodeName(path).constData(), &entry) == 0 && stat(kFolder, &media) == 0
        && entry.st_dev == media.st_dev;
}

/// Whether nothing is mounted on the folder or below it, whatever the list of mounts says.
bool isWithoutMounts(const QString& path)
{
    if (!isOnFileSystemOfMedia(path)) {
        return false;
    }
    QDirIterator folders(
        path, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (folders.hasNext()) {
        if (!isOnFileSystemOfMedia(folders.next())) {
            return false;
        }
    }
    return true;
}

} // namespace

namespace media_folder {

QString path(const QString& name)
{
    return QString(kFolder) + '/' + name;
}

QStringList names()
{
    return QDir(kFolder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Unsorted);
}

QString make(const QString& name)
{
    const QDir media(kFolder);
    const QString wanted = asFolderName(name);
    QString free = wanted;
    for (int number = 1; !media.mkdir(free); ++number) {
        const QFileInfo taken(path(free));
        if (!taken.exists() && !taken.isSymLink()) {
            qDebug() << "[Error] : " << path(free) << "cannot be made";
            return QString();
        }
        free = QString("%1 (%2)").arg(wanted, QString::number(number));
    }
    return path(free);
}

void removeEmpty(const QString& path)
{
    const QFileInfo entry(path);
    if (entry.path() == kFolder && !entry.fileName().isEmpty()) {
        QDir(kFolder).rmdir(entry.fileName());
    }
}

void removeStale(const QString& name)
{
    const QString stale = path(name);
    const MountTable table;
    if (!table.isReadable() || table.reachesInto(QFileInfo(kFolder).canonicalFilePath() + '/' + name)) {
        return;
    }
    if (!QFileInfo(stale).isDir() || QFileInfo(stale).isSymLink()) {
        QFile::remove(stale);
    } else if (isWithoutMounts(stale)) {
        QDir(stale).removeRecursively();
    }
}

} // namespace media_folder
