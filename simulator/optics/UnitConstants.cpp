#include "simulator/optics/UnitConstants.h"

#include "simulator/optics/Random.h"

#include <iterator>

namespace qr9::optics {

namespace {

/// One constant that differs from unit to unit: (low to high) / scale, in whole steps of 1 / scale.
struct UnitRange {
    double UnitConstants::*constant;
    int low;
    int high;
    int scale;
};

// The order is part of what a seed means: new rows go to the end.
//
// Focus: the coarse walk reaches 3220 steps to either side of a reference of 32000. What is 60 mm away from
// A1 on a tilted and bowed carrier must still lie within: 2000 + 60 x 18 + 3600 x 0.01 = 3116. Magnification:
// in hundredths, as the instrument stores it.
constexpr UnitRange kUnitRanges[] = {
    { &UnitConstants::bestFocusA1, 30000, 34000, 1 },
    { &UnitConstants::slope, -1800, 1800, 100 },
    { &UnitConstants::curvature, -100, 100, 10000 },
    { &UnitConstants::fluorescenceFocusOffset, 315, 375, 1 },
    { &UnitConstants::magnification, 390, 410, 100 },
    { &UnitConstants::gfpShiftX, -1200, 1200, 100 },
    { &UnitConstants::gfpShiftY, -1200, 1200, 100 },
    { &UnitConstants::rfpShiftX, -1200, 1200, 100 },
    { &UnitConstants::rfpShiftY, -1200, 1200, 100 },
    { &UnitConstants::markX, 11880, 12120, 1 },
    { &UnitConstants::ledResponseBrightField1, 900, 1100, 1000 },
    { &UnitConstants::ledResponseBrightField2, 900, 1100, 1000 },
    { &UnitConstants::ledResponseGfp, 900, 1100, 1000 },
    { &UnitConstants::ledResponseRfp, 900, 1100, 1000 },
    { &UnitConstants::blackLevel, 30, 50, 10 },
    { &UnitConstants::readNoise, 400, 700, 1000 },
    { &UnitConstants::shotNoise, 6000, 12000, 1000000 },
};

/// Limits of a constant beyond which a picture makes no sense, or cannot be computed.
struct UnitLimit {
    const char* name;
    double UnitConstants::*constant;
    double low;
    double high;
};

constexpr UnitLimit kUnitLimits[] = {
    { "markX", &UnitConstants::markX, -1e6, 1e6 },
    { "bestFocusA1", &UnitConstants::bestFocusA1, -1e6, 1e6 },
    { "slope", &UnitConstants::slope, -1e3, 1e3 },
    { "curvature", &UnitConstants::curvature, -10.0, 10.0 },
    { "fluorescenceFocusOffset", &UnitConstants::fluorescenceFocusOffset, -1e4, 1e4 },
    { "magnification", &UnitConstants::magnification, 1.0, 40.0 },
    { "gfpShiftX", &UnitConstants::gfpShiftX, -60.0, 60.0 },
    { "gfpShiftY", &UnitConstants::gfpShiftY, -60.0, 60.0 },
    { "rfpShiftX", &UnitConstants::rfpShiftX, -60.0, 60.0 },
    { "rfpShiftY", &UnitConstants::rfpShiftY, -60.0, 60.0 },
    { "ledResponseBrightField1", &UnitConstants::ledResponseBrightField1, 0.0, 10.0 },
    { "ledResponseBrightField2", &UnitConstants::ledResponseBrightField2, 0.0, 10.0 },
    { "ledResponseGfp", &UnitConstants::ledResponseGfp, 0.0, 10.0 },
    { "ledResponseRfp", &UnitConstants::ledResponseRfp, 0.0, 10.0 },
    { "blackLevel", &UnitConstants::blackLevel, 0.0, 255.0 },
    { "readNoise", &UnitConstants::readNoise, 0.0, 30.0 },
    { "shotNoise", &UnitConstants::shotNoise, 0.0, 1.0 },
};
static_assert(
    sizeof(UnitConstants) == (std::size(kUnitLimits) + 1) * sizeof(double), "each constant has its limits");

} // namespace

UnitConstants unitFromSeed(std::uint32_t seed)
{
    UnitConstants unit;
    unit.seed = seed;
    Random random(joinKeys(0, seed));
    for (const UnitRange& range : kUnitRanges) {
        const int chosen = range.low
            + static_cast<int>(random.below(static_cast<std::uint32_t>(range.high - range.low + 1)));
        unit.*range.constant = static_cast<double>(chosen) / range.scale;
    }
    return unit;
}

const char* impossibleConstant(const UnitConstants& unit)
{
    for (const UnitLimit& limit : kUnitLimits) {
        const double value = unit.*limit.constant;
        if (!(value >= limit.low && value <= limit.high)) {
            return limit.name;
        }
    }
    return nullptr;
}

} // namespace qr9::optics
