#include "simulator/board/LineReader.h"

#include <utility>

namespace qr9::sim {

std::vector<LineReader::Line> LineReader::take(const QByteArray& bytes)
{
    std::vector<Line> lines;
    for (const char byte : bytes) {
        if (byte == '\n') {
            lines.push_back({ std::exchange(m_rest, {}), std::exchange(m_bTooLong, false) });
        } else if (m_rest.size() < kLongest) {
            m_rest.append(byte);
        } else {
            m_bTooLong = true;
        }
    }
    return lines;
}

} // namespace qr9::sim
