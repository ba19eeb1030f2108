#pragma once

#include "simulator/optics/OpticalState.h"

namespace qr9::optics {

/// What was filled into a slide of one type.
struct SlideContents {
    Slide slide;
    double sparsest; ///< cells in a frame at nominal magnification; the density wanders between the two
    double densest;
    double smallestUm; ///< cell diameters
    double largestUm;
    double gfpShare; ///< of the cells are stained
    double rfpShare;
};

/// A stretch of one slide that differs from the rest of it, so that fields with few, with many and with no
/// stained cells are at hand. Positions in mm along the slide from the tray's mark.
struct SlideZone {
    Slide slide;
    bool stained;
    double fromMm;
    double toMm;
    double cellsPerFrame;
};

// The stained shares overlap by chance, as two stains of one sample do.
constexpr SlideContents kSlideContents[] = {
    { Slide::OneChannel, 180.0, 320.0, 8.0, 16.0, 0.55, 0.45 },
    { Slide::TwoChannel, 200.0, 380.0, 8.0, 16.0, 0.55, 0.50 },
    { Slide::ThreeChannel, 150.0, 300.0, 8.0, 16.0, 0.50, 0.50 },
    { Slide::EightChannel, 150.0, 350.0, 8.0, 16.0, 0.50, 0.45 },
    { Slide::Reusable, 160.0, 340.0, 9.0, 16.0, 0.60, 0.50 },
    { Slide::Validation, 230.0, 270.0, 11.8, 12.2, 0.60, 0.60 }, // beads of one size
    { Slide::PrismaMax, 250.0, 400.0, 8.0, 15.0, 0.50, 0.55 },
};

// The places are those of the fields with the slide's start position calibrated to the mark. A frame is 1.2
// mm long, and the fields are 0.9 mm apart.
constexpr SlideZone kSlideZones[] = {
    { Slide::OneChannel, true, -38.5, -32.0, 40.0 }, // the last fields of the long chamber
    { Slide::TwoChannel, true, -33.4, -32.2, 45.0 }, // field A4
    { Slide::TwoChannel, true, -28.9, -27.7, 600.0 }, // field A9
    { Slide::ThreeChannel, false, 1.0, 12.3, 200.0 }, // the third chamber, unstained
    { Slide::EightChannel, false, 13.0, 18.2, 40.0 }, // the eighth chamber, unstained
};

} // namespace qr9::optics
