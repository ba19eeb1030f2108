#pragma once

#include "simulator/optics/OpticalState.h"
#include "simulator/optics/UnitConstants.h"

#include <opencv2/core/mat.hpp>

namespace qr9::optics {

/// Pixels by which a scene is larger than the frame on each side, so that blur brings in what lies beyond.
constexpr int kSceneMargin = 64;

/// Draws the slide as the channel would show it in perfect focus and even light, with the stage at xSteps:
/// CV_16UC1, kLightOne = 1 (ScenePainter.h), the frame's size and kSceneMargin around it, not mirrored.
void drawSharpScene(const UnitConstants& unit, Slide slide, int xSteps, Channel channel, cv::Mat& scene);

} // namespace qr9::optics
