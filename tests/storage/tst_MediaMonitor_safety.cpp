#include "MonitorViews.h"
#include "StickShelf.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <memory>

namespace {

const QByteArray pixels = "the pixels of a day's work";

} // namespace

/// What the monitor must never do: touch the system disk, or delete what is on a stick.
class tst_MediaMonitor_safety : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_shelf.reset(); }

    void systemDisk_isNeverListedMountedOrUnmounted();
    void leftoverMounts_areUnmountedButNotThoseOfTheSystemDisk();
    void leftoverMountWithABlank_isUnmounted();

    void mountThatIsNotOurs_keepsItsContent();
    void mountBelowAStaleFolder_keepsItsContent();
    void folderOfTheSameDiskMountedInMedia_keepsItsContent();
    void mountPointThatBeginsAnother_isTakenForWhatItIs();
    void unreadableListOfMounts_leavesEverything();
    void unreadableListOfMounts_countsAsUnmountedAndIsLogged();
    void listOfMountsWithoutAMountedStick_keepsItsContent();
    void listOfMountsWithoutAMountBelow_keepsItsContent();

    void anyOrderOfPullingBusyAndEnd_keepsTheContent_data();
    void anyOrderOfPullingBusyAndEnd_keepsTheContent();

private:
    std::unique_ptr<StickShelf> m_shelf;
};

void tst_MediaMonitor_safety::init()
{
    m_shelf = std::make_unique<StickShelf>();
    QDir("/outside").removeRecursively();
    writeFile("/outside/folder/file", pixels);
}

void tst_MediaMonitor_safety::systemDisk_isNeverListedMountedOrUnmounted()
{
    m_shelf->plug("/dev/sda1", "1111-1111", "SYSTEM");
    m_shelf->mountByHand("/dev/sda1", "/media/SYSTEM");
    writeFile("/media/SYSTEM/file", pixels);
    {
        MediaMonitor monitor;
        monitor.mountAll();
        m_shelf->plug("/dev/sda12", "2222-2222", "SYSTEM12");
        m_shelf->plug("/dev/sdb1", "3333-3333", "STICK");
        QTRY_COMPARE(monitor.devices().size(), std::size_t { 1 });
        QCOMPARE(monitor.devices().front().device, QString("/dev/sdb1"));
        m_shelf->unplug("1111-1111", "SYSTEM");
        m_shelf->unplug("3333-3333", "STICK");
        QTRY_VERIFY(monitor.devices().empty());
        monitor.umountAll();
    }
    QCOMPARE(m_shelf->calls(), (QStringList { "mount /dev/sdb1 /media/STICK", "umount /dev/sdb1" }));
    QCOMPARE(textOf("/media/SYSTEM/file"), pixels);
}

void tst_MediaMonitor_safety::leftoverMounts_areUnmountedButNotThoseOfTheSystemDisk()
{
    m_shelf->mountByHand("/dev/sdb1", "/media/GONE");
    m_shelf->mountByHand("/dev/sda2", "/media/HOME");
    writeFile("/media/GONE/file", pixels);
    m_shelf->addMtabLine("/dev/sda1 / ext4 rw 0 0");
    const MediaMonitor monitor;
    QCOMPARE(m_shelf->calls(), QStringList { "umount /media/GONE" });
    QVERIFY(!monitor.isMounted("/dev/sdb1"));
    QVERIFY(monitor.isMounted("/dev/sda2"));
    QCOMPARE(media(), QStringList { "HOME" });
    QCOMPARE(textOf(StickShelf::filesOf("/dev/sdb1") + "/file"), pixels);
}

void tst_MediaMonitor_safety::leftoverMountWithABlank_isUnmounted()
{
    m_shelf->mountByHand("/dev/sdb1", "/media/MY STICK");
    const MediaMonitor monitor;
    QCOMPARE(m_shelf->calls(), QStringList { "umount /media/MY STICK" });
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_safety::mountThatIsNotOurs_keepsItsContent()
{
    MediaMonitor monitor;
    m_shelf->mountByHand("/dev/sdb1", "/media/FOREIGN");
    writeFile("/media/FOREIGN/file", pixels);
    monitor.release();
    monitor.cleanUp();
    QCOMPARE(textOf("/media/FOREIGN/file"), pixels);
}

void tst_MediaMonitor_safety::mountBelowAStaleFolder_keepsItsContent()
{
    MediaMonitor monitor;
    m_shelf->mountByHand("/dev/sdb1", "/media/user/STICK");
    writeFile("/media/user/STICK/file", pixels);
    monitor.release();
    QCOMPARE(textOf("/media/user/STICK/file"), pixels);
}

void tst_MediaMonitor_safety::folderOfTheSameDiskMountedInMedia_keepsItsContent()
{
    MediaMonitor monitor;
    QVERIFY(QDir("/media").mkdir("share"));
    QCOMPARE(QProcess::execute("/usr/bin/mount", { "--bind", "/outside/folder", "/media/share" }), 0);
    m_shelf->addMtabLine("/dev/nvme0n1p2 /media/share ext4 rw 0 0");
    monitor.release();
    QCOMPARE(textOf("/media/share/file"), pixels);
    QCOMPARE(QProcess::execute("/usr/bin/umount", { "/media/share" }), 0);
}

void tst_MediaMonitor_safety::mountPointThatBeginsAnother_isTakenForWhatItIs()
{
    MediaMonitor monitor;
    m_shelf->mountByHand("/dev/sdb1", "/media/STICK2");
    writeFile("/media/STICK/file", "stale");
    writeFile("/media/STICK2/file", pixels);
    monitor.cleanUp();
    QCOMPARE(media(), QStringList { "STICK2" });
    QCOMPARE(textOf("/media/STICK2/file"), pixels);
}

void tst_MediaMonitor_safety::unreadableListOfMounts_leavesEverything()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    writeFile("/media/STICK/file", pixels);
    writeFile("/media/stale/file", "x");
    QVERIFY(QFile::remove("/run/rig/mtab"));
    monitor.cleanUp();
    QCOMPARE(textOf("/media/STICK/file"), pixels);
    QCOMPARE(textOf("/media/stale/file"), QByteArray("x"));
}

void tst_MediaMonitor_safety::unreadableListOfMounts_countsAsUnmountedAndIsLogged()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    writeFile("/media/STICK/file", pixels);
    m_shelf->setUnmounting(StickShelf::Behaviour::fails);
    QVERIFY(QFile::remove("/run/rig/mtab"));
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^\\[Error\\] : +/etc/mtab "));
    QVERIFY(monitor.umount("/media/STICK"));
    QCOMPARE(textOf("/media/STICK/file"), pixels);
}

void tst_MediaMonitor_safety::listOfMountsWithoutAMountedStick_keepsItsContent()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    writeFile("/media/STICK/file", pixels);
    writeFile("/run/rig/mtab", "");
    monitor.cleanUp();
    QCOMPARE(textOf("/media/STICK/file"), pixels);
    QCOMPARE(textOf(StickShelf::filesOf("/dev/sdb1") + "/file"), pixels);
}

void tst_MediaMonitor_safety::listOfMountsWithoutAMountBelow_keepsItsContent()
{
    MediaMonitor monitor;
    m_shelf->mountByHand("/dev/sdb1", "/media/user/.hidden/STICK");
    writeFile("/media/user/.hidden/STICK/file", pixels);
    writeFile("/run/rig/mtab", "");
    monitor.release();
    QCOMPARE(textOf(StickShelf::filesOf("/dev/sdb1") + "/file"), pixels);
}

void tst_MediaMonitor_safety::anyOrderOfPullingBusyAndEnd_keepsTheContent_data()
{
    QTest::addColumn<bool>("busy");
    QTest::addColumn<QStringList>("steps");
    const QList<QStringList> orders { { "pull" }, { "release" }, { "pull", "release" }, { "release", "pull" },
        { "pull", "clean", "umountAll", "release" }, { "umountAll", "pull", "mountAll", "clean" },
        { "clean", "pull", "plug", "clean", "release" } };
    for (const QStringList& steps : orders) {
        QTest::newRow(qPrintable("free, " + steps.join(", "))) << false << steps;
        QTest::newRow(qPrintable("busy, " + steps.join(", "))) << true << steps;
    }
}

void tst_MediaMonitor_safety::anyOrderOfPullingBusyAndEnd_keepsTheContent()
{
    QFETCH(bool, busy);
    QFETCH(QStringList, steps);
    const QString files = StickShelf::filesOf("/dev/sdb1");
    QFile open("/media/STICK/folder/file");
    {
        MediaMonitor monitor;
        m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
        QTRY_VERIFY(!monitor.devices().empty());
        writeFile("/media/STICK/folder/file", pixels);
        if (busy) {
            QVERIFY(open.open(QIODevice::ReadOnly));
        }
        for (const QString& step : steps) {
            if (step == "pull") {
                m_shelf->unplug("1111-1111", "STICK");
                QTRY_VERIFY(monitor.devices().empty());
            } else if (step == "plug") {
                m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
                QTRY_VERIFY(!monitor.devices().empty());
            } else if (step == "release") {
                monitor.release();
            } else if (step == "clean") {
                monitor.cleanUp();
            } else if (step == "umountAll") {
                monitor.umountAll();
            } else {
                monitor.mountAll();
            }
            QCOMPARE(textOf(files + "/folder/file"), pixels);
        }
    }
    QCOMPARE(textOf(files + "/folder/file"), pixels);
    open.close();
    // The next start takes what is left away.
    const MediaMonitor next;
    QCOMPARE(textOf(files + "/folder/file"), pixels);
}

QTEST_MAIN(tst_MediaMonitor_safety)

#include "tst_MediaMonitor_safety.moc"
