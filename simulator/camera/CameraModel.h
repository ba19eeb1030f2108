#pragma once

#include "platform/camera_wire.h"

#include "simulator/camera/Picture.h"

#include <QString>

#include <vector>

namespace qr9::sim {

/// What a camera says to a request about its settings.
struct CameraAnswer {
    wire::Error error = wire::Error::None;
    double value = 0.0;
    QString text; ///< why it is refused, or the text of a text node
};

/// The settings of one kind of camera and what they mean for its pictures. They outlive open and close, as
/// long as the camera has its power. Thread: main. Owner: CameraServer.
class CameraModel {
public:
    CameraModel() = default;
    CameraModel(const CameraModel&) = delete;
    CameraModel& operator=(const CameraModel&) = delete;
    virtual ~CameraModel() = default;

    /// The device class under which it is found.
    virtual const char* deviceClass() const = 0;

    /// All nodes with their limits.
    virtual std::vector<wire::Feature> features() const = 0;
    virtual CameraAnswer setFeature(const QString& name, double value) = 0;
    virtual CameraAnswer feature(const QString& name) const = 0;
    virtual CameraAnswer writeRegister(int address, int value) = 0;
    virtual CameraAnswer readRegister(int address) const = 0;

    /// The stream was started or stopped, by the program or because it closed the device.
    virtual void setStreaming(bool streaming) = 0;

    /// Does a software trigger start an exposure now?
    virtual bool isWaitingForTrigger() const = 0;
    /// Does one exposure follow the other without a trigger now?
    virtual bool isRunningFreely() const = 0;

    virtual CaptureSettings settings() const = 0;
};

} // namespace qr9::sim
