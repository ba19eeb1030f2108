#include "tests/camera/BaslerTests.h"
#include "tests/camera/LiveSource.h"
#include "tests/support/LargeAllocations.h"

#include <QTest>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <vector>

namespace {

/// Keeps the result of the newest frame, as a further handler of the camera.
class Keeper : public Pylon::CImageEventHandler {
public:
    Keeper()
    {
        BaslerCamera::m_Instance->RegisterImageEventHandler(
            this, Pylon::RegistrationMode_Append, Pylon::Cleanup_None);
    }
    ~Keeper() override { BaslerCamera::m_Instance->DeregisterImageEventHandler(this); }

    void OnImageGrabbed(Pylon::CInstantCamera& /*camera*/, const Pylon::CGrabResultPtr& newest) override
    {
        result = newest;
        kept = true;
    }

    Pylon::CGrabResultPtr result;
    std::atomic<bool> kept { false };
};

} // namespace

/// What a frame costs in memory on its way through the Basler source.
class tst_baslerframedelivery_memory : public BaslerTests {
    Q_OBJECT

private slots:
    void frame_allocatesNothingOfItsSize()
    {
        if (!LargeAllocations::areCounted())
            QSKIP("a sanitizer has the allocator");
        LiveSource bench;
        Keeper keeper;
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_VERIFY(keeper.kept);
        std::vector<std::uint8_t> buffer(ScriptedCamera::kFrameBytes);
        QImage image(1280, 960, QImage::Format_Indexed8);

        const LargeAllocations large;
        for (int i = 0; i < 20; ++i) {
            bench.source->OnImageGrabbed(*BaslerCamera::m_Instance, keeper.result);
            cv::Mat frame(960, 1280, CV_8UC1, buffer.data());
            QVERIFY(bench.source->pushMatImage(frame));
            QVERIFY(bench.source->pushQImage(image));
        }
        QCOMPARE(large.count(), 0);

        // The count would have seen a copy of the frame.
        const std::vector<std::uint8_t> copy(buffer);
        QCOMPARE(large.count(), 1);
        QVERIFY(copy == buffer);
    }

    void currentFrame_isTheLibrarysOwnBuffer()
    {
        // A picture that changes in the buffer changes in the source: it keeps no copy.
        LiveSource bench;
        Keeper keeper;
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_VERIFY(keeper.kept);
        QCOMPARE(bench.source->getIntensity(), 100.0);
        std::fill_n(static_cast<std::uint8_t*>(keeper.result->GetBuffer()), ScriptedCamera::kFrameBytes,
            std::uint8_t { 7 });
        QCOMPARE(bench.source->getIntensity(), 7.0);
    }
};

QTEST_GUILESS_MAIN(tst_baslerframedelivery_memory)
#include "tst_baslerframedelivery_memory.moc"
