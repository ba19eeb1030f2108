#include "simulator/Truth.h"

#include "simulator/optics/GroundTruth.h"

#include <cmath>

namespace qr9::sim {

namespace {

constexpr int kStepsFromA1ToB1 = -20799; ///< X motor steps between the two channels of the two-channel slide

int fieldA1(const Unit& unit)
{
    return static_cast<int>(std::lround(unit.constants.markX + optics::kStepsFromMarkToA1));
}

} // namespace

QJsonObject focusAt(const Unit& unit, int x)
{
    const auto focus = [&](optics::Channel channel) { return optics::bestFocus(unit.constants, channel, x); };
    return {
        { "x", x },
        { "bf", focus(optics::Channel::BrightField) },
        { "gfp", focus(optics::Channel::Gfp) },
        { "rfp", focus(optics::Channel::Rfp) },
    };
}

QJsonObject truthOf(const Unit& unit)
{
    const int a1 = fieldA1(unit);
    QJsonObject truth = toJson(unit);
    truth["derived"] = QJsonObject {
        { "focusA1", focusAt(unit, a1) },
        { "focusB1", focusAt(unit, a1 + kStepsFromA1ToB1) },
        { "pixelsPerUm", optics::pixelsPerUm(unit.constants) },
        { "pixelsPerStep", optics::pixelsPerStep(unit.constants) },
    };
    return truth;
}

} // namespace qr9::sim
