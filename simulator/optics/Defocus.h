#pragma once

#include <opencv2/core/mat.hpp>

namespace qr9::optics {

/// Standard deviation in pixels of the blur at a distance from focus, Z steps of either sign: the objective's
/// own 0.7 px in focus, 0.9 at 115 steps, 2.4 at 460, 16 at 3220, and never more than 32, where nothing is
/// left to tell apart.
double blurOf(double stepsFromFocus);

/// Blurs a scene (CV_16UC1) by a Gaussian of that standard deviation, 0.5 to 32 px, into `blurred` of equal
/// size. Wide blurs are made on a reduced copy. Whole-number arithmetic: the same result on every machine.
void blurScene(const cv::Mat& scene, double sigma, cv::Mat& blurred);

} // namespace qr9::optics
