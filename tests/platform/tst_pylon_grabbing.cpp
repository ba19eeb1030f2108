#include "tests/platform/GrabBench.h"

#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace Pylon;
using Milliseconds = ScriptedCamera::Milliseconds;

namespace {

/// A handler that is still at work when something else happens to the camera.
class SlowHandler {
public:
    /// Returns as soon as the handler of a triggered frame has been entered.
    explicit SlowHandler(GrabBench& bench)
    {
        bench.recorder.onImage = [this](const CGrabResultPtr&) {
            m_gate.pass();
            std::this_thread::sleep_for(Milliseconds(50));
            m_bFinished = true;
        };
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        m_bEntered = QTest::qWaitFor([this] { return m_gate.isReached(); });
    }
    ~SlowHandler()
    {
        letGoOn();
        while (m_bEntered && !m_bFinished)
            std::this_thread::yield();
    }

    bool isEntered() const { return m_bEntered; }
    bool isFinished() const { return m_bFinished; }
    /// It takes some time more.
    void letGoOn() { m_gate.open(); }

private:
    Gate m_gate;
    bool m_bEntered = false;
    std::atomic<bool> m_bFinished { false };
};

} // namespace

/// The stand-in of the pylon library: grabbing and its threads.
class tst_pylon_grabbing : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PylonInitialize(); }
    void cleanupTestCase() { PylonTerminate(); }

    void trigger_deliversOnePicture()
    {
        GrabBench bench;
        bench.server.setPicture([](int) { return ScriptedCamera::greyPicture(77); });
        bench.start();
        QVERIFY(bench.camera.IsGrabbing());
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(bench.recorder.count(), size_t(1));
        const Seen seen = bench.recorder.seen().front();
        QVERIFY(seen.succeeded);
        QCOMPARE(seen.width, 1280U);
        QCOMPARE(seen.height, 960U);
        QCOMPARE(seen.size, size_t(1228800));
        QCOMPARE(seen.firstPixel, 77);
        QCOMPARE(seen.number, std::int64_t(1));
        QVERIFY(bench.recorder.thread.load() != std::this_thread::get_id());
    }

    void triggerWhileAFrameIsUnderWay_isIgnored()
    {
        GrabBench bench;
        bench.server.setDelay(Milliseconds(200));
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(bench.recorder.count(), size_t(1));
        QCOMPARE(bench.server.ignoredTriggers(), 1);
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(bench.recorder.count(), size_t(2));
    }

    void triggerOnACameraThatDoesNotGrab_isIgnored()
    {
        GrabBench bench;
        bench.camera.TriggerSoftware.Execute(true);
        QCOMPARE(bench.server.count("Trigger"), 0);
        bench.start();
        bench.camera.StopGrabbing();
        bench.camera.TriggerSoftware.Execute(true);
        QCOMPARE(bench.server.count("Trigger"), 0);
    }

    void refusedTrigger_throws()
    {
        GrabBench bench;
        bench.server.script({ { ScriptedCamera::Shot::Refused, Milliseconds(0), "no power" } });
        bench.start();
        QVERIFY(failureOf([&] { bench.camera.TriggerSoftware.Execute(true); }).contains("no power"));
    }

    void failedGrab_isHandedOverWithItsText()
    {
        GrabBench bench;
        bench.server.script({ { ScriptedCamera::Shot::Failed, Milliseconds(0), "incomplete" } });
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(bench.recorder.count(), size_t(1));
        QVERIFY(!bench.recorder.seen().front().succeeded);
        QCOMPARE(bench.recorder.seen().front().error, QString("incomplete"));
        QCOMPARE(bench.recorder.seen().front().firstPixel, -1);
    }

    void startTwice_throws()
    {
        GrabBench bench;
        bench.start();
        QVERIFY(failureOf([&] { bench.start(); }).contains("already grabbing"));
        QVERIFY(bench.camera.IsGrabbing());
    }

    void startOnAClosedCamera_opensIt()
    {
        GrabBench bench;
        bench.camera.Close();
        bench.start();
        QVERIFY(bench.camera.IsOpen());
        QVERIFY(bench.camera.IsGrabbing());
    }

    void strategiesThatAreNotOffered_areRefused()
    {
        GrabBench bench;
        QVERIFY(!failureOf([&] { bench.start(GrabStrategy_UpcomingImage); }).isEmpty());
        QVERIFY(!failureOf([&] { bench.camera.StartGrabbing(); }).isEmpty());
        QVERIFY(!bench.camera.IsGrabbing());
    }

    void stop_waitsForTheHandlerThatRuns()
    {
        GrabBench bench;
        SlowHandler handler(bench);
        QVERIFY(handler.isEntered());
        handler.letGoOn();
        bench.camera.StopGrabbing();
        QVERIFY(handler.isFinished());
        QVERIFY(!bench.camera.IsGrabbing());
    }

    void deregister_waitsForTheHandlerThatRuns()
    {
        GrabBench bench;
        SlowHandler handler(bench);
        QVERIFY(handler.isEntered());
        handler.letGoOn();
        QVERIFY(bench.camera.DeregisterImageEventHandler(&bench.recorder));
        QVERIFY(handler.isFinished());
    }

    void handlerThatStopsTheCamera_doesNotWaitForItself()
    {
        GrabBench bench;
        bench.recorder.onImage = [&](const CGrabResultPtr&) { bench.camera.StopGrabbing(); };
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_VERIFY(!bench.camera.IsGrabbing());
        bench.recorder.onImage = {};
        bench.start();
        QVERIFY(bench.camera.IsGrabbing());
    }

    void handlerThatThrows_endsGrabbingWithAnError()
    {
        GrabBench bench;
        bench.recorder.onImage
            = [](const CGrabResultPtr&) { throw GenICam::RuntimeException("out of luck"); };
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_VERIFY(!bench.camera.IsGrabbing());
        QTRY_COMPARE(bench.diary.entries().size(), size_t(2));
        QCOMPARE(bench.diary.entries()[1], QString("out of luck"));
    }

    void pulledPlug_grabbingGoesOnWithoutFrames()
    {
        GrabBench bench;
        bench.start();
        bench.server.unplug();
        QTRY_VERIFY(bench.camera.IsCameraDeviceRemoved());
        QVERIFY(bench.camera.IsGrabbing());
        QVERIFY(failureOf([&] { bench.camera.TriggerSoftware.Execute(true); }).contains("removed"));
        bench.camera.StopGrabbing();
        const std::vector<QString> expected { "started", "removed", "stopped" };
        QTRY_COMPARE(bench.diary.entries().size(), size_t(3));
        QCOMPARE(bench.diary.entries(), expected);
    }

    void serverGoneInTheMiddleOfAFrame_isARemoval()
    {
        GrabBench bench;
        bench.server.setDelay(Milliseconds(10));
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        bench.server.hangUp();
        QTRY_VERIFY(bench.camera.IsCameraDeviceRemoved());
        bench.camera.StopGrabbing();
        bench.camera.Close();
    }

    void manyTriggersFromAnotherThread_everyFrameArrives()
    {
        GrabBench bench;
        bench.start(GrabStrategy_OneByOne);
        std::thread hand([&bench] {
            for (size_t frame = 1; frame <= 30; ++frame) {
                bench.camera.TriggerSoftware.Execute(true);
                while (bench.recorder.count() < frame)
                    std::this_thread::yield();
            }
        });
        for (int i = 0; i < 50; ++i)
            bench.camera.Gain.SetValue(i % 20);
        hand.join();
        QCOMPARE(bench.recorder.count(), size_t(30));
    }
};

QTEST_GUILESS_MAIN(tst_pylon_grabbing)
#include "tst_pylon_grabbing.moc"
