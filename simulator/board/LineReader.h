#pragma once

#include <QByteArray>

#include <vector>

namespace qr9::sim {

/// Cuts the bytes that the program sends into lines. A line ends in "\n"; half a line waits for its rest.
/// A line longer than kLongest is given up: its beginning comes out marked as too long when its end arrives,
/// so that a program gone wild cannot fill the memory.
class LineReader {
public:
    static constexpr int kLongest = 256;

    struct Line {
        QByteArray text; ///< without the "\n"
        bool bTooLong = false;
    };

    /// The lines that `bytes` completes, in order.
    std::vector<Line> take(const QByteArray& bytes);

    /// What has come of a line whose end has not.
    const QByteArray& rest() const { return m_rest; }

private:
    QByteArray m_rest;
    bool m_bTooLong = false;
};

} // namespace qr9::sim
