#include "simulator/optics/TargetSlide.h"

#include "simulator/optics/Random.h"
#include "simulator/optics/ScenePainter.h"

#include <cmath>

namespace qr9::optics {

namespace {

constexpr double kRowSpacingUm = 160.0; // across, v
constexpr double kRowStepUm = 100.0; // along, u
constexpr double kMarkTransmission = 0.22; // well under the finder's grey 95, also in a dim corner

constexpr double kScaleV = 410.0; // middle of the scale lines, on both sides of the middle
constexpr double kScaleSpacingUm = 50.0;
constexpr double kScaleLineRadiusUm = 1.5;
constexpr double kScaleShortUm = 10.0; // half lengths; every tenth line is a long one
constexpr double kScaleLongUm = 18.0;
constexpr double kScaleTransmission = 0.35;

constexpr double kDirtSquareUm = 150.0; // one piece of dirt at most in each square
constexpr double kDirtShare = 0.45; // of the squares have one
constexpr double kDirtClearUm = 45.0; // from the middle of a mark: outside of the finder's window
constexpr int kDirtRows = 4; // squares to either side of the middle

int squareOf(double um, double squareUm)
{
    return static_cast<int>(std::floor(um / squareUm));
}

bool nearMark(cv::Point2d placeUm)
{
    for (const TargetMarkPosition& mark :
        targetMarkPositions(placeUm.x - kTargetMarkSpacingUm, placeUm.x + kTargetMarkSpacingUm)) {
        const cv::Point2d away = mark.centreUm - placeUm;
        if (away.dot(away) < kDirtClearUm * kDirtClearUm) {
            return true;
        }
    }
    return false;
}

void paintScale(ScenePainter& painter, double fromUm, double toUm)
{
    for (int i = squareOf(fromUm, kScaleSpacingUm); i <= squareOf(toUm, kScaleSpacingUm) + 1; ++i) {
        const double half = i % 10 == 0 ? kScaleLongUm : kScaleShortUm;
        const double u = i * kScaleSpacingUm;
        for (const double v : { -kScaleV, kScaleV }) {
            painter.stroke({ u, v - half }, { u, v + half }, kScaleLineRadiusUm, kScaleTransmission);
        }
    }
}

void paintDirt(ScenePainter& painter, std::uint32_t seed, double fromUm, double toUm)
{
    for (int i = squareOf(fromUm, kDirtSquareUm); i <= squareOf(toUm, kDirtSquareUm); ++i) {
        for (int j = -kDirtRows; j < kDirtRows; ++j) {
            Random random(joinKeys(joinKeys(joinKeys(seed, 0xD127), static_cast<std::uint64_t>(i)),
                static_cast<std::uint64_t>(j)));
            const bool there = random.fraction() < kDirtShare;
            const double u = (i + random.fraction()) * kDirtSquareUm;
            const double v = (j + random.fraction()) * kDirtSquareUm;
            const double du = random.between(-6.0, 6.0);
            const double dv = random.between(-6.0, 6.0);
            const double radiusUm = random.between(0.8, 2.2);
            const double transmission = random.between(0.55, 0.8);
            if (there && !nearMark({ u, v })) {
                painter.stroke({ u, v }, { u + du, v + dv }, radiusUm, transmission);
            }
        }
    }
}

} // namespace

std::vector<TargetMarkPosition> targetMarkPositions(double fromUm, double toUm)
{
    std::vector<TargetMarkPosition> marks;
    for (int row = 0; row < kTargetRowCount; ++row) {
        const double first = row * kRowStepUm;
        const double v = (row - (kTargetRowCount - 1) / 2.0) * kRowSpacingUm;
        const int begin = static_cast<int>(std::ceil((fromUm - first) / kTargetMarkSpacingUm));
        const int end = static_cast<int>(std::floor((toUm - first) / kTargetMarkSpacingUm));
        for (int column = begin; column <= end; ++column) {
            marks.push_back({ row, column, { first + column * kTargetMarkSpacingUm, v } });
        }
    }
    return marks;
}

void paintTargetSlide(ScenePainter& painter, std::uint32_t seed, double fromUm, double toUm)
{
    paintDirt(painter, seed, fromUm, toUm);
    paintScale(painter, fromUm, toUm);
    for (const TargetMarkPosition& mark : targetMarkPositions(fromUm, toUm)) {
        painter.stroke(mark.centreUm, mark.centreUm, kTargetMarkRadiusUm, kMarkTransmission);
    }
}

} // namespace qr9::optics
