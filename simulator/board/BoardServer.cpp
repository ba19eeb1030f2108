#include "simulator/board/BoardServer.h"

#include <QJsonArray>

#include <cmath>
#include <utility>

namespace qr9::sim {

namespace {

/// Between two pieces of a reply: long enough for the program to read each by itself.
constexpr Time kPieceGap = std::chrono::milliseconds(5);

Time milliseconds(const QJsonValue& value)
{
    return Time(std::llround(value.toDouble() * 1000.0));
}

} // namespace

BoardServer::BoardServer(
    World& world, Faults& faults, BoardLog& log, const QByteArray& firmware, QObject* parent)
    : QObject(parent)
    , m_clock(world.clock())
    , m_faults(faults)
    , m_log(log)
    , m_board(world, firmware)
{
    connect(&m_board, &Board::sig_reply, this, &BoardServer::answer);
}

QString BoardServer::open(int silentPorts)
{
    for (int port = 0; port <= silentPorts; ++port) {
        auto pPty = std::make_unique<PtyPort>();
        QString error = pPty->open();
        if (!error.isEmpty()) {
            return error;
        }
        connect(pPty.get(), &PtyPort::sig_received, this,
            [this, port](const QByteArray& bytes) { receive(port, bytes); });
        m_ports.push_back({ std::move(pPty), {} });
    }
    return {};
}

QStringList BoardServer::portNames() const
{
    QStringList names;
    for (const Port& port : m_ports) {
        names << port.pPty->name();
    }
    return names;
}

void BoardServer::say(const QByteArray& bytes)
{
    send(bytes);
}

void BoardServer::recover()
{
    m_bSilent = false;
    if (!m_held.isEmpty()) {
        send(std::exchange(m_held, {}));
    }
}

void BoardServer::receive(int port, const QByteArray& bytes)
{
    const bool isBoard = port + 1 == static_cast<int>(m_ports.size());
    for (const LineReader::Line& line : m_ports.at(static_cast<std::size_t>(port)).reader.take(bytes)) {
        m_log.sent(port, line.text);
        if (isBoard) {
            m_board.handle(line.bTooLong ? QByteArray() : line.text);
        }
    }
}

void BoardServer::answer(const QByteArray& line, QByteArray reply)
{
    const QString subject = QString::fromLatin1(line);
    if (m_faults.take(FaultKind::Silent, subject)) {
        m_bSilent = true;
    }
    if (m_bSilent || m_faults.take(FaultKind::Lose, subject)) {
        return;
    }
    if (m_faults.take(FaultKind::Double, subject)) {
        reply += reply;
    }
    if (m_faults.take(FaultKind::Nul, subject)) {
        reply.prepend('\0');
    }
    if (const auto noise = m_faults.take(FaultKind::Noise, subject)) {
        reply.prepend(noise->toString().toLatin1());
    }
    if (m_faults.take(FaultKind::Merge, subject)) {
        m_held += reply;
        return;
    }
    reply.prepend(std::exchange(m_held, {}));
    const auto sizes = m_faults.take(FaultKind::Cut, subject);
    const auto out = [this, reply, sizes] {
        if (sizes) {
            sendInPieces(reply, *sizes);
        } else {
            send(reply);
        }
    };
    if (const auto late = m_faults.take(FaultKind::Late, subject)) {
        m_clock.callAfter(milliseconds(*late), out);
    } else {
        out();
    }
}

void BoardServer::sendInPieces(const QByteArray& bytes, const QJsonValue& sizes)
{
    // One number is the size of every piece; a list is used once, and the rest of the reply is the last
    // piece.
    const QJsonArray list = sizes.toArray();
    int at = 0;
    Time delay(0);
    for (int i = 0; at < bytes.size(); ++i) {
        int size = sizes.toInt();
        if (sizes.isArray()) {
            size = i < list.size() ? list.at(i).toInt() : bytes.size() - at;
        }
        const QByteArray piece = bytes.mid(at, size);
        m_clock.callAfter(delay, [this, piece] { send(piece); });
        at += piece.size();
        delay += kPieceGap;
    }
}

void BoardServer::send(const QByteArray& bytes)
{
    const int port = static_cast<int>(m_ports.size()) - 1;
    m_log.answered(port, bytes);
    m_ports.back().pPty->write(bytes);
}

} // namespace qr9::sim
