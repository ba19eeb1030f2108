#pragma once

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <vector>

namespace qr9::optics {

class ScenePainter;

/// The target slide: five rows of round marks. In a row the marks are 0.5 mm apart; each row is moved against
/// the one before it by 0.1 mm, like the steps of a vernier, so that at every stage position some row has two
/// marks 1.0 mm apart within the frame. A scale of fine lines runs along either side, and there is a little
/// dirt, but none near a mark.
constexpr double kTargetMarkRadiusUm = 10.0;
constexpr double kTargetMarkSpacingUm = 500.0;
constexpr int kTargetRowCount = 5;

/// One mark of the target slide, in slide coordinates (see GroundTruth.h).
struct TargetMarkPosition {
    int row = 0;
    int column = 0;
    cv::Point2d centreUm;
};

/// The marks whose centres have fromUm <= u <= toUm, by row, then by column.
std::vector<TargetMarkPosition> targetMarkPositions(double fromUm, double toUm);

/// Draws what bright field shows of the target slide between fromUm and toUm onto an evenly bright scene.
void paintTargetSlide(ScenePainter& painter, std::uint32_t seed, double fromUm, double toUm);

} // namespace qr9::optics
