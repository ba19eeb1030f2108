#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <map>
#include <utility>

namespace qr9::sim {

/// A point on, or a stretch of, the instrument's own time; 0 is the start of the process.
using Time = std::chrono::microseconds;

/// The one clock of the virtual instrument. Whatever takes time (a motion, a late reply, an exposure) is an
/// event on it, so that a test can hold the clock and let time pass by hand. Thread: main. Owner: Instrument.
class Clock : public QObject {
    Q_OBJECT

public:
    using Ticket = quint64;

    explicit Clock(QObject* parent = nullptr);

    Time now() const;

    /// Calls `action` from the event loop once `delay` has passed; events due at one time run in the order of
    /// these calls. A delay of 0 or less is due at once, yet never runs inside this call.
    Ticket callAfter(Time delay, std::function<void()> action);

    /// Takes an event back; a ticket whose event has run is ignored.
    void cancel(Ticket ticket);

    /// Time stands still from now on.
    void hold();

    /// Time goes on from where it stands.
    void release();

    bool isHeld() const { return m_bHeld; }

    /// Lets `step` pass while the clock is held and runs what becomes due, each event at its own time.
    void advance(Time step);

private:
    using Key = std::pair<Time, Ticket>;

    void runDue(Time until);
    void armTimer();

    QElapsedTimer m_elapsed;
    QTimer m_timer;
    std::map<Key, std::function<void()>> m_events;
    Ticket m_lastTicket = 0;
    Time m_offset { 0 }; ///< added to the elapsed time; while held: the time itself
    bool m_bHeld = false;
};

} // namespace qr9::sim
