#include "algorithms/alg_autoFocus.h"

#include "algorithms/focus_kernels.h"
#include "algorithms/focus_literal.h"

#include <cstring>

namespace {

constexpr double kNeonAlpha = 2.0;
constexpr int kTenengradAperture = 3;

/// Whether the kernels may read the pixels as one packed 8-bit frame.
bool isPackedFrame(const cv::Mat& image)
{
    return !image.empty() && image.dims == 2 && image.type() == CV_8UC1 && image.isContinuous();
}

/// Whether the kernels see the same neighbourhood as the library's filters: at the border of a part of a
/// larger matrix those look at the pixels outside of the part.
bool isWholePackedFrame(const cv::Mat& image)
{
    if (!isPackedFrame(image))
        return false;
    cv::Size whole;
    cv::Point offset;
    image.locateROI(whole, offset);
    return whole == image.size() && offset == cv::Point(0, 0);
}

} // namespace

double alg_autoFocus::get_focusValue(ALG_focus mode, unsigned char* image, int width, int height) const
{
    cv::Mat frame(height, width, CV_8UC1);
    if (!frame.empty())
        std::memcpy(frame.data, image, frame.total());

    switch (mode) {
    case ALG_FOCUS_NEON_TRILLOM:
        return neonTRILLOM(frame, kNeonAlpha, width, height);
    case ALG_FOCUS_LAPLACIAN:
        return varianceOfLaplacian(frame);
    case ALG_FOCUS_TENENGRAD:
        return tenengrad(frame, kTenengradAperture);
    }
    return -1.0;
}

double alg_autoFocus::neonTRILLOM(const cv::Mat& image, double alpha, int width, int height) const
{
    if (isPackedFrame(image) && width == image.cols && height == image.rows)
        return focus_kernels::meanAboveMultipleOfMean(image.data, image.total(), alpha);
    return focus_literal::neonTRILLOM(image, alpha, width, height);
}

double alg_autoFocus::varianceOfLaplacian(const cv::Mat& image) const
{
    if (isWholePackedFrame(image))
        return focus_kernels::varianceOfLaplacian(image.data, image.cols, image.rows);
    return focus_literal::varianceOfLaplacian(image);
}

double alg_autoFocus::tenengrad(const cv::Mat& image, int ksize) const
{
    if (ksize == kTenengradAperture && isWholePackedFrame(image))
        return focus_kernels::meanSquaredSobel(image.data, image.cols, image.rows);
    return focus_literal::tenengrad(image, ksize);
}
