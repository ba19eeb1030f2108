#include "camera/intensity.h"

#include <opencv2/imgproc.hpp>

namespace intensity {

namespace {

constexpr std::size_t kFewestObjects = 10;
constexpr std::size_t kMostObjects = 1000;
/// As a multiple of the mean radius; objects from here on do not count.
constexpr double kLargestRadius = 1.25;
constexpr double kBlankedMargin = 3.0; ///< px around an object that are not background either
constexpr double kFrameArea = 1228800.0; ///< px, also where objects were taken out

/// The grey levels of the binary picture.
constexpr double kForeground = 255.0;

cv::Mat binarise(const cv::Mat& frame, int offset)
{
    cv::Mat work;
    cv::subtract(frame, cv::Scalar(offset), work);
    cv::medianBlur(work, work, 3);
    cv::threshold(work, work, 0.0, kForeground, cv::THRESH_OTSU);
    return work;
}

float meanRadius(const Objects& objects)
{
    float sum = 0.0F;
    for (const Object& object : objects)
        sum += object.radius;
    return sum / static_cast<float>(objects.size());
}

/// Mean of `frame` inside of `outline`. The mask is as large as the object and not as the frame: the sums are
/// whole numbers, so that the result has the same bits, and the time goes with the object's area.
double meanInside(const cv::Mat& frame, const std::vector<cv::Point>& outline, cv::Mat& scratch)
{
    const cv::Rect box = cv::boundingRect(outline);
    cv::Mat mask = scratch(cv::Rect(cv::Point(), box.size()));
    mask.setTo(cv::Scalar(0));
    const std::vector<cv::Mat> contours { cv::Mat(outline) }; // a header on the outline, no copy
    cv::drawContours(
        mask, contours, 0, cv::Scalar(kForeground), cv::FILLED, cv::LINE_8, cv::noArray(), 0, -box.tl());
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::meanStdDev(frame(box), mean, deviation, mask);
    return mean[0];
}

} // namespace

Objects findObjects(const cv::Mat& frame, int offset)
{
    if (frame.empty())
        return {};
    std::vector<std::vector<cv::Point>> outlines;
    cv::findContours(binarise(frame, offset), outlines, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
    if (outlines.size() < kFewestObjects || outlines.size() > kMostObjects)
        return {};

    Objects objects;
    objects.reserve(outlines.size());
    for (auto& outline : outlines) {
        Object object;
        cv::minEnclosingCircle(outline, object.centre, object.radius);
        object.outline = std::move(outline);
        objects.push_back(std::move(object));
    }
    return objects;
}

double perObject(const cv::Mat& frame, const Objects& objects)
{
    if (objects.empty())
        return 0.0;
    const double limit = kLargestRadius * static_cast<double>(meanRadius(objects));
    cv::Mat scratch(frame.size(), CV_8UC1);
    double sum = 0.0;
    double count = 0.0;
    for (const Object& object : objects) {
        if (limit > static_cast<double>(object.radius)) {
            sum += meanInside(frame, object.outline, scratch);
            count += 1.0;
        }
    }
    return sum / count; // the smallest object always counts
}

double background(const cv::Mat& frame, const Objects& objects)
{
    if (objects.empty())
        return 0.0;
    cv::Mat work = frame.clone();
    for (const Object& object : objects) {
        const cv::Point centre = object.centre; // rounded to the nearest pixel by the library
        const int radius = static_cast<int>(static_cast<double>(object.radius) + kBlankedMargin);
        cv::circle(work, centre, radius, cv::Scalar(0), cv::FILLED, cv::LINE_8, 0);
    }
    return cv::sum(work)[0] / kFrameArea;
}

} // namespace intensity
