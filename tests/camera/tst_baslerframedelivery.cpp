#include "tests/camera/BaslerTests.h"
#include "tests/camera/SourceBench.h"
#include "tests/support/LogCapture.h"
#include "views/CameraView.h"

#include <QMetaMethod>
#include <QTest>

using Requests = std::vector<std::string>;

/// The frame source on a Basler camera: its life, from the look on the bus to the camera given up.
class tst_baslerframedelivery : public BaslerTests {
    Q_OBJECT

private slots:
    void isCameraAttached_looksOnTheBus()
    {
        ScriptedCamera server;
        QVERIFY(BaslerFrameDelivery::isCameraAttached());
        server.setCameras(0);
        QVERIFY(!BaslerFrameDelivery::isCameraAttached());
    }

    void isCameraAttached_whenTheLibraryFails_isFalse()
    {
        Pylon::PylonTerminate();
        const bool attached = BaslerFrameDelivery::isCameraAttached();
        Pylon::PylonInitialize();
        QVERIFY(!attached);
    }

    void constructor_setsTheCameraUpInOrder()
    {
        ScriptedCamera server;
        LogCapture log;
        const BaslerFrameDelivery source;
        const Requests expected { "Open 0",
            // the library's software trigger configuration
            "Set TriggerSelector 0", "Set TriggerMode 0", "Set TriggerSelector 1", "Set TriggerMode 1",
            "Set TriggerSource 0",
            // the set-up
            "Set ExposureAuto 0", "Set GainAuto 0", "Set Width 1280", "Set Height 960", "Set PixelFormat 0",
            "Set ReverseX 1", "Set ReverseY 0", "Set OverlapMode 1",
            // gain 0 dB, exposure 100 ms
            "Get Gain", "Set Gain 0", "Get ExposureTime", "Set ExposureTime 100000",
            // software trigger
            "Set TriggerSelector 1", "Set TriggerMode 1", "Set TriggerSource 0" };
        QCOMPARE(server.requests(), expected);
        QVERIFY(log.contains("initialize BASLER CAM Width : 1280  Height : 960"));
        QCOMPARE(FrameDelivery::m_pInstance, static_cast<const FrameDelivery*>(&source));
    }

    void constructor_logsTheClampedSize()
    {
        ScriptedCamera server;
        server.setFeature("Width", 640, 16, 1024);
        LogCapture log;
        const BaslerFrameDelivery source;
        QVERIFY(log.contains("initialize BASLER CAM Width : 1024  Height : 960"));
    }

    void constructor_withoutView_doesNotNeedOne()
    {
        QVERIFY(CameraView::Instance() == nullptr);
        SourceBench bench;
        QVERIFY(bench.grab());
    }

    void constructor_connectsTheViewsUpdate()
    {
        ScriptedCamera server;
        CameraView view;
        auto* const source = dynamic_cast<BaslerFrameDelivery*>(FrameDelivery::m_pInstance);
        QVERIFY(source != nullptr);
        QVERIFY(QObject::disconnect(source, &FrameDelivery::sig_imgReady, &view, &CameraView::slot_update));
    }

    void withoutCamera_theInstanceIsSetAndEveryDeviceCallIsSkipped()
    {
        SourceBench bench(0);
        QCOMPARE(FrameDelivery::m_pInstance, static_cast<FrameDelivery*>(bench.source.get()));
        bench.source->setCurrentGain(3.0F);
        bench.source->setCurrentExposure(10.0);
        bench.source->setCameraReverse(true, true);
        bench.source->setGamma(1.0);
        QVERIFY(!bench.source->start());
        QVERIFY(!bench.source->isRunning());
        bench.source->setAutoTriggeringMode(true);
        QVERIFY(!bench.source->getAutoTriggeringMode());
        bench.source->slot_ExecuteSoftwareTrigger();
        bench.source->stop();
        QCOMPARE(bench.source->getCurrentGain(), 0.0);
        QCOMPARE(bench.source->getCurrentExposure(), 0.0F);
        QCOMPARE(bench.server.requests(), Requests());
    }

    void constructor_openFails_throwsAndLeavesNothingRegistered()
    {
        // A handler that is destroyed while it is registered would end the program.
        ScriptedCamera server;
        server.refuseOpens(true);
        LogCapture log;
        QVERIFY(throws([] { const BaslerFrameDelivery source; }));
        QVERIFY(log.contains("Exception: Basler Camera Open() failed"));
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QVERIFY(!BaslerCamera::m_Instance->IsPylonDeviceAttached());
    }

    void constructor_missingNode_throwsAndClosesTheCamera()
    {
        ScriptedCamera server;
        server.removeFeature("Gain");
        const LogCapture log;
        QVERIFY(throws([] { const BaslerFrameDelivery source; }));
        // Nobody else tells the operator why there is no picture.
        QVERIFY(
            log.contains("BaslerFrameDelivery::BaslerFrameDelivery(QObject*) Exception in Basler camera:"));
        QCOMPARE(server.requests().back(), std::string("Close"));
        server.setFeature("Gain", 0.0, 0.0, 24.0);
        const BaslerFrameDelivery second; // the bus is free again
        QVERIFY(FrameDelivery::m_pInstance == &second);
    }

    void destructor_givesTheCameraUp()
    {
        SourceBench bench;
        bench.source->start();
        LogCapture log;
        bench.source.reset();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QCOMPARE(bench.server.requests(), (Requests { "StartStream", "StopStream", "Close" }));
        const QStringList lines = log.lines();
        QCOMPARE(lines[0], QString("virtual BaslerFrameDelivery::~BaslerFrameDelivery()"));
        QVERIFY(lines[1].startsWith("void BaslerCamera::release("));
        QCOMPARE(lines[2], QString("void BaslerCamera::stop()"));
        QVERIFY(QRegExp("\\d+ 0").exactMatch(lines[3])); // source line, registrations left
        QCOMPARE(lines[4], QString("void BaslerCamera::close()"));
        QCOMPARE(lines[5], QString("void BaslerCamera::disconnect()"));
    }
    void start_returnsWhetherACameraIsConnected()
    {
        SourceBench bench;
        QVERIFY(bench.source->start());
        QVERIFY(bench.source->isRunning());
    }

    void stop_onASourceThatDoesNotGrab_changesNothing()
    {
        SourceBench bench;
        bench.source->stop();
        QVERIFY(!bench.source->isRunning());
        QCOMPARE(bench.server.requests(), Requests());
    }

    void metaObject_hasTheTwoSlotsInOrder()
    {
        const QMetaObject& meta = BaslerFrameDelivery::staticMetaObject;
        QStringList slotSignatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            slotSignatures << QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(
            slotSignatures, (QStringList { "setAutoTriggeringMode(bool)", "slot_ExecuteSoftwareTrigger()" }));
    }

    void deinitialize_endsTheLoop()
    {
        SourceBench bench;
        LogCapture log;
        bench.source->deinitialize();
        QVERIFY(log.lines().first().startsWith(
            "void BaslerFrameDelivery::deinitialize() BaslerFrameDelivery(0x"));
        bench.source->setAutoTriggeringMode(true);
        QCOMPARE(bench.server.count("Trigger"), 0);
    }
};

QTEST_MAIN(tst_baslerframedelivery)
#include "tst_baslerframedelivery.moc"
