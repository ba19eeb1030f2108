#include "tests/platform/ArduCamTest.h"

#include <arducam_config_parser.h>

#include <QtTest>

#include <algorithm>
#include <cstddef>
#include <iterator>

using Shot = ScriptedBoard::Shot;
using qr9::wire::Error;

// The codes that the calls of the library give back when something fails.
class tst_arducam_codes : public ArduCamTest {
    Q_OBJECT

private slots:
    void everyCode_comesOnDemandFromEveryCall_data()
    {
        QTest::addColumn<uint>("code");
        for (const uint code : { 0xFF01U, 0xFF02U, 0xFF03U, 0xFF04U, 0xFF05U, 0xFF06U, 0xFF0BU, 0xFF0CU,
                 0xFF0DU, 0xFF20U, 0xFF21U, 0xFF22U, 0xFF23U, 0xFF24U, 0xFF25U, 0xFF26U, 0xFF30U, 0xFF31U,
                 0xFF51U, 0xFF61U, 0xFF62U, 0xFF71U }) {
            QTest::addRow("0x%X", code) << code;
        }
    }
    void everyCode_comesOnDemandFromEveryCall()
    {
        QFETCH(uint, code);
        m_board->refuseOpens(1, code);
        QCOMPARE(ArduCam_autoopen(m_handle, &m_config), code);
        open();
        m_board->setModeCode(code);
        m_board->failReads(0x3012, code);
        m_board->failWrites(0x3012, code);
        m_board->script({ { Shot::Refused, code, {} }, { Shot::Broken, code, {} } });
        Uint32 value = 0;
        ArduCamOutData* data = nullptr;
        QCOMPARE(ArduCam_setMode(m_handle, 1), code);
        QCOMPARE(ArduCam_readSensorReg(m_handle, 0x3012, &value), code);
        QCOMPARE(ArduCam_writeSensorReg(m_handle, 0x3012, 1), code);
        QCOMPARE(ArduCam_softTrigger(m_handle), code);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 0U);
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
        QCOMPARE(ArduCam_getSingleFrame(m_handle, data), code);
    }

    void codes_haveTheirNumbers()
    {
        const uint names[] = { USB_CAMERA_NO_ERROR, USB_CAMERA_USB_CREATE_ERROR,
            USB_CAMERA_USB_SET_CONTEXT_ERROR, USB_CAMERA_VR_COMMAND_ERROR, USB_CAMERA_USB_VERSION_ERROR,
            USB_CAMERA_BUFFER_ERROR, USB_CAMERA_NOT_FOUND_DEVICE_ERROR, USB_CAMERA_I2C_BIT_ERROR,
            USB_CAMERA_I2C_NACK_ERROR, USB_CAMERA_I2C_TIMEOUT, USB_CAMERA_USB_TASK_ERROR,
            USB_CAMERA_DATA_OVERFLOW_ERROR, USB_CAMERA_DATA_LACK_ERROR, USB_CAMERA_FIFO_FULL_ERROR,
            USB_CAMERA_DATA_LEN_ERROR, USB_CAMERA_FRAME_INDEX_ERROR, USB_CAMERA_USB_TIMEOUT_ERROR,
            USB_CAMERA_READ_EMPTY_ERROR, USB_CAMERA_DEL_EMPTY_ERROR, USB_CAMERA_SIZE_EXCEED_ERROR,
            USB_USERDATA_ADDR_ERROR, USB_USERDATA_LEN_ERROR, USB_BOARD_FW_VERSION_NOT_SUPPORT_ERROR };
        const uint numbers[]
            = { 0, 0xFF01, 0xFF02, 0xFF03, 0xFF04, 0xFF05, 0xFF06, 0xFF0B, 0xFF0C, 0xFF0D, 0xFF20, 0xFF21,
                  0xFF22, 0xFF23, 0xFF24, 0xFF25, 0xFF26, 0xFF30, 0xFF31, 0xFF51, 0xFF61, 0xFF62, 0xFF71 };
        QCOMPARE(std::size(names), std::size(numbers));
        for (std::size_t i = 0; i < std::size(names); ++i) {
            QCOMPARE(names[i], numbers[i]);
        }
        const int modes[] = { I2C_MODE_8_8, I2C_MODE_8_16, I2C_MODE_16_8, I2C_MODE_16_16, I2C_MODE_16_32 };
        for (std::size_t i = 0; i < std::size(modes); ++i) {
            QCOMPARE(modes[i], int(i));
        }
        const int formats[] = { FORMAT_MODE_RAW, FORMAT_MODE_RGB, FORMAT_MODE_YUV, FORMAT_MODE_JPG,
            FORMAT_MODE_MON, FORMAT_MODE_RAW_D, FORMAT_MODE_MON_D };
        for (std::size_t i = 0; i < std::size(formats); ++i) {
            QCOMPARE(formats[i], int(i));
        }
    }

    void records_haveTheirFieldsInOrder()
    {
        const std::size_t config[] = { offsetof(ArduCamCfg, u32CameraType), offsetof(ArduCamCfg, u16Vid),
            offsetof(ArduCamCfg, u32Width), offsetof(ArduCamCfg, u32Height),
            offsetof(ArduCamCfg, u8PixelBytes), offsetof(ArduCamCfg, u8PixelBits),
            offsetof(ArduCamCfg, u32I2cAddr), offsetof(ArduCamCfg, u32Size), offsetof(ArduCamCfg, usbType),
            offsetof(ArduCamCfg, emI2cMode), offsetof(ArduCamCfg, emImageFmtMode),
            offsetof(ArduCamCfg, u32TransLvl) };
        QVERIFY(std::is_sorted(std::begin(config), std::end(config)));
        const std::size_t index[]
            = { offsetof(ArduCamIndexinfo, u8UsbIndex), offsetof(ArduCamIndexinfo, u8SerialNum) };
        QVERIFY(std::is_sorted(std::begin(index), std::end(index)));
        const std::size_t frame[] = { offsetof(ArduCamOutData, stImagePara),
            offsetof(ArduCamOutData, u64Time), offsetof(ArduCamOutData, pu8ImageData) };
        QVERIFY(std::is_sorted(std::begin(frame), std::end(frame)));
        const std::size_t entry[]
            = { offsetof(Config, type), offsetof(Config, params), offsetof(Config, params_length) };
        QVERIFY(std::is_sorted(std::begin(entry), std::end(entry)));
        const std::size_t camera[] = { offsetof(CameraParam, cfg_mode), offsetof(CameraParam, type),
            offsetof(CameraParam, width), offsetof(CameraParam, height), offsetof(CameraParam, bit_width),
            offsetof(CameraParam, format), offsetof(CameraParam, i2c_mode), offsetof(CameraParam, i2c_addr),
            offsetof(CameraParam, trans_lvl) };
        QVERIFY(std::is_sorted(std::begin(camera), std::end(camera)));
        QCOMPARE(sizeof(CameraParam::bit_width), std::size_t(1));
        QCOMPARE(sizeof(CameraParam::format), std::size_t(2));
        QCOMPARE(sizeof(CameraParam::i2c_mode), std::size_t(1));
        QCOMPARE(sizeof(CameraParam::i2c_addr), std::size_t(2));
        QCOMPARE(sizeof(CameraParam::type), std::size_t(50));
        QCOMPARE(std::size(Config {}.params), std::size_t(16));
        QCOMPARE(sizeof(ArduCamIndexinfo::u8SerialNum), std::size_t(16));
    }

    void errorOfTheWire_hasItsCode_data()
    {
        QTest::addColumn<int>("error");
        QTest::addColumn<uint>("code");
        const auto row = [](const char* name, Error error, uint code) {
            QTest::newRow(name) << static_cast<int>(error) << code;
        };
        row("no such device: not found", Error::NoSuchDevice, 0xFF06);
        row("no such feature: command", Error::NoSuchFeature, 0xFF03);
        row("out of range: size", Error::OutOfRange, 0xFF51);
        row("removed: task", Error::Removed, 0xFF20);
        row("refused: create", Error::Refused, 0xFF01);
        row("bus: no acknowledge", Error::Bus, 0xFF0C);
        row("old firmware", Error::OldFirmware, 65393);
        row("unknown: command", static_cast<Error>(-99), 0xFF03);
    }
    void errorOfTheWire_hasItsCode()
    {
        QFETCH(int, error);
        QFETCH(uint, code);
        open();
        m_board->failAll(static_cast<Error>(error));
        Uint8 byte = 1;
        QCOMPARE(ArduCam_setMode(m_handle, 1), code);
        QCOMPARE(ArduCam_setboardConfig(m_handle, 0x90, 1, 2, 1, &byte), code);
        QCOMPARE(ArduCam_softTrigger(m_handle), code);
        QCOMPARE(ArduCam_writeSensorReg(m_handle, 0x3012, 1), code);
    }

    void brokenTransferWithoutACode_isATimeout()
    {
        open();
        m_board->script({ { Shot::Broken, 0, {} } });
        ArduCamOutData* data = nullptr;
        QCOMPARE(ArduCam_softTrigger(m_handle), 0U);
        QCOMPARE(ArduCam_isFrameReady(m_handle), 1U);
        QCOMPARE(ArduCam_getSingleFrame(m_handle, data), 65318U);
    }
};

QTEST_APPLESS_MAIN(tst_arducam_codes)
#include "tst_arducam_codes.moc"
