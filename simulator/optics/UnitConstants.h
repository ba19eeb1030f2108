#pragma once

#include <cstdint>

namespace qr9::optics {

/// True constants of one virtual unit, as far as its optics, its slide carrier and its sensor are concerned.
///
/// A plain record, passed by value. The defaults are those of a nominal unit: no tilt, no shift, a
/// magnification of four. X and Z positions count in motor steps of the stage, as the board reports them.
struct UnitConstants {
    /// Seeds what lies on the slides and the sensor's noise; two units of one seed see the same cells.
    std::uint32_t seed = 1;

    /// X position at which the reference mark of the tray stands in the middle of the frame, steps.
    double markX = 12000.0;

    /// Z position of best focus in bright field over field A1 of the two-channel slide, steps.
    double bestFocusA1 = 32000.0;
    /// Tilt of the slide carrier, Z steps per mm of slide, counted from A1 towards B1, that is towards
    /// falling X.
    double slope = 0.0;
    /// Bow of the slide carrier, Z steps per square millimetre of distance from A1.
    double curvature = 0.0;
    /// Distance of the fluorescence focus above the bright-field focus, steps.
    double fluorescenceFocusOffset = 345.0;

    /// Optical magnification; a camera pixel of 3.75 um sees 3.75 um / magnification of the slide.
    double magnification = 4.0;
    /// Where a feature seen at (x, y) in bright field appears in fluorescence: at (x + shiftX, y + shiftY),
    /// pixels of a frame that is not mirrored.
    double gfpShiftX = 0.0;
    double gfpShiftY = 0.0;
    double rfpShiftX = 0.0;
    double rfpShiftY = 0.0;

    /// Light of each LED in proportion to the nominal one; bright field has two LEDs, whose light adds.
    double ledResponseBrightField1 = 1.0;
    double ledResponseBrightField2 = 1.0;
    double ledResponseGfp = 1.0;
    double ledResponseRfp = 1.0;

    /// Grey value of a dark frame.
    double blackLevel = 4.0;
    /// Standard deviation of a dark frame's grey values at a gain of 0 dB.
    double readNoise = 0.5;
    /// Variance that a signal of one grey value brings at a gain of 0 dB.
    double shotNoise = 0.009;
};

/// Makes the unit of that seed: the same one on every machine. Every constant lies within its range of the
/// table in UnitConstants.cpp and is a round decimal, so that it reads well in a file.
UnitConstants unitFromSeed(std::uint32_t seed);

/// Tells whether a record that a person wrote describes something that can be rendered.
/// \returns nullptr, or the name of the first constant that lies beyond the limits of any real unit
const char* impossibleConstant(const UnitConstants& unit);

} // namespace qr9::optics
