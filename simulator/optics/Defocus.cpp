#include "simulator/optics/Defocus.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace qr9::optics {

namespace {

constexpr double kSharpest = 0.7; // px
constexpr double kBlurPerStep = 0.005; // px per Z step, far from focus
constexpr double kWidest = 32.0; // px
constexpr double kWidestAtFullSize
    = 3.0; // px; above it the picture has no detail that a reduced copy would lose
constexpr int kMostReduction = 8;

void gaussian(const cv::Mat& from, double sigma, cv::Mat& to)
{
    const int size = 2 * static_cast<int>(std::ceil(3.5 * sigma)) + 1;
    cv::GaussianBlur(from, to, { size, size }, sigma, sigma, cv::BORDER_REPLICATE);
}

} // namespace

double blurOf(double stepsFromFocus)
{
    const double defocus = kBlurPerStep * stepsFromFocus;
    return std::min(std::sqrt(kSharpest * kSharpest + defocus * defocus), kWidest);
}

void blurScene(const cv::Mat& scene, double sigma, cv::Mat& blurred)
{
    int reduction = 1;
    while (reduction < kMostReduction && sigma > kWidestAtFullSize * reduction) {
        reduction *= 2;
    }
    if (reduction == 1) {
        gaussian(scene, sigma, blurred);
        return;
    }
    // Reducing averages blocks, enlarging interpolates linearly; both blur too. Variances add: what is left
    // for the Gaussian is the wanted variance less (f^2 - 1) / 12 for the blocks and f^2 / 6 + 1 / 12 for the
    // lines.
    const double square = static_cast<double>(reduction) * reduction;
    const double left = (sigma * sigma - (square - 1.0) / 12.0 - square / 6.0 - 1.0 / 12.0) / square;
    cv::Mat reduced;
    cv::Mat reducedBlurred;
    cv::resize(scene, reduced, { scene.cols / reduction, scene.rows / reduction }, 0.0, 0.0, cv::INTER_AREA);
    gaussian(reduced, std::sqrt(left), reducedBlurred);
    cv::resize(reducedBlurred, blurred, scene.size(), 0.0, 0.0, cv::INTER_LINEAR_EXACT);
}

} // namespace qr9::optics
