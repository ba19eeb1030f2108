#include "camera/ar0134.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/camera/ArduCamCalls.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

Config entry(uint32_t kind, std::initializer_list<uint32_t> params)
{
    Config config {};
    config.type = REGISTER_SECTION << 24 | kind;
    std::copy(params.begin(), params.end(), config.params);
    config.params_length = static_cast<uint8_t>(params.size());
    return config;
}

} // namespace

// The calls of the library that the driver makes: which, in which order, with which numbers.
class tst_ar0134_calls : public QObject {
    Q_OBJECT

private slots:
    void init() { arduCam() = {}; }

    void open_readsTheSerialAndThenSetsTheMode()
    {
        arduCam().configs = { entry(REGISTER_WRITE, { 0x3100, 7 }) };
        StandardOutput out;
        const AR0134 camera(config_file_name);
        QCOMPARE(arduCam().taken(),
            (QStringList { "parse ./AR0134_Merel.cfg", "autoopen", "writeSensorReg 0x3100 7",
                "writeSensorReg 0x3040 0", "readUserData 0x3F0 16", "setMode 1", "writeSensorReg 0x301E 0",
                "readSensorReg 0x30B0", "writeSensorReg 0x30B0 0", "writeSensorReg 0x305E 32",
                "writeSensorReg 0x3012 815" }));
        QVERIFY(out.text().contains("Serial: ABCD-EFGH-IJKL\n"));
    }

    void entryOfAnotherKind_isPassedOver()
    {
        arduCam().configs
            = { entry(REGISTER_WRITE, { 0x3100, 7 }), entry(4, { 0x3102, 8 }), entry(0, { 0x3104, 9 }),
                  entry(0x101, { 0x3106, 10 }), entry(BOARD_COMMAND, { 0x90, 0x4600, 2, 2, 0x85, 0x107 }),
                  entry(REGISTER_WRITE, { 0x3108, 11 }) };
        const AR0134 camera(config_file_name);
        QCOMPARE(arduCam().taken().mid(2, 4),
            (QStringList { "writeSensorReg 0x3100 7", "setboardConfig 144 17920 2 2: 133 7",
                "writeSensorReg 0x3108 11", "writeSensorReg 0x3040 0" }));
    }

    void handleOfAFailedOpen_isNeverUsed()
    {
        arduCam().openCode = USB_CAMERA_BUFFER_ERROR;
        {
            AR0134 camera(config_file_name);
            QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
            camera.slot_setGain(3.0);
            camera.slot_executeSoftwareTrigger();
            camera.setReverse(true, true);
            camera.closeCamera();
        }
        QCOMPARE(arduCam().taken(), (QStringList { "parse ./AR0134_Merel.cfg", "autoopen" }));
    }

    void trigger_asksForTheFrameOnce()
    {
        AR0134 camera(config_file_name);
        QSignalSpy ready(&camera, &AR0134::sig_imgReady);
        arduCam().taken();
        camera.slot_executeSoftwareTrigger();
        QCOMPARE(arduCam().taken(),
            (QStringList { "softTrigger", "isFrameReady", "availableImage", "getSingleFrame 3000" }));
        QCOMPARE(ready.count(), 1);
    }

    void numberOfFramesWaiting_decidesNothing()
    {
        AR0134 camera(config_file_name);
        QSignalSpy ready(&camera, &AR0134::sig_imgReady);
        arduCam().availableImages = 0;
        camera.slot_executeSoftwareTrigger();
        QCOMPARE(ready.count(), 1);
    }

    void failedTrigger_asksNothingMore()
    {
        AR0134 camera(config_file_name);
        arduCam().triggerCode = USB_CAMERA_USB_TASK_ERROR;
        arduCam().taken();
        camera.slot_executeSoftwareTrigger();
        QCOMPARE(arduCam().taken(), QStringList { "softTrigger" });
    }

    void frameThatIsNotReady_isAskedForOnceAndNotFetched_data()
    {
        QTest::addColumn<uint>("answer");
        QTest::newRow("not ready") << 0U;
        QTest::newRow("more than ready") << 2U;
        QTest::newRow("an error") << 0xFF20U;
    }
    void frameThatIsNotReady_isAskedForOnceAndNotFetched()
    {
        QFETCH(uint, answer);
        AR0134 camera(config_file_name);
        const QSignalSpy errors(&camera, &AR0134::signal_cameraError);
        arduCam().frameReady = answer;
        arduCam().taken();
        QTest::ignoreMessage(
            QtCriticalMsg, "void AR0134::slot_executeSoftwareTrigger() Frame is not ready error");
        camera.slot_executeSoftwareTrigger();
        QCOMPARE(arduCam().taken(), (QStringList { "softTrigger", "isFrameReady" }));
        QCOMPARE(errors.count(), 1);
        QCOMPARE(errors.first().first().value<AR0134::cameraError>(), AR0134::ERROR_FRAME_NOT_READY);
    }

    void frameThatCannotBeFetched_isFetchedOnce()
    {
        AR0134 camera(config_file_name);
        const QSignalSpy ready(&camera, &AR0134::sig_imgReady);
        arduCam().frameCode = USB_CAMERA_USB_TIMEOUT_ERROR;
        arduCam().taken();
        camera.slot_executeSoftwareTrigger();
        QCOMPARE(arduCam().taken(),
            (QStringList { "softTrigger", "isFrameReady", "availableImage", "getSingleFrame 3000" }));
        QVERIFY(ready.isEmpty());
    }

    void close_isOneCall()
    {
        AR0134 camera(config_file_name);
        arduCam().taken();
        camera.closeCamera();
        camera.closeCamera();
        QCOMPARE(arduCam().taken(), QStringList { "close" });
    }

    void refusedMode_closesTheBoard()
    {
        arduCam().modeCode = USB_BOARD_FW_VERSION_NOT_SUPPORT_ERROR;
        const AR0134 camera(config_file_name);
        QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
        const QStringList calls = arduCam().taken();
        QCOMPARE(calls.mid(calls.indexOf("setMode 1")), (QStringList { "setMode 1", "close" }));
    }
};

QTEST_GUILESS_MAIN(tst_ar0134_calls)
#include "tst_ar0134_calls.moc"
