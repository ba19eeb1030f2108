#include "simulator/camera/ArduCamModel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace qr9::sim {

namespace {

constexpr int kCoarseExposure = 0x3012; ///< in lines
constexpr int kReset = 0x301A;
constexpr int kPedestal = 0x301E; ///< of twelve bits
constexpr int kReadMode = 0x3040;
constexpr int kDigitalGain = 0x305E; ///< in 1/32
constexpr int kAnalogueGain = 0x30B0; ///< stage in bits 4 and 5

constexpr int kFirstRegister = 0x3000;
constexpr int kLastRegister = 0x3FFF;
constexpr int kResetBit = 1 << 0; ///< of kReset: all registers take their values of the power-on
constexpr int kRestartBit = 1 << 1; ///< of kReset: acts at once and reads back 0
constexpr int kMirrorBit = 1 << 14; ///< of kReadMode
constexpr int kFlipBit = 1 << 15; ///< of kReadMode
constexpr double kLineUs = 24.539;
constexpr double kSmallestGain = 1e-6; ///< stands for a digital gain of 0, which has no dB

struct PowerOn {
    int address;
    int value;
};
constexpr std::array kPowerOn {
    PowerOn { kCoarseExposure, 0x0010 },
    PowerOn { kReset, 0x10D8 },
    PowerOn { kPedestal, 0x00A8 },
    PowerOn { kDigitalGain, 0x0020 },
    PowerOn { kAnalogueGain, 0x1300 },
};

constexpr char kUsbType[] = "UsbType";
constexpr double kUsb3 = 3.0;
constexpr char kMode[] = "Mode";
constexpr char kBoardConfig[] = "BoardConfig";

bool isRegister(int address)
{
    return address >= kFirstRegister && address <= kLastRegister;
}

} // namespace

ArduCamModel::ArduCamModel()
{
    reset();
}

void ArduCamModel::reset()
{
    m_registers.clear();
    for (const PowerOn& row : kPowerOn) {
        m_registers[row.address] = row.value;
    }
}

std::vector<wire::Feature> ArduCamModel::features() const
{
    wire::Feature usbType;
    std::strncpy(usbType.name, kUsbType, sizeof(usbType.name) - 1);
    usbType.value = usbType.min = usbType.max = kUsb3;
    return { usbType };
}

CameraAnswer ArduCamModel::setFeature(const QString& name, double value)
{
    if (name == QLatin1String(kMode)) {
        if (value != 1.0 && value != 2.0) {
            return { wire::Error::OutOfRange, 0.0, "The mode is 1 or 2." };
        }
        m_mode = static_cast<int>(value);
        return {};
    }
    // The board's own set-up has no effect that a picture could show.
    return name == QLatin1String(kBoardConfig)
        ? CameraAnswer {}
        : CameraAnswer { wire::Error::NoSuchFeature, 0.0, "No such setting." };
}

CameraAnswer ArduCamModel::feature(const QString& name) const
{
    if (name == QLatin1String(kMode)) {
        return { wire::Error::None, static_cast<double>(m_mode), {} };
    }
    return name == QLatin1String(kUsbType)
        ? CameraAnswer { wire::Error::None, kUsb3, {} }
        : CameraAnswer { wire::Error::NoSuchFeature, 0.0, "No such setting." };
}

CameraAnswer ArduCamModel::writeRegister(int address, int value)
{
    if (!isRegister(address)) {
        return { wire::Error::Bus, 0.0, "No acknowledge." };
    }
    m_registers[address] = value & 0xFFFF;
    if (address == kReset) {
        m_registers[kReset] &= ~kRestartBit;
        if ((value & kResetBit) != 0) {
            reset();
        }
    }
    return {};
}

CameraAnswer ArduCamModel::readRegister(int address) const
{
    if (!isRegister(address)) {
        return { wire::Error::Bus, 0.0, "No acknowledge." };
    }
    return { wire::Error::None, static_cast<double>(value(address)), {} };
}

int ArduCamModel::value(int address) const
{
    const auto found = m_registers.find(address);
    return found == m_registers.end() ? 0 : found->second;
}

CaptureSettings ArduCamModel::settings() const
{
    const int stage = (value(kAnalogueGain) >> 4) & 3;
    const double gain = (1 << stage) * ((value(kDigitalGain) & 0xFF) / 32.0);
    CaptureSettings settings;
    settings.exposure = Time(std::llround(value(kCoarseExposure) * kLineUs));
    settings.gainDb = 20.0 * std::log10(std::max(gain, kSmallestGain));
    settings.mirrorX = (value(kReadMode) & kMirrorBit) != 0;
    settings.mirrorY = (value(kReadMode) & kFlipBit) != 0;
    settings.marginRows = 2;
    settings.pedestal = value(kPedestal) / 16.0;
    return settings;
}

} // namespace qr9::sim
