#include "storage/MediaMonitor.h"
#include "storage/MediaFolder.h"
#include "storage/MountTable.h"
#include "storage/Partitions.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QStringList>

#include <algorithm>

#include <sys/statvfs.h>

namespace {

constexpr int kProgramLimitMs = 30000;
constexpr char kNoLabel[] = "Removable Disk";

/// Runs a program of the system to its end. One that hangs is left to itself, killed: it may be stuck in the
/// kernel, where waiting for its death would hang us too.
void run(const QString& program, const QStringList& arguments)
{
    auto* process = new QProcess;
    process->start(program, arguments, QIODevice::ReadWrite);
    process->waitForFinished(kProgramLimitMs);
    if (process->state() != QProcess::NotRunning) {
        qDebug() << "[Error] : " << program << arguments << "hangs";
        QObject::connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), process,
            &QObject::deleteLater);
        process->kill();
        return;
    }
    if (process->error() != QProcess::UnknownError || process->exitCode() != 0) {
        qDebug() << "[Error] : " << program << arguments << process->readAllStandardError();
    }
    process->close();
    delete process;
}

storage_t newStorage(const QString& device, const QMap<QString, QString>& labels)
{
    storage_t storage;
    storage.device = device;
    storage.label = labels.value(device, kNoLabel);
    storage.connected = true;
    return storage;
}

} // namespace

std::list<storage_t> MediaMonitor::m_Devices;

MediaMonitor::MediaMonitor(QWidget* parent)
    : QWidget(parent)
    , m_watcher({ partitions::watchedFolder() })
{
    hide(); // also when the window shows its children
    if (m_watcher.directories().isEmpty()) {
        qDebug() << "[Error] : " << partitions::watchedFolder() << "cannot be watched";
    }
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &MediaMonitor::slot_directoryChanged);
    initialize();
    cleanUp();
}

MediaMonitor::~MediaMonitor()
{
    release();
    m_Devices.clear();
}

void MediaMonitor::initialize()
{
    QList<MountTable::Mount> mounts = MountTable().mounts();
    const auto drop = [&mounts](auto isUnwanted) {
        mounts.erase(std::remove_if(mounts.begin(), mounts.end(), isUnwanted), mounts.end());
    };
    drop([](const MountTable::Mount& mount) {
        return !partitions::isPartition(mount.device) || partitions::isOfSystemDisk(mount.device);
    });

    const QMap<QString, QString> labels = partitions::labels();
    const QStringList present = partitions::present();
    for (const QString& device : present) {
        if (partitions::isOfSystemDisk(device)) {
            continue;
        }
        const auto isItsOwn = [&device](const auto& other) { return other.device == device; };
        storage_t storage = newStorage(device, labels);
        const auto mount = std::find_if(mounts.begin(), mounts.end(), isItsOwn);
        if (mount != mounts.end()) {
            storage.mounted = true;
            storage.mountPoint = mount->mountPoint;
            drop(isItsOwn);
        }
        if (std::none_of(m_Devices.begin(), m_Devices.end(), isItsOwn)) {
            m_Devices.push_back(storage);
        }
    }

    // The rest are mounts of sticks that are gone.
    for (const MountTable::Mount& mount : mounts) {
        umount(mount.mountPoint);
    }
}

void MediaMonitor::cleanUp()
{
    const QStringList names = media_folder::names();
    for (const QString& name : names) {
        qDebug() << "cleanUp() - entry : " << name;
        const QString path = media_folder::path(name);
        const auto owner = std::find_if(m_Devices.begin(), m_Devices.end(),
            [&path](const storage_t& storage) { return storage.mountPoint == path; });
        const bool ownerIsMounted = owner != m_Devices.end() && isMounted(owner->device);
        qDebug() << "cleanUp() : " << ownerIsMounted;
        if (!ownerIsMounted) {
            media_folder::removeStale(name);
        }
    }
}

void MediaMonitor::mountAll()
{
    for (auto storage = m_Devices.begin(); storage != m_Devices.end(); ++storage) {
        if (storage->connected && !storage->mounted) {
            storage->mounted = mount(storage);
            storage->connected = storage->mounted;
        }
    }
}

void MediaMonitor::umountAll()
{
    for (auto storage = m_Devices.begin(); storage != m_Devices.end(); ++storage) {
        if (storage->connected && storage->mounted && !umount(storage)) {
            storage->connected = connectedDevice(storage->device);
        }
    }
}

void MediaMonitor::release()
{
    umountAll();
    cleanUp();
}

bool MediaMonitor::mount(std::list<storage_t>::iterator storage)
{
    return mount(storage->device, storage->label, storage->mountPoint);
}

bool MediaMonitor::mount(QString device, QString label, QString& mountPoint)
{
    mountPoint = media_folder::make(label.isEmpty() ? QString(kNoLabel) : label);
    if (mountPoint.isEmpty()) {
        return false;
    }
    run("mount", { device, mountPoint });

    const QStringList places = MountTable().mountPointsOf(device);
    if (!places.contains(QFileInfo(mountPoint).canonicalFilePath())) {
        // Not mounted, or someone else's mount stands in the way: our folder would be taken for the stick.
        media_folder::removeEmpty(mountPoint);
        mountPoint = places.isEmpty() ? QString() : places.last();
    }
    return !places.isEmpty();
}

bool MediaMonitor::umount(std::list<storage_t>::iterator storage)
{
    run("umount", { storage->device });
    if (isMounted(storage->device)) {
        return false;
    }
    media_folder::removeEmpty(storage->mountPoint);
    storage->mounted = false;
    qDebug() << "umount() : " << storage->mountPoint;
    return true;
}

bool MediaMonitor::umount(QString mountPoint)
{
    run("umount", { mountPoint });
    if (isMounted(mountPoint)) {
        return false;
    }
    media_folder::removeEmpty(mountPoint);
    for (storage_t& storage : m_Devices) {
        if (storage.mountPoint == mountPoint) {
            storage.mounted = false;
        }
    }
    qDebug() << "umount() : " << mountPoint;
    return true;
}

bool MediaMonitor::isMounted(QString device) const
{
    return MountTable().contains(device);
}

bool MediaMonitor::connectedDevice(QString device) const
{
    return partitions::present().contains(device);
}

bool MediaMonitor::isConnectedUSB(QString& mountPoint, QString& /*device*/) const
{
    const std::list<storage_t> all = devices();
    const auto stick = std::find_if(all.begin(), all.end(), [](const storage_t& storage) {
        return !partitions::isOfSystemDisk(storage.device) && storage.mounted
            && QDir(storage.mountPoint).exists();
    });
    if (stick == all.end()) {
        return false;
    }
    mountPoint = stick->mountPoint;
    return true;
}

std::list<storage_t> MediaMonitor::devices() const
{
    return m_Devices;
}

float MediaMonitor::freeDiskSpace(QString path) const
{
    struct statvfs disk { };
    if (statvfs(QFile::encodeName(path).constData(), &disk) != 0) {
        return 0.0F;
    }
    return static_cast<float>((quint64 { disk.f_frsize } * disk.f_bfree) >> 20U);
}

void MediaMonitor::slot_directoryChanged()
{
    qDebug() << "slot_directoryChanged() : " << partitions::watchedFolder();
    const QStringList present = partitions::present();

    const QMap<QString, QString> labels = partitions::labels();
    for (const QString& device : present) {
        const bool isKnown = std::any_of(m_Devices.begin(), m_Devices.end(),
            [&device](const storage_t& storage) { return storage.device == device; });
        if (!isKnown && !partitions::isOfSystemDisk(device)) {
            const auto added = m_Devices.insert(m_Devices.end(), newStorage(device, labels));
            added->mounted = mount(added);
        }
    }

    for (auto storage = m_Devices.begin(); storage != m_Devices.end();) {
        if (present.contains(storage->device)) {
            ++storage;
        } else {
            umount(storage);
            storage = m_Devices.erase(storage);
        }
    }
}
