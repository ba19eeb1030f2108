#include "simulator/optics/Renderer.h"

#include "simulator/optics/Defocus.h"
#include "simulator/optics/GroundTruth.h"
#include "simulator/optics/Illumination.h"
#include "simulator/optics/SharpScene.h"

#include <opencv2/core.hpp>

namespace qr9::optics {

namespace {

/// Turns a frame over as the camera's reverse features do; flip code 1 mirrors columns, 0 rows, -1 both.
void mirror(cv::Mat& image, bool columns, bool rows)
{
    if (columns || rows) {
        cv::flip(image, image, columns && rows ? -1 : (columns ? 1 : 0));
    }
}

} // namespace

bool Renderer::SceneKey::operator==(const SceneKey& other) const
{
    return slide == other.slide && xSteps == other.xSteps && channel == other.channel;
}

bool Renderer::LightKey::operator==(const LightKey& other) const
{
    return greyOfFullLight == other.greyOfFullLight && gain == other.gain && mirrorX == other.mirrorX
        && mirrorY == other.mirrorY;
}

Renderer::Renderer(const UnitConstants& unit)
    : m_unit(unit)
    , m_noise(unit)
{
}

void Renderer::render(const OpticalState& state, std::uint64_t frameNumber, cv::Mat& frame)
{
    // Between two filters the frame is dark whatever lies beneath.
    const Channel channel = channelOf(state.filter).value_or(Channel::BrightField);

    const SceneKey sceneKey { state.slide, state.xSteps, channel };
    if (!(m_sharpKey == sceneKey)) {
        drawSharpScene(m_unit, state.slide, state.xSteps, channel, m_sharp);
        m_sharpKey = sceneKey;
        m_blurKey.reset();
    }
    const double blur = blurOf(state.zSteps - bestFocus(m_unit, channel, state.xSteps));
    if (m_blurKey != blur) {
        blurScene(m_sharp, blur, m_blurred);
        m_blurKey = blur;
        m_lightKey.reset();
    }
    const LightKey lightKey { greyOfFullLight(m_unit, state), gainFactor(state.gainDb), state.mirrorX,
        state.mirrorY };
    if (!(m_lightKey == lightKey)) {
        m_noise.expose(
            m_blurred, lightKey.greyOfFullLight, lightFallOf(state.slide, channel), lightKey.gain, m_exposed);
        mirror(m_exposed.mean, state.mirrorX, state.mirrorY);
        mirror(m_exposed.deviation, state.mirrorX, state.mirrorY);
        m_lightKey = lightKey;
    }
    m_noise.draw(m_exposed, frameNumber, frame);
}

} // namespace qr9::optics
