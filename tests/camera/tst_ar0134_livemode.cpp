#include "tests/camera/Ar0134Tests.h"
#include "tests/support/LogCapture.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>

using qr9::wire::Kind;
using Shot = ScriptedBoard::Shot;

// The triggers of the frame source: live mode, one-shot triggers, the frame rate, and its end in the middle
// of it.
class tst_ar0134_livemode : public SourceTest {
    Q_OBJECT

private slots:
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
        verifyOneLoop();
    }

    void startAndStop_askForLiveModeOnlyWhereItChanges()
    {
        const QString asking = "virtual void Ar0134FrameDelivery::setAutoTriggeringMode(bool)";
        open();
        const LogCapture log;
        m_source->stop();
        QVERIFY(log.contains("virtual void Ar0134FrameDelivery::stop()"));
        QVERIFY(!log.contains(asking));
        startLive();
        QVERIFY(log.contains("virtual bool Ar0134FrameDelivery::start()"));
        QCOMPARE(log.lines().filter(asking).size(), 1);
        QVERIFY(m_source->start());
        QCOMPARE(log.lines().filter(asking).size(), 1);
        m_source->stop();
        QCOMPARE(log.lines().filter(asking).size(), 2);
    }

    void oneShotTriggerBehindTheStart_isNoSecondLoop()
    {
        open();
        emit m_source->sig_setLiveViewState(true);
        emit m_source->sig_ExecuteSoftwareTrigger();
        QTRY_VERIFY(m_board->count(Kind::Trigger) > 5);
        verifyOneLoop();
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
        verifyOneLoop();
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
        QVERIFY(timer.elapsed() < 5000); // triggers would have taken 10 s
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

    void frameThatCannotBeConverted_doesNotEndTheLiveLoop()
    {
        m_bench->setPicture(1280, 964, 8, "3");
        open();
        m_board->setPicture([](int) { return ScriptedBoard::Bytes(1000, 0x55); });
        const int frames = AR0134::totalFrames();
        startLive();
        const int before = m_board->count(Kind::Trigger);
        QTRY_VERIFY(m_board->count(Kind::Trigger) > before + 10);
        QCOMPARE(AR0134::totalFrames(), frames);
    }

    void fps_isPublishedAboutOnceASecond()
    {
        struct Publication {
            qint64 at; ///< ms
            int frames; ///< frames that the driver had delivered by then
            double rate;
        };
        open();
        m_board->setDelay(std::chrono::milliseconds(50));
        QElapsedTimer timer;
        timer.start();
        QVector<Publication> publications;
        connect(m_source.get(), &FrameDelivery::sig_FpsUpdate, this, [&](float rate) {
            publications.append({ timer.elapsed(), AR0134::totalFrames(), static_cast<double>(rate) });
        });
        startLive();
        QTRY_VERIFY_WITH_TIMEOUT(publications.size() >= 4, 30000);
        m_source->stop();
        // The first one may count from a source before this one.
        for (int i = 1; i < publications.size(); ++i) {
            const Publication& before = publications[i - 1];
            const Publication& now = publications[i];
            const auto interval = static_cast<double>(now.at - before.at);
            QVERIFY2(interval >= 999.0 && interval < 2000.0, qPrintable(QString::number(interval)));
            const double counted = now.rate * interval / 1000.0;
            // Frames may stand between the driver and the count.
            QVERIFY2(std::abs(counted - (now.frames - before.frames)) <= 5.0,
                qPrintable(QString("%1 counted, %2 to %3").arg(counted).arg(before.frames).arg(now.frames)));
        }
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
        const LogCapture log;
        QElapsedTimer timer;
        timer.start();
        m_source->triggerAndWaitForFrame(false);
        QVERIFY(timer.elapsed() < 2500);
        QVERIFY(log.contains("void Ar0134FrameDelivery::waitForNextFrameReady()"));
    }

private:
    void startLive()
    {
        const int before = m_board->count(Kind::Trigger);
        QVERIFY(m_source->start());
        QTRY_VERIFY(m_board->count(Kind::Trigger) > before + 1);
    }

    /// A loop ends with its first failed trigger; a second one would go on.
    void verifyOneLoop()
    {
        m_board->script({ { Shot::Refused, 0xFF26, {} } });
        verifyStanding();
    }

    /// No trigger comes any more: none for half a second, which is many frames long here, within ten.
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
};

QTEST_GUILESS_MAIN(tst_ar0134_livemode)
#include "tst_ar0134_livemode.moc"
