#include "MonitorViews.h"
#include "StickShelf.h"

#include <QFile>
#include <QTest>

#include <memory>

using Behaviour = StickShelf::Behaviour;

/// Mounting and releasing on request, and what comes of programs that fail.
class tst_MediaMonitor_mounting : public QObject {
    Q_OBJECT

private slots:
    void init() { m_shelf = std::make_unique<StickShelf>(); }
    void cleanup() { m_shelf.reset(); }

    void umountAllThenMountAll_mountsAfresh();
    void mountAll_leavesMountedSticksAlone();
    void umountByFolder_releasesTheStick();
    void umountByFolder_isUndoneByMountAll();
    void release_unmountsEverything();
    void destruction_unmountsAndForgetsEverything();

    void mountThatFails_leavesNoFolder();
    void mountThatFailsInMountAll_makesTheStickUnusable();
    void mountThatFailsBesideADeviceOfALongerName_isNotTakenForIt();
    void mountThatComplains_isJudgedByTheListOfMounts();
    void deviceMountedElsewhere_isTakenWhereItIs();

    void umountThatFails_leavesTheStickMounted();
    void umountThatComplains_isJudgedByTheListOfMounts();
    void umountOfABusyStick_fails();
    void busyStickThatWasPulled_isNoLongerConnected();
    void missingPrograms_areFailures();

private:
    std::unique_ptr<StickShelf> m_shelf;
};

void tst_MediaMonitor_mounting::umountAllThenMountAll_mountsAfresh()
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

void tst_MediaMonitor_mounting::mountAll_leavesMountedSticksAlone()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    monitor.mountAll();
    QCOMPARE(m_shelf->calls(), QStringList { "mount /dev/sdb1 /media/STICK" });
}

void tst_MediaMonitor_mounting::umountByFolder_releasesTheStick()
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

void tst_MediaMonitor_mounting::umountByFolder_isUndoneByMountAll()
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

void tst_MediaMonitor_mounting::release_unmountsEverything()
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

void tst_MediaMonitor_mounting::destruction_unmountsAndForgetsEverything()
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

void tst_MediaMonitor_mounting::mountThatFails_leavesNoFolder()
{
    MediaMonitor monitor;
    m_shelf->setMounting(Behaviour::fails);
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
    m_shelf->setMounting(Behaviour::works);
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
}

void tst_MediaMonitor_mounting::mountThatFailsInMountAll_makesTheStickUnusable()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->setMounting(Behaviour::fails);
    monitor.mountAll();
    QVERIFY(!firstOf(monitor).mounted);
    QVERIFY(!firstOf(monitor).connected);
    QCOMPARE(media(), QStringList());
    m_shelf->setMounting(Behaviour::works);
    monitor.mountAll();
    QCOMPARE(m_shelf->calls().size(), 1);
    // Until it is plugged in anew.
    m_shelf->unplug("1234-ABCD", "STICK");
    QTRY_VERIFY(monitor.devices().empty());
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    QTRY_VERIFY(firstOf(monitor).mounted);
}

void tst_MediaMonitor_mounting::mountThatFailsBesideADeviceOfALongerName_isNotTakenForIt()
{
    m_shelf->plug("/dev/sdb10", "1010-1010", "TEN");
    MediaMonitor monitor;
    monitor.mountAll();
    m_shelf->setMounting(Behaviour::fails);
    m_shelf->plug("/dev/sdb1", "1111-1111", "ONE");
    QTRY_COMPARE(monitor.devices().size(), std::size_t { 2 });
    const storage_t one = monitor.devices().back();
    QCOMPARE(one.device, QString("/dev/sdb1"));
    QVERIFY(!one.mounted);
    QCOMPARE(one.mountPoint, QString());
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList { "TEN" });
}

void tst_MediaMonitor_mounting::mountThatComplains_isJudgedByTheListOfMounts()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->setMounting(Behaviour::complains);
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList { "STICK" });
}

void tst_MediaMonitor_mounting::deviceMountedElsewhere_isTakenWhereItIs()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->mountByHand("/dev/sdb1", "/mnt/by hand");
    m_shelf->setMounting(Behaviour::fails);
    monitor.mountAll();
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(firstOf(monitor).mountPoint, QString("/mnt/by hand"));
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_mounting::umountThatFails_leavesTheStickMounted()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    writeFile("/media/STICK/file", "pixels");
    m_shelf->setUnmounting(Behaviour::fails);
    QVERIFY(!monitor.umount(QString("/media/STICK")));
    monitor.release();
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(firstOf(monitor).connected);
    QCOMPARE(textOf("/media/STICK/file"), QByteArray("pixels"));
    m_shelf->setUnmounting(Behaviour::works);
    monitor.release();
    QVERIFY(!firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_mounting::umountThatComplains_isJudgedByTheListOfMounts()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "ONE");
    m_shelf->plug("/dev/sdc1", "2222-2222", "TWO");
    MediaMonitor monitor;
    monitor.mountAll();
    m_shelf->setUnmounting(Behaviour::complains);
    QVERIFY(monitor.umount(QString("/media/ONE")));
    QCOMPARE(media(), QStringList { "TWO" });
    monitor.umountAll();
    QCOMPARE(media(), QStringList());
    for (const storage_t& stick : monitor.devices()) {
        QVERIFY(!stick.mounted);
    }
}

void tst_MediaMonitor_mounting::umountOfABusyStick_fails()
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

void tst_MediaMonitor_mounting::busyStickThatWasPulled_isNoLongerConnected()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    QFile open("/media/STICK/open");
    QVERIFY(open.open(QIODevice::WriteOnly));
    // Pulled, and released before the monitor hears of it.
    m_shelf->unplug("1234-ABCD", "STICK");
    monitor.umountAll();
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(!firstOf(monitor).connected);
    QTRY_VERIFY(monitor.devices().empty());
}

void tst_MediaMonitor_mounting::missingPrograms_areFailures()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "ONE");
    MediaMonitor monitor;
    monitor.mountAll();
    m_shelf->plug("/dev/sdc1", "2222-2222", "TWO");
    qputenv("PATH", "/nowhere");
    QTRY_COMPARE(monitor.devices().size(), std::size_t { 2 });
    QVERIFY(!monitor.devices().back().mounted);
    QVERIFY(!monitor.umount(QString("/media/ONE")));
    QVERIFY(firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList { "ONE" });
}

QTEST_MAIN(tst_MediaMonitor_mounting)

#include "tst_MediaMonitor_mounting.moc"
