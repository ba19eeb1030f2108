#include "tests/algorithms/shift_by_library.h"

#include "algorithms/alg_pixelShift.h"
#include "tests/algorithms/pictures.h"

#include <opencv2/imgproc.hpp>

namespace {

/// One channel at one threshold.
void measureByLibrary(
    const cv::Mat& reference, const cv::Mat& channel, int threshold, float* shift, float* response)
{
    cv::Mat binary;
    cv::threshold(channel, binary, threshold, 255.0, cv::THRESH_BINARY);
    cv::Mat reference32;
    cv::Mat channel32;
    reference.convertTo(reference32, CV_32F, 1.0, 0.0);
    binary.convertTo(channel32, CV_32F, 1.0, 0.0);
    double measured = 0.0;
    const cv::Point2d place = cv::phaseCorrelate(reference32, channel32, cv::noArray(), &measured);
    shift[0] = static_cast<float>(place.x);
    shift[1] = static_cast<float>(place.y);
    *response = static_cast<float>(measured);
}

} // namespace

namespace shift_by_library {

bool Shifts::operator==(const Shifts& other) const
{
    for (std::size_t i = 0; i < shift.size(); ++i) {
        if (!sameBits(shift[i], other.shift[i]))
            return false;
    }
    return sameBits(reliability[0], other.reliability[0]) && sameBits(reliability[1], other.reliability[1]);
}

Shifts searchByLibrary(const cv::Mat& reference, const std::array<cv::Mat, 2>& channels)
{
    Shifts best;
    for (std::size_t c = 0; c < channels.size(); ++c) {
        for (int threshold = 15; threshold <= 45; threshold += 5) {
            std::array<float, 2> shift {};
            float response = 0.0F;
            measureByLibrary(reference, channels[c], threshold, shift.data(), &response);
            if (response > best.reliability[c]) {
                best.reliability[c] = response;
                best.shift[2 * c] = shift[0];
                best.shift[2 * c + 1] = shift[1];
            }
        }
    }
    return best;
}

Shifts search(cv::Mat reference, cv::Mat gf, cv::Mat rf)
{
    Shifts result;
    alg_pixelShift().phaseCorrelatePixelShift_adaptive(
        reference, gf, rf, result.shift.data(), result.reliability.data());
    return result;
}

bool searchHasSameBits(const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf)
{
    return search(reference, gf, rf) == searchByLibrary(reference, { gf, rf });
}

bool measurementHasSameBits(cv::Mat reference, cv::Mat gf, cv::Mat rf, int thresholdGF, int thresholdRF)
{
    Shifts expected;
    measureByLibrary(reference, gf, thresholdGF, &expected.shift[0], &expected.reliability[0]);
    measureByLibrary(reference, rf, thresholdRF, &expected.shift[2], &expected.reliability[1]);
    Shifts measured;
    alg_pixelShift().phaseCorrelatePixelShift(
        reference, gf, rf, thresholdGF, thresholdRF, measured.shift.data(), measured.reliability.data());
    return measured == expected;
}

} // namespace shift_by_library
