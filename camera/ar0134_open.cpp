// How the board is found, opened and set up from its configuration file.
#include "camera/ar0134.h"
#include "camera/ar0134_registers.h"

#include <QDebug>
#include <QMutexLocker>
#include <QSettings>
#include <QThread>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr char kIniFile[] = "/root/TAVO_QR9/TAVO_QR9.ini";
constexpr std::size_t kMaxBoards = 16; ///< slots that a scan wants

constexpr int kModeSingleFrame = 1;
constexpr Uint32 kFirmwareTooOld = 65393;

constexpr Uint16 kUsbVendor = 0x52CB;
constexpr Uint16 kSerialAddress = 0x3F0; ///< of the board's user data
constexpr std::size_t kSerialBytes = 16;

/// What an entry of the configuration asks for, in the low 16 bits of its type.
enum EntryKind : uint32_t {
    ENTRY_SENSOR = 1,
    ENTRY_BOARD = 2,
    ENTRY_DELAY = 3,
};
constexpr uint32_t kUsbAny = 0;

uint32_t entryKind(const Config& entry)
{
    return entry.type & 0xFFFF;
}

/// The kind of USB board that an entry is meant for, in the numbers of ArduCamCfg::usbType.
uint32_t entryUsbKind(const Config& entry)
{
    return entry.type >> 16 & 0xFF;
}

/// Operator's output goes to the standard output at once, also into a pipe.
void print(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

std::string serialText(const Uint8* serial)
{
    char text[16] = {};
    std::snprintf(text, sizeof(text), "%c%c%c%c-%c%c%c%c-%c%c%c%c", serial[0], serial[1], serial[2],
        serial[3], serial[4], serial[5], serial[6], serial[7], serial[8], serial[9], serial[10], serial[11]);
    return text;
}

bool mirrorSetting(const QSettings& settings, const char* key)
{
    return settings.value(key, "No").toString() != "No";
}

ArduCamCfg cameraConfig(const CameraParam& param)
{
    ArduCamCfg config {};
    config.u16Vid = kUsbVendor;
    config.u32Width = param.width;
    config.u32Height = param.height;
    config.u8PixelBytes = param.bit_width > 8 ? 2 : 1;
    config.u8PixelBits = param.bit_width;
    config.u32I2cAddr = param.i2c_addr;
    config.emI2cMode = static_cast<i2c_mode>(param.i2c_mode);
    config.emImageFmtMode = static_cast<format_mode>(param.format >> 8);
    config.u32TransLvl = param.trans_lvl;
    return config;
}

} // namespace

int AR0134::is_AR0134Attached()
{
    std::array<ArduCamIndexinfo, kMaxBoards> boards {};
    const Uint32 count = std::min<Uint32>(ArduCam_scan(boards.data()), kMaxBoards);
    std::printf("device num:%d\n", static_cast<int>(count));
    for (Uint32 i = 0; i < count; ++i) {
        const std::string serial = serialText(boards[i].u8SerialNum);
        std::printf("index:%4d\tSerial:%s\n", boards[i].u8UsbIndex, serial.c_str());
    }
    std::printf("Found %d devices.\n", static_cast<int>(count));
    std::fflush(stdout);
    return count > 0 ? 1 : 0;
}

bool AR0134::open(const char* file)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_handle = nullptr;
    }
    // The board is not ours before all of it has worked: until then nobody else sees the handle.
    ArduCamHandle handle = nullptr;
    if (!camera_initFromFile(file, handle)) {
        return false;
    }
    if (ArduCam_setMode(handle, kModeSingleFrame) == kFirmwareTooOld) {
        print("Usb board firmware version not support single mode.\n");
        ArduCam_close(handle);
        return false;
    }
    {
        const QMutexLocker lock(&m_mutex);
        m_handle = handle;
    }
    setPedestal(0);
    return true;
}

bool AR0134::camera_initFromFile(const char* file, ArduCamHandle& handle)
{
    qDebug() << Q_FUNC_INFO;
    const QSettings settings(kIniFile, QSettings::IniFormat);
    const bool horizontal = mirrorSetting(settings, "ArduCAM/Hor. Mirror");
    const bool vertical = mirrorSetting(settings, "ArduCAM/Ver. Mirror");

    CameraConfigs configs {};
    const int parsed = arducam_parse_config(file, &configs);
    if (parsed != 0) {
        print("Cannot find configuration file.\n");
        qDebug() << Q_FUNC_INFO << file << (parsed > 0 ? "bad line" : "not read") << parsed;
        return false;
    }
    m_config = cameraConfig(configs.camera_param);
    m_subFormat = configs.camera_param.format & 0xFF;
    print_cameraConfig();

    const Uint32 code = ArduCam_autoopen(handle, &m_config);
    if (code != USB_CAMERA_NO_ERROR) {
        print("Cannot open camera.rtn_val = " + std::to_string(code) + "\n");
        return false;
    }
    applyConfiguration(handle, configs);
    if (ArduCam_writeSensorReg(handle, ar0134::kRegReadMode, ar0134::mirrorBits(horizontal, vertical))
        != USB_CAMERA_NO_ERROR) {
        report(Q_FUNC_INFO, ERROR_MIRROR_WRITE);
    }
    std::array<Uint8, kSerialBytes> serial {};
    ArduCam_readUserData(handle, kSerialAddress, kSerialBytes, serial.data());
    print("Serial: " + serialText(serial.data()) + "\n");
    return true;
}

void AR0134::applyConfiguration(ArduCamHandle& handle, const CameraConfigs& configs)
{
    for (uint32_t i = 0; i < configs.configs_length; ++i) {
        const Config& entry = configs.configs[i];
        const uint32_t usbKind = entryUsbKind(entry);
        if (usbKind != kUsbAny && usbKind != static_cast<uint32_t>(m_config.usbType)) {
            continue;
        }
        switch (entryKind(entry)) {
        case ENTRY_SENSOR:
            if (ArduCam_writeSensorReg(handle, entry.params[0], entry.params[1]) != USB_CAMERA_NO_ERROR) {
                qCritical() << Q_FUNC_INFO << "Writing a camera registry error" << entry.params[0]
                            << entry.params[1];
            }
            break;
        case ENTRY_BOARD:
            configBoard(handle, entry);
            break;
        case ENTRY_DELAY:
            QThread::usleep(static_cast<unsigned long>(entry.params[0]) * 1000);
            break;
        default:
            break;
        }
    }
}

void AR0134::configBoard(ArduCamHandle& handle, Config config)
{
    constexpr std::size_t kHead = 4; // command, value, index, count
    constexpr std::size_t kMost = std::size(decltype(config.params) {}) - kHead;
    const std::size_t count = std::min<std::size_t>(config.params[3], kMost);
    std::vector<Uint8> bytes(count);
    std::transform(config.params + kHead, config.params + kHead + count, bytes.begin(),
        [](uint32_t param) { return static_cast<Uint8>(param); });
    const Uint32 code = ArduCam_setboardConfig(handle, static_cast<Uint8>(config.params[0]),
        static_cast<Uint16>(config.params[1]), static_cast<Uint16>(config.params[2]),
        static_cast<Uint32>(count), bytes.data());
    if (code != USB_CAMERA_NO_ERROR) {
        qCritical() << Q_FUNC_INFO << "Board command failed" << config.params[0] << code;
    }
}

void AR0134::print_cameraConfig() const
{
    print("camera: " + std::to_string(m_config.u32Width) + " x " + std::to_string(m_config.u32Height)
        + ", bytes " + std::to_string(m_config.u8PixelBytes) + ", bits "
        + std::to_string(m_config.u8PixelBits) + ", format " + std::to_string(m_config.emImageFmtMode)
        + ", I2C mode " + std::to_string(m_config.emI2cMode) + ", I2C address "
        + std::to_string(m_config.u32I2cAddr) + ", transfer level " + std::to_string(m_config.u32TransLvl)
        + "\n");
}
