#include "tests/platform/GrabBench.h"

#include <QTest>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

using namespace Pylon;
using Bytes = ScriptedCamera::Bytes;
using Milliseconds = ScriptedCamera::Milliseconds;

/// The stand-in of the pylon library: pictures and the buffers that they lie in.
class tst_pylon_buffers : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PylonInitialize(); }
    void cleanupTestCase() { PylonTerminate(); }

    void latestImageOnly_overwrittenFramesAreSkipped()
    {
        GrabBench bench;
        Gate gate;
        bench.server.setPicture(ScriptedCamera::greyPicture);
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
        GrabBench bench;
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
        GrabBench bench;
        CPylonImage image;
        std::atomic<const void*> buffer { nullptr };
        bench.server.setPicture(ScriptedCamera::greyPicture);
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
        GrabBench bench;
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
        GrabBench bench;
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
            GrabBench bench;
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
        GrabBench bench;
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
};

QTEST_GUILESS_MAIN(tst_pylon_buffers)
#include "tst_pylon_buffers.moc"
