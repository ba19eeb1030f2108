#pragma once

#include "storage/storage_t.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QWidget>

#include <list>

/// Finds the partitions of USB sticks, mounts them under /media by the system's own mount and umount, and
/// tells where a stick is: the instrument has no desktop, so nobody else does. The partitions of the system
/// disk (/dev/sda) are never touched. What is mounted is never deleted: clean-up removes only what stands in
/// /media without a mount on or below it, and nothing when the list of mounts cannot be read.
///
/// Lives on the GUI thread as a member of the window; it is a widget that is never shown. Every call that
/// mounts or unmounts blocks the thread for up to 30 s each; a program that hangs is then abandoned. Failures
/// are told by results and log lines.
class MediaMonitor : public QWidget {
    Q_OBJECT

public:
    /// Takes stock of what is there, unmounts what is left of sticks that are gone, cleans /media up, and
    /// watches for sticks from then on.
    explicit MediaMonitor(QWidget* parent = nullptr);
    /// Unmounts every stick and cleans /media up.
    ~MediaMonitor() override;

    void initialize();
    /// Removes everything in /media that is no mounted stick of ours and has no mount on or below it.
    void cleanUp();
    /// Mounts every usable stick that is not mounted; one that cannot be mounted is no longer usable.
    void mountAll();
    void umountAll();
    /// umountAll and cleanUp.
    void release();

    /// Makes a folder in /media, named by the label (or "LABEL (1)" and so on where that name is taken), and
    /// mounts the device on it. A failure leaves no folder behind.
    bool mount(std::list<storage_t>::iterator storage);
    bool mount(QString device, QString label, QString& mountPoint);
    /// Unmounts and removes the folder. False when it is still mounted afterwards; a list of
    /// mounts that cannot be read does not say so, and counts as unmounted.
    bool umount(std::list<storage_t>::iterator storage);
    bool umount(QString mountPoint);

    /// Whether the system lists the device, or a mount on this folder; false when its list cannot be read.
    bool isMounted(QString device) const;
    /// Whether the device is plugged in.
    bool connectedDevice(QString device) const;
    /// Whether there is a mounted stick; the first parameter takes its mount point. Otherwise both stay as
    /// they are; the second always does.
    bool isConnectedUSB(QString& mountPoint, QString& device) const;
    std::list<storage_t> devices() const;
    /// Free whole megabytes of the file system that the path is on, 0 when there is none.
    float freeDiskSpace(QString path) const;

public slots:
    /// Mounts the sticks that have come and unmounts those that have gone.
    void slot_directoryChanged();

private:
    static std::list<storage_t> m_Devices; ///< shared by all instances
    QFileSystemWatcher m_watcher;
};
