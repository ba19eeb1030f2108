#include "tests/algorithms/pictures.h"

#include <opencv2/imgproc.hpp>

#include <cstring>

namespace {

template <typename Bits, typename Number> Bits bitsOf(Number number)
{
    static_assert(sizeof(Bits) == sizeof(Number));
    Bits bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

} // namespace

namespace pictures {

cv::Mat random(int width, int height, std::uint64_t seed)
{
    cv::Mat picture(height, width, CV_8UC1);
    cv::RNG(seed).fill(picture, cv::RNG::UNIFORM, 0, 256);
    return picture;
}

cv::Mat randomBlackAndWhite(int width, int height, std::uint64_t seed)
{
    return binary(random(width, height, seed), 127);
}

cv::Mat cells(int width, int height, std::uint64_t seed)
{
    cv::RNG rng(seed);
    cv::Mat picture(height, width, CV_8UC1);
    rng.fill(picture, cv::RNG::NORMAL, 12, 2);
    const int count = width * height / 8000 + 3;
    for (int i = 0; i < count; ++i) {
        const cv::Point centre(rng.uniform(0, width), rng.uniform(0, height));
        cv::circle(picture, centre, rng.uniform(3, 14), cv::Scalar(rng.uniform(18, 200)), cv::FILLED);
    }
    cv::GaussianBlur(picture, picture, cv::Size(5, 5), 1.2);
    return picture;
}

cv::Mat checkerboard(int width, int height, int side)
{
    cv::Mat picture(height, width, CV_8UC1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.at<uchar>(y, x) = (x / side + y / side) % 2 == 0 ? 0 : 255;
    }
    return picture;
}

cv::Mat uniform(int width, int height, int grey)
{
    return cv::Mat(height, width, CV_8UC1, cv::Scalar(grey));
}

cv::Mat singlePixel(int width, int height, cv::Point place, int grey)
{
    cv::Mat picture = uniform(width, height, 0);
    picture.at<uchar>(place) = static_cast<uchar>(grey);
    return picture;
}

cv::Mat moved(const cv::Mat& picture, double right, double down)
{
    const cv::Mat shift = (cv::Mat_<double>(2, 3) << 1, 0, right, 0, 1, down);
    cv::Mat result;
    cv::warpAffine(picture, result, shift, picture.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    return result;
}

cv::Mat binary(const cv::Mat& picture, int threshold)
{
    cv::Mat result;
    cv::threshold(picture, result, threshold, 255.0, cv::THRESH_BINARY);
    return result;
}

} // namespace pictures

bool sameBits(double a, double b)
{
    return bitsOf<std::uint64_t>(a) == bitsOf<std::uint64_t>(b);
}

bool sameBits(float a, float b)
{
    return bitsOf<std::uint32_t>(a) == bitsOf<std::uint32_t>(b);
}
