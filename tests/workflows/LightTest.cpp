#include "tests/workflows/LightTest.h"

#include <QDoubleSpinBox>
#include <QSlider>
#include <QSpinBox>

#include <cmath>

namespace {

/// Steps of the AR0134 in the range in use: one in 32 of the gain at the most, and half a line of exposure.
constexpr double kGainStep = 0.15; ///< dB
constexpr double kExposureStep = 0.0125; ///< ms

} // namespace

void LightTest::initTestCase()
{
    PageTest::initTestCase();
    m_bArduCam = m_desk->isArduCam();
}

int LightTest::box(const char* name)
{
    return m_desk->widget<QSpinBox>(name)->value();
}

double LightTest::gainBox()
{
    return m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value();
}

int LightTest::slider(const char* name)
{
    return m_desk->widget<QSlider>(name)->value();
}

double LightTest::gain(double about)
{
    const double found = camera().value("gainDb").toDouble();
    if (!m_bArduCam)
        return found;
    // What the program calls one dB with this camera is 2 dB of the signal.
    return std::abs(found / 2.0 - about) < kGainStep ? about : found / 2.0;
}

double LightTest::exposureMs(double about)
{
    const double found = camera().value("exposureUs").toDouble() / 1000.0;
    return m_bArduCam && std::abs(found - about) < kExposureStep ? about : found;
}
