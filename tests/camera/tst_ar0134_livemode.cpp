#include "camera/ar0134.h"
#include "camera/ar0134_framedelivery.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/platform/ScriptedBoard.h"
#include "tests/support/LogCapture.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <memory>

using qr9::wire::Kind;
using Shot = ScriptedBoard::Shot;

// The triggers of the frame source: live mode, one-shot triggers, the frame rate, and its end in the middle
// of it.
class tst_ar0134_livemode : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_board = std::make_unique<ScriptedBoard>();
        m_bench = std::make_unique<Ar0134Bench>();
    }
    void cleanup()
    {
        m_source.reset();
        m_bench.reset();
        m_board.reset();
    }

    void inheritedTriggerSignal_triggersNothing()
    {
        open();
        FrameDelivery* base = m_source.get();
        emit base->FrameDelivery::sig_ExecuteSoftwareTrigger();
        QTest::qWait(50);
        QCOMPARE(m_board->count(Kind::Trigger), 0);
        emit m_source->sig_ExecuteSoftwareTrigger();
        QCOMPARE(m_board->count(Kind::Trigger), 1);
    }

    void start_runsTheLiveLoop()
    {
        open();
        QVERIFY(m_source->start());
        QTRY_VERIFY(m_source->getAutoTriggeringMode());
        QTRY_VERIFY(m_board->count(Kind::Trigger) > 5);
    }

    void startTwice_staysInLiveModeWithOneLoop()
    {
        open();
        QVERIFY(m_source->start());
        QTRY_VERIFY(m_source->getAutoTriggeringMode());
        QVERIFY(m_source->start());
        QVERIFY(m_source->getAutoTriggeringMode());
        QTRY_VERIFY(m_board->count(Kind::Trigger) > 5);
    }

    void stop_endsTheLoop()
    {
        open();
        startLive();
        m_source->stop();
        verifyStanding();
    }

    void startStopStart_isLiveAgain()
    {
        open();
        startLive();
        m_source->stop();
        verifyStanding();
        const int before = m_board->count(Kind::Trigger);
        QVERIFY(m_source->start());
        QTRY_VERIFY(m_board->count(Kind::Trigger) > before + 5);
        QVERIFY(m_source->getAutoTriggeringMode());
    }

    void startRightAfterStop_isLive()
    {
        open();
        startLive();
        m_source->stop();
        QVERIFY(m_source->start());
        // What was asked for first has been taken on when a call behind it has.
        emit m_source->sig_setExposure(2454U);
        QTRY_COMPARE(int(m_board->reg(0x3012)), 100);
        QVERIFY(m_source->getAutoTriggeringMode());
    }

    void stopRightAfterStart_stands()
    {
        open();
        QVERIFY(m_source->start());
        m_source->stop();
        emit m_source->sig_setExposure(2454U);
        QTRY_COMPARE(int(m_board->reg(0x3012)), 100);
        verifyStanding();
    }

    void liveModeSwitchedOffAndOnDuringAFrame_isOneLoop()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(100));
        QVERIFY(m_source->start());
        QTRY_COMPARE(m_board->count(Kind::Trigger), 1);
        for (int i = 0; i < 5; ++i) {
            m_source->setAutoTriggeringMode(false);
            m_source->setAutoTriggeringMode(true);
        }
        QTRY_VERIFY(m_board->count(Kind::Trigger) > 2);
        // One loop ends with its first failed trigger; a second one would go on.
        m_board->script({ { Shot::Refused, 0xFF26, {} } });
        verifyStanding();
    }

    void oneShotTriggerInLiveMode_doesNothing()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(100));
        startLive();
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 100; ++i) {
            m_source->triggerAndWaitForFrame(true);
        }
        QVERIFY(timer.elapsed() < 100);
    }

    void failedTrigger_endsTheLiveLoopAndStaysInItsState_data()
    {
        QTest::addColumn<int>("what");
        QTest::newRow("trigger failed") << int(Shot::Refused);
        QTest::newRow("frame lost") << int(Shot::Lost);
    }
    void failedTrigger_endsTheLiveLoopAndStaysInItsState()
    {
        QFETCH(int, what);
        open();
        startLive();
        const int before = m_board->count(Kind::Trigger);
        m_board->script({ { Shot::Good, 0, {} }, { static_cast<Shot::What>(what), 0xFF26, {} } });
        QTRY_VERIFY(m_board->count(Kind::Trigger) >= before + 2);
        verifyStanding();
        QVERIFY(m_source->getAutoTriggeringMode());
        // Live mode off and on again brings the loop back.
        m_source->stop();
        QTRY_VERIFY(!m_source->getAutoTriggeringMode());
        startLive();
    }

    void frameThatCannotBeFetched_doesNotEndTheLiveLoop()
    {
        open();
        startLive();
        m_board->script({ { Shot::Broken, 65318, {} }, { Shot::Broken, 65316, {} } });
        const int before = m_board->count(Kind::Trigger);
        QTRY_VERIFY(m_board->count(Kind::Trigger) > before + 10);
    }

    void fps_isPublishedAboutOnceASecond()
    {
        open();
        QSignalSpy rates(m_source.get(), &FrameDelivery::sig_FpsUpdate);
        m_board->setDelay(std::chrono::milliseconds(50));
        const int before = AR0134::totalFrames();
        QElapsedTimer timer;
        timer.start();
        startLive();
        QTest::qWait(4500);
        m_source->stop();
        const double measured
            = (AR0134::totalFrames() - before) * 1000.0 / static_cast<double>(timer.elapsed());
        QVERIFY2(rates.count() >= 3 && rates.count() <= 5, qPrintable(QString::number(rates.count())));
        const double published = rates.last().first().toDouble();
        QVERIFY2(std::abs(published - measured) < 0.35 * measured,
            qPrintable(QString("%1 published, %2 measured").arg(published).arg(measured)));
    }

    void destruction_inTheMiddleOfAFrameEndsTheThread()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(200));
        QVERIFY(m_source->start());
        QTRY_COMPARE(m_board->count(Kind::Trigger), 1);
        const LogCapture log;
        m_source.reset();
        QVERIFY(log.contains("virtual Ar0134FrameDelivery::~Ar0134FrameDelivery()"));
        QVERIFY(m_board->requests().back().kind == Kind::Close);
    }

    void waitForNextFrame_returnsWithAFrameOfTheLoop()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(20));
        startLive();
        QElapsedTimer timer;
        timer.start();
        m_source->triggerAndWaitForFrame(false);
        QVERIFY(timer.elapsed() < 2500);
    }

private:
    void open()
    {
        m_source = std::make_unique<Ar0134FrameDelivery>();
        QVERIFY(m_source->isRunning());
    }

    void startLive()
    {
        const int before = m_board->count(Kind::Trigger);
        QVERIFY(m_source->start());
        QTRY_VERIFY(m_board->count(Kind::Trigger) > before + 1);
    }

    // No trigger comes any more: none for half a second, which is many frames long here, within ten.
    void verifyStanding()
    {
        bool standing = false;
        for (int i = 0; i < 20 && !standing; ++i) {
            const int before = m_board->count(Kind::Trigger);
            QTest::qWait(500);
            standing = m_board->count(Kind::Trigger) == before;
        }
        QVERIFY(standing);
    }

    std::unique_ptr<ScriptedBoard> m_board;
    std::unique_ptr<Ar0134Bench> m_bench;
    std::unique_ptr<Ar0134FrameDelivery> m_source;
};

QTEST_GUILESS_MAIN(tst_ar0134_livemode)
#include "tst_ar0134_livemode.moc"
