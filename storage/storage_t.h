#pragma once

#include <QString>

/// What is known of one partition of a USB stick.
struct storage_t {
    QString device; ///< "/dev/sdb1"
    QString label; ///< of the partition, or "Removable Disk"
    QString mountPoint; ///< folder under /media; empty until it is mounted
    bool mounted = false; ///< by this program, or found so
    bool connected = false; ///< present and usable
};
