#include "algorithms/phase_correlation.h"

#include "algorithms/spectrum_kernels.h"

#include <algorithm>
#include <array>
#include <cfloat>

namespace {

/// A bin reaches 255 x pixels, a product of two the square of it, and its magnitude is squared once more:
/// up to this many pixels all of it stays within float.
constexpr int kMostPixels = 1 << 22;
/// Half the side of the square around the peak whose centroid is taken.
constexpr int kCentroidReach = 2;

/// A float image whose rows do not fall on the same cache sets: the transform walks down columns, and a row
/// length that is an even number of cache lines makes these walks evict each other.
cv::Mat makeSpectrumBuffer(const cv::Size& size)
{
    constexpr int kLineFloats = 64 / static_cast<int>(sizeof(float));
    const int lines = (size.width + kLineFloats - 1) / kLineFloats;
    return cv::Mat(size.height, (lines | 1) * kLineFloats, CV_32FC1).colRange(0, size.width);
}

/// A correlation surface, seen with the zero shift moved to its centre. Moving it by index saves the copies.
class CentredSurface {
public:
    explicit CentredSurface(const cv::Mat& surface)
        : m_surface(surface)
        , m_middle(surface.cols / 2, surface.rows / 2)
    {
    }

    float at(int x, int y) const
    {
        return m_surface.ptr<float>(
            stored(y, m_middle.y, m_surface.rows))[stored(x, m_middle.x, m_surface.cols)];
    }

    /// The highest value; of equal ones the first from the top, then from the left.
    cv::Point peak() const
    {
        // Each quarter keeps its inner order when the surface is centred, so that the library's search finds
        // the first place within it.
        cv::Point best;
        double highest = -DBL_MAX;
        for (const Half& vertical : halves(m_middle.y, m_surface.rows)) {
            for (const Half& horizontal : halves(m_middle.x, m_surface.cols)) {
                const cv::Rect quarter(
                    horizontal.stored, vertical.stored, horizontal.length, vertical.length);
                double value = 0.0;
                cv::Point place;
                cv::minMaxLoc(m_surface(quarter), nullptr, &value, nullptr, &place);
                place += cv::Point(horizontal.centred, vertical.centred);
                const bool earlier = place.y < best.y || (place.y == best.y && place.x < best.x);
                if (value > highest || (value == highest && earlier)) {
                    best = place;
                    highest = value;
                }
            }
        }
        return best;
    }

private:
    /// One half of an axis: where it is stored, and where it lies when the surface is centred.
    struct Half {
        int stored;
        int length;
        int centred;
    };

    static std::array<Half, 2> halves(int middle, int size)
    {
        return { Half { size - middle, middle, 0 }, Half { 0, size - middle, middle } };
    }

    /// Where a centred coordinate is stored.
    static int stored(int centred, int middle, int size)
    {
        return centred < middle ? centred + size - middle : centred - middle;
    }

    const cv::Mat& m_surface;
    const cv::Point m_middle;
};

/// Place and sum of the peak's surroundings: its centroid to a fraction of a pixel.
PhaseShift measurePeak(const cv::Mat& surface)
{
    const CentredSurface centred(surface);
    const cv::Point peak = centred.peak();
    const int lastRow = std::min(peak.y + kCentroidReach, surface.rows - 1);
    const int lastColumn = std::min(peak.x + kCentroidReach, surface.cols - 1);

    cv::Point2d centroid;
    double sum = 0.0;
    for (int y = std::max(peak.y - kCentroidReach, 0); y <= lastRow; ++y) {
        for (int x = std::max(peak.x - kCentroidReach, 0); x <= lastColumn; ++x) {
            const double value = centred.at(x, y);
            centroid.x += x * value;
            centroid.y += y * value;
            sum += value;
        }
    }

    PhaseShift result;
    result.response = sum / (surface.rows * surface.cols);
    sum += DBL_EPSILON;
    centroid.x /= sum;
    centroid.y /= sum;
    result.shift = cv::Point2d(surface.cols / 2.0, surface.rows / 2.0) - centroid;
    return result;
}

} // namespace

bool PhaseCorrelation::accepts(const cv::Mat& reference, const cv::Mat& image)
{
    return reference.type() == CV_8UC1 && image.type() == CV_8UC1 && reference.dims == 2 && image.dims == 2
        && reference.size() == image.size() && reference.rows > 1 && reference.cols > 1
        && reference.cols <= kMostPixels / reference.rows;
}

PhaseCorrelation::PhaseCorrelation(const cv::Mat& reference)
    : m_reference(
        makeSpectrumBuffer({ cv::getOptimalDFTSize(reference.cols), cv::getOptimalDFTSize(reference.rows) }))
{
    m_reference.setTo(0);
    cv::Mat image = m_reference(cv::Rect(0, 0, reference.cols, reference.rows));
    reference.convertTo(image, CV_32F);
    cv::dft(m_reference, m_reference, cv::DFT_REAL_OUTPUT);
}

PhaseCorrelation::Workspace PhaseCorrelation::makeWorkspace() const
{
    return makeSpectrumBuffer(m_reference.size());
}

PhaseShift PhaseCorrelation::correlate(const cv::Mat& image, int threshold, Workspace& workspace) const
{
    spectrum_kernels::binaryToFloat(image, threshold, workspace);
    cv::dft(workspace, workspace, cv::DFT_REAL_OUTPUT);
    spectrum_kernels::toNormalisedCrossPower(m_reference, workspace);
    cv::idft(workspace, workspace);
    return measurePeak(workspace);
}
