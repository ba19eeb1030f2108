#include "tests/platform/ArduCamTest.h"

#include <QElapsedTimer>
#include <QtTest>

#include <array>

using qr9::wire::Kind;
using Bytes = ScriptedBoard::Bytes;
using Shot = ScriptedBoard::Shot;

// The calls of the library on a board that works, is late, loses a picture, or goes.
class tst_arducam_library : public ArduCamTest {
    Q_OBJECT

private slots:
    void scan_givesNumberAndSerials()
    {
        m_board->setBoards(2);
        std::array<ArduCamIndexinfo, 16> found {};
        QCOMPARE(ArduCam_scan(found.data()), 2U);
        QCOMPARE(int(found[0].u8UsbIndex), 0);
        QCOMPARE(int(found[1].u8UsbIndex), 1);
        QCOMPARE(
            QByteArray(reinterpret_cast<const char*>(found[1].u8SerialNum), 12), QByteArray("QR9A00000012"));
    }

    void scanWithMoreThan16Boards_fillsNoMoreThanTheSlots()
    {
        m_board->setBoards(20);
        std::array<ArduCamIndexinfo, 16> found {};
        QCOMPARE(ArduCam_scan(found.data()), 16U);
    }

    void withoutServer_thereIsNoBoard()
    {
        m_board.reset();
        std::array<ArduCamIndexinfo, 16> found {};
        QCOMPARE(ArduCam_scan(found.data()), 0U);
        QCOMPARE(ArduCam_autoopen(m_handle, &m_config), 0xFF06U);
    }

    void openWithoutBoard_isNotFound()
    {
        m_board->setBoards(0);
        QCOMPARE(ArduCam_autoopen(m_handle, &m_config), 0xFF06U);
    }

    void failedOpen_leavesAHandleThatIsNoBoard()
    {
        m_board->refuseOpens(1, 0xFF04);
        QCOMPARE(ArduCam_autoopen(m_handle, &m_config), 0xFF04U);
        QVERIFY(m_handle != nullptr);
        QCOMPARE(ArduCam_softTrigger(m_handle), 0xFF01U);
        QCOMPARE(m_board->count(Kind::Trigger), 0);
    }

    void openWithoutSize_isRefused()
    {
        m_config.u32Height = 0;
        QCOMPARE(ArduCam_autoopen(m_handle, &m_config), 0xFF51U);
    }

    void open_tellsTheKindOfBoard()
    {
        m_board->setUsbType(2);
        open();
        QCOMPARE(int(m_config.usbType), 2);
    }

    void registers_areWrittenAndReadBack()
    {
        open();
        QCOMPARE(ArduCam_writeSensorReg(m_handle, 0x3012, 815), 0U);
        QCOMPARE(int(m_board->reg(0x3012)), 815);
        m_board->setRegister(0x3012, 816);
        Uint32 value = 0;
        QCOMPARE(ArduCam_readSensorReg(m_handle, 0x3012, &value), 0U);
        QCOMPARE(value, 816U);
    }

    void failedRegister_givesTheCodeAndLeavesTheValue()
    {
        open();
        m_board->failReads(0x3012, 0xFF0B);
        m_board->failWrites(0x3012, 0xFF0D);
        Uint32 value = 77;
        QCOMPARE(ArduCam_readSensorReg(m_handle, 0x3012, &value), 0xFF0BU);
        QCOMPARE(value, 77U);
        QCOMPARE(ArduCam_writeSensorReg(m_handle, 0x3012, 1), 0xFF0DU);
    }

    void boardCommand_travelsWithItsBytes()
    {
        open();
        m_board->forgetRequests();
        Bytes bytes { 0x85, 7 };
        QCOMPARE(ArduCam_setboardConfig(m_handle, 0x90, 0x4600, 0x0102, 2, bytes.data()), 0U);
        const ScriptedBoard::Request expected { Kind::SetFeature, 0x90, 0x46000102, "BoardConfig", bytes };
        QVERIFY(m_board->requests() == std::vector<ScriptedBoard::Request> { expected });
    }

    void userData_endsWithTheSerial()
    {
        open();
        std::array<Uint8, 16> data {};
        QCOMPARE(ArduCam_readUserData(m_handle, 0x3F0, 16, data.data()), 0U);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(data.data()), 12), QByteArray("QR9A00000012"));
        QCOMPARE(ArduCam_readUserData(m_handle, 0x3F1, 16, data.data()), 0xFF61U);
        QCOMPARE(ArduCam_readUserData(m_handle, 0, 33, data.data()), 0xFF62U);
    }

    void trigger_bringsOnePicture()
    {
        open();
        QCOMPARE(ArduCam_availableImage(m_handle), 0U);
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
        QCOMPARE(ArduCam_availableImage(m_handle), 1U);
        ArduCamOutData* data = nullptr;
        QCOMPARE(ArduCam_getSingleFrame(m_handle, data), 0U);
        QCOMPARE(data->stImagePara.u32Width, kWidth);
        QCOMPARE(data->stImagePara.u32Height, kHeight);
        QCOMPARE(data->stImagePara.u32Size, Uint32(kPixels));
        QVERIFY(Bytes(data->pu8ImageData, data->pu8ImageData + kPixels) == Bytes(kPixels, 1));
        QCOMPARE(ArduCam_availableImage(m_handle), 0U);
    }

    void nextPicture_comesInTheSameBuffer()
    {
        open();
        ArduCamOutData* first = picture();
        const Uint8* buffer = first->pu8ImageData;
        ArduCamOutData* second = picture();
        QCOMPARE(second->pu8ImageData, buffer);
        QCOMPARE(int(buffer[0]), 2);
    }

    void lateFrame_isWaitedFor()
    {
        open();
        Shot late;
        late.delay = std::chrono::milliseconds(150);
        m_board->script({ late });
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
        QVERIFY(timer.elapsed() >= 140);
    }

    void lostFrame_isNeverReady()
    {
        open();
        m_board->script({ { Shot::Lost, 0, {} } });
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 0U);
    }

    void withoutTrigger_nothingIsReady()
    {
        open();
        QCOMPARE(ArduCam_isFrameReady(m_handle), 0U);
        ArduCamOutData* data = nullptr;
        QCOMPARE(ArduCam_getSingleFrame(m_handle, data, 10), 65318U);
    }

    void brokenTransfer_isReadyAndCannotBeFetched()
    {
        open();
        m_board->script({ { Shot::Broken, 65316, {} }, { Shot::Broken, 0xFF23, {} } });
        for (const Uint32 code : { 65316U, 0xFF23U }) {
            QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
            QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
            ArduCamOutData* data = nullptr;
            QCOMPARE(ArduCam_getSingleFrame(m_handle, data), code);
        }
    }

    void pictureOfAnotherLength_isALengthError()
    {
        open();
        m_board->setPicture([](int) { return Bytes(kPixels - 1, 9); });
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
        ArduCamOutData* data = nullptr;
        QCOMPARE(ArduCam_getSingleFrame(m_handle, data), 65316U);
    }

    void compressedPicture_mayHaveAnyLength()
    {
        m_config.emImageFmtMode = FORMAT_MODE_JPG;
        open();
        m_board->setPicture([](int) { return Bytes(5, 9); });
        QCOMPARE(picture()->stImagePara.u32Size, 5U);
    }

    void unfetchedPicture_makesRoomForTheNext()
    {
        open();
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
        QCOMPARE(int(picture()->pu8ImageData[0]), 2);
    }

    void closedHandle_reachesNoBoard()
    {
        open();
        QCOMPARE(ArduCam_close(m_handle), 0U);
        QCOMPARE(m_board->count(Kind::Close), 1);
        QCOMPARE(ArduCam_softTrigger(m_handle), 0xFF01U);
        QCOMPARE(ArduCam_close(m_handle), 0xFF01U);
        QCOMPARE(m_board->count(Kind::Trigger), 0);
    }

    void pulledPlug_failsEveryCall()
    {
        open();
        m_board->unplug();
        Uint32 value = 0;
        QCOMPARE(ArduCam_readSensorReg(m_handle, 0x3012, &value), 0xFF20U);
        QCOMPARE(ArduCam_softTrigger(m_handle), 0xFF20U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 0U);
    }

    void serverGone_endsTheWaitAtOnce()
    {
        open();
        m_board->script({ { Shot::Lost, 0, {} } });
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        m_board.reset();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(ArduCam_isFrameReady(m_handle), 0U);
        QVERIFY(timer.elapsed() < 2000);
        ArduCamOutData* data = nullptr;
        QCOMPARE(ArduCam_getSingleFrame(m_handle, data), 0xFF20U);
    }
};

QTEST_APPLESS_MAIN(tst_arducam_library)
#include "tst_arducam_library.moc"
