#pragma once

#include "simulator/optics/OpticalState.h"
#include "simulator/optics/UnitConstants.h"

#include <optional>

namespace qr9::optics {

/// The channel that the filter wheel lets through; none between its positions.
std::optional<Channel> channelOf(int filter);

/// Factor of a gain in dB; gains beyond -24 to 60 dB, which no camera has, count as the limit.
double gainFactor(double gainDb);

/// Grey values above black that one unit of scene light (ScenePainter.h) brings at the state's LED levels,
/// filter, exposure and gain: proportional to each of them. 0 where the lit LEDs do not belong to the filter.
double greyOfFullLight(const UnitConstants& unit, const OpticalState& state);

/// How the light falls off over the frame, as 1 - edge * (distance from the middle / half diagonal)^2, less
/// tilt * (x from the middle / half width).
struct LightFall {
    double edge = 0.0;
    double tilt = 0.0;
};

LightFall lightFallOf(Slide slide, Channel channel);

} // namespace qr9::optics
