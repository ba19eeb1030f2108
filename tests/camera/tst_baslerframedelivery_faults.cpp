#include "tests/camera/BaslerTests.h"
#include "tests/camera/LiveSource.h"
#include "tests/support/LogCapture.h"

#include <QTest>

using Bytes = ScriptedCamera::Bytes;
using Milliseconds = ScriptedCamera::Milliseconds;
using Picture = ScriptedCamera::Picture;
using Shot = ScriptedCamera::Shot;

/// The trigger loop when triggers, grabs or the camera fail.
class tst_baslerframedelivery_faults : public BaslerTests {
    Q_OBJECT

private slots:
    void refusedTrigger_endsTheLoopSilently()
    {
        LiveSource bench;
        bench.server.script({ {}, {}, { Shot::Refused, Milliseconds(0), "no power" } });
        LogCapture log;
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(log.contains("no power"));
        QTest::qWait(100);
        QCOMPARE(bench.triggers(), 3);
        QCOMPARE(bench.ready.load(), 2);
        BaslerCamera::m_bFrameIsGrabbing = false; // nothing will land that one could wait for
    }

    void failedGrab_inLiveMode_theLoopGoesOn()
    {
        LiveSource bench;
        bench.server.script({ { Shot::Failed, Milliseconds(0), "incomplete" } });
        LogCapture log;
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(bench.ready >= 3);
        const int line = log.indexOf("Grab is not succeeded incomplete");
        QVERIFY(line >= 0);
        QVERIFY(log.lines()[line].startsWith("virtual void BaslerFrameDelivery::OnImageGrabbed("));
        QCOMPARE(bench.server.ignoredTriggers(), 0);
    }

    void failedGrab_outOfLiveMode_stillTriggersOnce()
    {
        LiveSource bench;
        bench.server.script({ { Shot::Failed, Milliseconds(0), "incomplete" } });
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_COMPARE(bench.ready.load(), 1); // one extra frame
        QTest::qWait(100);
        QCOMPARE(bench.triggers(), 2);
        QCOMPARE(bench.ready.load(), 1);
    }

    void failedGrab_isNoFrameAndLeavesOneUnderWay()
    {
        LiveSource bench;
        bench.source->deinitialize();
        bench.server.script({ { Shot::Failed, Milliseconds(0), "incomplete" } });
        LogCapture log;
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_VERIFY(log.contains("Grab is not succeeded"));
        bench.source
            ->BaslerFrameDelivery::stop(); // joins the grab thread; not live, so that nothing is waited for
        QVERIFY(BaslerCamera::m_bFrameIsGrabbing);
        QCOMPARE(bench.ready.load(), 0);
        cv::Mat matrix;
        QVERIFY(!bench.source->pushMatImage(matrix));
    }

    void pulledPlug_theLoopEndsAndTheLastFrameStays()
    {
        LiveSource bench;
        bench.server.setPicture([](int) { return ScriptedCamera::greyPicture(42); });
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(bench.ready >= 3);
        LogCapture log;
        bench.server.unplug();
        QTRY_VERIFY(BaslerCamera::m_Instance->IsCameraDeviceRemoved());
        QTest::qWait(100);
        const int landed = bench.ready;
        QTest::qWait(100);
        QCOMPARE(bench.ready.load(), landed);
        QVERIFY(bench.source->isRunning());
        QCOMPARE(bench.source->getIntensity(), 42.0);
        BaslerCamera::m_bFrameIsGrabbing = false;
        bench.source->stop();
        QVERIFY(!bench.source->isRunning());
    }

    void serverGone_isAPulledPlug()
    {
        LiveSource bench;
        bench.source->setAutoTriggeringMode(true);
        QTRY_VERIFY(bench.ready >= 3);
        bench.server.hangUp();
        QTRY_VERIFY(BaslerCamera::m_Instance->IsCameraDeviceRemoved());
        bench.source.reset();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
    }

    void exceptionInOnImageGrabbed_isLoggedAndLeavesTheMutexFree()
    {
        // A pixel type that the library cannot attach makes it throw while the source holds its mutex.
        LiveSource bench;
        bench.server.setPicture([](int) {
            return Picture { 1280, 960, 3, Bytes(3 * ScriptedCamera::kFrameBytes) };
        });
        LogCapture log;
        bench.source->slot_ExecuteSoftwareTrigger();
        QTRY_VERIFY(log.contains("Exception in Basler camera: failed getting a frame: "));
        const int line = log.indexOf("Exception in Basler camera: failed getting a frame: ");
        QVERIFY(log.lines()[line].startsWith("virtual void BaslerFrameDelivery::OnImageGrabbed("));
        QVERIFY(log.lines()[line].contains("pixel type"));
        QCOMPARE(bench.ready.load(), 0);
        QVERIFY(!bench.source->getAutoTriggeringMode()); // takes the mutex
        QVERIFY(bench.source->isRunning());
        cv::Mat matrix;
        QVERIFY(!bench.source->pushMatImage(matrix));
    }

    void exceptionAfterARemoval_saysSo()
    {
        LiveSource bench;
        bench.server.unplug();
        QTRY_VERIFY(BaslerCamera::m_Instance->IsCameraDeviceRemoved());
        LogCapture log;
        bench.source->OnImageGrabbed(*BaslerCamera::m_Instance, Pylon::CGrabResultPtr());
        QVERIFY(log.contains("Exception: Basler Camera failed or removed: "));
        QVERIFY(!bench.source->getAutoTriggeringMode());
    }
};

QTEST_GUILESS_MAIN(tst_baslerframedelivery_faults)
#include "tst_baslerframedelivery_faults.moc"
