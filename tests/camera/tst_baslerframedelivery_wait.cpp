#include "tests/camera/BaslerTests.h"
#include "tests/camera/LiveSource.h"
#include "tests/support/LogCapture.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <thread>

using Milliseconds = ScriptedCamera::Milliseconds;
using Shot = ScriptedCamera::Shot;

namespace {

constexpr char kLandingWait[] = "! wait up to 10 seconds to trigger camera !";
constexpr char kLandingWaitOver[] = "! waiting finished !";
constexpr char kTimeout[] = "triggerAndWaitForFrame !!! Wait condition timeout !!!";

} // namespace

/// Waiting for the frame that is under way, and for the next one.
class tst_baslerframedelivery_wait : public BaslerTests {
    Q_OBJECT

private slots:
    void switchingOff_waitsForTheFrameUnderWay()
    {
        LiveSource bench;
        bench.server.setDelay(Milliseconds(300));
        bench.source->setAutoTriggeringMode(true);
        LogCapture log;
        bench.source->setAutoTriggeringMode(false); // on the GUI thread, which has made the source
        QCOMPARE(bench.ready.load(), 1);
        const int begin = log.indexOf(kLandingWait);
        QVERIFY(begin >= 0);
        QVERIFY(log.indexOf(kLandingWaitOver) > begin);
        QVERIFY(!BaslerCamera::m_bFrameIsGrabbing);
        QTest::qWait(100);
        QCOMPARE(bench.triggers(), 1); // that frame did not trigger again
    }

    void switchingOff_withoutAFrameUnderWay_doesNotWait()
    {
        LiveSource bench;
        bench.server.script({ { Shot::Good, Milliseconds(0), {} } });
        bench.source->deinitialize(); // no trigger goes out
        bench.source->setAutoTriggeringMode(true);
        LogCapture log;
        bench.source->setAutoTriggeringMode(false);
        QVERIFY(!log.contains(kLandingWait));
    }

    void switchingOff_whenTheFrameNeverComes_waitsTenSeconds()
    {
        LiveSource bench;
        bench.server.script({ { Shot::Refused, Milliseconds(0), "no power" } });
        bench.source->setAutoTriggeringMode(true);
        QVERIFY(BaslerCamera::m_bFrameIsGrabbing); // a refused trigger leaves it set
        LogCapture log;
        QElapsedTimer timer;
        timer.start();
        bench.source->setAutoTriggeringMode(false);
        QVERIFY(timer.elapsed() >= 9900);
        QVERIFY(timer.elapsed() < 30000);
        QVERIFY(log.contains(kLandingWaitOver));
        QVERIFY(!bench.source->getAutoTriggeringMode());
    }

    void newFrame_wakesThoseWhoWaitAfterItWasTold()
    {
        LiveSource bench;
        bench.server.setDelay(Milliseconds(100)); // so that the wait has begun
        std::atomic<bool> told { false };
        QObject::connect(
            bench.source.get(), &FrameDelivery::sig_imgReady, bench.source.get(),
            [&told] {
                std::this_thread::sleep_for(Milliseconds(100));
                told = true;
            },
            Qt::DirectConnection);
        bench.source->triggerAndWaitForFrame(true);
        QVERIFY(told);
    }

    void triggerAndWait_returnsWithTheFrame()
    {
        LiveSource bench;
        bench.server.setDelay(Milliseconds(100));
        LogCapture log;
        bench.source->triggerAndWaitForFrame(true);
        QCOMPARE(bench.ready.load(), 1);
        QVERIFY(log.lines().first().endsWith("triggerAndWaitForFrame(bool) Live mode is on: false"));
        QVERIFY(!log.contains(kTimeout));
    }

    void triggerAndWait_withoutTrigger_waitsOneSecond()
    {
        LiveSource bench;
        LogCapture log;
        QElapsedTimer timer;
        timer.start();
        bench.source->triggerAndWaitForFrame(false);
        QVERIFY(timer.elapsed() >= 990);
        QVERIFY(timer.elapsed() < 4500);
        QVERIFY(log.contains(kTimeout));
        QCOMPARE(bench.triggers(), 0);
    }

    void triggerAndWait_lostFrame_waitsFiveSeconds()
    {
        LiveSource bench;
        bench.server.script({ { Shot::Lost, Milliseconds(0), {} } });
        LogCapture log;
        QElapsedTimer timer;
        timer.start();
        bench.source->triggerAndWaitForFrame(true);
        QVERIFY(timer.elapsed() >= 4990);
        QVERIFY(timer.elapsed() < 20000);
        QVERIFY(log.contains(kTimeout));
        QCOMPARE(bench.triggers(), 1);
    }

    void triggerAndWait_inLiveMode_returnsAtOnce()
    {
        LiveSource bench;
        bench.server.setDelay(Milliseconds(60000));
        bench.source->setAutoTriggeringMode(true);
        LogCapture log;
        QElapsedTimer timer;
        timer.start();
        bench.source->triggerAndWaitForFrame(true);
        QVERIFY(timer.elapsed() < 900);
        QVERIFY(log.contains("Live mode is on: true"));
        QCOMPARE(bench.triggers(), 2);
        QCOMPARE(bench.server.ignoredTriggers(), 1);
    }

    void lateFrame_isTakenWhenItComes()
    {
        LiveSource bench;
        bench.server.script({ { Shot::Good, Milliseconds(600), {} } });
        bench.source->slot_ExecuteSoftwareTrigger();
        cv::Mat matrix;
        QVERIFY(!bench.source->pushMatImage(matrix));
        QTRY_COMPARE(bench.ready.load(), 1);
        QVERIFY(bench.source->pushMatImage(matrix));
    }
};

QTEST_GUILESS_MAIN(tst_baslerframedelivery_wait)
#include "tst_baslerframedelivery_wait.moc"
