#include "simulator/optics/Illumination.h"

#include <algorithm>
#include <cmath>

namespace qr9::optics {

namespace {

/// The grey value above black that a nominal unit shows for one unit of scene light at the settings that the
/// instrument comes with. All other settings follow in proportion.
struct NominalLight {
    Channel channel;
    double grey;
    int levels; ///< sum of the LED levels
    double exposureMs;
    double gainDb;
};

constexpr NominalLight kNominalLight[] = {
    { Channel::BrightField, 168.0, 7 + 6, 35.0, 0.0 },
    { Channel::Gfp, 155.0, 300, 80.0, 5.0 },
    { Channel::Rfp, 155.0, 350, 80.0, 5.0 },
};

constexpr double kLeastGainDb = -24.0;
constexpr double kMostGainDb = 60.0;

double lightOfLeds(const UnitConstants& unit, Channel channel, const LedLevels& leds)
{
    switch (channel) {
    case Channel::BrightField:
        return std::max(leds.brightField1, 0) * unit.ledResponseBrightField1
            + std::max(leds.brightField2, 0) * unit.ledResponseBrightField2;
    case Channel::Gfp:
        return std::max(leds.gfp, 0) * unit.ledResponseGfp;
    case Channel::Rfp:
        return std::max(leds.rfp, 0) * unit.ledResponseRfp;
    }
    return 0.0;
}

} // namespace

std::optional<Channel> channelOf(int filter)
{
    if (filter < 1 || filter > kChannelCount) {
        return std::nullopt;
    }
    return static_cast<Channel>(filter - 1);
}

double gainFactor(double gainDb)
{
    // Written so that a value that is not a number counts as the lower limit.
    const double limited = gainDb > kLeastGainDb ? std::min(gainDb, kMostGainDb) : kLeastGainDb;
    return std::pow(10.0, limited / 20.0);
}

double greyOfFullLight(const UnitConstants& unit, const OpticalState& state)
{
    const std::optional<Channel> channel = channelOf(state.filter);
    if (!channel) {
        return 0.0;
    }
    const NominalLight& nominal = kNominalLight[static_cast<int>(*channel)];
    const double relativeLight = lightOfLeds(unit, *channel, state.leds) / nominal.levels;
    const double relativeExposure = (state.exposureMs > 0.0 ? state.exposureMs : 0.0) / nominal.exposureMs;
    return nominal.grey * relativeLight * relativeExposure * gainFactor(state.gainDb)
        / gainFactor(nominal.gainDb);
}

LightFall lightFallOf(Slide slide, Channel channel)
{
    if (channel != Channel::BrightField) {
        return { 0.12, 0.0 };
    }
    // The thick glass of the target slide lies a little askew.
    return slide == Slide::Target ? LightFall { 0.10, 0.08 } : LightFall { 0.07, 0.0 };
}

} // namespace qr9::optics
