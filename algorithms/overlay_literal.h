#pragma once

#include "algorithms/overlay.h"

/// The overlay as a plain sequence of library calls: the definition of every result. It serves pictures and
/// shifts that the fast composition does not take, and is what that is compared with, bit by bit.
namespace overlay_literal {

cv::Mat compose(const cv::Mat& brightField, const cv::Mat& gfp, const cv::Mat& rfp, OverlayShift shiftGFP,
    OverlayShift shiftRFP, bool shifted);

} // namespace overlay_literal
