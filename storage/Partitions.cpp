#include "storage/Partitions.h"

#include <QDir>
#include <QFileInfo>
#include <QRegExp>

namespace {

constexpr char kUuidFolder[] = "/dev/disk/by-uuid";
constexpr char kLabelFolder[] = "/dev/disk/by-label";

QFileInfoList links(const char* folder)
{
    return QDir(folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Unsorted);
}

} // namespace

namespace partitions {

QString watchedFolder()
{
    return kUuidFolder;
}

bool isPartition(const QString& device)
{
    return QRegExp("/dev/sd(\\S)(\\d+)").exactMatch(device);
}

bool isOfSystemDisk(const QString& device)
{
    return QRegExp("/dev/sda(\\d+)").exactMatch(device);
}

QStringList present()
{
    QStringList devices;
    const QFileInfoList entries = links(kUuidFolder);
    for (const QFileInfo& entry : entries) {
        const QString device = entry.symLinkTarget();
        if (entry.isSymLink() && isPartition(device) && !devices.contains(device)) {
            devices << device;
        }
    }
    return devices;
}

QMap<QString, QString> labels()
{
    QMap<QString, QString> labelOf;
    const QFileInfoList entries = links(kLabelFolder);
    for (const QFileInfo& entry : entries) {
        if (entry.isSymLink() && isPartition(entry.symLinkTarget())) {
            labelOf.insert(entry.symLinkTarget(), entry.fileName().replace("\\x20", " "));
        }
    }
    return labelOf;
}

} // namespace partitions
