#include "storage/MountTable.h"

#include <QByteArray>
#include <QDebug>
#include <QFile>

#include <algorithm>

namespace {

constexpr char kTableName[] = "/etc/mtab";

QString decoded(const QByteArray& word)
{
    QByteArray text;
    for (int at = 0; at < word.size(); ++at) {
        bool isOctal = false;
        const int code = word[at] == '\\' ? word.mid(at + 1, 3).toInt(&isOctal, 8) : 0;
        if (isOctal && at + 3 < word.size()) {
            text.append(static_cast<char>(code));
            at += 3;
        } else {
            text.append(word[at]);
        }
    }
    return QFile::decodeName(text);
}

} // namespace

MountTable::MountTable()
{
    QFile file(kTableName);
    m_readable = file.open(QIODevice::ReadOnly);
    if (!m_readable) {
        qDebug() << "[Error] : " << kTableName << file.errorString();
    }
    const QList<QByteArray> lines = m_readable ? file.readAll().split('\n') : QList<QByteArray>();
    for (const QByteArray& line : lines) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() >= 2) {
            m_mounts << Mount { decoded(words[0]), decoded(words[1]) };
        }
    }
}

QStringList MountTable::mountPointsOf(const QString& device) const
{
    QStringList places;
    for (const Mount& mount : m_mounts) {
        if (mount.device == device) {
            places << mount.mountPoint;
        }
    }
    return places;
}

bool MountTable::contains(const QString& deviceOrMountPoint) const
{
    // A device file can itself be a mount point, where a container has bound it; that is no mount of the
    // device.
    const bool isDevice = deviceOrMountPoint.startsWith("/dev/");
    return std::any_of(m_mounts.begin(), m_mounts.end(), [&](const Mount& mount) {
        return deviceOrMountPoint == (isDevice ? mount.device : mount.mountPoint);
    });
}

bool MountTable::reachesInto(const QString& folder) const
{
    return std::any_of(m_mounts.begin(), m_mounts.end(), [&](const Mount& mount) {
        return mount.mountPoint == folder || mount.mountPoint.startsWith(folder + '/');
    });
}
