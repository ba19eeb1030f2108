#include "tests/platform/ArduCamTest.h"

#include <QtTest>

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
