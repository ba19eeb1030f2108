#pragma once

#include "simulator/Clock.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <vector>

namespace qr9::sim {

/// All that went over the serial ports: kept for the control socket and written to "board.log" line by line,
/// so that the file is whole also when the process is killed.
///
/// Text form: the line end ("\n" of the program, "\r\n" of the board) is left away and control bytes, bytes
/// above 126 and the backslash are C escapes. A text that has no line end, the piece of a reply, ends in a
/// single backslash. Thread: main. Owner: Instrument.
class BoardLog {
public:
    struct Line {
        Time time;
        int port = 0;
        char direction = '>'; ///< '>' sent by the program, '<' sent by the board
        QByteArray text;
    };

    explicit BoardLog(const Clock& clock);

    /// \returns an empty text, or why the file cannot be written
    QString open(const QString& file);

    /// A line of the program, without its "\n".
    void sent(int port, const QByteArray& line);
    /// What the board gave to the port in one write.
    void answered(int port, const QByteArray& bytes);

    const std::vector<Line>& lines() const { return m_lines; }

private:
    void add(int port, char direction, const QByteArray& text);

    const Clock& m_clock;
    QFile m_file;
    std::vector<Line> m_lines;
};

} // namespace qr9::sim
