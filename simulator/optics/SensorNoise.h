#pragma once

#include "simulator/optics/Illumination.h"
#include "simulator/optics/UnitConstants.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <vector>

namespace qr9::optics {

/// What an exposure would give without noise, pixel by pixel, and how much noise it will bring.
struct ExposedFrame {
    cv::Mat mean; ///< CV_16SC1, grey values x 64
    cv::Mat deviation; ///< CV_16SC1, standard deviation in grey values x 1024
};

/// The sensor of one unit: turns light into grey values and adds read and shot noise.
///
/// A frame costs no random number a pixel: each row takes its noise from a random place of one long table of
/// normal deviates, which was drawn once from the unit's seed.
class SensorNoise {
public:
    explicit SensorNoise(const UnitConstants& unit);

    /// Exposes the middle of a blurred scene (SharpScene.h): mean = black level + greyOfFullLight x scene x
    /// light fall, its noise with the camera's gain as a factor. Frame size; not mirrored.
    void expose(const cv::Mat& scene, double greyOfFullLight, const LightFall& fall, double gain,
        ExposedFrame& exposed) const;

    /// Draws frame `frameNumber`: CV_8UC1 of the exposed frame's size, saturating at 0 and 255.
    void draw(const ExposedFrame& exposed, std::uint64_t frameNumber, cv::Mat& frame) const;

private:
    UnitConstants m_unit;
    std::vector<std::int16_t> m_normals; ///< standard normal deviates x 4096
};

} // namespace qr9::optics
