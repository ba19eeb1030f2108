#include "algorithms/overlay.h"

#include "algorithms/overlay_kernels.h"
#include "algorithms/overlay_literal.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr int kRaisedBy = 100; // grey values, so that weak fluorescence wins over the bright-field ground
const cv::Size frameSize(1280, 960);
/// Rows that are merged at a time: the planes of the colours stay in the cache.
constexpr int kRowsAtOnce = 16;
/// Shifts beyond this, in pixels, and pictures larger than this are left to the library.
constexpr float kFurthestShift = 4096.0F;
constexpr int kLargestSide = 16384;

/// Where a pixel of a moved row or column comes from: whole pixels and 32nds beyond them.
struct Origin {
    int whole;
    int fraction;
};

/// As the library's affine warp rounds: to 1024ths, ties to even, then half a 32nd up and down to 32nds.
Origin originOf(int coordinate, float shift)
{
    const int fine = cv::saturate_cast<int>((coordinate - static_cast<double>(shift)) * 1024) + 16;
    const int parts = fine >> 5;
    return { parts >> 5, parts & (overlay_kernels::kFractionsPerPixel - 1) };
}

/// One fluorescence channel, moved and raised row by row.
class MovedChannel {
public:
    MovedChannel(const cv::Mat& picture, OverlayShift shift, int raise)
        : m_picture(picture)
        , m_shiftY(shift.y)
        , m_raise(raise)
        , m_column(originOf(0, shift.x))
        , m_blended(static_cast<std::size_t>(picture.cols) + 1, 0)
    {
    }

    /// Writes the larger of `ground` and this channel's pixel for row `row` of the moved picture.
    void overlay(int row, const std::uint8_t* ground, std::uint8_t* overlaid)
    {
        const Origin origin = originOf(row, m_shiftY);
        const int width = m_picture.cols;
        // m_blended[0] stands for column m_column.whole; outside of the picture it stays 0.
        const int first = std::clamp(-m_column.whole, 0, width + 1);
        const int end = std::clamp(width - m_column.whole, first, width + 1);
        const bool hasUpper = isInside(origin.whole);
        const bool hasLower = isInside(origin.whole + 1);
        if ((hasUpper || hasLower) && first < end) {
            const int upper = hasUpper ? origin.whole : origin.whole + 1;
            const int lower = hasLower ? origin.whole + 1 : origin.whole;
            overlay_kernels::blendRows(m_picture.ptr(upper) + m_column.whole + first,
                m_picture.ptr(lower) + m_column.whole + first,
                hasUpper ? overlay_kernels::kFractionsPerPixel - origin.fraction : 0,
                hasLower ? origin.fraction : 0, m_raise, m_blended.data() + first, end - first);
        } else {
            std::fill(m_blended.begin(), m_blended.end(), std::uint16_t { 0 });
        }
        overlay_kernels::overlayRow(m_blended.data(), m_column.fraction, ground, overlaid, width);
    }

private:
    bool isInside(int row) const { return row >= 0 && row < m_picture.rows; }

    const cv::Mat& m_picture;
    const float m_shiftY; // px
    const int m_raise; // grey values
    const Origin m_column; // of column 0
    std::vector<std::uint16_t> m_blended; // 32nds of grey values, one row and a pixel
};

bool isPlain(const cv::Mat& picture, const cv::Size& size)
{
    return picture.type() == CV_8UC1 && picture.dims == 2 && picture.size() == size
        && std::max(size.width, size.height) <= kLargestSide;
}

bool isNear(OverlayShift shift)
{
    return std::abs(shift.x) <= kFurthestShift && std::abs(shift.y) <= kFurthestShift;
}

cv::Mat greyPicture(const cv::Mat& brightField)
{
    if (brightField.empty())
        return cv::Mat(frameSize, CV_8UC3, cv::Scalar::all(0));
    cv::Mat result;
    cv::merge(std::vector<cv::Mat>(3, brightField), result);
    return result;
}

} // namespace

cv::Mat composeOverlay(const cv::Mat& brightField, const cv::Mat& gfp, const cv::Mat& rfp,
    OverlayShift shiftGFP, OverlayShift shiftRFP, bool shifted)
{
    if (brightField.empty() || gfp.empty() || rfp.empty())
        return greyPicture(brightField);
    if (!shifted)
        shiftGFP = shiftRFP = {};
    const cv::Size size = brightField.size();
    if (!isPlain(brightField, size) || !isPlain(gfp, size) || !isPlain(rfp, size) || !isNear(shiftGFP)
        || !isNear(shiftRFP))
        return overlay_literal::compose(brightField, gfp, rfp, shiftGFP, shiftRFP, shifted);

    const int raise = shifted ? kRaisedBy : 0;
    MovedChannel green(gfp, shiftGFP, raise);
    MovedChannel red(rfp, shiftRFP, raise);
    cv::Mat greenRows(kRowsAtOnce, size.width, CV_8UC1);
    cv::Mat redRows(kRowsAtOnce, size.width, CV_8UC1);
    cv::Mat result(size, CV_8UC3);
    for (int start = 0; start < size.height; start += kRowsAtOnce) {
        const int count = std::min(kRowsAtOnce, size.height - start);
        const cv::Mat ground = brightField.rowRange(start, start + count);
        for (int row = 0; row < count; ++row) {
            green.overlay(start + row, ground.ptr(row), greenRows.ptr(row));
            red.overlay(start + row, ground.ptr(row), redRows.ptr(row));
        }
        cv::merge(std::vector<cv::Mat> { redRows.rowRange(0, count), greenRows.rowRange(0, count), ground },
            result.rowRange(start, start + count));
    }
    return result;
}
