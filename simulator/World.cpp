#include "simulator/World.h"

#include <cstdlib>

namespace qr9::sim {

namespace {

// The tray travels at 40000 steps/s and the focus at 20000 steps/s with the default SPEED of 100.
constexpr AxisMechanics kX { -20000, World::kTrayOut, 1200, 400 };
constexpr AxisMechanics kZ { 0, 65000, 5000, 200 };

} // namespace

World::World(Clock& clock)
    : m_clock(clock)
    , m_x(kX)
    , m_z(kZ)
{
    m_corrections.fill(kDefaultCorrection);
}

optics::OpticalState World::view() const
{
    const Time now = m_clock.now();
    optics::OpticalState state;
    state.slide = m_slide;
    state.xSteps = m_x.position(now);
    state.zSteps = m_z.position(now);
    state.filter = filter();
    state.leds = m_leds;
    return state;
}

Time World::turnFilter(int position)
{
    return startWheel(position, std::abs(position - m_filter) * kFilterStep);
}

Time World::homeFilter()
{
    return startWheel(1, kFilterHoming);
}

Time World::startWheel(int position, Time duration)
{
    const Time taken = m_bQuick ? Time(0) : duration;
    m_filter = position;
    m_filterArrival = m_clock.now() + taken;
    return taken;
}

void World::lightBrightField(int level1, int level2)
{
    m_leds = {};
    m_leds.brightField1 = level1;
    m_leds.brightField2 = level2;
}

void World::lightGfp(int level)
{
    m_leds = {};
    m_leds.gfp = level;
}

void World::lightRfp(int level)
{
    m_leds = {};
    m_leds.rfp = level;
}

void World::putOut(int channel)
{
    switch (channel) {
    case 1:
        m_leds.brightField1 = 0;
        m_leds.brightField2 = 0;
        break;
    case 2:
        m_leds.gfp = 0;
        break;
    default:
        m_leds.rfp = 0;
        break;
    }
}

void World::setQuick(bool quick)
{
    m_bQuick = quick;
    m_x.setQuick(quick);
    m_z.setQuick(quick);
}

void World::setHaste(double factor)
{
    m_x.setHaste(factor);
    m_z.setHaste(factor);
}

} // namespace qr9::sim
