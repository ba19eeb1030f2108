#include "simulator/optics/SharpScene.h"

#include "simulator/optics/CellSlide.h"
#include "simulator/optics/GroundTruth.h"
#include "simulator/optics/ScenePainter.h"
#include "simulator/optics/TargetSlide.h"

namespace qr9::optics {

namespace {

constexpr int kSceneWidth = kFrameWidth + 2 * kSceneMargin;
constexpr int kSceneHeight = kFrameHeight + 2 * kSceneMargin;
constexpr double kEmptyGlow = 0.01; // what an unstained slide gives in fluorescence

/// A fine cross, engraved into the tray, which no slide hides.
void paintTrayMark(ScenePainter& painter)
{
    constexpr double kLongUm = 70.0;
    constexpr double kShortUm = 35.0;
    constexpr double kRadiusUm = 3.0;
    constexpr double kTransmission = 0.2;
    painter.stroke({ 0.0, -kLongUm }, { 0.0, kLongUm }, kRadiusUm, kTransmission);
    painter.stroke({ -kShortUm, 0.0 }, { kShortUm, 0.0 }, kRadiusUm, kTransmission);
}

} // namespace

void drawSharpScene(const UnitConstants& unit, Slide slide, int xSteps, Channel channel, cv::Mat& scene)
{
    const bool brightField = channel == Channel::BrightField;
    scene.create(kSceneHeight, kSceneWidth, CV_16UC1);
    scene.setTo(brightField ? kLightOne : kLightOne * kEmptyGlow);

    const double scale = pixelsPerUm(unit);
    const double axisU = slidePosition(unit, xSteps);
    const double halfWidthUm = kSceneWidth / 2.0 / scale;
    const double fromUm = axisU - halfWidthUm;
    const double toUm = axisU + halfWidthUm;
    const cv::Point2d axis((kSceneWidth - 1) / 2.0, (kSceneHeight - 1) / 2.0);
    const cv::Point2d shift = pixelShift(unit, channel, OpticalState {});
    ScenePainter painter(scene, axis + shift - cv::Point2d(axisU * scale, 0.0), scale);

    if (slide == Slide::Target) {
        if (brightField) {
            paintTargetSlide(painter, unit.seed, fromUm, toUm);
        }
    } else if (slide != Slide::Empty) {
        if (brightField) {
            paintDust(painter, unit.seed, slide, fromUm, toUm);
        }
        paintCells(painter, cellsOf(unit.seed, slide, fromUm, toUm), channel);
    }
    if (brightField) {
        paintTrayMark(painter);
    }
}

} // namespace qr9::optics
