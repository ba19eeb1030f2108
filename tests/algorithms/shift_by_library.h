#pragma once

#include <opencv2/core.hpp>

#include <array>

/// The shift measurement as plain calls of the image library, and whether the program's own has its every
/// bit.
namespace shift_by_library {

/// X and Y of the GFP and the RFP channel in px, and the response of either: 0 where nothing was measured.
struct Shifts {
    std::array<float, 4> shift {};
    std::array<float, 2> reliability {};

    bool operator==(const Shifts& other) const;
};

/// The search over all thresholds, by library calls and by the program.
Shifts searchByLibrary(const cv::Mat& reference, const std::array<cv::Mat, 2>& channels);
Shifts search(cv::Mat reference, cv::Mat gf, cv::Mat rf);

bool searchHasSameBits(const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf);

/// One measurement of both channels at thresholds of their own, the entries of a result without a peak too.
bool measurementHasSameBits(cv::Mat reference, cv::Mat gf, cv::Mat rf, int thresholdGF, int thresholdRF);

} // namespace shift_by_library
