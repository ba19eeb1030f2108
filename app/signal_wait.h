#pragma once

#include <QEventLoop>
#include <QObject>

/// One wait of a workflow for a finish signal, in a local event loop that keeps replies, timers and the
/// screen alive. A loop of its own for each wait: the signal of another wait does not end it. Thread: GUI.
/// Owner: the waiting function, on its stack.
class SignalWait {
public:
    /// From here on the signal ends the wait, even one that comes before wait() is called.
    template <typename Sender, typename Signal> SignalWait(const Sender* sender, Signal signal)
    {
        QObject::connect(sender, signal, &m_loop, [this] {
            m_bCame = true;
            m_loop.quit();
        });
    }

    /// Blocks until the signal has come, without a limit. False when the program is left meanwhile, by the
    /// exit button for one: the workflow then ends where it stands and stores nothing of what it has half
    /// measured.
    [[nodiscard]] bool wait()
    {
        if (!m_bCame)
            m_loop.exec();
        return m_bCame;
    }

private:
    QEventLoop m_loop;
    bool m_bCame = false;
};
