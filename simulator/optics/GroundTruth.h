#pragma once

#include "simulator/optics/OpticalState.h"
#include "simulator/optics/UnitConstants.h"

#include <opencv2/core/types.hpp>

#include <vector>

/// What a perfect measurement of a unit would find. Pure functions of the unit and the state.
///
/// Two coordinate systems meet here. Along the slide, `u` counts in um from the tray's reference mark in the
/// direction of falling X (so that it rises from channel to channel), `v` in um across, from the middle of
/// the frame. In the frame, integers are the centres of pixels, and the optical axis goes through (639.5,
/// 479.5).
namespace qr9::optics {

constexpr int kFrameWidth = 1280; ///< pixels
constexpr int kFrameHeight = 960; ///< pixels
constexpr double kPixelPitchUm = 3.75; ///< of the sensor
constexpr double kStepsPerMm = 533.3; ///< X motor steps per millimetre of slide
/// Field A1 of the two-channel slide lies so far above the mark.
constexpr double kStepsFromMarkToA1 = 18931.0;

/// Best focus of the channel with the stage at xSteps, in Z steps (not rounded). It is the same for every
/// slide.
double bestFocus(const UnitConstants& unit, Channel channel, int xSteps);

/// Pixels of the frame per um of slide.
double pixelsPerUm(const UnitConstants& unit);

/// Pixels by which the scene moves towards rising x (not mirrored) when the stage goes one X step up.
double pixelsPerStep(const UnitConstants& unit);

/// Slide coordinate u under the optical axis with the stage at xSteps, um.
double slidePosition(const UnitConstants& unit, int xSteps);

/// Where the channel shows what bright field shows at (x, y), as (dx, dy) pixels of the frame as delivered,
/// so mirrored where the state says so. (0, 0) for bright field.
cv::Point2d pixelShift(const UnitConstants& unit, Channel channel, const OpticalState& state);

/// Middle of the tray's reference mark in the bright-field frame as delivered; may lie outside of the frame.
cv::Point2d referenceMark(const UnitConstants& unit, const OpticalState& state);

/// One mark of the target slide in the frame.
struct TargetMark {
    int row = 0; ///< 0 to 4, counted along v
    int column = 0; ///< neighbours in a row differ by 1 and are 0.5 mm apart
    cv::Point2d centre; ///< pixels of the frame as delivered
    double radius = 0.0; ///< pixels
};

/// The marks of the target slide that lie in the bright-field frame as a whole with a rim of 20 pixels, by
/// row, then by column. Whatever the stage position, at least one row has two marks that are 1.0 mm apart.
/// The state's slide is not asked: the answer is for a target slide.
std::vector<TargetMark> targetMarks(const UnitConstants& unit, const OpticalState& state);

} // namespace qr9::optics
