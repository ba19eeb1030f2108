#pragma once

#include <opencv2/core.hpp>

#include <utility>
#include <vector>

/// Selector of the sharpness measure.
enum ALG_focus : unsigned int {
    ALG_FOCUS_NEON_TRILLOM = 0, ///< mean of what rises above twice the frame's mean: fluorescence
    ALG_FOCUS_LAPLACIAN = 1, ///< variance of the Laplacian: bright field
    ALG_FOCUS_TENENGRAD = 2 ///< mean squared Sobel gradient
};

/// Turns one 8-bit monochrome frame into one number; a larger value means a sharper image.
/// Knows nothing of stage or search. The measures keep no state and may be called from any thread;
/// m_samples belongs to the search that fills it. Owner: MainWindow, by value.
class alg_autoFocus {
public:
    /// Measures a tightly packed frame of `width` x `height` bytes, rows from top to bottom. The frame is
    /// copied for the call and not changed; the caller keeps it. Returns -1.0 for an unknown `mode`, a
    /// value that no measure yields, so that it never wins a search. Blocks for well under a
    /// millisecond at 1280 x 960.
    double get_focusValue(ALG_focus mode, unsigned char* image, int width, int height) const;

    /// Mean over all pixels of `image` after `alpha` times the frame's mean has been taken off the pixels
    /// of the first `height` rows and `width` columns (rounded, ties to even, saturated to 0..255).
    /// Pixels beyond them count as they are. `image` is CV_8UC1.
    double neonTRILLOM(const cv::Mat& image, double alpha, int width, int height) const;

    /// Square of the standard deviation of the 3 x 3 Laplacian (centre -4), borders mirrored. The bits of
    /// the library's own result for every matrix type; CV_8UC1 frames are computed by a faster loop.
    double varianceOfLaplacian(const cv::Mat& image) const;

    /// Mean of the squared Sobel gradient with an aperture of `ksize`, borders mirrored, no threshold and
    /// no root. The bits of the library's own result; CV_8UC1 with `ksize` 3 is computed by a faster loop.
    double tenengrad(const cv::Mat& image, int ksize) const;

    /// Samples of the running search: Z position in motor steps, focus value. Written by the search alone.
    std::vector<std::pair<int, double>> m_samples;
};
