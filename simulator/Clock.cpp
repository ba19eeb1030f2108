#include "simulator/Clock.h"

#include <algorithm>

namespace qr9::sim {

Clock::Clock(QObject* parent)
    : QObject(parent)
{
    m_elapsed.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        runDue(now());
        armTimer();
    });
}

Time Clock::now() const
{
    return m_bHeld ? m_offset : m_offset + Time(m_elapsed.nsecsElapsed() / 1000);
}

Clock::Ticket Clock::callAfter(Time delay, std::function<void()> action)
{
    const Ticket ticket = ++m_lastTicket;
    m_events.emplace(Key(now() + std::max(delay, Time(0)), ticket), std::move(action));
    armTimer();
    return ticket;
}

void Clock::cancel(Ticket ticket)
{
    const auto event = std::find_if(m_events.begin(), m_events.end(),
        [ticket](const auto& entry) { return entry.first.second == ticket; });
    if (event != m_events.end()) {
        m_events.erase(event);
    }
}

void Clock::hold()
{
    if (!m_bHeld) {
        m_offset = now();
        m_bHeld = true;
        m_timer.stop();
    }
}

void Clock::release()
{
    if (m_bHeld) {
        m_bHeld = false;
        m_elapsed.restart();
        armTimer();
    }
}

void Clock::advance(Time step)
{
    if (m_bHeld) {
        runDue(m_offset + std::max(step, Time(0)));
    }
}

void Clock::runDue(Time until)
{
    while (!m_events.empty() && m_events.begin()->first.first <= until) {
        const auto first = m_events.begin();
        if (m_bHeld) {
            m_offset = std::max(m_offset, first->first.first);
        }
        const std::function<void()> action = std::move(first->second);
        m_events.erase(first);
        action();
    }
    if (m_bHeld) {
        m_offset = std::max(m_offset, until);
    }
}

void Clock::armTimer()
{
    if (m_bHeld || m_events.empty()) {
        m_timer.stop();
        return;
    }
    const Time left = std::max(m_events.begin()->first.first - now(), Time(0));
    m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(left));
}

} // namespace qr9::sim
