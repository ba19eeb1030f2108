#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The mounts that the system lists in /etc/mtab at the moment of construction, in its order. Names are
/// decoded: the file writes blanks and some other characters as octal numbers ("\040").
class MountTable {
public:
    struct Mount {
        QString device;
        QString mountPoint;
    };

    MountTable();

    /// False when the file could not be read, which is logged; the table is empty then.
    bool isReadable() const { return m_readable; }
    const QList<Mount>& mounts() const { return m_mounts; }

    /// Where the device is mounted, the latest place last.
    QStringList mountPointsOf(const QString& device) const;
    /// Whether the name stands in the table as a whole, as a device or as a mount point.
    bool contains(const QString& deviceOrMountPoint) const;
    /// Whether something is mounted on the folder or anywhere below it.
    bool reachesInto(const QString& folder) const;

private:
    bool m_readable;
    QList<Mount> m_mounts;
};
