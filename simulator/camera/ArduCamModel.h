#pragma once

#include "simulator/camera/CameraModel.h"

#include <map>

namespace qr9::sim {

/// An AR0134 sensor on an ArduCam board: registers of 16 bits, of which a handful act on the picture. It
/// delivers 1280 by 964 pixels, with two rows above and below the picture that the sensor has beside it.
class ArduCamModel : public CameraModel {
public:
    ArduCamModel();

    const char* deviceClass() const override { return wire::kClassArduCam; }
    std::vector<wire::Feature> features() const override;
    CameraAnswer setFeature(const QString& name, double value) override;
    CameraAnswer feature(const QString& name) const override;
    CameraAnswer writeRegister(int address, int value) override;
    CameraAnswer readRegister(int address) const override;
    void setStreaming(bool /*streaming*/) override { }
    bool isWaitingForTrigger() const override { return m_mode == kTriggered; }
    bool isRunningFreely() const override { return false; }
    CaptureSettings settings() const override;

private:
    static constexpr int kTriggered = 1;

    void reset();
    int value(int address) const;

    int m_mode = kTriggered;
    std::map<int, int> m_registers; ///< those that were written, or have another value than 0 after a reset
};

} // namespace qr9::sim
