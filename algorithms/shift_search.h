#pragma once

#include "algorithms/phase_correlation.h"

#include <array>
#include <vector>

/// One channel of a shift measurement and the thresholds to measure it at, in ascending order.
struct ShiftChannel {
    cv::Mat image;
    std::vector<int> thresholds;
};

/// Results of a channel, one for each of its thresholds.
using ShiftResults = std::vector<PhaseShift>;

/// Measures two channels against one reference at all their thresholds. Two threads share the work where the
/// machine has them; thresholds that give the same two-level image are measured once. Blocks until all is
/// measured. The images must be accepted by PhaseCorrelation. The library's exceptions pass.
std::array<ShiftResults, 2> measureShifts(
    const cv::Mat& reference, const std::array<ShiftChannel, 2>& channels);
