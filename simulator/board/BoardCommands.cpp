#include "simulator/board/BoardCommands.h"

#include <QList>

namespace qr9::sim {

namespace {

// clang-format off
constexpr std::array kBoardCommands {
    BoardCommand { "A#VER",            BoardUnit::Lamp,   Action::ReportFirmware,   0, Reply::FirmwareBehindHash },
    BoardCommand { "X#STAGE ORIGIN",   BoardUnit::X,      Action::Home,             0, Reply::Echo },
    BoardCommand { "X#STAGE EJECT",    BoardUnit::X,      Action::Eject,            0, Reply::Echo },
    BoardCommand { "X#STAGE INSERT",   BoardUnit::X,      Action::Insert,           0, Reply::Echo },
    BoardCommand { "X#STAGE ABS",      BoardUnit::X,      Action::MoveTo,           1, Reply::PositionBehindBlank },
    BoardCommand { "X#STAGE DIR MINUS", BoardUnit::X,     Action::SetMinus,         0, Reply::Echo },
    BoardCommand { "X#STAGE DIR PLUS", BoardUnit::X,      Action::SetPlus,          0, Reply::Echo },
    BoardCommand { "X#STAGE RUN",      BoardUnit::X,      Action::Run,              0, Reply::PositionBehindHash },
    BoardCommand { "X#STAGE STEP",     BoardUnit::X,      Action::SetStep,          1, Reply::Echo },
    BoardCommand { "X#STAGE SPEED",    BoardUnit::X,      Action::SetSpeed,         1, Reply::Echo },
    BoardCommand { "X#STAGE POS",      BoardUnit::X,      Action::ReportPosition,   0, Reply::PositionBehindHash },
    BoardCommand { "X#STAGE STOP",     BoardUnit::X,      Action::Stop,             0, Reply::Echo },
    BoardCommand { "Z#STAGE ORIGIN",   BoardUnit::Z,      Action::Home,             0, Reply::Echo },
    BoardCommand { "Z#STAGE ABS",      BoardUnit::Z,      Action::MoveTo,           1, Reply::PositionBehindBlank },
    BoardCommand { "Z#STAGE DIR MINUS", BoardUnit::Z,     Action::SetMinus,         0, Reply::Echo },
    BoardCommand { "Z#STAGE DIR PLUS", BoardUnit::Z,      Action::SetPlus,          0, Reply::Echo },
    BoardCommand { "Z#STAGE RUN",      BoardUnit::Z,      Action::Run,              0, Reply::PositionBehindHash },
    BoardCommand { "Z#STAGE STEP",     BoardUnit::Z,      Action::SetStep,          1, Reply::Echo },
    BoardCommand { "Z#STAGE SPEED",    BoardUnit::Z,      Action::SetSpeed,         1, Reply::Echo },
    BoardCommand { "Z#STAGE POS",      BoardUnit::Z,      Action::ReportPosition,   0, Reply::PositionBehindHash },
    BoardCommand { "Z#STAGE BOTTOM",   BoardUnit::Z,      Action::RunToBottom,      0, Reply::Echo },
    BoardCommand { "Z#STAGE TOP",      BoardUnit::Z,      Action::RunToTop,         0, Reply::Echo },
    BoardCommand { "Z#STAGE STOP",     BoardUnit::Z,      Action::Stop,             0, Reply::Echo },
    BoardCommand { "A#FILTER ORIGIN",  BoardUnit::Filter, Action::Home,             0, Reply::Echo },
    BoardCommand { "A#FILTER GO",      BoardUnit::Filter, Action::TurnFilter,       1, Reply::Echo },
    BoardCommand { "A#FILTER READ1",   BoardUnit::Filter, Action::ReportCorrection, 0, Reply::CorrectionBehindHash, 1 },
    BoardCommand { "A#FILTER READ2",   BoardUnit::Filter, Action::ReportCorrection, 0, Reply::CorrectionBehindHash, 2 },
    BoardCommand { "A#FILTER READ3",   BoardUnit::Filter, Action::ReportCorrection, 0, Reply::CorrectionBehindHash, 3 },
    BoardCommand { "A#FILTER COR1",    BoardUnit::Filter, Action::SetCorrection,    1, Reply::Echo, 1 },
    BoardCommand { "A#FILTER COR2",    BoardUnit::Filter, Action::SetCorrection,    1, Reply::Echo, 2 },
    BoardCommand { "A#FILTER COR3",    BoardUnit::Filter, Action::SetCorrection,    1, Reply::Echo, 3 },
    BoardCommand { "A#LED BRT1",       BoardUnit::Lamp,   Action::LightBrightField, 2, Reply::Echo, 1 },
    BoardCommand { "A#LED BRT2",       BoardUnit::Lamp,   Action::LightGfp,         1, Reply::Echo, 2 },
    BoardCommand { "A#LED BRT3",       BoardUnit::Lamp,   Action::LightRfp,         1, Reply::Echo, 3 },
    BoardCommand { "A#LED OFF1",       BoardUnit::Lamp,   Action::PutOut,           0, Reply::Echo, 1 },
    BoardCommand { "A#LED OFF2",       BoardUnit::Lamp,   Action::PutOut,           0, Reply::Echo, 2 },
    BoardCommand { "A#LED OFF3",       BoardUnit::Lamp,   Action::PutOut,           0, Reply::Echo, 3 },
};
// clang-format on

/// The text behind the command's words, or nothing when the line does not begin with them as whole words.
std::optional<QByteArray> behindWords(const QByteArray& line, const BoardCommand& command)
{
    const QByteArray begin = QByteArray("$") + command.words;
    if (!line.startsWith(begin)) {
        return std::nullopt;
    }
    QByteArray rest = line.mid(begin.size());
    if (rest.isEmpty()) {
        return rest;
    }
    if (command.numbers == 0 || !rest.startsWith(' ')) {
        return std::nullopt;
    }
    return rest.mid(1);
}

} // namespace

std::optional<ParsedLine> parseLine(const QByteArray& line)
{
    for (const BoardCommand& command : kBoardCommands) {
        const std::optional<QByteArray> arguments = behindWords(line, command);
        if (!arguments) {
            continue;
        }
        ParsedLine parsed { &command, line, {}, true };
        if (command.numbers > 0) {
            const QList<QByteArray> words = arguments->split(' ');
            parsed.bNumbersRead = words.size() == command.numbers;
            for (std::size_t i = 0; i < command.numbers && parsed.bNumbersRead; ++i) {
                parsed.numbers.at(i) = words.at(static_cast<int>(i)).toInt(&parsed.bNumbersRead);
            }
        }
        return parsed;
    }
    return std::nullopt;
}

} // namespace qr9::sim
