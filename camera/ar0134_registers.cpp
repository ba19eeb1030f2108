// The sensor's registers: exposure, gain, mirrors, level of black.
#include "camera/ar0134.h"
#include "camera/ar0134_registers.h"

#include <QDebug>
#include <QMutexLocker>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kLineTime = 24.539; ///< us that the sensor takes for a line
constexpr Uint32 kMaxRegister = 0xFFFF;

/// The digital gain counts in these parts of 1 and has eight bits.
constexpr double kGainSteps = 32.0;
constexpr Uint32 kMaxDigitalGain = 255;
constexpr Uint32 kAnalogGainMask = 0x30;
constexpr int kAnalogGainShift = 4;

/// Analogue stages from the strongest down: the first whose factor the whole gain reaches is taken.
struct AnalogStage {
    Uint32 factor;
    Uint32 code; ///< in bits 4 and 5 of the register
};
constexpr AnalogStage kAnalogStages[] = {
    { 8, 0x30 },
    { 4, 0x20 },
    { 2, 0x10 },
    { 1, 0x00 },
};

const AnalogStage& analogStage(Uint32 gain)
{
    const auto whole = gain / static_cast<Uint32>(kGainSteps);
    return *std::find_if(std::begin(kAnalogStages), std::end(kAnalogStages) - 1,
        [whole](const AnalogStage& stage) { return whole >= stage.factor; });
}

/// The gain in 1/32 steps. What is beyond the strongest setting of the sensor gives that setting.
Uint32 gainSteps(double gain)
{
    constexpr double kLargest = 8.0 * kMaxDigitalGain + 7.0;
    return static_cast<Uint32>(std::min(std::pow(10.0, gain / 10.0) * kGainSteps + 0.5, kLargest));
}

} // namespace

void AR0134::slot_setExposure(unsigned int exposure)
{
    qDebug() << Q_FUNC_INFO << exposure;
    // The register has 16 bits: beyond 1.6 s the longest exposure is set and not what is left of a wrapped
    // number.
    const auto lines = static_cast<Uint32>(std::min<double>(exposure / kLineTime + 0.5, kMaxRegister));
    QMutexLocker lock(&m_mutex);
    if (m_handle == nullptr) {
        return;
    }
    const bool good = ArduCam_writeSensorReg(m_handle, ar0134::kRegExposure, lines) == USB_CAMERA_NO_ERROR;
    lock.unlock();
    if (!good) {
        qCritical() << Q_FUNC_INFO << "Writing a camera registry error" << exposure << lines;
        emit signal_cameraError(ERROR_EXPOSURE_WRITE);
    }
}

int AR0134::getExposure()
{
    QMutexLocker lock(&m_mutex);
    if (m_handle == nullptr) {
        return -1;
    }
    Uint32 lines = 0;
    const bool good = ArduCam_readSensorReg(m_handle, ar0134::kRegExposure, &lines) == USB_CAMERA_NO_ERROR;
    lock.unlock();
    if (!good) {
        report(Q_FUNC_INFO, ERROR_EXPOSURE_READ);
        return -1;
    }
    return static_cast<int>(lines * kLineTime);
}

void AR0134::slot_setGain(double gain)
{
    qDebug() << Q_FUNC_INFO << gain;
    QMutexLocker lock(&m_mutex);
    if (m_handle == nullptr) {
        return;
    }
    if (!(gain >= 0.0)) {
        lock.unlock();
        report(Q_FUNC_INFO, ERROR_GAIN_NEGATIVE);
        return;
    }
    const Uint32 steps = gainSteps(gain);
    const AnalogStage& stage = analogStage(steps);
    Uint32 analog = 0;
    if (ArduCam_readSensorReg(m_handle, ar0134::kRegAnalogGain, &analog) != USB_CAMERA_NO_ERROR) {
        lock.unlock();
        report(Q_FUNC_INFO, ERROR_GAIN_READ);
        return;
    }
    analog = (analog & ~kAnalogGainMask) | stage.code;
    const Uint32 digital = std::min(steps / stage.factor, kMaxDigitalGain);
    const bool good = ArduCam_writeSensorReg(m_handle, ar0134::kRegAnalogGain, analog) == USB_CAMERA_NO_ERROR
        && ArduCam_writeSensorReg(m_handle, ar0134::kRegDigitalGain, digital) == USB_CAMERA_NO_ERROR;
    lock.unlock();
    if (!good) {
        report(Q_FUNC_INFO, ERROR_GAIN_WRITE);
    }
}

double AR0134::getGain()
{
    QMutexLocker lock(&m_mutex);
    if (m_handle == nullptr) {
        return -1.0;
    }
    Uint32 digital = 0;
    Uint32 analog = 0;
    const bool good
        = ArduCam_readSensorReg(m_handle, ar0134::kRegDigitalGain, &digital) == USB_CAMERA_NO_ERROR
        && ArduCam_readSensorReg(m_handle, ar0134::kRegAnalogGain, &analog) == USB_CAMERA_NO_ERROR;
    lock.unlock();
    if (!good) {
        report(Q_FUNC_INFO, ERROR_GAIN_READ);
        return -1.0;
    }
    const auto stage = static_cast<double>((analog & kAnalogGainMask) >> kAnalogGainShift);
    return 10.0 * std::log10(std::pow(2.0, stage) * digital / kGainSteps);
}

void AR0134::setReverse(bool reverseX, bool reverseY)
{
    qDebug() << Q_FUNC_INFO << "reverse x , y" << reverseX << reverseY;
    QMutexLocker lock(&m_mutex);
    if (m_handle == nullptr) {
        return;
    }
    const bool good
        = ArduCam_writeSensorReg(m_handle, ar0134::kRegReadMode, ar0134::mirrorBits(reverseX, reverseY))
        == USB_CAMERA_NO_ERROR;
    lock.unlock();
    if (!good) {
        report(Q_FUNC_INFO, ERROR_MIRROR_WRITE);
    }
}

void AR0134::setPedestal(uint16_t pedestal)
{
    QMutexLocker lock(&m_mutex);
    // A closed camera has no register, and the call is told in the log all the same.
    const Uint32 code = m_handle != nullptr ? ArduCam_writeSensorReg(m_handle, ar0134::kRegPedestal, pedestal)
                                            : USB_CAMERA_NO_ERROR;
    lock.unlock();
    qDebug() << Q_FUNC_INFO << pedestal;
    if (code != USB_CAMERA_NO_ERROR) {
        qCritical() << Q_FUNC_INFO << "Writing a camera registry error" << code;
    }
}
