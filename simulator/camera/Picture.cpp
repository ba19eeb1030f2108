#include "simulator/camera/Picture.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>

namespace qr9::sim {

namespace {

cv::Mat cutOut(const cv::Mat& sensor, const CaptureSettings& settings)
{
    const int width = std::min(settings.width, sensor.cols);
    const int height = std::min(settings.height, sensor.rows);
    const int left = settings.bCentreX ? (sensor.cols - width) / 2 : 0;
    const int top = settings.bCentreY ? (sensor.rows - height) / 2 : 0;
    return sensor(cv::Rect(left, top, width, height));
}

/// Gamma and pedestal, where the camera has any.
cv::Mat toned(const cv::Mat& grey, const CaptureSettings& settings)
{
    if (settings.gamma == 1.0 && settings.pedestal == 0.0) {
        return grey;
    }
    cv::Mat table(1, 256, CV_8UC1);
    for (int value = 0; value < 256; ++value) {
        table.at<uchar>(value)
            = cv::saturate_cast<uchar>(255.0 * std::pow(value / 255.0, settings.gamma) + settings.pedestal);
    }
    cv::Mat result;
    cv::LUT(grey, table, result);
    return result;
}

cv::Mat withMargins(const cv::Mat& grey, int rows)
{
    if (rows == 0) {
        return grey;
    }
    cv::Mat result;
    cv::copyMakeBorder(grey, result, rows, rows, 0, 0, cv::BORDER_REPLICATE);
    return result;
}

cv::Mat withDepth(const cv::Mat& grey, int bytesPerPixel)
{
    if (bytesPerPixel == 1) {
        return grey;
    }
    cv::Mat result;
    grey.convertTo(result, CV_16UC1, 16.0); // the top eight of twelve bits
    return result;
}

} // namespace

Picture develop(const cv::Mat& sensor, const CaptureSettings& settings)
{
    const cv::Mat grey = withDepth(
        withMargins(toned(cutOut(sensor, settings), settings), settings.marginRows), settings.bytesPerPixel);
    Picture picture { grey.cols, grey.rows, settings.bytesPerPixel, {} };
    const int rowBytes = grey.cols * settings.bytesPerPixel;
    picture.bytes.reserve(rowBytes * grey.rows);
    for (int row = 0; row < grey.rows; ++row) {
        picture.bytes.append(grey.ptr<char>(row), rowBytes);
    }
    return picture;
}

} // namespace qr9::sim
