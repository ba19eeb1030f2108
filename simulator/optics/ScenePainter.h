#pragma once

#include <opencv2/core/mat.hpp>
#include <opencv2/core/types.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qr9::optics {

/// One unit of light in a scene: the light that the empty slide lets through in bright field, or that a
/// stained cell of average brightness gives in fluorescence.
constexpr int kLightOne = 16384;

/// Draws round and straight things onto a scene (CV_16UC1, kLightOne = 1), at fractions of pixels. The scene
/// shows a window of the slide: slide coordinates in um go in, pixels are the painter's affair.
///
/// Holds a reference to the scene for as long as it lives; plain object, no threads.
class ScenePainter {
public:
    /// `origin` is the pixel that shows the slide's point (0, 0); `pixelsPerUm` the scale.
    ScenePainter(cv::Mat& scene, cv::Point2d origin, double pixelsPerUm);

    double pixelsPerUm() const { return m_scale; }

    /// Dims the surroundings of the line from `fromUm` to `toUm`: everything within `reachUm` of it is
    /// multiplied with profile(distance in um). Equal ends make a disc.
    template <class Profile> void dim(cv::Point2d fromUm, cv::Point2d toUm, double reachUm, Profile profile)
    {
        forEachNear(fromUm, toUm, reachUm,
            [&](std::uint16_t& light, double distanceUm) { light = toLight(light * profile(distanceUm)); });
    }

    /// Adds profile(distance in um) times kLightOne around a point.
    template <class Profile> void glow(cv::Point2d centreUm, double reachUm, Profile profile)
    {
        forEachNear(centreUm, centreUm, reachUm, [&](std::uint16_t& light, double distanceUm) {
            light = toLight(light + profile(distanceUm) * kLightOne);
        });
    }

    /// Dims with an even disc or, with two different ends, a stroke of round ends. `transmission` is what
    /// passes.
    void stroke(cv::Point2d fromUm, cv::Point2d toUm, double radiusUm, double transmission);

    /// How much of a pixel at `distanceUm` from the middle a disc of `radiusUm` covers, 0 to 1.
    double coverage(double distanceUm, double radiusUm) const
    {
        return std::clamp((radiusUm - distanceUm) * m_scale + 0.5, 0.0, 1.0);
    }

private:
    static std::uint16_t toLight(double light)
    {
        return static_cast<std::uint16_t>(std::clamp(light + 0.5, 0.0, 65535.0));
    }

    /// Calls visit(light, distance) for every pixel within reach of the line.
    template <class Visit> void forEachNear(cv::Point2d fromUm, cv::Point2d toUm, double reachUm, Visit visit)
    {
        const cv::Point2d from = m_origin + fromUm * m_scale;
        const cv::Point2d along = (toUm - fromUm) * m_scale;
        const double lengthSquared = along.dot(along);
        const double reach = reachUm * m_scale;
        const int left = std::max(0, cvCeil(std::min(from.x, from.x + along.x) - reach));
        const int right = std::min(m_scene.cols - 1, cvFloor(std::max(from.x, from.x + along.x) + reach));
        const int top = std::max(0, cvCeil(std::min(from.y, from.y + along.y) - reach));
        const int bottom = std::min(m_scene.rows - 1, cvFloor(std::max(from.y, from.y + along.y) + reach));
        for (int y = top; y <= bottom; ++y) {
            auto* row = m_scene.ptr<std::uint16_t>(y);
            for (int x = left; x <= right; ++x) {
                const cv::Point2d offset(x - from.x, y - from.y);
                const double part
                    = lengthSquared > 0.0 ? std::clamp(offset.dot(along) / lengthSquared, 0.0, 1.0) : 0.0;
                const cv::Point2d away = offset - part * along;
                const double distance = std::sqrt(away.dot(away));
                if (distance <= reach) {
                    visit(row[x], distance / m_scale);
                }
            }
        }
    }

    cv::Mat& m_scene;
    cv::Point2d m_origin;
    double m_scale;
};

} // namespace qr9::optics
