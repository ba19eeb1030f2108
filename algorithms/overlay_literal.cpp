#include "algorithms/overlay_literal.h"

#include <opencv2/imgproc.hpp>

#include <vector>

namespace overlay_literal {

namespace {

cv::Mat moved(const cv::Mat& picture, OverlayShift shift)
{
    const cv::Mat matrix = (cv::Mat_<float>(2, 3) << 1, 0, shift.x, 0, 1, shift.y);
    cv::Mat result(picture.size(), CV_8UC1);
    cv::warpAffine(
        picture, result, matrix, picture.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar(0));
    return result;
}

} // namespace

cv::Mat compose(const cv::Mat& brightField, const cv::Mat& gfp, const cv::Mat& rfp, OverlayShift shiftGFP,
    OverlayShift shiftRFP, bool shifted)
{
    const cv::Mat bf = brightField.clone();
    cv::Mat gf;
    cv::Mat rf;
    if (shifted) {
        gf = gfp + cv::Scalar(100.0);
        rf = rfp + cv::Scalar(100.0);
    } else {
        gf = gfp.clone();
        rf = rfp.clone();
        shiftGFP = {};
        shiftRFP = {};
    }
    const cv::Mat gfMoved = moved(gf, shiftGFP);
    const cv::Mat rfMoved = moved(rf, shiftRFP);
    const cv::Mat maskG = gfMoved > bf;
    const cv::Mat maskR = rfMoved > bf;
    const cv::Mat blue = bf.clone();
    cv::Mat green = bf.clone();
    cv::Mat red = bf.clone();
    gfMoved.copyTo(green, maskG);
    rfMoved.copyTo(red, maskR);
    cv::Mat result;
    cv::merge(std::vector<cv::Mat> { red, green, blue }, result);
    return result;
}

} // namespace overlay_literal
