#pragma once

#include <opencv2/core.hpp>

/// Shift of one image against another in pixels, and the height of its correlation peak, in the sign and on
/// the scale of cv::phaseCorrelate.
struct PhaseShift {
    cv::Point2d shift;
    double response = 0.0;
};

/// Correlates many two-level images with one reference, which is transformed once. The library's own
/// transforms are used and every step between them keeps its order of operations, so that a result has the
/// bits of cv::phaseCorrelate on the thresholded image. Immutable after construction: correlate() may run on
/// several threads at once, each with its own workspace. Owner: the search, for one call.
class PhaseCorrelation {
public:
    /// Memory of one thread of measurements.
    using Workspace = cv::Mat;

    /// Whether a pair of images can be measured here: CV_8UC1, one size, at least 2 x 2, and small enough
    /// that no product of two spectra leaves the range of float.
    static bool accepts(const cv::Mat& reference, const cv::Mat& image);

    /// Transforms `reference`; about 7 ms at 1280 x 960.
    explicit PhaseCorrelation(const cv::Mat& reference);

    /// Memory for correlate(), 5 MB at 1280 x 960; its content means nothing between calls.
    Workspace makeWorkspace() const;

    /// Measures `image` after its pixels above `threshold` became 255 and all others 0. About 14 ms at
    /// 1280 x 960. The image must be accepted together with the reference.
    PhaseShift correlate(const cv::Mat& image, int threshold, Workspace& workspace) const;

private:
    cv::Mat m_reference; // spectrum, packed as cv::dft packs a real image
};
