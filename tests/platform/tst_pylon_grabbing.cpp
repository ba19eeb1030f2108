#include "tests/platform/ScriptedCamera.h"

#include <pylon/PylonIncludes.h>
#include <pylon/usb/BaslerUsbInstantCamera.h>

#include <QTest>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

using namespace Pylon;
using Bytes = ScriptedCamera::Bytes;
using Milliseconds = ScriptedCamera::Milliseconds;

namespace {

template <typename Call> QString failureOf(Call&& call)
{
    try {
        call();
    } catch (const GenICam::GenericException& exception) {
        return exception.GetDescription();
    }
    return {};
}

/// What a handler saw of one grab.
struct Seen {
    bool succeeded = false;
    QString error;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    size_t size = 0;
    int firstPixel = -1;
    std::int64_t number = 0;
    size_t skipped = 0;
};

/// Keeps what it is given, on whatever thread.
class Recorder : public CImageEventHandler {
public:
    void OnImagesSkipped(CInstantCamera& /*camera*/, size_t count) override { skipped += count; }

    void OnImageGrabbed(CInstantCamera& /*camera*/, const CGrabResultPtr& result) override
    {
        thread = std::this_thread::get_id();
        if (onImage)
            onImage(result);
        const std::lock_guard<std::mutex> lock(m_mutex);
        Seen seen;
        seen.succeeded = result->GrabSucceeded();
        seen.error = result->GetErrorDescription().c_str();
        seen.width = result->GetWidth();
        seen.height = result->GetHeight();
        seen.size = result->GetImageSize();
        if (result->GetBuffer() != nullptr)
            seen.firstPixel = *static_cast<const unsigned char*>(result->GetBuffer());
        seen.number = result->GetBlockID();
        seen.skipped = result->GetNumberOfSkippedImages();
        m_seen.push_back(seen);
    }

    std::vector<Seen> seen() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_seen;
    }
    size_t count() const { return seen().size(); }

    std::function<void(const CGrabResultPtr&)> onImage;
    std::atomic<size_t> skipped { 0 };
    std::atomic<std::thread::id> thread {};

private:
    mutable std::mutex m_mutex;
    std::vector<Seen> m_seen;
};

/// Holds the grab thread in its handler until it is opened.
class Gate {
public:
    void pass()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_bReached = true;
        m_changed.wait(lock, [this] { return m_bOpen; });
    }
    void open()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bOpen = true;
        m_changed.notify_all();
    }
    bool isReached()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_bReached;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bReached = false;
    bool m_bOpen = false;
};

/// Tells what happens to the camera, in order.
class Diary : public CConfigurationEventHandler {
public:
    void OnGrabError(CInstantCamera& /*camera*/, const char* message) override { add(message); }
    void OnCameraDeviceRemoved(CInstantCamera& /*camera*/) override { add("removed"); }
    void OnGrabStarted(CInstantCamera& /*camera*/) override { add("started"); }
    void OnGrabStopped(CInstantCamera& /*camera*/) override { add("stopped"); }

    std::vector<QString> entries() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_entries;
    }

private:
    void add(const QString& entry)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.push_back(entry);
    }
    mutable std::mutex m_mutex;
    std::vector<QString> m_entries;
};

/// A camera that is open and has a handler.
struct Bench {
    Bench()
    {
        camera.RegisterImageEventHandler(&recorder, RegistrationMode_ReplaceAll, Cleanup_None);
        camera.RegisterConfiguration(&diary, RegistrationMode_Append, Cleanup_None);
        camera.Attach(CTlFactory::GetInstance().CreateFirstDevice());
        camera.Open();
    }
    void start(EGrabStrategy strategy = GrabStrategy_LatestImageOnly)
    {
        camera.StartGrabbing(strategy, GrabLoop_ProvidedByInstantCamera);
    }

    ScriptedCamera server;
    Recorder recorder;
    Diary diary;
    CBaslerUsbInstantCamera camera; ///< goes first
};

ScriptedCamera::Picture greyPicture(int grey)
{
    return { 1280, 960, 1, Bytes(1280 * 960, static_cast<std::uint8_t>(grey)) };
}

} // namespace

/// The stand-in of the pylon library: grabbing, its buffers and its threads.
class tst_pylon_grabbing : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PylonInitialize(); }
    void cleanupTestCase() { PylonTerminate(); }

    void trigger_deliversOnePicture()
    {
        Bench bench;
        bench.server.setPicture([](int) { return greyPicture(77); });
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
        Bench bench;
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
        Bench bench;
        bench.camera.TriggerSoftware.Execute(true);
        QCOMPARE(bench.server.count("Trigger"), 0);
        bench.start();
        bench.camera.StopGrabbing();
        bench.camera.TriggerSoftware.Execute(true);
        QCOMPARE(bench.server.count("Trigger"), 0);
    }

    void refusedTrigger_throws()
    {
        Bench bench;
        bench.server.script({ { ScriptedCamera::Shot::Refused, Milliseconds(0), "no power" } });
        bench.start();
        QVERIFY(failureOf([&] { bench.camera.TriggerSoftware.Execute(true); }).contains("no power"));
    }

    void failedGrab_isHandedOverWithItsText()
    {
        Bench bench;
        bench.server.script({ { ScriptedCamera::Shot::Failed, Milliseconds(0), "incomplete" } });
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(bench.recorder.count(), size_t(1));
        QVERIFY(!bench.recorder.seen().front().succeeded);
        QCOMPARE(bench.recorder.seen().front().error, QString("incomplete"));
        QCOMPARE(bench.recorder.seen().front().firstPixel, -1);
    }

    void latestImageOnly_overwrittenFramesAreSkipped()
    {
        Bench bench;
        Gate gate;
        bench.server.setPicture([](int frame) { return greyPicture(frame); });
        bench.recorder.onImage = [&gate](const CGrabResultPtr&) { gate.pass(); };
        bench.start();
        bench.server.deliver(1);
        QTRY_VERIFY(gate.isReached());
        bench.server.deliver(4);
        bench.camera.Gain.GetValue(); // the answer comes behind the four
        gate.open();
        QTRY_COMPARE(bench.recorder.count(), size_t(2));
        QCOMPARE(bench.recorder.skipped.load(), size_t(3));
        QCOMPARE(bench.recorder.seen()[1].skipped, size_t(3));
        QCOMPARE(bench.recorder.seen()[1].firstPixel, 5);
    }

    void oneByOne_everyFrameIsHandedOver()
    {
        Bench bench;
        Gate gate;
        bench.recorder.onImage = [&gate](const CGrabResultPtr&) { gate.pass(); };
        bench.start(GrabStrategy_OneByOne);
        bench.server.deliver(5);
        QTRY_VERIFY(gate.isReached());
        bench.camera.Gain.GetValue();
        gate.open();
        QTRY_COMPARE(bench.recorder.count(), size_t(5));
        QCOMPARE(bench.recorder.skipped.load(), size_t(0));
        QCOMPARE(bench.recorder.seen()[4].number, std::int64_t(5));
    }

    void image_sharesTheBufferAndKeepsIt()
    {
        Bench bench;
        CPylonImage image;
        std::atomic<const void*> buffer { nullptr };
        bench.server.setPicture([](int frame) { return greyPicture(frame); });
        bench.recorder.onImage = [&](const CGrabResultPtr& result) {
            if (!image.IsValid()) {
                image.AttachGrabResultBuffer(result);
                buffer = result->GetBuffer();
            }
        };
        bench.start();
        for (size_t frame = 1; frame <= 25; ++frame) { // more than the pool holds
            bench.camera.TriggerSoftware.Execute(true);
            QTRY_COMPARE(bench.recorder.count(), frame);
        }
        bench.camera.StopGrabbing();
        QCOMPARE(image.GetBuffer(), buffer.load());
        QCOMPARE(static_cast<int>(*static_cast<const unsigned char*>(image.GetBuffer())), 1);
        image.Release();
        QVERIFY(!image.IsValid());
        QVERIFY(image.GetBuffer() == nullptr);
    }

    void buffersAreUsedAgain_noneIsMadePerFrame()
    {
        Bench bench;
        std::mutex mutex;
        std::vector<const void*> buffers;
        bench.recorder.onImage = [&](const CGrabResultPtr& result) {
            const std::lock_guard<std::mutex> lock(mutex);
            buffers.push_back(result->GetBuffer());
        };
        bench.start();
        for (size_t frame = 1; frame <= 40; ++frame) {
            bench.camera.TriggerSoftware.Execute(true);
            QTRY_COMPARE(bench.recorder.count(), frame);
        }
        bench.camera.StopGrabbing();
        std::sort(buffers.begin(), buffers.end());
        QVERIFY(std::unique(buffers.begin(), buffers.end()) - buffers.begin() <= 10);
    }

    void tenHeldBuffers_furtherFramesAreLostUntilOneIsFree()
    {
        Bench bench;
        std::mutex mutex;
        std::vector<CGrabResultPtr> held;
        bench.recorder.onImage = [&](const CGrabResultPtr& result) {
            const std::lock_guard<std::mutex> lock(mutex);
            held.push_back(result);
        };
        bench.start(GrabStrategy_OneByOne);
        for (size_t frame = 1; frame <= 10; ++frame) {
            bench.camera.TriggerSoftware.Execute(true);
            QTRY_COMPARE(bench.recorder.count(), frame);
        }
        bench.server.deliver(2);
        bench.camera.Gain.GetValue();
        QCOMPARE(bench.recorder.count(), size_t(10));
        {
            const std::lock_guard<std::mutex> lock(mutex);
            held.erase(held.begin());
        }
        bench.server.deliver(1);
        QTRY_COMPARE(bench.recorder.count(), size_t(11));
        QCOMPARE(bench.recorder.skipped.load(), size_t(2));
        bench.camera.StopGrabbing();
    }

    void heldPicture_outlivesTheCamera()
    {
        CPylonImage image;
        {
            Bench bench;
            bench.recorder.onImage
                = [&](const CGrabResultPtr& result) { image.AttachGrabResultBuffer(result); };
            bench.start();
            bench.camera.TriggerSoftware.Execute(true);
            QTRY_COMPARE(bench.recorder.count(), size_t(1));
        }
        QCOMPARE(static_cast<int>(static_cast<const unsigned char*>(image.GetBuffer())[1228799]), 100);
    }

    void attach_refusesWhatIsNoPicture()
    {
        Bench bench;
        std::atomic<int> refusals { 0 };
        bench.recorder.onImage = [&](const CGrabResultPtr& result) {
            CPylonImage image;
            if (!failureOf([&] { image.AttachGrabResultBuffer(result); }).isEmpty() && !image.IsValid())
                ++refusals;
        };
        bench.server.script({ { ScriptedCamera::Shot::Failed, Milliseconds(0), "incomplete" } });
        bench.server.setPicture([](int) { return ScriptedCamera::Picture { 2, 2, 3, Bytes(12) }; });
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(refusals.load(), 1);
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_COMPARE(refusals.load(), 2);
        CPylonImage image;
        QVERIFY(!failureOf([&] { image.AttachGrabResultBuffer(CGrabResultPtr()); }).isEmpty());
    }

    void startTwice_throws()
    {
        Bench bench;
        bench.start();
        QVERIFY(failureOf([&] { bench.start(); }).contains("already grabbing"));
        QVERIFY(bench.camera.IsGrabbing());
    }

    void startOnAClosedCamera_opensIt()
    {
        Bench bench;
        bench.camera.Close();
        bench.start();
        QVERIFY(bench.camera.IsOpen());
        QVERIFY(bench.camera.IsGrabbing());
    }

    void strategiesThatAreNotOffered_areRefused()
    {
        Bench bench;
        QVERIFY(!failureOf([&] { bench.start(GrabStrategy_UpcomingImage); }).isEmpty());
        QVERIFY(!failureOf([&] { bench.camera.StartGrabbing(); }).isEmpty());
        QVERIFY(!bench.camera.IsGrabbing());
    }

    void stop_waitsForTheHandlerThatRuns()
    {
        Bench bench;
        Gate gate;
        std::atomic<bool> finished { false };
        bench.recorder.onImage = [&](const CGrabResultPtr&) {
            gate.pass();
            std::this_thread::sleep_for(Milliseconds(50));
            finished = true;
        };
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_VERIFY(gate.isReached());
        std::thread opener([&gate] { gate.open(); });
        bench.camera.StopGrabbing();
        QVERIFY(finished);
        QVERIFY(!bench.camera.IsGrabbing());
        opener.join();
    }

    void deregister_waitsForTheHandlerThatRuns()
    {
        Bench bench;
        Gate gate;
        std::atomic<bool> finished { false };
        bench.recorder.onImage = [&](const CGrabResultPtr&) {
            gate.pass();
            std::this_thread::sleep_for(Milliseconds(50));
            finished = true;
        };
        bench.start();
        bench.camera.TriggerSoftware.Execute(true);
        QTRY_VERIFY(gate.isReached());
        std::thread opener([&gate] { gate.open(); });
        QVERIFY(bench.camera.DeregisterImageEventHandler(&bench.recorder));
        QVERIFY(finished);
        opener.join();
    }

    void handlerThatStopsTheCamera_doesNotWaitForItself()
    {
        Bench bench;
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
        Bench bench;
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
        Bench bench;
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
        Bench bench;
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
        Bench bench;
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
