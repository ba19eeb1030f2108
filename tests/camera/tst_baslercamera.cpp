#include "tests/camera/BaslerTests.h"
#include "tests/camera/CameraBench.h"
#include "tests/support/LogCapture.h"

#include <QTest>

#include <memory>

using Requests = std::vector<std::string>;
using Shot = ScriptedCamera::Shot;

namespace {

constexpr char kFirstLine[] = "disconnect 219 true";
constexpr char kSecondLine[] = "disconnect 222 false";

} // namespace

/// The layer over the camera library: connection, grabbing, triggers.
class tst_baslercamera : public BaslerTests {
    Q_OBJECT

private slots:
    void init() { BaslerCamera::m_bFrameIsGrabbing = false; }

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
        auto camera = std::make_unique<BaslerCamera>();
        const auto address = reinterpret_cast<quintptr>(camera.get());
        camera.reset();
        QCOMPARE(reinterpret_cast<quintptr>(BaslerCamera::m_Instance), address);
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
        CameraBench bench;
        bench.server.setCameras(0);
        QVERIFY(!bench.camera.connect(nullptr, nullptr));
        QVERIFY(!bench.camera.IsPylonDeviceAttached());
    }

    void connect_registersBothHandlers()
    {
        Pylon::CImageEventHandler handler;
        Pylon::CConfigurationEventHandler configuration;
        CameraBench bench;
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
        CameraBench bench;
        QVERIFY(bench.camera.connect(&oldHandler, &oldConfiguration));
        QVERIFY(bench.camera.connect(&handler, &configuration));
        QCOMPARE(oldHandler.DebugGetEventHandlerRegistrationCount(), 0L);
        QCOMPARE(oldConfiguration.DebugGetEventHandlerRegistrationCount(), 1L);
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 1L);
    }

    void connect_withNullHandler_attachesAndRegistersNothing()
    {
        Pylon::CConfigurationEventHandler configuration;
        CameraBench bench;
        QVERIFY(bench.camera.connect(nullptr, &configuration));
        QVERIFY(bench.camera.IsPylonDeviceAttached());
        QCOMPARE(configuration.DebugGetEventHandlerRegistrationCount(), 0L);
    }

    void connect_refusedByTheLibrary_isLoggedAndFalse()
    {
        Pylon::CImageEventHandler handler;
        CameraBench bench;
        LogCapture log;
        QVERIFY(!bench.camera.connect(&handler, nullptr)); // the library takes no null configuration
        const QStringList lines = log.lines();
        QVERIFY(lines.last().startsWith("bool BaslerCamera::connect("));
        QVERIFY(lines.last().endsWith(" Exception: Basler Camera Attach() failed"));
    }

    void open_refused_isLoggedAndStaysClosed()
    {
        CameraBench bench;
        bench.server.refuseOpens(true);
        QVERIFY(bench.camera.connect(nullptr, nullptr));
        LogCapture log;
        bench.camera.open();
        QVERIFY(!bench.camera.IsOpen());
        QVERIFY(log.contains("void BaslerCamera::open() Exception: Basler Camera Open() failed"));
        QVERIFY(log.contains("controlled by another application"));
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
    }

    void triggerMode_onClosedCamera_onlyLogs()
    {
        CameraBench bench;
        LogCapture log;
        bench.camera.SetSoftwareTriggerMode(true);
        QCOMPARE(log.lines().last(),
            QString("SetSoftwareTriggerMode !!! Cannot open the camera and init SW Trigger mode !!!"));
        QCOMPARE(bench.server.requests(), Requests());
    }

    void triggerMode_on_setsSelectorModeAndSource()
    {
        CameraBench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.SetSoftwareTriggerMode(true);
        QCOMPARE(bench.server.requests(),
            (Requests { "Set TriggerSelector 1", "Set TriggerMode 1", "Set TriggerSource 0" }));
        QCOMPARE(log.lines().last(), QString("SetSoftwareTriggerMode SW Trigger mode is ON"));
    }

    void triggerMode_off_leavesTheSelectorAlone()
    {
        CameraBench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.SetSoftwareTriggerMode(false);
        QCOMPARE(bench.server.requests(), (Requests { "Set TriggerMode 0", "Set TriggerSource 0" }));
        QCOMPARE(log.lines().last(), QString("SetSoftwareTriggerMode SW Trigger mode is OFF"));
    }

    void triggerMode_refused_throws()
    {
        CameraBench bench;
        bench.setUp();
        bench.server.refuse("TriggerMode", "locked");
        QVERIFY(throws([&] { bench.camera.SetSoftwareTriggerMode(true); }));
    }

    void trigger_onCameraThatDoesNotGrab_doesNothing()
    {
        CameraBench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.ExecuteSWTrigger();
        QVERIFY(!BaslerCamera::m_bFrameIsGrabbing);
        QCOMPARE(bench.server.requests(), Requests());
        QVERIFY(log.lines().isEmpty());
    }

    void trigger_setsTheFlagWithoutALogLine()
    {
        CameraBench bench;
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
        CameraBench bench;
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
        CameraBench bench;
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
        CameraBench bench;
        LogCapture log;
        bench.camera.start();
        QVERIFY(log.contains("void BaslerCamera::start() Exception: Start Grabbing failed"));
        QVERIFY(!bench.camera.isRunning());
    }

    void release_stopsAndDeregisters()
    {
        Pylon::CImageEventHandler handler;
        Pylon::CConfigurationEventHandler configuration;
        CameraBench bench;
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
        CameraBench bench;
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
        CameraBench bench;
        LogCapture log;
        bench.camera.close();
        QCOMPARE(log.lines(), QStringList { "void BaslerCamera::close()" });
    }

    void disconnect_givesTheDeviceBack()
    {
        CameraBench bench;
        bench.setUp();
        bench.camera.close();
        LogCapture log;
        bench.camera.disconnect();
        QCOMPARE(log.lines(), (QStringList { "void BaslerCamera::disconnect()", kFirstLine, kSecondLine }));
        QVERIFY(!bench.camera.IsPylonDeviceAttached());
    }

    void disconnect_withoutDevice_onlyLogsItsSignature()
    {
        CameraBench bench;
        LogCapture log;
        bench.camera.disconnect();
        QCOMPARE(log.lines(), QStringList { "void BaslerCamera::disconnect()" });
    }
};

QTEST_GUILESS_MAIN(tst_baslercamera)
#include "tst_baslercamera.moc"
