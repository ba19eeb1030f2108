#pragma once

#include <opencv2/core.hpp>

/// Measures by how many pixels the two fluorescence channels stand off from the bright-field picture of the
/// same field, by phase correlation of two-level images. Keeps no state between calls; any thread. Owner:
/// MainWindow, by value.
///
/// All images are CV_8UC1 of one common size. `shift` takes four floats, GF X, GF Y, RF X, RF Y, in pixels
/// and in the sign of cv::phaseCorrelate; `reliability` takes the responses for GF and RF, where larger means
/// a sharper correlation peak. Images of different size end in the library's exception.
class alg_pixelShift {
public:
    alg_pixelShift();

    /// One measurement: both channels are thresholded (above becomes 255) and correlated with `reference`.
    /// Blocks for about 30 ms at 1280 x 960.
    void phaseCorrelatePixelShift(cv::Mat& reference, cv::Mat& gf, cv::Mat& rf, int thresholdGF,
        int thresholdRF, float* shift, float* reliability);

    /// Tries the thresholds 15, 20 .. 45 and returns for each channel by itself the measurement of the best
    /// response, the lower threshold among equals. A channel whose response never rises above 0 leaves its
    /// entries of `shift` and `reliability` as the caller set them. Blocks for about 0.1 s at 1280 x 960 on
    /// two cores, for 0.2 s on one.
    void phaseCorrelatePixelShift_adaptive(
        cv::Mat& reference, cv::Mat& gf, cv::Mat& rf, float* shift, float* reliability);

    /// Threshold from the image's own statistics: mean plus (step + 1) standard deviations, rounded. The step
    /// is half of `th_idx` in mode 1, a quarter of it in mode 2, and 1 in every other mode.
    double setFluorescenceThreshold(cv::Mat& image, int mode, int th_idx);

    /// Size in pixels of the frames that the system passes; the measurements take the size of their images.
    int m_width;
    int m_height;
};
