#include "simulator/board/BoardLog.h"

namespace qr9::sim {

namespace {

QByteArray escaped(const QByteArray& bytes)
{
    QByteArray text;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        switch (byte) {
        case '\r':
            text += "\\r";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\t':
            text += "\\t";
            break;
        case '\\':
            text += "\\\\";
            break;
        case '\0':
            text += "\\0";
            break;
        default:
            if (code < 0x20 || code > 0x7e) {
                text += "\\x" + QByteArray::number(code, 16).rightJustified(2, '0');
            } else {
                text += byte;
            }
        }
    }
    return text;
}

} // namespace

BoardLog::BoardLog(const Clock& clock)
    : m_clock(clock)
{
}

QString BoardLog::open(const QString& file)
{
    m_file.setFileName(file);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        return QStringLiteral("%1: %2").arg(file, m_file.errorString());
    }
    return {};
}

void BoardLog::sent(int port, const QByteArray& line)
{
    add(port, '>', escaped(line));
}

void BoardLog::answered(int port, const QByteArray& bytes)
{
    const bool whole = bytes.endsWith("\r\n");
    add(port, '<', whole ? escaped(bytes.chopped(2)) : escaped(bytes) + '\\');
}

void BoardLog::add(int port, char direction, const QByteArray& text)
{
    const Time now = m_clock.now();
    m_lines.push_back({ now, port, direction, text });
    m_file.write(QByteArray::number(static_cast<qlonglong>(now.count() / 1000)) + ' '
        + QByteArray::number(port) + ' ' + direction + ' ' + text + '\n');
}

} // namespace qr9::sim
