#include "MonitorViews.h"
#include "StickShelf.h"

#include <QFile>
#include <QTest>

#include <memory>

/// Sticks that come and go.
class tst_MediaMonitor : public QObject {
    Q_OBJECT

private slots:
    void init() { m_shelf = std::make_unique<StickShelf>(); }
    void cleanup() { m_shelf.reset(); }

    void stickPluggedIn_isMountedUnderItsLabel();
    void stickWithoutLabel_isMountedAsRemovableDisk();
    void twoSticksWithoutLabel_areMountedSideBySide();
    void blankInTheLabel_isABlankOfTheFolder();
    void blankAtTheEndOfTheLabel_isOneOfTheFolderToo();
    void otherEscapesOfTheLabel_stayAndTheStickIsReleased();
    void lettersOfOtherLanguages_areThoseOfTheFolder();
    void twoSticksOfOneLabel_areMountedSideBySide();
    void folderThatIsThereAlready_isLeftAlone();
    void twoLinksToOnePartition_areOneStick();
    void linksToOtherDevices_arePassedOver();

    void stickPluggedInBeforeTheStart_isListedAndMountedByMountAll();
    void stickMountedBeforeTheStart_isTakenOver();
    void stickMountedOutsideMediaBeforeTheStart_isReleasedAndItsFolderStays();

    void pulledStick_losesItsEntryAndItsFolder();
    void pulledStickThatWasNotMounted_losesItsEntry();
    void stickPluggedInAgain_isMountedAgain();
    void pulledStickAmongTwo_leavesTheOther();

    void devices_areSharedByAllMonitors();
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

void tst_MediaMonitor::twoSticksWithoutLabel_areMountedSideBySide()
{
    m_shelf->plug("/dev/sdb1", "1111-1111");
    m_shelf->plug("/dev/sdb2", "2222-2222");
    MediaMonitor monitor;
    monitor.mountAll();
    QCOMPARE(media(), (QStringList { "Removable Disk", "Removable Disk (1)" }));
    QVERIFY(monitor.isMounted("/media/Removable Disk"));
    QVERIFY(monitor.isMounted("/media/Removable Disk (1)"));
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

void tst_MediaMonitor::blankAtTheEndOfTheLabel_isOneOfTheFolderToo()
{
    MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK\\x20");
    QTRY_COMPARE(firstOf(monitor).mountPoint, QString("/media/STICK "));
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(monitor.isMounted("/media/STICK "));
    monitor.release();
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

void tst_MediaMonitor::lettersOfOtherLanguages_areThoseOfTheFolder()
{
    const QString label = QString::fromUtf8("M\u00dcLLER \u6e2c\u5b9a");
    MediaMonitor monitor;
    m_shelf->plug("/dev/sdb1", "1234-ABCD", QString(label).replace(" ", "\\x20"));
    QTRY_COMPARE(firstOf(monitor).mountPoint, "/media/" + label);
    QVERIFY(firstOf(monitor).mounted);
    monitor.release();
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

void tst_MediaMonitor::stickMountedOutsideMediaBeforeTheStart_isReleasedAndItsFolderStays()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    m_shelf->mountByHand("/dev/sdb1", "/mnt/STICK");
    QVERIFY(QDir("/mnt").mkpath("other"));
    {
        const MediaMonitor monitor;
        QCOMPARE(firstOf(monitor).mountPoint, QString("/mnt/STICK"));
        QVERIFY(firstOf(monitor).mounted);
    }
    QCOMPARE(m_shelf->calls(), QStringList { "umount /dev/sdb1" });
    QCOMPARE(QDir("/mnt").entryList(QDir::Dirs | QDir::NoDotAndDotDot), (QStringList { "other", "STICK" }));
    QVERIFY(QDir("/mnt").removeRecursively());
    QVERIFY(QDir().mkdir("/mnt"));
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

void tst_MediaMonitor::pulledStickThatWasNotMounted_losesItsEntry()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    const MediaMonitor monitor;
    QVERIFY(!firstOf(monitor).mounted);
    m_shelf->unplug("1234-ABCD", "STICK");
    QTRY_VERIFY(monitor.devices().empty());
    QCOMPARE(m_shelf->calls(), QStringList { "umount /dev/sdb1" });
    QCOMPARE(media(), QStringList());
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

void tst_MediaMonitor::devices_areSharedByAllMonitors()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor first;
    const MediaMonitor second;
    QCOMPARE(second.devices().size(), std::size_t { 1 });
    first.mountAll();
    QCOMPARE(firstOf(second).mountPoint, QString("/media/STICK"));
    QVERIFY(firstOf(second).mounted);
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
