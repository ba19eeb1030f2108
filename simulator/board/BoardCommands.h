#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <optional>

namespace qr9::sim {

/// Which part of the board carries a command out. Commands for one unit wait for each other; units do not.
enum class BoardUnit : std::uint8_t {
    X,
    Z,
    Filter,
    Lamp, ///< LEDs and firmware: always at once
};
constexpr int kBoardUnits = 4;

enum class Action : std::uint8_t {
    ReportFirmware,
    Home,
    Eject, ///< the tray goes out
    Insert, ///< the tray comes in, to X = 0
    MoveTo,
    Run, ///< relative move by the step in the direction that were set
    RunToBottom, ///< until STOP or the end switch
    RunToTop, ///< until STOP or the end switch
    Stop, ///< passes by the commands that wait
    SetMinus,
    SetPlus,
    SetStep,
    SetSpeed,
    ReportPosition,
    TurnFilter,
    ReportCorrection,
    SetCorrection,
    LightBrightField,
    LightGfp,
    LightRfp,
    PutOut,
};

/// How the answer carries its value.
enum class Reply : std::uint8_t {
    Echo, ///< "$OK#" and the words as they came
    FirmwareBehindHash, ///< "$OK#A#VER#2.07"
    PositionBehindHash, ///< "$OK#Z#STAGE POS#1234"
    PositionBehindBlank, ///< "$OK#Z#STAGE ABS 1234"
    CorrectionBehindHash, ///< "$OK#A#FILTER READ1#10"
};

/// One command of the board; the table of all is in BoardCommands.cpp.
struct BoardCommand {
    const char* words; ///< unit letter, "#" and the words up to the numbers
    BoardUnit unit;
    Action action;
    std::uint8_t numbers; ///< how many decimal integers follow, each behind a blank
    Reply reply;
    std::uint8_t channel = 0; ///< the filter or LED channel that the words name
};

/// A line that named a command of the table.
struct ParsedLine {
    const BoardCommand* pCommand = nullptr;
    QByteArray line; ///< as it came
    std::array<int, 2> numbers { 0, 0 };
    bool bNumbersRead = true; ///< as many numbers as the command takes, and each a 32-bit decimal integer
};

/// Reads a line (without its "\n"). Nothing comes back for a line that names no command: one without its "$",
/// with other words, another case, or with words behind a command that takes none.
std::optional<ParsedLine> parseLine(const QByteArray& line);

} // namespace qr9::sim
