#include "tests/camera/literal_intensity.h"

#include <opencv2/imgproc.hpp>

#include <vector>

namespace {

using Contours = std::vector<std::vector<cv::Point>>;

Contours contoursOf(const cv::Mat& frame, int offset)
{
    cv::Mat work = frame - cv::Scalar(offset);
    cv::medianBlur(work, work, 3);
    cv::threshold(work, work, 0, 255, 8);
    Contours contours;
    const cv::Mat copy = work.clone();
    cv::findContours(copy, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    return contours;
}

} // namespace

double literal::intensityPerObject(const cv::Mat& frame, int offset)
{
    const Contours contours = contoursOf(frame, offset);
    const std::size_t n = contours.size();
    if (n < 10 || n > 1000)
        return 0.0;
    std::vector<cv::Point2f> centres(n);
    std::vector<float> radii(n);
    float meanRadius = 0.0F;
    for (std::size_t i = 0; i < n; ++i) {
        cv::minEnclosingCircle(contours[i], centres[i], radii[i]);
        meanRadius += radii[i];
    }
    meanRadius /= static_cast<float>(n);

    double sum = 0.0;
    double count = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        if (1.25 * static_cast<double>(meanRadius) > static_cast<double>(radii[i])) {
            cv::Mat mask = cv::Mat::zeros(frame.size(), CV_8UC1);
            cv::drawContours(mask, contours, static_cast<int>(i), cv::Scalar(255), -1);
            cv::Scalar mean;
            cv::Scalar deviation;
            cv::meanStdDev(frame, mean, deviation, mask);
            sum += mean[0];
            count += 1.0;
        }
    }
    return sum / count;
}

double literal::intensityBackground(const cv::Mat& frame, int offset)
{
    const Contours contours = contoursOf(frame, offset);
    cv::Mat work(960, 1280, CV_8UC3);
    cv::cvtColor(frame, work, cv::COLOR_GRAY2BGR);
    if (contours.size() < 10 || contours.size() > 1000)
        return 0.0;
    for (const std::vector<cv::Point>& contour : contours) {
        cv::Point2f centre;
        float radius = 0.0F;
        cv::minEnclosingCircle(contour, centre, radius);
        cv::circle(
            work, centre, static_cast<int>(static_cast<double>(radius) + 3.0), cv::Scalar(0), -1, 8, 0);
    }
    return cv::sum(work)[0] / 1228800.0;
}
