#pragma once

#include <opencv2/core.hpp>

/// The intensity measurement as plain calls of the library, one after the other: what the built one is
/// compared with, bit by bit and in time.
namespace literal {

double intensityPerObject(const cv::Mat& frame, int offset);
double intensityBackground(const cv::Mat& frame, int offset);

} // namespace literal
