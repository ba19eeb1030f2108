#include "simulator/optics/ScenePainter.h"

namespace qr9::optics {

ScenePainter::ScenePainter(cv::Mat& scene, cv::Point2d origin, double pixelsPerUm)
    : m_scene(scene)
    , m_origin(origin)
    , m_scale(pixelsPerUm)
{
}

void ScenePainter::stroke(cv::Point2d fromUm, cv::Point2d toUm, double radiusUm, double transmission)
{
    const double reachUm = radiusUm + 1.0 / m_scale;
    dim(fromUm, toUm, reachUm,
        [&](double distanceUm) { return 1.0 - (1.0 - transmission) * coverage(distanceUm, radiusUm); });
}

} // namespace qr9::optics
