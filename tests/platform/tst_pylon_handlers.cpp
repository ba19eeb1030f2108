#include <pylon/PylonIncludes.h>
#include <pylon/usb/BaslerUsbInstantCamera.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

using namespace Pylon;

namespace {

constexpr char kDestroyRegistered[] = "--destroy-registered";

struct ImageHandler : CImageEventHandler {
    explicit ImageHandler(bool* destroyed = nullptr)
        : m_destroyed(destroyed)
    {
    }
    ~ImageHandler() override
    {
        if (m_destroyed != nullptr)
            *m_destroyed = true;
    }
    void OnImageEventHandlerRegistered(CInstantCamera&) override { ++registered; }
    void OnImageEventHandlerDeregistered(CInstantCamera&) override { ++deregistered; }

    int registered = 0;
    int deregistered = 0;

private:
    bool* const m_destroyed;
};

} // namespace

/// The stand-in of the pylon library: registration of handlers.
class tst_pylon_handlers : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { PylonInitialize(); }
    void cleanupTestCase() { PylonTerminate(); }

    void enumerators_haveTheirNumbers()
    {
        QCOMPARE(int(GrabStrategy_OneByOne), 0);
        QCOMPARE(int(GrabStrategy_LatestImageOnly), 1);
        QCOMPARE(int(GrabStrategy_LatestImages), 2);
        QCOMPARE(int(GrabStrategy_UpcomingImage), 3);
        QCOMPARE(int(GrabLoop_ProvidedByInstantCamera), 0);
        QCOMPARE(int(GrabLoop_ProvidedByUser), 1);
        QCOMPARE(int(RegistrationMode_Append), 0);
        QCOMPARE(int(RegistrationMode_ReplaceAll), 1);
        QCOMPARE(int(Cleanup_None), 0);
        QCOMPARE(int(Cleanup_Delete), 1);
        using namespace Basler_UsbCameraParams;
        QCOMPARE(int(ExposureAuto_Off), 0);
        QCOMPARE(int(GainAuto_Off), 0);
        QCOMPARE(int(PixelFormat_Mono8), 0);
        QCOMPARE(int(PixelFormat_Mono12), 3);
        QCOMPARE(int(TriggerSelector_FrameStart), 1);
        QCOMPARE(int(TriggerMode_Off), 0);
        QCOMPARE(int(TriggerMode_On), 1);
        QCOMPARE(int(TriggerSource_Software), 0);
        QCOMPARE(int(OverlapMode_On), 0);
        QCOMPARE(int(OverlapMode_Off), 1);
    }

    void registration_isCountedAndTold()
    {
        ImageHandler handler;
        CBaslerUsbInstantCamera camera;
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 0L);
        camera.RegisterImageEventHandler(&handler, RegistrationMode_Append, Cleanup_None);
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 1L);
        QVERIFY(camera.DeregisterImageEventHandler(&handler));
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 0L);
        QVERIFY(!camera.DeregisterImageEventHandler(&handler));
        QCOMPARE(handler.registered, 1);
        QCOMPARE(handler.deregistered, 1);
    }

    void replaceAll_deregistersTheOthers()
    {
        ImageHandler first;
        ImageHandler second;
        CBaslerUsbInstantCamera camera;
        camera.RegisterImageEventHandler(&first, RegistrationMode_Append, Cleanup_None);
        camera.RegisterImageEventHandler(&second, RegistrationMode_ReplaceAll, Cleanup_None);
        QCOMPARE(first.DebugGetEventHandlerRegistrationCount(), 0L);
        QCOMPARE(second.DebugGetEventHandlerRegistrationCount(), 1L);
    }

    void append_keepsTheOthers()
    {
        CConfigurationEventHandler first;
        CConfigurationEventHandler second;
        CBaslerUsbInstantCamera camera;
        camera.RegisterConfiguration(&first, RegistrationMode_Append, Cleanup_None);
        camera.RegisterConfiguration(&second, RegistrationMode_Append, Cleanup_None);
        QCOMPARE(first.DebugGetEventHandlerRegistrationCount(), 1L);
        QCOMPARE(second.DebugGetEventHandlerRegistrationCount(), 1L);
    }

    void cleanupDelete_destroysTheHandler()
    {
        bool destroyed = false;
        {
            CBaslerUsbInstantCamera camera;
            camera.RegisterImageEventHandler(
                new ImageHandler(&destroyed), RegistrationMode_Append, Cleanup_Delete);
            QVERIFY(!destroyed);
        }
        QVERIFY(destroyed);
    }

    void cameraThatGoes_deregistersItsHandlers()
    {
        ImageHandler handler;
        {
            CBaslerUsbInstantCamera camera;
            camera.RegisterImageEventHandler(&handler, RegistrationMode_Append, Cleanup_None);
        }
        QCOMPARE(handler.DebugGetEventHandlerRegistrationCount(), 0L);
    }

    void nullHandler_isRefused()
    {
        CBaslerUsbInstantCamera camera;
        bool thrown = false;
        try {
            camera.RegisterConfiguration(nullptr, RegistrationMode_Append, Cleanup_None);
        } catch (const GenICam::GenericException&) {
            thrown = true;
        }
        QVERIFY(thrown);
    }

    void handlerDestroyedWhileRegistered_endsTheProgram()
    {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), { kDestroyRegistered });
        QVERIFY(program.waitForFinished(30000));
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QVERIFY(program.readAllStandardError().contains(
            "Error: The event handler must not be destroyed while it is registered."));
    }
};

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().contains(kDestroyRegistered)) {
        PylonInitialize();
        CBaslerUsbInstantCamera camera;
        ImageHandler handler;
        camera.RegisterImageEventHandler(&handler, RegistrationMode_Append, Cleanup_None);
        return 0; // the handler goes first
    }
    tst_pylon_handlers test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_pylon_handlers.moc"
