#include "tests/camera/BaslerTests.h"
#include "tests/camera/LiveSource.h"
#include "tests/support/LogCapture.h"

#include <QElapsedTimer>
#include <QTest>
#include <QThread>

#include <atomic>
#include <future>
#include <thread>

using Milliseconds = ScriptedCamera::Milliseconds;

namespace {

/// Finds out, from a third thread, whether the source's mutex is taken.
class LockProbe {
public:
    explicit LockProbe(BaslerFrameDelivery& source)
        : m_source(source)
    {
    }
    ~LockProbe()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    /// Called by the thread that may hold the mutex.
    void look()
    {
        m_thread = std::thread([this] {
            m_source.getAutoTriggeringMode(); // takes the mutex
            m_taken.set_value();
        });
        m_wasLocked = m_taken.get_future().wait_for(Milliseconds(300)) == std::future_status::timeout;
        m_hasLooked = true;
    }
    bool hasLooked() const { return m_hasLooked; }
    bool wasLocked() const { return m_wasLocked; }

private:
    BaslerFrameDelivery& m_source;
    std::promise<void> m_taken;
    std::atomic<bool> m_hasLooked { false };
    std::atomic<bool> m_wasLocked { false };
    std::thread m_thread;
};

} // namespace

/// The trigger loop: the grab thread, the GUI thread and what runs between them.
class tst_baslerframedelivery_loop : public BaslerTests {
    Q_OBJECT

private slots:
    void liveMode_eachFrameAsksForTheNext()
    {
        LiveSource bench;
        bench.source->setAutoTriggeringMode(true);
        QVERIFY(bench.source->getAutoTriggeringMode());
        QTRY_VERIFY(bench.ready >= 10);
        bench.source->setAutoTriggeringMode(false);
        QCOMPARE(bench.server.ignoredTriggers(), 0); // never two under way
        QCOMPARE(bench.triggers(), bench.ready.load());
    }

    void liveMode_twiceInARow_triggersOnce()
    {
        LiveSource bench;
        bench.server.setDelay(Milliseconds(60000)); // the first frame stays under way
        bench.source->setAutoTriggeringMode(true);
        bench.source->setAutoTriggeringMode(true);
        QCOMPARE(bench.triggers(), 1);
        QCOMPARE(bench.server.ignoredTriggers(), 0);
    }

    void liveMode_onASourceThatDoesNotGrab_startsIt()
    {
        LiveSource bench;
        bench.source->stop();
        QVERIFY(!bench.source->isRunning());
        bench.source->setAutoTriggeringMode(true);
        QVERIFY(bench.source->isRunning());
        QTRY_VERIFY(bench.ready >= 2);
    }

    void liveMode_isLoggedWithALineNumber()
    {
        LiveSource bench;
        LogCapture log;
        bench.source->setAutoTriggeringMode(false);
        QVERIFY(QRegExp("setAutoTriggeringMode \\d+ false").exactMatch(log.lines().first()));
        QCOMPARE(log.lines().size(), 1); // the mode was that already
    }

    void liveMode_isPacedByTheEventLoop()
    {
        // The next trigger is queued to the GUI thread: nothing happens while that one is busy.
        LiveSource bench;
        bench.source->setAutoTriggeringMode(true);
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 200) { }
        QCOMPARE(bench.triggers(), 1);
        QTRY_VERIFY(bench.triggers() >= 3);
    }

    void stop_endsTheLoop()
    {
        LiveSource bench;
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(bench.ready >= 3);
        bench.source->stop();
        QVERIFY(!bench.source->isRunning());
        QVERIFY(!bench.source->getAutoTriggeringMode());
        const int landed = bench.ready;
        QTest::qWait(100);
        QCOMPARE(bench.ready.load(), landed);
    }

    void onImagesSkipped_logsItsSignatureOnly()
    {
        LiveSource bench;
        LogCapture log;
        bench.source->OnImagesSkipped(*BaslerCamera::m_Instance, 3);
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.lines().first().startsWith("virtual void BaslerFrameDelivery::OnImagesSkipped("));
        QVERIFY(log.lines().first().endsWith(")"));
    }

    void newFrame_asksForTheNextOneUnderTheLock()
    {
        LiveSource bench;
        bench.source->deinitialize(); // the loop is driven by hand
        bench.source->setAutoTriggeringMode(true);
        LockProbe probe(*bench.source);
        QObject::connect(
            bench.source.get(), &FrameDelivery::sig_ExecuteSoftwareTrigger, bench.source.get(),
            [&probe] { probe.look(); }, Qt::DirectConnection);
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_COMPARE(bench.ready.load(), 1);
        QVERIFY(probe.hasLooked());
        QVERIFY(probe.wasLocked());
    }

    void newFrame_isToldOutsideOfTheLock()
    {
        LiveSource bench;
        LockProbe probe(*bench.source);
        QObject::connect(
            bench.source.get(), &FrameDelivery::sig_imgReady, bench.source.get(), [&probe] { probe.look(); },
            Qt::DirectConnection);
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_VERIFY(probe.hasLooked());
        QVERIFY(!probe.wasLocked());
    }

    void copies_whileFramesComeIn_areWholeFrames()
    {
        LiveSource bench;
        bench.server.setPicture([](int frame) { return ScriptedCamera::greyPicture(frame % 256); });
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(bench.ready >= 1);
        QImage image(1280, 960, QImage::Format_Indexed8);
        cv::Mat matrix;
        for (int i = 0; i < 40; ++i) {
            QVERIFY(bench.source->pushMatImage(matrix));
            double lowest = 0.0;
            double highest = 0.0;
            cv::minMaxLoc(matrix, &lowest, &highest);
            QCOMPARE(lowest, highest);
            QVERIFY(bench.source->pushQImage(image));
            QCOMPARE(image.constBits()[0], image.constBits()[1228799]);
            QVERIFY(bench.source->getIntensity() >= 0.0);
            QCoreApplication::processEvents();
        }
    }

    void sourceDestroyedInLiveMode_endsCleanly()
    {
        LiveSource bench;
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(bench.ready >= 2);
        bench.source.reset();
        const int landed = bench.ready;
        QTest::qWait(50);
        QCOMPARE(bench.ready.load(), landed);
    }

    void readySignal_reachesTheGuiThreadQueued()
    {
        LiveSource bench;
        QThread* seenOn = nullptr;
        QObject receiver;
        QObject::connect(bench.source.get(), &FrameDelivery::sig_imgReady, &receiver,
            [&seenOn] { seenOn = QThread::currentThread(); });
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_VERIFY(seenOn != nullptr);
        QCOMPARE(seenOn, QThread::currentThread());
    }
};

QTEST_GUILESS_MAIN(tst_baslerframedelivery_loop)
#include "tst_baslerframedelivery_loop.moc"
