#include "algorithms/focus_literal.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace focus_literal {

double neonTRILLOM(const cv::Mat& image, double alpha, int width, int height)
{
    cv::Mat result(std::max(height, 0), std::max(width, 0), CV_8UC1);
    result = image.clone();
    const double m = cv::mean(image)[0];
    const double floor = alpha * m;
    // Sizes beyond the matrix would read past its end.
    const int rows = std::min(height, image.rows);
    const int columns = std::min(width, image.cols);
    for (int row = 0; row < rows; ++row) {
        const uchar* from = image.ptr<uchar>(row);
        uchar* to = result.ptr<uchar>(row);
        for (int column = 0; column < columns; ++column)
            to[column] = cv::saturate_cast<uchar>(from[column] - floor);
    }
    return cv::mean(result)[0];
}

double varianceOfLaplacian(const cv::Mat& image)
{
    cv::Mat lap;
    cv::Laplacian(image, lap, CV_64F, 1, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::Scalar mean;
    cv::Scalar stddev;
    cv::meanStdDev(lap, mean, stddev);
    return stddev[0] * stddev[0];
}

double tenengrad(const cv::Mat& image, int ksize)
{
    cv::Mat gx;
    cv::Mat gy;
    cv::Sobel(image, gx, CV_64F, 1, 0, ksize, 1.0, 0.0, cv::BORDER_DEFAULT);
    cv::Sobel(image, gy, CV_64F, 0, 1, ksize, 1.0, 0.0, cv::BORDER_DEFAULT);
    const cv::Mat fm = gx.mul(gx) + gy.mul(gy);
    return cv::mean(fm)[0];
}

} // namespace focus_literal
