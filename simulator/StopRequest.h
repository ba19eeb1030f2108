#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace qr9::sim {

/// Ends the event loop on SIGTERM, SIGINT or SIGHUP, and on the end of standard input where asked for, so
/// that the sockets are taken away again. Made before any thread: the signals are blocked from then on and
/// come through a descriptor. Thread: main. Owner: main().
class StopRequest : public QObject {
    Q_OBJECT

public:
    StopRequest();
    ~StopRequest() override;

    /// Begins to watch; needs the application.
    void watch(bool untilEndOfInput);

private:
    void readInput();

    int m_signals;
    std::unique_ptr<QSocketNotifier> m_pSignalled;
    std::unique_ptr<QSocketNotifier> m_pInput;
};

} // namespace qr9::sim
