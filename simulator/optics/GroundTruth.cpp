#include "simulator/optics/GroundTruth.h"

#include "simulator/optics/TargetSlide.h"

namespace qr9::optics {

namespace {

constexpr double kAxisX = (kFrameWidth - 1) / 2.0;
constexpr double kAxisY = (kFrameHeight - 1) / 2.0;
constexpr double kMarkRim = 20.0; // pixels that a mark of targetMarks keeps from the frame's edge

cv::Point2d asDelivered(cv::Point2d pixel, const OpticalState& state)
{
    if (state.mirrorX) {
        pixel.x = kFrameWidth - 1 - pixel.x;
    }
    if (state.mirrorY) {
        pixel.y = kFrameHeight - 1 - pixel.y;
    }
    return pixel;
}

/// Pixel at which bright field shows the point (u, v) of the slide, um.
cv::Point2d toPixel(const UnitConstants& unit, const OpticalState& state, cv::Point2d slidePoint)
{
    const double scale = pixelsPerUm(unit);
    const cv::Point2d pixel(
        kAxisX + (slidePoint.x - slidePosition(unit, state.xSteps)) * scale, kAxisY + slidePoint.y * scale);
    return asDelivered(pixel, state);
}

} // namespace

double bestFocus(const UnitConstants& unit, Channel channel, int xSteps)
{
    const double mmFromA1 = (unit.markX + kStepsFromMarkToA1 - xSteps) / kStepsPerMm;
    const double brightField
        = unit.bestFocusA1 + unit.slope * mmFromA1 + unit.curvature * mmFromA1 * mmFromA1;
    return channel == Channel::BrightField ? brightField : brightField + unit.fluorescenceFocusOffset;
}

double pixelsPerUm(const UnitConstants& unit)
{
    return unit.magnification / kPixelPitchUm;
}

double pixelsPerStep(const UnitConstants& unit)
{
    return 1000.0 / kStepsPerMm * pixelsPerUm(unit);
}

double slidePosition(const UnitConstants& unit, int xSteps)
{
    return (unit.markX - xSteps) * 1000.0 / kStepsPerMm;
}

cv::Point2d pixelShift(const UnitConstants& unit, Channel channel, const OpticalState& state)
{
    cv::Point2d shift(0.0, 0.0);
    if (channel == Channel::Gfp) {
        shift = { unit.gfpShiftX, unit.gfpShiftY };
    } else if (channel == Channel::Rfp) {
        shift = { unit.rfpShiftX, unit.rfpShiftY };
    }
    return { state.mirrorX ? -shift.x : shift.x, state.mirrorY ? -shift.y : shift.y };
}

cv::Point2d referenceMark(const UnitConstants& unit, const OpticalState& state)
{
    return toPixel(unit, state, { 0.0, 0.0 });
}

std::vector<TargetMark> targetMarks(const UnitConstants& unit, const OpticalState& state)
{
    const double scale = pixelsPerUm(unit);
    const double radius = kTargetMarkRadiusUm * scale;
    const double halfWidthUm = kFrameWidth / 2.0 / scale;
    const double axis = slidePosition(unit, state.xSteps);
    const cv::Rect2d inside(radius + kMarkRim, radius + kMarkRim, kFrameWidth - 1 - 2 * (radius + kMarkRim),
        kFrameHeight - 1 - 2 * (radius + kMarkRim));

    std::vector<TargetMark> marks;
    for (const TargetMarkPosition& position : targetMarkPositions(axis - halfWidthUm, axis + halfWidthUm)) {
        const cv::Point2d centre = toPixel(unit, state, position.centreUm);
        if (inside.contains(centre)) {
            marks.push_back({ position.row, position.column, centre, radius });
        }
    }
    return marks;
}

} // namespace qr9::optics
