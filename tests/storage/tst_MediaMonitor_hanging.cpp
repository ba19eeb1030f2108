#include "MonitorViews.h"
#include "StickShelf.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using Behaviour = StickShelf::Behaviour;

/// Programs of the system that do not come to an end.
class tst_MediaMonitor_hanging : public QObject {
    Q_OBJECT

private slots:
    void init() { m_shelf = std::make_unique<StickShelf>(); }
    void cleanup() { m_shelf.reset(); }

    void mountThatHangs_isAFailedMount();
    void umountThatHangs_leavesTheStickMounted();
    void mountThatNeverEnds_isAbandonedAfterHalfAMinute();

private:
    std::unique_ptr<StickShelf> m_shelf;
};

void tst_MediaMonitor_hanging::mountThatHangs_isAFailedMount()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->setMounting(Behaviour::hangs);
    m_shelf->endHangingProgramSoon();
    monitor.mountAll();
    QVERIFY(!firstOf(monitor).mounted);
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_hanging::umountThatHangs_leavesTheStickMounted()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    m_shelf->setUnmounting(Behaviour::hangs);
    m_shelf->endHangingProgramSoon();
    monitor.umountAll();
    QVERIFY(firstOf(monitor).mounted);
    QVERIFY(firstOf(monitor).connected);
    QCOMPARE(media(), QStringList { "STICK" });
    m_shelf->setUnmounting(Behaviour::works);
}

void tst_MediaMonitor_hanging::mountThatNeverEnds_isAbandonedAfterHalfAMinute()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "STICK");
    MediaMonitor monitor;
    m_shelf->setMounting(Behaviour::hangs);
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("\\[Error\\].*mount.*/media/STICK.*hangs"));
    QElapsedTimer waited;
    waited.start();
    monitor.mountAll();
    const qint64 ms = waited.elapsed();
    QVERIFY2(ms >= 30000 && ms < 45000, qPrintable(QString::number(ms)));
    QVERIFY(!firstOf(monitor).mounted);
    QVERIFY(!firstOf(monitor).connected);
    QCOMPARE(media(), QStringList());
    // It does not stay behind, and the next call works.
    QTRY_VERIFY(!QFileInfo::exists("/proc/" + StickShelf::hangingProcess()));
    m_shelf->setMounting(Behaviour::works);
    m_shelf->plug("/dev/sdc1", "5678-ABCD", "OTHER");
    QTRY_COMPARE(media(), QStringList { "OTHER" });
}

QTEST_MAIN(tst_MediaMonitor_hanging)

#include "tst_MediaMonitor_hanging.moc"
