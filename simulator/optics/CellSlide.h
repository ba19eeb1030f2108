#pragma once

#include "simulator/optics/OpticalState.h"

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <vector>

namespace qr9::optics {

class ScenePainter;

/// One cell in a counting chamber. Lengths in um, in slide coordinates (see GroundTruth.h).
struct Cell {
    cv::Point2d centre;
    double radius = 0.0;
    double transmission = 0.0; ///< bright field, near its edge
    double gfp = 0.0; ///< brightness in fluorescence, 1 is average, 0 is unstained
    double rfp = 0.0;
};

/// The cells between fromUm and toUm along the slide, over the height that a camera can see. What lies at a
/// place does not depend on the range asked for: the slide is one continuous thing, laid out square by square
/// from the seed. None for the target and the empty slide.
std::vector<Cell> cellsOf(std::uint32_t seed, Slide slide, double fromUm, double toUm);

/// Draws the cells as the channel shows them: dark with a thin bright rim on an evenly bright scene in bright
/// field, or glowing on a dark scene in fluorescence, where unstained ones do not show.
void paintCells(ScenePainter& painter, const std::vector<Cell>& cells, Channel channel);

/// Draws dust specks and fibres, which only bright field shows.
void paintDust(ScenePainter& painter, std::uint32_t seed, Slide slide, double fromUm, double toUm);

} // namespace qr9::optics
