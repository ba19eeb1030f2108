#include "StickShelf.h"
#include "storage/MediaMonitor.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <memory>

using Mounting = StickShelf::Mounting;

namespace {

/// What a technician sees below /media.
QStringList media()
{
    return QDir("/media").entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

storage_t firstOf(const MediaMonitor& monitor)
{
    const std::list<storage_t> all = monitor.devices();
    return all.empty() ? storage_t() : all.front();
}

} // namespace

/// Sticks that come and go.
class tst_MediaMonitor : public QObject {
    Q_OBJECT

private slots:
    void init() { m_shelf = std::make_unique<StickShelf>(); }
    void cleanup() { m_shelf.reset(); }

    void stickPluggedIn_isMountedUnderItsLabel();
    void stickWithoutLabel_isMountedAsRemovableDisk();
    void blankInTheLabel_isABlankOfTheFolder();
    void otherEscapesOfTheLabel_stayAndTheStickIsReleased();
    void twoSticksOfOneLabel_areMountedSideBySide();
    void folderThatIsThereAlready_isLeftAlone();
    void twoLinksToOnePartition_areOneStick();
    void linksToOtherDevices_arePassedOver();
    void stickPluggedInBeforeTheStart_isListedAndMountedByMountAll();
    void stickMountedBeforeTheStart_isTakenOver();
    void pulledStick_losesItsEntryAndItsFolder();
    void stickPluggedInAgain_isMountedAgain();
    void pulledStickAmongTwo_leavesTheOther();

    void umountAllThenMountAll_mountsAfresh();
    void mountAll_leavesMountedSticksAlone();
    void umountByFolder_releasesTheStick();
    void umountByFolder_isUndoneByMountAll();
    void release_unmountsEverything();
    void destruction_unmountsAndForgetsEverything();

    void mountThatFails_leavesNoFolder();
    void mountThatFailsInMountAll_makesTheStickUnusable();
    void mountThatHangs_isAFailedMount();
    void deviceMountedElsewhere_isTakenWhereItIs();
    void umountOfABusyStick_fails();

    void connectedUsb_isTheFirstMountedStick();
    void connectedUsbWithoutAFolder_isNone();
    void isMounted_wantsTheWholeName();
    void freeDiskSpace_countsFreeBlocksInWholeMegabytes();
    void freeDiskSpaceOfMissingPath_isZero();
    void monitorInAWindow_isNeverShown();
    void events_areLogged();

private:
    std::unique_ptr<StickShelf> m_shelf;
};

void tst_MediaMonitor::stickPluggedIn_isMountedUnderItsLabel()
{
    const MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_COMPARE(monitor.devices().size(), std::size_t { 1 });
    const storage_t stick = firstOf(monitor);
    QCOMPARE(stick.device, QString("/dev/sdb1"));
    QCOMPARE(stick.label, QString("STICK"));
    QCOMPARE(stick.mountPoint, QString("/media/STICK"));
    QVERIFY(stick.mounted);
    QVERIFY(stick.connected);
    QCOMPARE(m_shelf->calls(), QStringList { "mount /dev/sdb1 /media/STICK" });
    writeFile("/media/STICK/picture.tif", "pixels");
    QCOMPARE(textOf(StickShelf::filesOf("/dev/sdb1") + "/picture.tif"), QByteArray("pixels"));
}

void tst_MediaMonitor::stickWithoutLabel_isMountedAsRemovableDisk()
{
    const MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD");
    QTRY_COMPARE(firstOf(monitor).mountPoint, QString("/media/Removable Disk"));
    QCOMPARE(firstOf(monitor).label, QString("Removable Disk"));
    QVERIFY(firstOf(monitor).mounted);
}

void tst_MediaMonitor::blankInTheLabel_isABlankOfTheFolder()
{
    MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "MY\\x20OWN\\x20STICK");
    QTRY_COMPARE(firstOf(monitor).mountPoint, QString("/media/MY OWN STICK"));
    QVERIFY(firstOf(monitor).mounted);
    monitor.release();
    QVERIFY(!firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor::otherEscapesOfTheLabel_stayAndTheStickIsReleased()
{
    MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "A\\x2fB");
    QTRY_COMPARE(firstOf(monitor).mountPoint, QString("/media/A\\x2fB"));
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(monitor.umount(QString("/media/A\\x2fB")));
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor::twoSticksOfOneLabel_areMountedSideBySide()
{
    const MediaMonitor monitor;
    // udev has one link for a label: that of the stick that came last.
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    QTRY_COMPARE(media(), QStringList { "STICK" });
    QVERIFY(QFile::remove("/dev/disk/by-label/STICK"));
    m_shelf->plug("/dev/sdc1", "2222-2222", "STICK");
    QTRY_COMPARE(media(), (QStringList { "STICK", "STICK (1)" }));
    const std::list<storage_t> sticks = monitor.devices();
    QCOMPARE(sticks.size(), std::size_t { 2 });
    QCOMPARE(sticks.back().device, QString("/dev/sdc1"));
    QCOMPARE(sticks.back().mountPoint, QString("/media/STICK (1)"));
    QVERIFY(sticks.front().mounted && sticks.back().mounted);
}

void tst_MediaMonitor::folderThatIsThereAlready_isLeftAlone()
{
    const MediaMonitor monitor;
    writeFile("/media/STICK/note", "kept");
    QVERIFY(QDir("/media").mkdir("STICK (1)"));
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_COMPARE(firstOf(monitor).mountPoint, QString("/media/STICK (2)"));
    QCOMPARE(textOf("/media/STICK/note"), QByteArray("kept"));
}

void tst_MediaMonitor::twoLinksToOnePartition_areOneStick()
{
    m_shelf->plug("/dev/sdb1", "1111-1111");
    m_shelf->plug("/dev/sdb1", "2222-2222");
    const MediaMonitor monitor;
    QCOMPARE(monitor.devices().size(), std::size_t { 1 });
}

void tst_MediaMonitor::linksToOtherDevices_arePassedOver()
{
    m_shelf->plug("/dev/mmcblk0p1", "1111-1111");
    m_shelf->plug("/dev/sdb", "2222-2222");
    m_shelf->plug("/dev/nvme0n1p1", "3333-3333");
    writeFile("/dev/disk/by-uuid/no-link", "");
    MediaMonitor monitor;
    monitor.mountAll();
    m_shelf->plug("/dev/sdbb1", "4444-4444"); // disks beyond the 26th
    m_shelf->plug("/dev/sdb1", "5555-5555");
    QTRY_COMPARE(monitor.devices().size(), std::size_t { 1 });
    QCOMPARE(m_shelf->calls(), QStringList { "mount /dev/sdb1 /media/Removable Disk" });
}

void tst_MediaMonitor::stickPluggedInBeforeTheStart_isListedAndMountedByMountAll()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    QCOMPARE(firstOf(monitor).label, QString("STICK"));
    QVERIFY(firstOf(monitor).connected);
    QVERIFY(!firstOf(monitor).mounted);
    QCOMPARE(m_shelf->calls(), QStringList());
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(firstOf(monitor).mountPoint, QString("/media/STICK"));
}

void tst_MediaMonitor::stickMountedBeforeTheStart_isTakenOver()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "MY\\x20STICK");
    m_shelf->mountByHand("/dev/sdb1", "/media/MY STICK");
    writeFile("/media/MY STICK/picture.tif", "pixels");
    MediaMonitor monitor;
    QCOMPARE(monitor.devices().size(), std::size_t { 1 });
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(firstOf(monitor).mountPoint, QString("/media/MY STICK"));
    QCOMPARE(textOf("/media/MY STICK/picture.tif"), QByteArray("pixels"));
    monitor.umountAll();
    QVERIFY(!firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList());
    QCOMPARE(textOf(StickShelf::filesOf("/dev/sdb1") + "/picture.tif"), QByteArray("pixels"));
}

void tst_MediaMonitor::pulledStick_losesItsEntryAndItsFolder()
{
    const MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_COMPARE(media(), QStringList { "STICK" });
    writeFile("/media/STICK/picture.tif", "pixels");
    m_shelf->unplug("1234-ABCD", "STICK");
    QTRY_VERIFY(monitor.devices().empty());
    QCOMPARE(media(), QStringList());
    QCOMPARE(m_shelf->calls(), (QStringList { "mount /dev/sdb1 /media/STICK", "umount /dev/sdb1" }));
    QCOMPARE(textOf(StickShelf::filesOf("/dev/sdb1") + "/picture.tif"), QByteArray("pixels"));
}

void tst_MediaMonitor::stickPluggedInAgain_isMountedAgain()
{
    const MediaMonitor monitor;
    for (int round = 0; round < 3; ++round) {
        m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
        QTRY_COMPARE(firstOf(monitor).mountPoint, QString("/media/STICK"));
        QVERIFY(firstOf(monitor).mounted);
        m_shelf->unplug("1234-ABCD", "STICK");
        QTRY_VERIFY(monitor.devices().empty());
    }
}

void tst_MediaMonitor::pulledStickAmongTwo_leavesTheOther()
{
    const MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1111-1111", "ONE");
    m_shelf->plug("/dev/sdb10", "2222-2222", "TEN");
    QTRY_COMPARE(media(), (QStringList { "ONE", "TEN" }));
    m_shelf->unplug("1111-1111", "ONE");
    QTRY_COMPARE(media(), QStringList { "TEN" });
    QCOMPARE(firstOf(monitor).device, QString("/dev/sdb10"));
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(monitor.isMounted("/dev/sdb10"));
}

void tst_MediaMonitor::umountAllThenMountAll_mountsAfresh()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    for (int round = 0; round < 2; ++round) {
        monitor.umountAll();
        monitor.mountAll();
        QVERIFY(firstOf(monitor).mounted);
        QCOMPARE(media(), QStringList { "STICK" });
    }
    QCOMPARE(m_shelf->calls(),
        (QStringList { "mount /dev/sdb1 /media/STICK", "umount /dev/sdb1", "mount /dev/sdb1 /media/STICK" }));
}

void tst_MediaMonitor::mountAll_leavesMountedSticksAlone()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    monitor.mountAll();
    QCOMPARE(m_shelf->calls(), QStringList { "mount /dev/sdb1 /media/STICK" });
}

void tst_MediaMonitor::umountByFolder_releasesTheStick()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    m_shelf->plug("/dev/sdc1", "2222-2222", "STICK2");
    MediaMonitor monitor;
    monitor.mountAll();
    QVERIFY(monitor.umount(QString("/media/STICK")));
    QVERIFY(!monitor.isMounted("/dev/sdb1"));
    QVERIFY(monitor.isMounted("/dev/sdc1"));
    QCOMPARE(media(), QStringList { "STICK2" });
    QString mountPoint;
    QString device;
    QVERIFY(monitor.isConnectedUSB(mountPoint, device));
    QCOMPARE(mountPoint, QString("/media/STICK2"));
}

void tst_MediaMonitor::umountByFolder_isUndoneByMountAll()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    QVERIFY(monitor.umount(QString("/media/STICK")));
    QVERIFY(!firstOf(monitor).mounted);
    monitor.umountAll();
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(monitor.isMounted("/dev/sdb1"));
}

void tst_MediaMonitor::release_unmountsEverything()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "ONE");
    m_shelf->plug("/dev/sdc1", "2222-2222");
    MediaMonitor monitor;
    monitor.mountAll();
    QCOMPARE(media(), (QStringList { "ONE", "Removable Disk" }));
    monitor.release();
    QCOMPARE(media(), QStringList());
    QVERIFY(!monitor.isMounted("/dev/sdb1"));
    QVERIFY(!monitor.isMounted("/dev/sdc1"));
}

void tst_MediaMonitor::destruction_unmountsAndForgetsEverything()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    {
        MediaMonitor monitor;
        monitor.mountAll();
        QVERIFY(monitor.isMounted("/dev/sdb1"));
    }
    QCOMPARE(media(), QStringList());
    m_shelf->unplug("1234-ABCD", "STICK");
    const MediaMonitor next;
    QVERIFY(next.devices().empty());
}

void tst_MediaMonitor::mountThatFails_leavesNoFolder()
{
    MediaMonitor monitor;
    m_shelf->setMounting(Mounting::fails);
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_COMPARE(monitor.devices().size(), std::size_t { 1 });
    QVERIFY(!firstOf(monitor).mounted);
    QVERIFY(firstOf(monitor).connected);
    QCOMPARE(media(), QStringList());
    QString mountPoint = "untouched";
    QString device = "untouched";
    QVERIFY(!monitor.isConnectedUSB(mountPoint, device));
    QCOMPARE(mountPoint, QString("untouched"));
    // It gets another chance with the next mountAll.
    m_shelf->setMounting(Mounting::works);
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
}

void tst_MediaMonitor::mountThatFailsInMountAll_makesTheStickUnusable()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->setMounting(Mounting::fails);
    monitor.mountAll();
    QVERIFY(!firstOf(monitor).mounted);
    QVERIFY(!firstOf(monitor).connected);
    QCOMPARE(media(), QStringList());
    m_shelf->setMounting(Mounting::works);
    monitor.mountAll();
    QCOMPARE(m_shelf->calls().size(), 1);
    // Until it is plugged in anew.
    m_shelf->unplug("1234-ABCD", "STICK");
    QTRY_VERIFY(monitor.devices().empty());
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_VERIFY(firstOf(monitor).mounted);
}

void tst_MediaMonitor::mountThatHangs_isAFailedMount()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->setMounting(Mounting::hangs);
    m_shelf->endHangingMountSoon();
    monitor.mountAll();
    QVERIFY(!firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor::deviceMountedElsewhere_isTakenWhereItIs()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->mountByHand("/dev/sdb1", "/mnt/by hand");
    m_shelf->setMounting(Mounting::fails);
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(firstOf(monitor).mountPoint, QString("/mnt/by hand"));
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor::umountOfABusyStick_fails()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    QFile open("/media/STICK/open");
    QVERIFY(open.open(QIODevice::WriteOnly));
    QVERIFY(!monitor.umount(QString("/media/STICK")));
    monitor.umountAll();
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(firstOf(monitor).connected);
    QVERIFY(monitor.isMounted("/dev/sdb1"));
    open.close();
    QVERIFY(monitor.umount(QString("/media/STICK")));
}

void tst_MediaMonitor::connectedUsb_isTheFirstMountedStick()
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

void tst_MediaMonitor::connectedUsbWithoutAFolder_isNone()
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

void tst_MediaMonitor::isMounted_wantsTheWholeName()
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

void tst_MediaMonitor::freeDiskSpace_countsFreeBlocksInWholeMegabytes()
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

void tst_MediaMonitor::freeDiskSpaceOfMissingPath_isZero()
{
    const MediaMonitor monitor;
    QCOMPARE(monitor.freeDiskSpace("/media/missing"), 0.0F);
}

void tst_MediaMonitor::monitorInAWindow_isNeverShown()
{
    QWidget window;
    const MediaMonitor monitor(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(!monitor.isVisible());
}

void tst_MediaMonitor::events_areLogged()
{
    MediaMonitor monitor;
    QTest::ignoreMessage(QtDebugMsg, R"(slot_directoryChanged() :  "/dev/disk/by-uuid")");
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_VERIFY(firstOf(monitor).mounted);
    QTest::ignoreMessage(QtDebugMsg, R"(cleanUp() - entry :  "STICK")");
    QTest::ignoreMessage(QtDebugMsg, "cleanUp() :  true");
    monitor.cleanUp();
    QTest::ignoreMessage(QtDebugMsg, R"(umount() :  "/media/STICK")");
    monitor.umountAll();
    writeFile("/media/stale", "");
    QTest::ignoreMessage(QtDebugMsg, R"(cleanUp() - entry :  "stale")");
    QTest::ignoreMessage(QtDebugMsg, "cleanUp() :  false");
    monitor.cleanUp();
}

QTEST_MAIN(tst_MediaMonitor)

#include "tst_MediaMonitor.moc"
