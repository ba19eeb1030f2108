#include "tests/platform/ScriptedCamera.h"
#include "tests/platform/failure_text.h"

#include <pylon/PylonIncludes.h>
#include <pylon/usb/BaslerUsbInstantCamera.h>

#include <QElapsedTimer>
#include <QTest>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

/// An open camera on the scripted one.
struct OpenCamera : Pylon::CBaslerUsbInstantCamera {
    OpenCamera()
    {
        Attach(Pylon::CTlFactory::GetInstance().CreateFirstDevice(), Pylon::Cleanup_Delete);
        Open();
    }
};

int devicesOnBus()
{
    Pylon::CDeviceInfo info;
    info.SetDeviceClass("BaslerUsb");
    Pylon::DeviceInfoList filter;
    filter.push_back(info);
    Pylon::DeviceInfoList list;
    return Pylon::CTlFactory::GetInstance().EnumerateDevices(list, filter, false);
}

} // namespace

/// The stand-in of the pylon library: its life, the devices on the bus, opening, nodes.
class tst_pylon_library : public QObject {
    Q_OBJECT

private slots:
    void init() { Pylon::PylonInitialize(); }
    void cleanup() { Pylon::PylonTerminate(true); }

    void useBeforeInitialize_throws()
    {
        Pylon::PylonTerminate();
        const QString ofFactory = failureOf([] { Pylon::CTlFactory::GetInstance(); });
        const QString ofCamera = failureOf([] { Pylon::CBaslerUsbInstantCamera camera; });
        Pylon::PylonInitialize();
        QVERIFY(!ofFactory.isEmpty());
        QVERIFY(!ofCamera.isEmpty());
    }

    void initialize_isCounted()
    {
        Pylon::PylonInitialize();
        Pylon::PylonTerminate();
        QCOMPARE(failureOf([] { Pylon::CTlFactory::GetInstance(); }), QString());
    }

    void exceptions_areNoStandardOnes()
    {
        QVERIFY((!std::is_base_of_v<std::exception, GenICam::GenericException>));
        QVERIFY((std::is_same_v<GenICam::GenericException, GenICam_3_0_Basler_pylon_v5_0::GenericException>));
    }

    void noServer_meansNoDevices()
    {
        qputenv("QR9_CAMERA_SOCKET", "/nonexistent/camera.sock");
        const int found = devicesOnBus();
        qunsetenv("QR9_CAMERA_SOCKET");
        QCOMPARE(found, 0);
    }

    void silentServer_meansNoDevicesAndNoHang()
    {
        ScriptedCamera server;
        server.fallSilent();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(devicesOnBus(), 0);
        QVERIFY(timer.elapsed() < 20000);
    }

    void enumerate_clearsTheListByDefault()
    {
        ScriptedCamera server;
        server.setCameras(2);
        Pylon::CTlFactory& factory = Pylon::CTlFactory::GetInstance();
        Pylon::DeviceInfoList list;
        QCOMPARE(factory.EnumerateDevices(list, Pylon::DeviceInfoList()), 2);
        QCOMPARE(factory.EnumerateDevices(list, Pylon::DeviceInfoList()), 2);
        QCOMPARE(list.size(), size_t(2));
        QCOMPARE(factory.EnumerateDevices(list, Pylon::DeviceInfoList(), true), 2);
        QCOMPARE(list.size(), size_t(4));
        QCOMPARE(list[0].GetModelName().c_str(), "daA1280-54um");
        QCOMPARE(list[1].GetSerialNumber().c_str(), "22001");
    }

    void enumerate_keepsToTheFilter()
    {
        ScriptedCamera server;
        Pylon::CDeviceInfo other;
        other.SetDeviceClass("BaslerGigE");
        Pylon::DeviceInfoList filter;
        filter.push_back(other);
        Pylon::DeviceInfoList list;
        QCOMPARE(Pylon::CTlFactory::GetInstance().EnumerateDevices(list, filter), 0);
        QVERIFY(!failureOf([&] { Pylon::CTlFactory::GetInstance().CreateFirstDevice(other); }).isEmpty());
    }

    void device_belongsToTheCameraFromAttachToDetach()
    {
        ScriptedCamera server;
        Pylon::CBaslerUsbInstantCamera camera;
        QVERIFY(!camera.IsPylonDeviceAttached());
        camera.Attach(Pylon::CTlFactory::GetInstance().CreateFirstDevice(), Pylon::Cleanup_Delete);
        QVERIFY(camera.IsPylonDeviceAttached());
        QVERIFY(!camera.IsOpen());
        Pylon::IPylonDevice* const device = camera.DetachDevice();
        QVERIFY(device != nullptr);
        QVERIFY(!camera.IsPylonDeviceAttached());
        QVERIFY(camera.DetachDevice() == nullptr);
        Pylon::CTlFactory::GetInstance().DestroyDevice(device);
    }

    void open_withoutDevice_throws()
    {
        Pylon::CBaslerUsbInstantCamera camera;
        QVERIFY(!failureOf([&] { camera.Open(); }).isEmpty());
    }

    void open_refused_throwsAndStaysClosed()
    {
        ScriptedCamera server;
        server.refuseOpens(true);
        Pylon::CBaslerUsbInstantCamera camera;
        camera.Attach(Pylon::CTlFactory::GetInstance().CreateFirstDevice(), Pylon::Cleanup_Delete);
        QVERIFY(failureOf([&] { camera.Open(); }).contains("controlled by another application"));
        QVERIFY(!camera.IsOpen());
        QVERIFY(!camera.IsCameraDeviceRemoved());
        QVERIFY(!failureOf([&] { camera.GetNodeMap(); }).isEmpty());
        server.refuseOpens(false);
        camera.Open();
        QVERIFY(camera.IsOpen());
    }

    void nodes_haveTheCamerasValuesAndLimits()
    {
        ScriptedCamera server;
        OpenCamera camera;
        const GenApi::CFloatPtr exposure = camera.GetNodeMap().GetNode("ExposureTime");
        QCOMPARE(exposure->GetMin(), 20.0);
        QCOMPARE(exposure->GetMax(), 1000000.0);
        QCOMPARE(exposure->GetValue(), 10000.0);
        exposure->SetValue(1234.5, true);
        QCOMPARE(server.feature("ExposureTime"), 1234.5);
        QCOMPARE(camera.ExposureTime.GetValue(), 1234.5);
        const GenApi::CIntegerPtr width = camera.GetNodeMap().GetNode("Width");
        QCOMPARE(width->GetMin(), std::int64_t(16));
        QCOMPARE(width->GetMax(), std::int64_t(1280));
        const GenApi::CStringPtr model = camera.GetNodeMap().GetNode("DeviceModelName");
        QCOMPARE(model->GetValue().c_str(), "daA1280-54um");
        camera.ReverseX.SetValue(true, true);
        QCOMPARE(server.feature("ReverseX"), 1.0);
    }

    void node_valueOutOfRange_throwsAndIsNotSent_data()
    {
        QTest::addColumn<double>("value");
        QTest::newRow("above") << 1000000.5;
        QTest::newRow("below") << 19.9;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    }
    void node_valueOutOfRange_throwsAndIsNotSent()
    {
        QFETCH(double, value);
        ScriptedCamera server;
        OpenCamera camera;
        QVERIFY(failureOf([&] { camera.ExposureTime.SetValue(value, true); }).contains("ExposureTime"));
        QCOMPARE(server.feature("ExposureTime"), 10000.0);
    }

    void node_missing_throwsWhenItIsUsed()
    {
        ScriptedCamera server;
        server.removeFeature("Gain");
        OpenCamera camera;
        QVERIFY(camera.GetNodeMap().GetNode("Gain") == nullptr);
        const GenApi::CFloatPtr gain = camera.GetNodeMap().GetNode("Gain");
        QVERIFY(!gain.IsValid());
        QVERIFY(!failureOf([&] { gain->GetMin(); }).isEmpty());
        QVERIFY(!failureOf([&] { camera.Gain.GetValue(); }).isEmpty());
        QVERIFY(!failureOf([&] { camera.CenterX.SetValue(true); }).isEmpty());
    }

    void node_ofAnotherType_isNull()
    {
        ScriptedCamera server;
        OpenCamera camera;
        const GenApi::CFloatPtr width = camera.GetNodeMap().GetNode("Width");
        QVERIFY(!width.IsValid());
    }

    void enumeration_entryThatTheCameraLacks_throws()
    {
        ScriptedCamera server;
        server.setFeature("OverlapMode", 0.0, 0.0, 0.0);
        OpenCamera camera;
        QVERIFY(!failureOf([&] {
            camera.OverlapMode.SetValue(Basler_UsbCameraParams::OverlapMode_Off);
        }).isEmpty());
    }

    void node_refusedByTheCamera_throwsItsText()
    {
        ScriptedCamera server;
        server.refuse("Gamma", "not writable");
        OpenCamera camera;
        QVERIFY(failureOf([&] { camera.Gamma.SetValue(1.0); }).contains("not writable"));
    }

    void closedCamera_nodesThrow()
    {
        ScriptedCamera server;
        OpenCamera camera;
        camera.Close();
        QVERIFY(!camera.IsOpen());
        QVERIFY(!failureOf([&] { camera.Gain.GetValue(); }).isEmpty());
        QVERIFY(!failureOf([&] { camera.GetNodeMap(); }).isEmpty());
    }

    void softwareTriggerConfiguration_setsTheFrameStartTrigger()
    {
        ScriptedCamera server;
        Pylon::CSoftwareTriggerConfiguration configuration;
        {
            Pylon::CBaslerUsbInstantCamera camera;
            camera.RegisterConfiguration(&configuration, Pylon::RegistrationMode_Append, Pylon::Cleanup_None);
            camera.Attach(Pylon::CTlFactory::GetInstance().CreateFirstDevice());
            camera.Open();
        }
        const std::vector<std::string> expected { "Open 0", "Set TriggerSelector 0", "Set TriggerMode 0",
            "Set TriggerSelector 1", "Set TriggerMode 1", "Set TriggerSource 0", "Close" };
        QCOMPARE(server.requests(), expected);
    }

    void pulledPlug_cameraIsRemovedButOpen()
    {
        ScriptedCamera server;
        OpenCamera camera;
        QVERIFY(!camera.IsCameraDeviceRemoved());
        server.unplug();
        QTRY_VERIFY(camera.IsCameraDeviceRemoved());
        QVERIFY(camera.IsOpen());
        QVERIFY(failureOf([&] { camera.Gain.GetValue(); }).contains("removed"));
        camera.Close();
        QVERIFY(!camera.IsOpen());
    }

    void serverGone_cameraIsRemovedButOpen()
    {
        ScriptedCamera server;
        OpenCamera camera;
        server.hangUp();
        QTRY_VERIFY(camera.IsCameraDeviceRemoved());
        QVERIFY(camera.IsOpen());
        QVERIFY(!failureOf([&] { camera.Gain.SetValue(1.0); }).isEmpty());
    }

    void silentServer_requestThrowsInTheEnd()
    {
        ScriptedCamera server;
        OpenCamera camera;
        server.fallSilent();
        QVERIFY(failureOf([&] { camera.Gain.GetValue(); }).contains("answer"));
        server.hangUp(); // so that nobody waits for the goodbye
        QTRY_VERIFY(camera.IsCameraDeviceRemoved());
    }
};

QTEST_GUILESS_MAIN(tst_pylon_library)
#include "tst_pylon_library.moc"
