#include "simulator/Axis.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qr9::sim {

Axis::Axis(const AxisMechanics& mechanics)
    : m_mechanics(mechanics)
    , m_from(mechanics.powerOn)
    , m_target(mechanics.powerOn)
{
}

int Axis::position(Time now) const
{
    if (now >= m_arrival) {
        return m_target;
    }
    const double part = static_cast<double>((now - m_departure).count())
        / static_cast<double>((m_arrival - m_departure).count());
    return m_from + static_cast<int>(std::lround(part * (m_target - m_from)));
}

Time Axis::moveTo(int target, Time now)
{
    const int reachable = std::clamp(target, m_mechanics.lowEnd, m_mechanics.highEnd);
    const double steps = std::abs(reachable - position(now));
    const double stepsPerSecond = static_cast<double>(m_mechanics.speedUnit) * m_speed * m_haste;
    return start(reachable, Time(std::llround(steps / stepsPerSecond * 1e6)), now);
}

Time Axis::run(Time now)
{
    // The step may be any 32-bit number: the sum must not overflow before the end switch limits it.
    const std::int64_t target = std::int64_t { position(now) } + (m_bPlus ? 1 : -1) * std::int64_t { m_step };
    return moveTo(
        static_cast<int>(std::clamp<std::int64_t>(target, m_mechanics.lowEnd, m_mechanics.highEnd)), now);
}

Time Axis::home(Time now)
{
    const Time asFar = moveTo(0, now);
    return start(0, std::min(asFar, kLongestHoming), now);
}

void Axis::stop(Time now)
{
    place(position(now), now);
}

void Axis::place(int position, Time now)
{
    m_target = std::clamp(position, m_mechanics.lowEnd, m_mechanics.highEnd);
    m_from = m_target;
    m_departure = now;
    m_arrival = now;
}

bool Axis::setStep(int steps)
{
    if (steps < 0) {
        return false;
    }
    m_step = steps;
    return true;
}

bool Axis::setSpeed(int speed)
{
    if (speed < 1 || speed > kLargestSpeed) {
        return false;
    }
    m_speed = speed;
    return true;
}

Time Axis::start(int target, Time duration, Time now)
{
    m_from = position(now);
    m_target = target;
    m_departure = now;
    m_arrival = now + (m_bQuick ? Time(0) : duration);
    return m_arrival - now;
}

} // namespace qr9::sim
