#pragma once

namespace qr9::optics {

/// What lies in the tray. The first seven are the slide types that the instrument counts on, in its own
/// order.
enum class Slide {
    OneChannel = 0,
    TwoChannel = 1,
    ThreeChannel = 2,
    EightChannel = 3,
    Reusable = 4,
    Validation = 5,
    PrismaMax = 6,
    Target = 7, ///< round marks at a known spacing
    Empty = 8, ///< nothing but the tray with its reference mark
};
constexpr int kSlideCount = 9;

/// Channel of light; the filter position that lets it through is the value plus 1.
enum class Channel {
    BrightField = 0,
    Gfp = 1,
    Rfp = 2,
};
constexpr int kChannelCount = 3;

/// Levels of the LEDs as the board was told them; 0 is off. Bright field has two LEDs.
struct LedLevels {
    int brightField1 = 0;
    int brightField2 = 0;
    int gfp = 0;
    int rfp = 0;
};

/// Everything about the instrument at one moment that the camera's picture depends on.
struct OpticalState {
    Slide slide = Slide::TwoChannel;
    int xSteps = 0; ///< stage X, motor steps
    int zSteps = 32000; ///< stage Z, motor steps
    /// Position of the filter wheel: 1 bright field, 2 GFP, 3 RFP; any other lets nothing through.
    int filter = 1;
    LedLevels leds;
    double exposureMs = 35.0; ///< milliseconds; a negative one counts as 0
    double gainDb = 0.0; ///< camera gain, dB
    bool mirrorX = false; ///< the camera delivers its columns in reverse order
    bool mirrorY = false; ///< the camera delivers its rows in reverse order
};

} // namespace qr9::optics
