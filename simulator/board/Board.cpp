#include "simulator/board/Board.h"

#include <algorithm>
#include <utility>

namespace qr9::sim {

Board::Board(World& world, QByteArray firmware, QObject* parent)
    : QObject(parent)
    , m_world(world)
    , m_firmware(std::move(firmware))
{
}

void Board::handle(const QByteArray& line)
{
    const std::optional<ParsedLine> command = parseLine(line);
    if (!command) {
        ++m_ignored;
        return;
    }
    Lane& lane = laneOf(*command);
    if (command->pCommand->action == Action::Stop) {
        stop(lane, *command);
    } else {
        lane.waiting.push_back(*command);
    }
    serve(lane);
}

void Board::serve(Lane& lane)
{
    while (!lane.current && !lane.waiting.empty()) {
        lane.current = std::move(lane.waiting.front());
        lane.waiting.pop_front();
        const Time duration = start(*lane.current);
        if (duration > Time(0)) {
            lane.ticket = m_world.clock().callAfter(duration, [this, &lane] {
                finish(lane);
                serve(lane);
            });
        } else {
            finish(lane);
        }
    }
}

void Board::finish(Lane& lane)
{
    const ParsedLine done = std::move(*lane.current);
    lane.current.reset();
    emit sig_reply(done.line, replyTo(done));
}

void Board::stop(Lane& lane, const ParsedLine& command)
{
    axisOf(command).stop(m_world.clock().now());
    if (lane.current) {
        m_world.clock().cancel(lane.ticket);
        finish(lane);
    }
    emit sig_reply(command.line, replyTo(command));
}

Time Board::start(const ParsedLine& command)
{
    if (!command.bNumbersRead) {
        ++m_unusable;
        return Time(0);
    }
    switch (command.pCommand->unit) {
    case BoardUnit::X:
    case BoardUnit::Z:
        return startOnAxis(axisOf(command), command);
    case BoardUnit::Filter:
        return startOnFilter(command);
    case BoardUnit::Lamp:
        startOnLamp(command);
        return Time(0);
    }
    return Time(0);
}

Time Board::startOnAxis(Axis& axis, const ParsedLine& command)
{
    const Time now = m_world.clock().now();
    const int number = command.numbers[0];
    switch (command.pCommand->action) {
    case Action::Home:
        return axis.home(now);
    case Action::Eject:
        return axis.moveTo(World::kTrayOut, now);
    case Action::Insert:
        return axis.moveTo(0, now);
    case Action::MoveTo:
        return axis.moveTo(number, now);
    case Action::Run:
        return axis.run(now);
    case Action::RunToBottom:
        return axis.runToLowEnd(now);
    case Action::RunToTop:
        return axis.runToHighEnd(now);
    case Action::SetMinus:
        axis.setPlus(false);
        break;
    case Action::SetPlus:
        axis.setPlus(true);
        break;
    case Action::SetStep:
        m_unusable += axis.setStep(number) ? 0 : 1;
        break;
    case Action::SetSpeed:
        m_unusable += axis.setSpeed(number) ? 0 : 1;
        break;
    default:
        break;
    }
    return Time(0);
}

Time Board::startOnFilter(const ParsedLine& command)
{
    const int number = command.numbers[0];
    switch (command.pCommand->action) {
    case Action::Home:
        return m_world.homeFilter();
    case Action::TurnFilter:
        if (number >= 1 && number <= World::kFilters) {
            return m_world.turnFilter(number);
        }
        ++m_unusable;
        break;
    case Action::SetCorrection:
        m_world.setCorrection(command.pCommand->channel, number);
        break;
    default:
        break;
    }
    return Time(0);
}

void Board::startOnLamp(const ParsedLine& command)
{
    const auto& [first, second] = command.numbers;
    if (std::min(first, second) < 0) {
        ++m_unusable;
        return;
    }
    switch (command.pCommand->action) {
    case Action::LightBrightField:
        m_world.lightBrightField(first, second);
        break;
    case Action::LightGfp:
        m_world.lightGfp(first);
        break;
    case Action::LightRfp:
        m_world.lightRfp(first);
        break;
    case Action::PutOut:
        m_world.putOut(command.pCommand->channel);
        break;
    default:
        break;
    }
}

QByteArray Board::replyTo(const ParsedLine& command)
{
    const QByteArray words = QByteArray("$OK#") + command.pCommand->words;
    const auto position = [&] { return QByteArray::number(axisOf(command).position(m_world.clock().now())); };
    switch (command.pCommand->reply) {
    case Reply::FirmwareBehindHash:
        return words + '#' + m_firmware + "\r\n";
    case Reply::PositionBehindHash:
        return words + '#' + position() + "\r\n";
    case Reply::PositionBehindBlank:
        return words + ' ' + position() + "\r\n";
    case Reply::CorrectionBehindHash:
        return words + '#' + QByteArray::number(m_world.correction(command.pCommand->channel)) + "\r\n";
    case Reply::Echo:
        break;
    }
    return "$OK#" + command.line.mid(1) + "\r\n";
}

Axis& Board::axisOf(const ParsedLine& command)
{
    return command.pCommand->unit == BoardUnit::X ? m_world.x() : m_world.z();
}

Board::Lane& Board::laneOf(const ParsedLine& command)
{
    return m_lanes.at(static_cast<std::size_t>(command.pCommand->unit));
}

} // namespace qr9::sim
