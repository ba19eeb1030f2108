#include "camera/baslerframedelivery.h"

#include "camera/BaslerCamera.h"
#include "tests/platform/ScriptedCamera.h"
#include "tests/support/LogCapture.h"
#include "views/CameraView.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using Requests = std::vector<std::string>;
using Picture = ScriptedCamera::Picture;

namespace {

/// A picture with another grey value in each row, and a bright first pixel.
Picture rampPicture()
{
    Picture picture { 1280, 960, 1, ScriptedCamera::Bytes(ScriptedCamera::kFrameBytes) };
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels[i] = static_cast<std::uint8_t>(i / 1280 % 200);
    picture.pixels[0] = 255;
    return picture;
}

/// A source on a scripted camera, not started.
struct Bench {
    explicit Bench(int cameras = 1)
    {
        BaslerCamera::m_bFrameIsGrabbing = false;
        server.setCameras(cameras);
        source = std::make_unique<BaslerFrameDelivery>();
        server.forgetRequests();
    }

    /// Lets one frame come in.
    bool grab()
    {
        QSignalSpy ready(source.get(), &FrameDelivery::sig_imgReady);
        source->start();
        source->slot_ExecuteSoftwareTrigger();
        return QTest::qWaitFor([&ready] { return ready.count() > 0; });
    }

    ScriptedCamera server;
    std::unique_ptr<BaslerFrameDelivery> source;
};

} // namespace

/// The frame source on a Basler camera: its life, settings and copies of the current frame.
class tst_baslerframedelivery : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Pylon::PylonInitialize(); }
    void cleanupTestCase() { Pylon::PylonTerminate(); }

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
        Bench bench;
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
        Bench bench(0);
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
        bool thrown = false;
        try {
            const BaslerFrameDelivery source;
        } catch (const GenICam::GenericException&) {
            thrown = true;
        }
        QVERIFY(thrown);
        QVERIFY(log.contains("Exception: Basler Camera Open() failed"));
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QVERIFY(!BaslerCamera::m_Instance->IsPylonDeviceAttached());
    }

    void constructor_missingNode_throwsAndClosesTheCamera()
    {
        ScriptedCamera server;
        server.removeFeature("Gain");
        const LogCapture log;
        bool thrown = false;
        try {
            const BaslerFrameDelivery source;
        } catch (const GenICam::GenericException&) {
            thrown = true;
        }
        QVERIFY(thrown);
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
        Bench bench;
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

    void gain_isLimitedTo18_data()
    {
        QTest::addColumn<float>("gain");
        QTest::addColumn<double>("written");
        QTest::newRow("above") << 20.0F << 18.0;
        QTest::newRow("the limit") << 18.0F << 18.0;
        QTest::newRow("inside") << 2.5F << 2.5;
    }
    void gain_isLimitedTo18()
    {
        QFETCH(float, gain);
        Bench bench;
        LogCapture log;
        bench.source->setCurrentGain(gain);
        QTEST(bench.server.feature("Gain"), "written");
        QTEST(bench.source->getCurrentGain(), "written");
        QVERIFY(log.lines().first().startsWith(
            "virtual void BaslerFrameDelivery::setCurrentGain(float) again: "));
    }

    void exposure_isInMillisecondsUpToASecond_data()
    {
        QTest::addColumn<double>("exposure");
        QTest::addColumn<double>("written");
        QTest::newRow("above") << 1500.0 << 1000000.0;
        QTest::newRow("the limit") << 1000.0 << 1000000.0;
        QTest::newRow("inside") << 12.5 << 12500.0;
        QTest::newRow("converted to single precision first")
            << 0.1234567890123 << static_cast<double>(static_cast<float>(0.1234567890123) * 1000.0F);
    }
    void exposure_isInMillisecondsUpToASecond()
    {
        QFETCH(double, exposure);
        Bench bench;
        LogCapture log;
        bench.source->setCurrentExposure(exposure);
        QTEST(bench.server.feature("ExposureTime"), "written");
        QVERIFY(log.lines().first().startsWith(
            "virtual void BaslerFrameDelivery::setCurrentExposure(double) exposure: "));
    }

    void exposureReadBack_isTheCameras()
    {
        Bench bench;
        bench.source->setCurrentExposure(10.0);
        bench.server.setFeature("ExposureTime", 10003.5, 20.0, 1000000.0); // what the device made of it
        QCOMPARE(bench.source->getCurrentExposure(), static_cast<float>(10003.5 / 1000.0));
    }

    void reverse_isWrittenAndLogged()
    {
        Bench bench;
        LogCapture log;
        bench.source->setCameraReverse(false, true);
        QCOMPARE(bench.server.requests(), (Requests { "Set ReverseX 0", "Set ReverseY 1" }));
        QCOMPARE(log.lines().first(),
            QString(
                "virtual void BaslerFrameDelivery::setCameraReverse(bool, bool) reverse x , y false true"));
    }

    void pulledPlug_noSettingLeavesTheCallerWithAnException()
    {
        Bench bench;
        bench.server.unplug();
        QTRY_VERIFY(BaslerCamera::m_Instance->IsCameraDeviceRemoved());
        bench.source->setCurrentGain(3.0F);
        bench.source->setCurrentExposure(10.0);
        bench.source->setCameraReverse(true, true);
        bench.source->setGamma(1.0);
        QCOMPARE(bench.source->getCurrentGain(), 0.0);
        QCOMPARE(bench.source->getCurrentExposure(), 0.0F);
        QVERIFY(bench.source->start()); // a camera was found once
        QVERIFY(!bench.source->isRunning());
    }

    void beforeTheFirstFrame_thereIsNone()
    {
        Bench bench;
        cv::Mat matrix(3, 4, CV_8UC1, cv::Scalar(7));
        QImage image(1280, 960, QImage::Format_Indexed8);
        image.fill(9);
        QVERIFY(!bench.source->pushMatImage(matrix));
        QVERIFY(matrix.rows == 3 && matrix.cols == 4);
        QCOMPARE(cv::sum(matrix)[0], 84.0);
        QVERIFY(!bench.source->pushQImage(image));
        QCOMPARE(static_cast<int>(image.constBits()[1228799]), 9);
        QCOMPARE(bench.source->getIntensity(), -1.0);
    }

    void pushMatImage_copiesIntoTheCallersBuffer()
    {
        Bench bench;
        bench.server.setPicture([](int) { return rampPicture(); });
        QVERIFY(bench.grab());
        std::vector<uchar> buffer(1228800, 0);
        cv::Mat header(960, 1280, CV_8UC1, buffer.data());
        QVERIFY(bench.source->pushMatImage(header));
        QCOMPARE(header.data, buffer.data());
        QVERIFY(buffer == rampPicture().pixels);
    }

    void pushMatImage_otherSizeOrType_isReallocated()
    {
        Bench bench;
        QVERIFY(bench.grab());
        std::vector<uchar> buffer(1228800, 0);
        cv::Mat header(480, 1280, CV_8UC1, buffer.data());
        QVERIFY(bench.source->pushMatImage(header));
        QVERIFY(header.data != buffer.data());
        QVERIFY(header.rows == 960 && header.cols == 1280 && header.type() == CV_8UC1);
        QCOMPARE(static_cast<int>(buffer[0]), 0);
    }

    void pushQImage_fillsTheBits()
    {
        Bench bench;
        bench.server.setPicture([](int) { return rampPicture(); });
        QVERIFY(bench.grab());
        QImage image(1280, 960, QImage::Format_Indexed8);
        LogCapture log;
        QVERIFY(bench.source->pushQImage(image));
        QVERIFY(log.lines().isEmpty());
        const std::vector<uchar> bytes(image.constBits(), image.constBits() + 1228800);
        QVERIFY(bytes == rampPicture().pixels);
    }

    void getIntensity_isTheMean()
    {
        Bench bench;
        bench.server.setPicture([](int) { return rampPicture(); });
        QVERIFY(bench.grab());
        double sum = 0.0;
        for (const std::uint8_t pixel : rampPicture().pixels)
            sum += pixel;
        QCOMPARE(bench.source->getIntensity(), sum / 1228800.0);
    }

    void frameTooSmallForAConsumer_isNoFrame()
    {
        // A camera of an unknown family keeps its own size, and consumers copy 1228800 bytes whatever comes.
        Bench bench;
        QVERIFY(bench.grab());
        bench.server.setPicture([](int) { return Picture { 640, 480, 1, ScriptedCamera::Bytes(307200) }; });
        LogCapture log;
        QVERIFY(bench.grab());
        cv::Mat matrix;
        QVERIFY(!bench.source->pushMatImage(matrix));
        QCOMPARE(bench.source->getIntensity(), -1.0);
        QVERIFY(log.contains("frame is too small: 640 480"));
    }

    void start_returnsWhetherACameraIsConnected()
    {
        Bench bench;
        QVERIFY(bench.source->start());
        QVERIFY(bench.source->isRunning());
    }

    void stop_onASourceThatDoesNotGrab_changesNothing()
    {
        Bench bench;
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
        Bench bench;
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
