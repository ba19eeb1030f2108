#pragma once

#include <opencv2/core.hpp>

/// Shift of a channel's picture in pixels, right and down.
using OverlayShift = cv::Point2f;

/// The colour picture by which an operator judges a channel shift: bright field in grey; where the moved GFP
/// exceeds it, the green part takes the GFP value, and where the moved RFP does, the red part takes the RFP
/// value. If `shifted`, both channels are raised by 100 (saturating at 255) and moved by their shifts, with 0
/// coming in at the edges; else they are laid over as they are. All pictures are CV_8UC1 of one size.
///
/// Returns a new continuous CV_8UC3 matrix of that size, the channels red, green and blue in this order. The
/// bits of overlay_literal::compose in a small part of its time. Where a picture is missing (empty) there
/// is nothing to judge: the result is bright field alone, or a black frame of 1280 x 960 without that.
/// Pictures of different sizes end in the library's exception. Any thread.
cv::Mat composeOverlay(const cv::Mat& brightField, const cv::Mat& gfp, const cv::Mat& rfp,
    OverlayShift shiftGFP, OverlayShift shiftRFP, bool shifted);
