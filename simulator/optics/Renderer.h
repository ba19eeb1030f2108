#pragma once

#include "simulator/optics/OpticalState.h"
#include "simulator/optics/SensorNoise.h"
#include "simulator/optics/UnitConstants.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <optional>

namespace qr9::optics {

/// Renders what the camera of one unit sees: grey = black level + LED level x exposure x gain x scene, with
/// the blur of the distance from focus, saturating at 255, with shot and read noise.
///
/// The picture is a function of the unit, the state and the frame number alone: no clock, no history. What is
/// kept between calls only saves time: the sharp scene of a place, its blurred copy at a height, and the mean
/// grey values of an exposure. A frame of an unchanged state costs little more than its noise.
///
/// Plain object without threads or locks; owned by the virtual instrument, which calls it from one thread at
/// a time. About 12 MB.
class Renderer {
public:
    /// The unit must have no impossibleConstant().
    explicit Renderer(const UnitConstants& unit);

    /// Renders one frame into `frame` (CV_8UC1, 960 rows of 1280; reused where it has that shape already).
    /// `frameNumber` chooses the noise: equal numbers give equal bytes.
    void render(const OpticalState& state, std::uint64_t frameNumber, cv::Mat& frame);

private:
    struct SceneKey {
        Slide slide;
        int xSteps;
        Channel channel;
        bool operator==(const SceneKey& other) const;
    };
    struct LightKey {
        double greyOfFullLight; ///< see Illumination.h
        double gain;
        bool mirrorX;
        bool mirrorY;
        bool operator==(const LightKey& other) const;
    };

    UnitConstants m_unit;
    SensorNoise m_noise;

    std::optional<SceneKey> m_sharpKey;
    cv::Mat m_sharp;
    std::optional<double> m_blurKey; ///< standard deviation of m_blurred, px
    cv::Mat m_blurred;
    std::optional<LightKey> m_lightKey;
    ExposedFrame m_exposed;
};

} // namespace qr9::optics
