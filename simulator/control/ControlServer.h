#pragma once

#include "simulator/io/UnixListener.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QString>

namespace qr9::sim {

class Instrument;

/// The control socket: one JSON object a line in, one out, in order. Any number of clients; what they ask for
/// is the table of ControlCommands. Thread: main. Owner: main().
class ControlServer : public QObject {
    Q_OBJECT

public:
    /// A request may be so long; a client that sends more without a line end is dropped.
    static constexpr int kLongestRequest = 1 << 20;

    explicit ControlServer(Instrument& instrument, QObject* parent = nullptr);

    /// \returns an empty text, or why the socket could not be made
    QString listen(const QString& path);

private:
    void serve(int fd);
    QByteArray answer(const QByteArray& line);

    Instrument& m_instrument;
    UnixListener m_listener;
};

} // namespace qr9::sim
