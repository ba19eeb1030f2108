#include "tests/platform/ArduCamTest.h"

#include <QTest>

void ArduCamTest::init()
{
    m_board = std::make_unique<ScriptedBoard>();
    m_board->setPicture(
        [](int frame) { return ScriptedBoard::Bytes(kPixels, static_cast<std::uint8_t>(frame)); });
    m_config = {};
    m_config.u32Width = kWidth;
    m_config.u32Height = kHeight;
    m_config.u8PixelBytes = 1;
    m_config.u8PixelBits = 8;
    m_config.emImageFmtMode = FORMAT_MODE_MON;
    m_handle = nullptr;
}

void ArduCamTest::cleanup()
{
    ArduCam_close(m_handle);
    m_board.reset();
}

void ArduCamTest::open()
{
    QCOMPARE(ArduCam_autoopen(m_handle, &m_config), 0U);
}

ArduCamOutData* ArduCamTest::picture()
{
    ArduCamOutData* data = nullptr;
    ArduCam_softTrigger(m_handle);
    ArduCam_isFrameReady(m_handle);
    return ArduCam_getSingleFrame(m_handle, data) == 0 ? data : nullptr;
}
