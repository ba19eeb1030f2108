#pragma once

#include "simulator/World.h"
#include "simulator/board/BoardCommands.h"

#include <QByteArray>
#include <QObject>

#include <array>
#include <deque>
#include <optional>

namespace qr9::sim {

/// The firmware of the controller board: takes lines, drives the world, and answers when what was asked for
/// is done.
///
/// A command whose numbers cannot be read or used (a letter, an empty text, a wheel position 7) changes
/// nothing and is acknowledged all the same: a program that blocks for the reply is not held for ever by a
/// slip of the hand. A line that names no command is ignored. Both are counted.
///
/// Thread: main. Owner: BoardServer.
class Board : public QObject {
    Q_OBJECT

public:
    Board(World& world, QByteArray firmware, QObject* parent = nullptr);

    /// Takes one line without its "\n". The reply may come inside of this call.
    void handle(const QByteArray& line);

    int ignoredLines() const { return m_ignored; }
    int unusableNumbers() const { return m_unusable; }

signals:
    /// `reply` is complete with its "\r\n"; `line` is the command that it answers.
    void sig_reply(const QByteArray& line, const QByteArray& reply);

private:
    /// The commands of one unit of the board.
    struct Lane {
        std::deque<ParsedLine> waiting;
        std::optional<ParsedLine> current;
        Clock::Ticket ticket = 0;
    };

    void serve(Lane& lane);
    void finish(Lane& lane);
    void stop(Lane& lane, const ParsedLine& command);
    Time start(const ParsedLine& command);
    Time startOnAxis(Axis& axis, const ParsedLine& command);
    Time startOnFilter(const ParsedLine& command);
    void startOnLamp(const ParsedLine& command);
    QByteArray replyTo(const ParsedLine& command);
    Axis& axisOf(const ParsedLine& command);
    Lane& laneOf(const ParsedLine& command);

    World& m_world;
    QByteArray m_firmware;
    std::array<Lane, kBoardUnits> m_lanes;
    int m_ignored = 0;
    int m_unusable = 0;
};

} // namespace qr9::sim
