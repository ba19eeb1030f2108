#pragma once

#include "simulator/optics/GroundTruth.h"
#include "simulator/optics/Renderer.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <vector>

/// What the tests of the optics share: states with the settings that the instrument comes with, and
/// measurements written out in plain library calls.
namespace qr9::optics::samples {

/// X start position of the two-channel slide of an instrument without calibration.
constexpr int kNominalA1 = 30931;
constexpr int kFieldPitch = 480; ///< X steps from field to field

/// The channel's filter, LEDs, exposure and gain as an instrument without settings has them; stage in focus.
inline OpticalState inFocus(const UnitConstants& unit, Channel channel, int xSteps)
{
    OpticalState state;
    state.xSteps = xSteps;
    state.zSteps = static_cast<int>(std::lround(bestFocus(unit, channel, xSteps)));
    state.filter = static_cast<int>(channel) + 1;
    switch (channel) {
    case Channel::BrightField:
        state.leds = { 7, 6, 0, 0 };
        state.exposureMs = 35.0;
        state.gainDb = 0.0;
        break;
    case Channel::Gfp:
        state.leds = { 0, 0, 300, 0 };
        state.exposureMs = 80.0;
        state.gainDb = 5.0;
        break;
    case Channel::Rfp:
        state.leds = { 0, 0, 0, 350 };
        state.exposureMs = 80.0;
        state.gainDb = 5.0;
        break;
    }
    return state;
}

/// Bright field without a slide, and without the tray's mark in view.
inline OpticalState emptyInBrightField(const UnitConstants& unit)
{
    OpticalState state = inFocus(unit, Channel::BrightField, 6000);
    state.slide = Slide::Empty;
    return state;
}

/// The same unit with a sensor that adds no noise.
inline UnitConstants withoutNoise(UnitConstants unit)
{
    unit.readNoise = 0.0;
    unit.shotNoise = 0.0;
    return unit;
}

inline cv::Mat frameOf(const UnitConstants& unit, const OpticalState& state, std::uint64_t frameNumber = 1)
{
    cv::Mat frame;
    Renderer(unit).render(state, frameNumber, frame);
    return frame;
}

inline double meanGrey(const cv::Mat& frame)
{
    return cv::mean(frame)[0];
}

/// Variance of the Laplacian of 3 by 3, the bright-field focus measure.
inline double varianceOfLaplacian(const cv::Mat& frame)
{
    cv::Mat laplacian;
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::Laplacian(frame, laplacian, CV_16S, 1);
    cv::meanStdDev(laplacian, mean, deviation);
    return deviation[0] * deviation[0];
}

/// Mean squared Sobel gradient, the fluorescence focus measure.
inline double meanSquaredGradient(const cv::Mat& frame)
{
    cv::Mat gx;
    cv::Mat gy;
    cv::Sobel(frame, gx, CV_16S, 1, 0, 3);
    cv::Sobel(frame, gy, CV_16S, 0, 1, 3);
    return (cv::norm(gx, cv::NORM_L2SQR) + cv::norm(gy, cv::NORM_L2SQR)) / static_cast<double>(frame.total());
}

/// Pixels under grey 120 white, all others black, single ones removed.
inline cv::Mat darkObjects(const cv::Mat& frame)
{
    cv::Mat binary;
    cv::threshold(frame, binary, 120.0, 255.0, cv::THRESH_BINARY_INV);
    cv::medianBlur(binary, binary, 3);
    return binary;
}

inline std::vector<std::vector<cv::Point>> contoursOf(const cv::Mat& binary)
{
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(binary.clone(), contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    return contours;
}

/// Pixels by which `moved` stands off from `reference`, by phase correlation.
inline cv::Point2d shiftBetween(const cv::Mat& reference, const cv::Mat& moved, double* response = nullptr)
{
    cv::Mat one;
    cv::Mat two;
    reference.convertTo(one, CV_32F);
    moved.convertTo(two, CV_32F);
    return cv::phaseCorrelate(one, two, cv::noArray(), response);
}

} // namespace qr9::optics::samples
