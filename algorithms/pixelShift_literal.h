#pragma once

#include "algorithms/phase_correlation.h"

#include <array>

/// The shift measurement as a plain sequence of library calls: the definition of every result. It serves the
/// images that PhaseCorrelation does not take, and is what PhaseCorrelation is compared with, bit by bit. No
/// state, any thread; the library's exceptions pass.
namespace pixelShift_literal {

/// GF, then RF, each thresholded by its own level and correlated with `reference`.
std::array<PhaseShift, 2> measure(
    const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf, int thresholdGF, int thresholdRF);

} // namespace pixelShift_literal
