#pragma once

#include "platform/camera_wire.h"

#include <string>

namespace Pylon {

/// The features of the camera that is open at the moment. All calls throw GenICam::GenericException when none
/// is open, when it is gone and when it refuses. Any thread.
class FeatureSource {
public:
    FeatureSource() = default;
    FeatureSource(const FeatureSource&) = delete;
    FeatureSource& operator=(const FeatureSource&) = delete;
    virtual ~FeatureSource() = default;

    /// The feature with its limits, or null when the camera does not have it.
    virtual const qr9::wire::Feature* find(const std::string& name) const = 0;

    virtual double read(const std::string& name) = 0;
    virtual void write(const std::string& name, double value) = 0;

    /// Carries out the command.
    virtual void execute(const std::string& name) = 0;
};

} // namespace Pylon
