#include "MonitorViews.h"
#include "StickShelf.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <memory>

#include <dlfcn.h>
#include <sys/statvfs.h>

namespace {

constexpr char kReservingDisk[] = "/reserving";

} // namespace

/// Stands in for the C library's function of this name: a disk of 3000 free megabytes in blocks of 4096
/// bytes, of which an ordinary user may have 1000.
extern "C" int statvfs(const char* path, struct statvfs* disk) noexcept
{
    if (qstrcmp(path, kReservingDisk) != 0) {
        using Function = int (*)(const char*, struct statvfs*);
        return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "statvfs"))(path, disk);
    }
    *disk = {};
    disk->f_bsize = 65536; // what it likes to transfer at once
    disk->f_frsize = 4096;
    disk->f_bfree = 768000;
    disk->f_bavail = 256000;
    return 0;
}

/// What the monitor tells about sticks.
class tst_MediaMonitor_queries : public QObject {
    Q_OBJECT

private slots:
    void init() { m_shelf = std::make_unique<StickShelf>(); }
    void cleanup() { m_shelf.reset(); }

    void connectedUsb_isTheFirstMountedStick();
    void connectedUsbWithoutAFolder_isNone();
    void isMounted_wantsTheWholeName();
    void connectedDevice_isThatOfALink();

    void freeDiskSpace_countsFreeBlocksInWholeMegabytes();
    void freeDiskSpace_includesTheBlocksKeptForRoot();
    void freeDiskSpaceOfMissingPath_isZero();

    void monitorInAWindow_isNeverShown();

private:
    std::unique_ptr<StickShelf> m_shelf;
};

void tst_MediaMonitor_queries::connectedUsb_isTheFirstMountedStick()
{
    const MediaMonitor monitor;
    QString mountPoint;
    QString device = "untouched";
    QVERIFY(!monitor.isConnectedUSB(mountPoint, device));
    m_shelf->plug("/dev/sdc1", "1111-1111", "FIRST");
    QTRY_VERIFY(monitor.isConnectedUSB(mountPoint, device));
    m_shelf->plug("/dev/sdb1", "2222-2222", "SECOND");
    QTRY_COMPARE(monitor.devices().size(), std::size_t { 2 });
    QVERIFY(monitor.isConnectedUSB(mountPoint, device));
    QCOMPARE(mountPoint, QString("/media/FIRST"));
    QCOMPARE(device, QString("untouched"));
}

void tst_MediaMonitor_queries::connectedUsbWithoutAFolder_isNone()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    QCOMPARE(QProcess::execute("/usr/bin/umount", { "/media/STICK" }), 0);
    QVERIFY(QDir("/media").rmdir("STICK"));
    QVERIFY(firstOf(monitor).mounted);
    QString mountPoint;
    QString device;
    QVERIFY(!monitor.isConnectedUSB(mountPoint, device));
}

void tst_MediaMonitor_queries::isMounted_wantsTheWholeName()
{
    const MediaMonitor monitor;
    m_shelf->addMtabLine("/dev/sdb10 /media/MY\\040STICK\\0402 vfat rw 0 0");
    m_shelf->addMtabLine("udev /dev/sdb1 devtmpfs rw 0 0"); // a device file that is bound there
    QVERIFY(monitor.isMounted("/dev/sdb10"));
    QVERIFY(monitor.isMounted("/media/MY STICK 2"));
    QVERIFY(!monitor.isMounted("/dev/sdb1"));
    QVERIFY(!monitor.isMounted("/dev/sdb"));
    QVERIFY(!monitor.isMounted("/media/MY STICK"));
    QVERIFY(!monitor.isMounted("vfat"));
    QVERIFY(!monitor.isMounted(""));
    QVERIFY(QFile::remove("/run/rig/mtab"));
    QVERIFY(!monitor.isMounted("/dev/sdb10"));
}

void tst_MediaMonitor_queries::connectedDevice_isThatOfALink()
{
    m_shelf->plug("/dev/sdb10", "1111-1111");
    writeFile("/dev/sdc1", "");
    const MediaMonitor monitor;
    QVERIFY(monitor.connectedDevice("/dev/sdb10"));
    QVERIFY(!monitor.connectedDevice("/dev/sdb1"));
    QVERIFY(!monitor.connectedDevice("/dev/sdc1"));
    m_shelf->unplug("1111-1111");
    QVERIFY(!monitor.connectedDevice("/dev/sdb10"));
}

void tst_MediaMonitor_queries::freeDiskSpace_countsFreeBlocksInWholeMegabytes()
{
    QVERIFY(QDir().mkpath("/tmp/small"));
    QCOMPARE(
        QProcess::execute("/usr/bin/mount", { "-t", "tmpfs", "-o", "size=9m", "small", "/tmp/small" }), 0);
    const MediaMonitor monitor;
    QCOMPARE(monitor.freeDiskSpace("/tmp/small"), 9.0F);
    writeFile("/tmp/small/file", QByteArray(1, 'x'));
    QCOMPARE(monitor.freeDiskSpace("/tmp/small"), 8.0F);
    QCOMPARE(QProcess::execute("/usr/bin/umount", { "/tmp/small" }), 0);
}

void tst_MediaMonitor_queries::freeDiskSpace_includesTheBlocksKeptForRoot()
{
    const MediaMonitor monitor;
    QCOMPARE(monitor.freeDiskSpace(kReservingDisk), 3000.0F);
}

void tst_MediaMonitor_queries::freeDiskSpaceOfMissingPath_isZero()
{
    const MediaMonitor monitor;
    QCOMPARE(monitor.freeDiskSpace("/media/missing"), 0.0F);
}

void tst_MediaMonitor_queries::monitorInAWindow_isNeverShown()
{
    QWidget window;
    const MediaMonitor monitor(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(!monitor.isVisible());
}

QTEST_MAIN(tst_MediaMonitor_queries)

#include "tst_MediaMonitor_queries.moc"
