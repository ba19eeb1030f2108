#include "camera/BaslerCamera.h"

#include "tests/platform/ScriptedCamera.h"
#include "tests/support/LogCapture.h"

#include <QTest>

#include <limits>
#include <memory>

using Requests = std::vector<std::string>;
using Shot = ScriptedCamera::Shot;

namespace {

template <typename Call> bool throws(Call&& call)
{
    try {
        call();
    } catch (const GenICam::GenericException&) {
        return true;
    }
    return false;
}

/// A camera on a scripted device.
struct Bench {
    /// As the frame source does it, but without handlers.
    void setUp(uint bits = 8)
    {
        camera.connect(nullptr, nullptr);
        camera.open();
        camera.initalize(1280, 960, bits, map);
        server.forgetRequests();
    }

    ScriptedCamera server;
    BaslerCamera camera;
    DeviceNodeMap map;
};

constexpr char kFirstLine[] = "disconnect 219 true";
constexpr char kSecondLine[] = "disconnect 222 false";

} // namespace

/// The layer over the camera library.
class tst_baslercamera : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Pylon::PylonInitialize(); }
    void init() { BaslerCamera::m_bFrameIsGrabbing = false; }
    void cleanupTestCase() { Pylon::PylonTerminate(); }

    void constructor_setsTheInstanceAndOpensNothing()
    {
        ScriptedCamera server;
        LogCapture log;
        const auto camera = std::make_unique<BaslerCamera>();
        QCOMPARE(BaslerCamera::m_Instance, camera.get());
        QCOMPARE(BaslerCamera::instance(), camera.get());
        QVERIFY(log.contains("BaslerCamera::BaslerCamera()"));
        QVERIFY(log.contains("static BaslerCamera* BaslerCamera::instance()"));
        QVERIFY(!camera->IsPylonDeviceAttached());
        QVERIFY(!BaslerCamera::m_bFrameIsGrabbing);
        QCOMPARE(server.requests(), Requests());
    }

    void instance_isNeverCleared()
    {
        const auto* const gone = std::make_unique<BaslerCamera>().get();
        QCOMPARE(static_cast<const void*>(BaslerCamera::m_Instance), static_cast<const void*>(gone));
    }

    void isAttached_countsTheDevices()
    {
        ScriptedCamera server;
        LogCapture log;
        QCOMPARE(BaslerCamera::is_BaslerCamAttached(), 1);
        server.setCameras(3);
        QCOMPARE(BaslerCamera::is_BaslerCamAttached(), 3);
        server.setCameras(0);
        QCOMPARE(BaslerCamera::is_BaslerCamAttached(), 0);
        QVERIFY(log.contains("static int BaslerCamera::is_BaslerCamAttached()"));
    }

    void connect_withoutCamera_isFalse()
    {
        Bench bench;
        bench.server.setCameras(0);
        QVERIFY(!bench.camera.connect(nullptr, nullptr));
        QVERIFY(!bench.camera.IsPylonDeviceAttached());
    }

    void connect_registersBothHandlers()
    {
        Pylon::CImageEventHandler handler;
        Pylon::CConfigurationEventHandler configuration;
        Bench bench;
        QVERIFY(bench.camera.connect(&handler, &configuration));
        QVERIFY(bench.camera.IsPylonDeviceAttached());
        QVERIFY(!bench.camera.IsOpen());
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 1L);
        QCOMPARE(configuration.DebugGetEventHandlerRegistrationCount(), 1L);
    }

    void connect_replacesImageHandlersAndAddsConfigurations()
    {
        Pylon::CImageEventHandler oldHandler;
        Pylon::CConfigurationEventHandler oldConfiguration;
        Pylon::CImageEventHandler handler;
        Pylon::CConfigurationEventHandler configuration;
        Bench bench;
        QVERIFY(bench.camera.connect(&oldHandler, &oldConfiguration));
        QVERIFY(bench.camera.connect(&handler, &configuration));
        QCOMPARE(oldHandler.DebugGetEventHandlerRegistrationCount(), 0L);
        QCOMPARE(oldConfiguration.DebugGetEventHandlerRegistrationCount(), 1L);
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 1L);
    }

    void connect_withNullHandler_attachesAndRegistersNothing()
    {
        Pylon::CConfigurationEventHandler configuration;
        Bench bench;
        QVERIFY(bench.camera.connect(nullptr, &configuration));
        QVERIFY(bench.camera.IsPylonDeviceAttached());
        QCOMPARE(configuration.DebugGetEventHandlerRegistrationCount(), 0L);
    }

    void connect_refusedByTheLibrary_isLoggedAndFalse()
    {
        Pylon::CImageEventHandler handler;
        Bench bench;
        LogCapture log;
        QVERIFY(!bench.camera.connect(&handler, nullptr)); // the library takes no null configuration
        const QStringList lines = log.lines();
        QVERIFY(lines.last().startsWith("bool BaslerCamera::connect("));
        QVERIFY(lines.last().endsWith(" Exception: Basler Camera Attach() failed"));
    }

    void open_refused_isLoggedAndStaysClosed()
    {
        Bench bench;
        bench.server.refuseOpens(true);
        QVERIFY(bench.camera.connect(nullptr, nullptr));
        LogCapture log;
        bench.camera.open();
        QVERIFY(!bench.camera.IsOpen());
        QVERIFY(log.contains("void BaslerCamera::open() Exception: Basler Camera Open() failed"));
        QVERIFY(log.contains("controlled by another application"));
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
    }

    void initalize_writesInOrder_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<uint>("bits");
        QTest::addColumn<int>("family");
        QTest::addColumn<bool>("centred");
        QTest::addColumn<int>("pixelFormat");
        QTest::newRow("dart") << "daA1280-54um" << 8U << 2 << false << 0;
        QTest::newRow("dart, 16 bits") << "daA1280-54um" << 16U << 2 << false << 3;
        QTest::newRow("dart, 12 bits count as 8") << "daA1280-54um" << 12U << 2 << false << 0;
        QTest::newRow("ace") << "acA1300-200um" << 8U << 0 << true << 0;
        QTest::newRow("ace in capitals") << "ACA1300-200UM" << 8U << 0 << true << 0;
        QTest::newRow("pulse") << "puA1280-54um" << 8U << 1 << false << 0;
    }
    void initalize_writesInOrder()
    {
        QFETCH(QString, model);
        QFETCH(uint, bits);
        QFETCH(bool, centred);
        QFETCH(int, pixelFormat);
        Bench bench;
        bench.server.setModel(model.toStdString());
        bench.server.setFeature("CenterX", 0, 0, 1);
        bench.server.setFeature("CenterY", 0, 0, 1);
        bench.camera.connect(nullptr, nullptr);
        bench.camera.open();
        bench.server.forgetRequests();
        bench.camera.initalize(1280, 960, bits, bench.map);

        Requests expected { "Set ExposureAuto 0", "Set GainAuto 0", "Set Width 1280", "Set Height 960" };
        if (centred)
            expected.insert(expected.end(), { "Set CenterX 1", "Set CenterY 1" });
        const std::string format = "Set PixelFormat " + std::to_string(pixelFormat);
        expected.insert(expected.end(), { format, "Set ReverseX 1", "Set ReverseY 0", "Set OverlapMode 1" });
        QCOMPARE(bench.server.requests(), expected);
        QTEST(bench.map.family, "family");
        QCOMPARE(bench.map.modelName, model);
    }

    void initalize_readsTheFacts()
    {
        Bench bench;
        bench.setUp();
        QCOMPARE(bench.map.widthMin, 16);
        QCOMPARE(bench.map.widthMax, 1280);
        QCOMPARE(bench.map.width, 1280);
        QCOMPARE(bench.map.heightMin, 16);
        QCOMPARE(bench.map.heightMax, 960);
        QCOMPARE(bench.map.height, 960);
        QCOMPARE(bench.map.exposureMin, 20.0);
        QCOMPARE(bench.map.exposureMax, 1000000.0);
        QCOMPARE(bench.map.gainMin, 0.0);
        QCOMPARE(bench.map.gainMax, 24.0);
        const DeviceNodeMap copy = bench.camera.device_node_map();
        QCOMPARE(copy.modelName, QString("daA1280-54um"));
        QCOMPARE(copy.exposureMax, 1000000.0);
    }

    void initalize_clampsTheSize()
    {
        Bench bench;
        bench.server.setFeature("Width", 1000, 16, 1024);
        bench.server.setFeature("Height", 1000, 1000, 2000);
        bench.setUp();
        QCOMPARE(bench.map.width, 1024);
        QCOMPARE(bench.map.height, 1000);
        QCOMPARE(bench.server.feature("Width"), 1024.0);
        QCOMPARE(bench.server.feature("Height"), 1000.0);
    }

    void initalize_hugeRequest_isClamped()
    {
        Bench bench;
        bench.camera.connect(nullptr, nullptr);
        bench.camera.open();
        bench.camera.initalize(std::numeric_limits<uint>::max(), 0, 8, bench.map);
        QCOMPARE(bench.map.width, 1280);
        QCOMPARE(bench.map.height, 16);
    }

    void initalize_unknownModel_leavesTheCameraAlone_data()
    {
        QTest::addColumn<QString>("model");
        QTest::newRow("another family") << "boA4096-93cm";
        QTest::newRow("one letter") << "d";
        QTest::newRow("no name") << "";
    }
    void initalize_unknownModel_leavesTheCameraAlone()
    {
        QFETCH(QString, model);
        Bench bench;
        bench.server.setModel(model.toStdString());
        bench.camera.connect(nullptr, nullptr);
        bench.camera.open();
        bench.server.forgetRequests();
        bench.map.width = -7;
        bench.map.modelName = "untouched";
        bench.camera.initalize(1280, 960, 8, bench.map);
        QCOMPARE(bench.server.requests(), Requests());
        QCOMPARE(bench.map.width, -7);
        QCOMPARE(bench.map.modelName, QString("untouched"));
        QCOMPARE(bench.camera.device_node_map().family, 1);
        QCOMPARE(bench.camera.device_node_map().modelName, model);
    }

    void unknownModel_exposureAndGainAreNotClamped()
    {
        Bench bench;
        bench.server.setModel("boA4096-93cm");
        bench.setUp();
        LogCapture log;
        bench.camera.setExposure(5000000.0F);
        QCOMPARE(bench.server.feature("ExposureTime"), 10000.0);
        QVERIFY(log.contains("Exception: BaslerCamera SetExposure failed"));
        bench.camera.setExposure(500.0F);
        QCOMPARE(bench.server.feature("ExposureTime"), 500.0);
        bench.camera.setGain(7.5F);
        QCOMPARE(bench.server.feature("Gain"), 7.5);
    }

    void initalize_missingNode_throws_data()
    {
        QTest::addColumn<QString>("node");
        for (const char* const node : { "Width", "Height", "Gain", "ExposureTime", "OverlapMode" })
            QTest::newRow(node) << node;
    }
    void initalize_missingNode_throws()
    {
        QFETCH(QString, node);
        Bench bench;
        bench.server.removeFeature(node.toStdString());
        bench.camera.connect(nullptr, nullptr);
        bench.camera.open();
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
    }

    void overlapMode_isWrittenForEveryFamily()
    {
        // An ace without it is refused as any other.
        Bench bench;
        bench.server.setModel("acA1300-200um");
        bench.server.setFeature("CenterX", 0, 0, 1);
        bench.server.setFeature("CenterY", 0, 0, 1);
        bench.server.removeFeature("OverlapMode");
        bench.camera.connect(nullptr, nullptr);
        bench.camera.open();
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
        QCOMPARE(bench.server.requests().back(), std::string("Set ReverseY 0"));
    }

    void setExposure_keepsToTheLimits_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<double>("written");
        QTest::newRow("inside") << 1234.5F << 1234.5;
        QTest::newRow("above") << 2000000.0F << 1000000.0;
        QTest::newRow("below") << 1.0F << 20.0;
        QTest::newRow("negative") << -1.0F << 20.0;
    }
    void setExposure_keepsToTheLimits()
    {
        QFETCH(float, value);
        Bench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.setExposure(value);
        QTEST(bench.server.feature("ExposureTime"), "written");
        QVERIFY(log.contains("void BaslerCamera::setExposure(float)"));
        QVERIFY(!log.contains("failed"));
    }

    void setGain_keepsToTheLimits_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<double>("written");
        QTest::newRow("inside") << 12.5F << 12.5;
        QTest::newRow("above") << 99.0F << 24.0;
        QTest::newRow("below") << -3.0F << 0.0;
    }
    void setGain_keepsToTheLimits()
    {
        QFETCH(float, value);
        Bench bench;
        bench.setUp();
        bench.camera.setGain(value);
        QTEST(bench.server.feature("Gain"), "written");
    }

    void sameValue_writesNothing()
    {
        Bench bench;
        bench.setUp();
        bench.camera.setExposure(10000.0F);
        bench.camera.setGain(3.0F);
        QCOMPARE(bench.server.requests(), (Requests { "Get ExposureTime", "Get Gain" }));
    }

    void limitRoundedAboveTheRealOne_isRefusedAndLogged()
    {
        // 23.79 is no float: the nearest one lies above it.
        QVERIFY(static_cast<double>(static_cast<float>(23.79)) > 23.79);
        Bench bench;
        bench.server.setFeature("Gain", 3.0, 0.0, 23.79);
        bench.setUp();
        LogCapture log;
        bench.camera.setGain(30.0F);
        QCOMPARE(bench.server.feature("Gain"), 3.0);
        QVERIFY(log.contains("Exception: BaslerCamera SetGain failed"));
    }

    void notANumber_isRefusedAndLogged()
    {
        Bench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.setExposure(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(bench.server.feature("ExposureTime"), 10000.0);
        QVERIFY(log.contains("Exception: BaslerCamera SetExposure failed"));
    }

    void refusedValue_isLoggedAndTheOldOneStays()
    {
        Bench bench;
        bench.setUp();
        bench.server.refuse("ExposureTime", "locked");
        LogCapture log;
        bench.camera.setExposure(500.0F);
        QCOMPARE(bench.server.feature("ExposureTime"), 10000.0);
        const int line = log.indexOf("Exception: BaslerCamera SetExposure failed");
        QVERIFY(line >= 0);
        QVERIFY(log.lines()[line].contains("locked"));
    }

    void getters_readFromTheCamera()
    {
        Bench bench;
        bench.setUp();
        LogCapture log;
        QCOMPARE(bench.camera.getGain(), 3.0F);
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(bench.camera.getExposure(), 10000.0F);
        QCOMPARE(log.lines(), QStringList { "float BaslerCamera::getExposure()" });
    }

    void setReverse_writesXThenY()
    {
        Bench bench;
        bench.setUp();
        bench.camera.setReverse(false, true);
        QCOMPARE(bench.server.requests(), (Requests { "Set ReverseX 0", "Set ReverseY 1" }));
    }

    void gammaAndReverse_doNotCatch()
    {
        Bench bench;
        bench.setUp();
        bench.server.refuse("ReverseX", "locked");
        QVERIFY(throws([&] { bench.camera.setReverse(true, true); }));
        QVERIFY(throws([&] { bench.camera.setGamma(4.5); }));
        bench.camera.setGamma(0.45);
        QCOMPARE(bench.server.feature("Gamma"), 0.45);
    }

    void triggerMode_onClosedCamera_onlyLogs()
    {
        Bench bench;
        LogCapture log;
        bench.camera.SetSoftwareTriggerMode(true);
        QCOMPARE(log.lines().last(),
            QString("SetSoftwareTriggerMode !!! Cannot open the camera and init SW Trigger mode !!!"));
        QCOMPARE(bench.server.requests(), Requests());
    }

    void triggerMode_on_setsSelectorModeAndSource()
    {
        Bench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.SetSoftwareTriggerMode(true);
        QCOMPARE(bench.server.requests(),
            (Requests { "Set TriggerSelector 1", "Set TriggerMode 1", "Set TriggerSource 0" }));
        QCOMPARE(log.lines().last(), QString("SetSoftwareTriggerMode SW Trigger mode is ON"));
    }

    void triggerMode_off_leavesTheSelectorAlone()
    {
        Bench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.SetSoftwareTriggerMode(false);
        QCOMPARE(bench.server.requests(), (Requests { "Set TriggerMode 0", "Set TriggerSource 0" }));
        QCOMPARE(log.lines().last(), QString("SetSoftwareTriggerMode SW Trigger mode is OFF"));
    }

    void triggerMode_refused_throws()
    {
        Bench bench;
        bench.setUp();
        bench.server.refuse("TriggerMode", "locked");
        QVERIFY(throws([&] { bench.camera.SetSoftwareTriggerMode(true); }));
    }

    void trigger_onCameraThatDoesNotGrab_doesNothing()
    {
        Bench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.ExecuteSWTrigger();
        QVERIFY(!BaslerCamera::m_bFrameIsGrabbing);
        QCOMPARE(bench.server.requests(), Requests());
        QVERIFY(log.lines().isEmpty());
    }

    void trigger_setsTheFlagWithoutALogLine()
    {
        Bench bench;
        bench.setUp();
        bench.camera.start();
        QVERIFY(bench.camera.isRunning());
        LogCapture log;
        bench.camera.ExecuteSWTrigger();
        QVERIFY(BaslerCamera::m_bFrameIsGrabbing);
        QCOMPARE(bench.server.requests(), (Requests { "StartStream", "Trigger" }));
        QVERIFY(log.lines().isEmpty());
    }

    void trigger_refused_isLoggedAndTheFlagStays()
    {
        Bench bench;
        bench.setUp();
        bench.server.script({ { Shot::Refused, ScriptedCamera::Milliseconds(0), "no power" } });
        bench.camera.start();
        LogCapture log;
        bench.camera.ExecuteSWTrigger();
        QVERIFY(BaslerCamera::m_bFrameIsGrabbing);
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.lines().first().startsWith(
            "ExecuteSWTrigger setSWTrigger: Exception in BasslerCamera SetSWTrigger & RetrieveResult "));
        QVERIFY(log.lines().first().contains("no power"));
    }

    void start_twice_isLogged()
    {
        Bench bench;
        bench.setUp();
        bench.camera.start();
        LogCapture log;
        bench.camera.start();
        QVERIFY(log.contains("void BaslerCamera::start() Exception: Start Grabbing failed"));
        QVERIFY(bench.camera.isRunning());
        bench.camera.stop();
        QVERIFY(!bench.camera.isRunning());
    }

    void start_withoutDevice_isLogged()
    {
        Bench bench;
        LogCapture log;
        bench.camera.start();
        QVERIFY(log.contains("void BaslerCamera::start() Exception: Start Grabbing failed"));
        QVERIFY(!bench.camera.isRunning());
    }

    void release_stopsAndDeregisters()
    {
        Pylon::CImageEventHandler handler;
        Pylon::CConfigurationEventHandler configuration;
        Bench bench;
        bench.camera.connect(&handler, &configuration);
        bench.camera.open();
        bench.camera.start();
        bench.camera.release(nullptr, nullptr);
        QVERIFY(!bench.camera.isRunning());
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 1L);
        bench.camera.release(&handler, &configuration);
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 0L);
        QCOMPARE(configuration.DebugGetEventHandlerRegistrationCount(), 0L);
    }

    void close_stopsAndCloses()
    {
        Bench bench;
        bench.setUp();
        bench.camera.start();
        bench.camera.close();
        QVERIFY(!bench.camera.isRunning());
        QVERIFY(!bench.camera.IsOpen());
        QVERIFY(bench.camera.IsPylonDeviceAttached());
        QCOMPARE(bench.server.requests(), (Requests { "StartStream", "StopStream", "Close" }));
    }

    void close_withoutDevice_onlyLogs()
    {
        Bench bench;
        LogCapture log;
        bench.camera.close();
        QCOMPARE(log.lines(), QStringList { "void BaslerCamera::close()" });
    }

    void disconnect_givesTheDeviceBack()
    {
        Bench bench;
        bench.setUp();
        bench.camera.close();
        LogCapture log;
        bench.camera.disconnect();
        QCOMPARE(log.lines(), (QStringList { "void BaslerCamera::disconnect()", kFirstLine, kSecondLine }));
        QVERIFY(!bench.camera.IsPylonDeviceAttached());
    }

    void disconnect_withoutDevice_onlyLogsItsSignature()
    {
        Bench bench;
        LogCapture log;
        bench.camera.disconnect();
        QCOMPARE(log.lines(), QStringList { "void BaslerCamera::disconnect()" });
    }
};

QTEST_GUILESS_MAIN(tst_baslercamera)
#include "tst_baslercamera.moc"
