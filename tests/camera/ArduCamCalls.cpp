#include "tests/camera/ArduCamCalls.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// Stands in the caller's handle, after a failed open too.
int handleOfTheLibrary = 0;

std::array<Uint8, std::size_t(1280) * 964> pixels {};
ArduCamOutData frame {};

QString hex(Uint32 number)
{
    return "0x" + QString::number(number, 16).toUpper();
}

Uint32 record(const QString& call, Uint32 result = USB_CAMERA_NO_ERROR)
{
    arduCam().calls << call;
    return result;
}

} // namespace

QStringList ArduCamCalls::taken()
{
    return std::exchange(calls, {});
}

ArduCamCalls& arduCam()
{
    static ArduCamCalls instance;
    return instance;
}

extern "C" {

int __wrap_arducam_parse_config(const char* file, CameraConfigs* configs)
{
    arduCam().calls << QString("parse ") + file;
    *configs = {};
    configs->camera_param.width = 1280;
    configs->camera_param.height = 964;
    configs->camera_param.bit_width = 8;
    configs->camera_param.format = FORMAT_MODE_MON << 8;
    configs->configs = arduCam().configs.data();
    configs->configs_length = static_cast<uint32_t>(arduCam().configs.size());
    return 0;
}

Uint32 __wrap_ArduCam_autoopen(ArduCamHandle& handle, ArduCamCfg* config)
{
    handle = &handleOfTheLibrary;
    config->usbType = USB_KIND_DEV3_INF3;
    frame.stImagePara = *config;
    frame.stImagePara.u32Size = static_cast<Uint32>(pixels.size());
    frame.pu8ImageData = pixels.data();
    return record("autoopen", arduCam().openCode);
}

Uint32 __wrap_ArduCam_close(ArduCamHandle)
{
    return record("close");
}

Uint32 __wrap_ArduCam_setMode(ArduCamHandle, int mode)
{
    return record(QString("setMode %1").arg(mode), arduCam().modeCode);
}

Uint32 __wrap_ArduCam_softTrigger(ArduCamHandle)
{
    return record("softTrigger", arduCam().triggerCode);
}

Uint32 __wrap_ArduCam_isFrameReady(ArduCamHandle)
{
    return record("isFrameReady", arduCam().frameReady);
}

Uint32 __wrap_ArduCam_availableImage(ArduCamHandle)
{
    return record("availableImage", arduCam().availableImages);
}

Uint32 __wrap_ArduCam_getSingleFrame(ArduCamHandle, ArduCamOutData*& data, int timeout)
{
    data = &frame;
    return record(QString("getSingleFrame %1").arg(timeout), arduCam().frameCode);
}

Uint32 __wrap_ArduCam_readSensorReg(ArduCamHandle, Uint32 address, Uint32* value)
{
    *value = 0;
    return record("readSensorReg " + hex(address));
}

Uint32 __wrap_ArduCam_writeSensorReg(ArduCamHandle, Uint32 address, Uint32 value)
{
    return record("writeSensorReg " + hex(address) + QString(" %1").arg(value));
}

Uint32 __wrap_ArduCam_readUserData(ArduCamHandle, Uint16 address, Uint8 length, Uint8* data)
{
    std::fill_n(data, length, Uint8('#'));
    std::copy_n("ABCDEFGHIJKL", 12, data);
    return record("readUserData " + hex(address) + QString(" %1").arg(length));
}

Uint32 __wrap_ArduCam_setboardConfig(
    ArduCamHandle, Uint8 command, Uint16 value, Uint16 index, Uint32 count, Uint8* bytes)
{
    QString call = QString("setboardConfig %1 %2 %3 %4:").arg(command).arg(value).arg(index).arg(count);
    std::for_each(bytes, bytes + count, [&call](Uint8 byte) { call += QString(" %1").arg(byte); });
    return record(call);
}

} // extern "C"
