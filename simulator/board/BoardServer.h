#pragma once

#include "simulator/Clock.h"
#include "simulator/Faults.h"
#include "simulator/board/Board.h"
#include "simulator/board/BoardLog.h"
#include "simulator/board/LineReader.h"
#include "simulator/board/PtyPort.h"

#include <QByteArray>
#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

namespace qr9::sim {

/// The serial ports of the instrument: some silent ones, which swallow what they get, and behind them the one
/// that the board hangs on. Replies pass the faults on their way out. Thread: main. Owner: Instrument.
class BoardServer : public QObject {
    Q_OBJECT

public:
    BoardServer(
        World& world, Faults& faults, BoardLog& log, const QByteArray& firmware, QObject* parent = nullptr);

    /// \returns an empty text, or why the ports could not be made
    QString open(int silentPorts);

    /// The slaves' names, silent ones first; the board's is the last.
    QStringList portNames() const;

    /// Bytes that the board sends by itself, without a question.
    void say(const QByteArray& bytes);

    /// Ends the fault that took the board's voice, and sends a reply that was held back.
    void recover();

    const Board& board() const { return m_board; }

private:
    struct Port {
        std::unique_ptr<PtyPort> pPty;
        LineReader reader;
    };

    void receive(int port, const QByteArray& bytes);
    void answer(const QByteArray& line, QByteArray reply);
    void sendInPieces(const QByteArray& bytes, const QJsonValue& sizes);
    void send(const QByteArray& bytes);

    Clock& m_clock;
    Faults& m_faults;
    BoardLog& m_log;
    Board m_board;
    std::vector<Port> m_ports;
    QByteArray m_held; ///< a reply that waits for the next one
    bool m_bSilent = false;
};

} // namespace qr9::sim
