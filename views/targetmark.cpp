#include "views/targetmark.h"

#include <opencv2/imgproc.hpp>

namespace {

constexpr double kDarkLimit = 95.0;
constexpr double kWhite = 255.0;
constexpr int kCrossReach = 15;
constexpr int kLabelOffset = 8;
constexpr double kLabelScale = 0.35;

} // namespace

cv::Rect targetmark::searchWindow(cv::Point position, cv::Size frame)
{
    const cv::Rect window(position.x - kSearchBefore, position.y - kSearchBefore, kSearchSize, kSearchSize);
    return window & cv::Rect(cv::Point(), frame);
}

targetmark::Contours targetmark::darkContours(const cv::Mat& source, const cv::Rect& window)
{
    Contours contours;
    if (window.empty())
        return contours;

    cv::Mat binary;
    cv::threshold(source, binary, kDarkLimit, kWhite, cv::THRESH_BINARY_INV);
    cv::medianBlur(binary, binary, 3);
    cv::Mat filtered;
    cv::bilateralFilter(binary, filtered, 5, 95.0, 95.0, cv::BORDER_DEFAULT);
    cv::findContours(filtered(window), contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
    return contours;
}

cv::Point targetmark::center(const std::vector<cv::Point>& contour, const cv::Rect& window)
{
    cv::Point2f center;
    float radius = 0.0F;
    cv::minEnclosingCircle(contour, center, radius);
    return { static_cast<int>(static_cast<float>(window.x) + center.x),
        static_cast<int>(static_cast<float>(window.y) + center.y) };
}

void targetmark::drawPoint(cv::Mat& picture, cv::Point point, const char* label)
{
    const cv::Scalar red(0, 0, 255);
    const cv::Scalar cyan(255, 255, 0);
    const cv::Point across(kCrossReach, 0);
    const cv::Point along(0, kCrossReach);
    cv::line(picture, point - across, point + across, red, 1, cv::LINE_8);
    cv::line(picture, point - along, point + along, red, 1, cv::LINE_8);
    cv::putText(picture, label, point + cv::Point(kLabelOffset, -kLabelOffset), cv::FONT_HERSHEY_SIMPLEX,
        kLabelScale, cyan, 1, cv::LINE_8);
}
