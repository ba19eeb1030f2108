#include "simulator/optics/CellSlide.h"

#include "simulator/optics/Random.h"
#include "simulator/optics/ScenePainter.h"
#include "simulator/optics/SlideContents.h"

#include <cmath>

namespace qr9::optics {

namespace {

// The chamber is laid out in squares with a cell in each at most, so that cells seldom lie on each other.
constexpr double kSquareUm = 40.0;
constexpr int kSquareRows
    = 13; // to either side of the middle: 520 um, more than a frame at 3.90 with its blur
constexpr double kSquaresPerFrame = 1200.0 * 900.0 / (kSquareUm * kSquareUm);
constexpr double kDensityKnotUm = 1500.0; // the density changes smoothly from knot to knot
constexpr double kPairShare = 0.07; // of the cells have a daughter at their side

constexpr double kMarkClearUm = 110.0; // the tray's mark stays free of cells and dust

constexpr double kDustSquareUm = 220.0;
constexpr int kDustRows = 3;
constexpr double kDustShare = 0.4;
constexpr double kFibreShare = 0.12; // of the dust

constexpr std::uint64_t kCellKey = 0xCE11;
constexpr std::uint64_t kDensityKey = 0xDE45;
constexpr std::uint64_t kDustKey = 0xD057;

int squareOf(double um, double squareUm)
{
    return static_cast<int>(std::floor(um / squareUm));
}

std::uint64_t keyOf(std::uint64_t what, std::uint32_t seed, Slide slide, int i, int j)
{
    const std::uint64_t place = joinKeys(joinKeys(what, seed), static_cast<std::uint64_t>(slide));
    return joinKeys(joinKeys(place, static_cast<std::uint64_t>(i)), static_cast<std::uint64_t>(j));
}

const SlideContents* contentsOf(Slide slide)
{
    for (const SlideContents& contents : kSlideContents) {
        if (contents.slide == slide) {
            return &contents;
        }
    }
    return nullptr;
}

const SlideZone* zoneAt(Slide slide, double u)
{
    for (const SlideZone& zone : kSlideZones) {
        if (zone.slide == slide && u >= zone.fromMm * 1000.0 && u < zone.toMm * 1000.0) {
            return &zone;
        }
    }
    return nullptr;
}

double cellsPerFrame(std::uint32_t seed, const SlideContents& contents, double u)
{
    const int knot = squareOf(u, kDensityKnotUm);
    const double part = u / kDensityKnotUm - knot;
    const double before = Random(keyOf(kDensityKey, seed, contents.slide, knot, 0)).fraction();
    const double after = Random(keyOf(kDensityKey, seed, contents.slide, knot + 1, 0)).fraction();
    return contents.sparsest + (contents.densest - contents.sparsest) * (before + (after - before) * part);
}

bool nearTrayMark(cv::Point2d place)
{
    return place.dot(place) < kMarkClearUm * kMarkClearUm;
}

/// A direction, evenly spread, as a vector of length one; without sines, which differ between machines.
cv::Point2d direction(Random& random)
{
    for (;;) {
        const double x = random.between(-1.0, 1.0);
        const double y = random.between(-1.0, 1.0);
        const double square = x * x + y * y;
        if (square > 0.01 && square <= 1.0) {
            const double length = std::sqrt(square);
            return { x / length, y / length };
        }
    }
}

Cell cellAt(Random& random, const SlideContents& contents, cv::Point2d centre, bool stained)
{
    Cell cell;
    cell.centre = centre;
    const double size = (random.fraction() + random.fraction()) / 2.0; // middling sizes are the commonest
    cell.radius = (contents.smallestUm + (contents.largestUm - contents.smallestUm) * size) / 2.0;
    cell.transmission = random.between(0.37, 0.45);
    const bool gfp = random.fraction() < contents.gfpShare;
    const bool rfp = random.fraction() < contents.rfpShare;
    const double gfpBrightness = random.between(0.8, 1.2);
    const double rfpBrightness = random.between(0.8, 1.2);
    cell.gfp = gfp && stained ? gfpBrightness : 0.0;
    cell.rfp = rfp && stained ? rfpBrightness : 0.0;
    return cell;
}

void addCellsOfSquare(
    std::vector<Cell>& cells, std::uint32_t seed, const SlideContents& contents, int i, int j)
{
    Random random(keyOf(kCellKey, seed, contents.slide, i, j));
    const double chance = random.fraction();
    const double u = (i + random.fraction()) * kSquareUm;
    const double v = (j + random.fraction()) * kSquareUm;
    const SlideZone* zone = zoneAt(contents.slide, u);
    const double density = zone != nullptr ? zone->cellsPerFrame : cellsPerFrame(seed, contents, u);
    if (chance * kSquaresPerFrame * (1.0 + kPairShare) >= density || nearTrayMark({ u, v })) {
        return;
    }
    const bool stained = zone == nullptr || zone->stained;
    const Cell cell = cellAt(random, contents, { u, v }, stained);
    cells.push_back(cell);
    if (random.fraction() < kPairShare) {
        Cell daughter = cellAt(random, contents, { u, v }, stained);
        daughter.centre += direction(random) * (0.95 * (cell.radius + daughter.radius));
        cells.push_back(daughter);
    }
}

void paintBrightFieldCell(ScenePainter& painter, const Cell& cell)
{
    constexpr double kRimHeight = 0.14; // the halo of light that a cell bends outwards
    constexpr double kRimWidthUm = 2.2;
    constexpr double kCentreLift = 0.1; // its middle is a little lighter than its edge
    const double reachUm = cell.radius + kRimWidthUm + 1.0 / painter.pixelsPerUm();
    painter.dim(cell.centre, cell.centre, reachUm, [&](double distanceUm) {
        const double covered = painter.coverage(distanceUm, cell.radius);
        const double part = std::min(distanceUm / cell.radius, 1.0);
        const double inside = cell.transmission + kCentreLift * (1.0 - part * part);
        const double fromRim = std::abs(distanceUm - cell.radius - kRimWidthUm / 2.0) / (kRimWidthUm / 2.0);
        const double rim = 1.0 + kRimHeight * std::max(0.0, 1.0 - fromRim);
        return covered * inside + (1.0 - covered) * rim;
    });
}

void paintGlowingCell(ScenePainter& painter, const Cell& cell, double brightness)
{
    constexpr double kEdgeBrightness = 0.75; // of the middle: a stained ball is thinner at its edge
    const double radius = 0.95 * cell.radius; // the stain fills the cell but for its wall
    painter.glow(cell.centre, radius + 1.0 / painter.pixelsPerUm(), [&](double distanceUm) {
        const double part = std::min(distanceUm / radius, 1.0);
        const double thickness = kEdgeBrightness + (1.0 - kEdgeBrightness) * std::sqrt(1.0 - part * part);
        return brightness * thickness * painter.coverage(distanceUm, radius);
    });
}

/// A speck is a short crumpled stroke, a fibre a long one that bends a little at every piece.
void paintDustPiece(ScenePainter& painter, Random& random, cv::Point2d at)
{
    const bool fibre = random.fraction() < kFibreShare;
    const double transmission = random.between(0.35, 0.75);
    const double radiusUm = fibre ? random.between(0.6, 1.0) : random.between(0.6, 1.8);
    const double pieceUm = fibre ? random.between(2.0, 5.0) : random.between(0.5, 2.0);
    const double bend = fibre ? 0.45 : 2.0;
    const int pieces = fibre ? 9 : 3;
    cv::Point2d heading = direction(random);
    for (int piece = 0; piece < pieces; ++piece) {
        const cv::Point2d next = at + heading * pieceUm;
        painter.stroke(at, next, radiusUm, transmission);
        at = next;
        heading += direction(random) * bend;
        heading /= std::sqrt(heading.dot(heading) + 1e-6);
    }
}

} // namespace

std::vector<Cell> cellsOf(std::uint32_t seed, Slide slide, double fromUm, double toUm)
{
    std::vector<Cell> cells;
    const SlideContents* contents = contentsOf(slide);
    if (contents == nullptr) {
        return cells;
    }
    for (int i = squareOf(fromUm, kSquareUm) - 1; i <= squareOf(toUm, kSquareUm) + 1; ++i) {
        for (int j = -kSquareRows; j < kSquareRows; ++j) {
            addCellsOfSquare(cells, seed, *contents, i, j);
        }
    }
    return cells;
}

void paintCells(ScenePainter& painter, const std::vector<Cell>& cells, Channel channel)
{
    for (const Cell& cell : cells) {
        if (channel == Channel::BrightField) {
            paintBrightFieldCell(painter, cell);
        } else {
            const double brightness = channel == Channel::Gfp ? cell.gfp : cell.rfp;
            if (brightness > 0.0) {
                paintGlowingCell(painter, cell, brightness);
            }
        }
    }
}

void paintDust(ScenePainter& painter, std::uint32_t seed, Slide slide, double fromUm, double toUm)
{
    for (int i = squareOf(fromUm, kDustSquareUm) - 1; i <= squareOf(toUm, kDustSquareUm) + 1; ++i) {
        for (int j = -kDustRows; j < kDustRows; ++j) {
            Random random(keyOf(kDustKey, seed, slide, i, j));
            const bool there = random.fraction() < kDustShare;
            const double u = (i + random.fraction()) * kDustSquareUm;
            const double v = (j + random.fraction()) * kDustSquareUm;
            if (there && !nearTrayMark({ u, v })) {
                paintDustPiece(painter, random, { u, v });
            }
        }
    }
}

} // namespace qr9::optics
