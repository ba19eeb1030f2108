#pragma once

#include <opencv2/core.hpp>

/// The two passes of a phase correlation between the library's transforms, each in one sweep over its buffer.
/// Same bits as the library's own sequence of calls. No state, any thread.
namespace spectrum_kernels {

/// Writes 255 where `image` (CV_8UC1) lies above `threshold` and 0 elsewhere into the top left of `binary`
/// (CV_32FC1, at least as large); the rest of `binary` becomes 0.
void binaryToFloat(const cv::Mat& image, int threshold, cv::Mat& binary);

/// Replaces `spectrum` by the phases of `reference` times the conjugate of `spectrum`. Both are spectra of
/// real images as cv::dft packs them: CV_32FC1, one size, at least 2 x 2.
void toNormalisedCrossPower(const cv::Mat& reference, cv::Mat& spectrum);

} // namespace spectrum_kernels
