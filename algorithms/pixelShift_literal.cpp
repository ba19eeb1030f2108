#include "algorithms/pixelShift_literal.h"

#include <opencv2/imgproc.hpp>

namespace pixelShift_literal {

std::array<PhaseShift, 2> measure(
    const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf, int thresholdGF, int thresholdRF)
{
    cv::Mat gfBin;
    cv::Mat rfBin;
    cv::threshold(gf, gfBin, thresholdGF, 255.0, cv::THRESH_BINARY);
    cv::threshold(rf, rfBin, thresholdRF, 255.0, cv::THRESH_BINARY);

    cv::Mat reference32;
    cv::Mat gf32;
    cv::Mat rf32;
    reference.convertTo(reference32, CV_32F, 1.0, 0.0);
    gfBin.convertTo(gf32, CV_32F, 1.0, 0.0);
    rfBin.convertTo(rf32, CV_32F, 1.0, 0.0);

    std::array<PhaseShift, 2> result;
    result[0].shift = cv::phaseCorrelate(reference32, gf32, cv::noArray(), &result[0].response);
    result[1].shift = cv::phaseCorrelate(reference32, rf32, cv::noArray(), &result[1].response);
    return result;
}

} // namespace pixelShift_literal
