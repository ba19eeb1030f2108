#pragma once

#include <opencv2/core.hpp>

#include <cstdint>

/// Pictures that the algorithms are tested on, all CV_8UC1 and the same on every machine.
namespace pictures {

constexpr int kFrameWidth = 1280; // px, as the cameras give them
constexpr int kFrameHeight = 960;

/// Every pixel by itself, evenly over all grey values.
cv::Mat random(int width, int height, std::uint64_t seed);

/// Every pixel 0 or 255: the steepest gradients there can be.
cv::Mat randomBlackAndWhite(int width, int height, std::uint64_t seed);

/// Bright round cells of different brightness on a dark, slightly noisy ground, as fluorescence shows them.
cv::Mat cells(int width, int height, std::uint64_t seed);

/// 0 and 255 in squares of `side` pixels.
cv::Mat checkerboard(int width, int height, int side);

cv::Mat uniform(int width, int height, int grey);

/// Black but for one pixel.
cv::Mat singlePixel(int width, int height, cv::Point place, int grey);

/// `picture` moved right and down by fractions of a pixel, black where nothing came from.
cv::Mat moved(const cv::Mat& picture, double right, double down);

/// 255 above `threshold`, 0 elsewhere.
cv::Mat binary(const cv::Mat& picture, int threshold);

} // namespace pictures

/// Whether two numbers have the same representation: equality that tells -0.0 from 0.0.
bool sameBits(double a, double b);
bool sameBits(float a, float b);
