#pragma once

#include "tests/simulator/descriptors.h"

#include <unistd.h>

/// The program's end of a serial port.
class SerialLine {
public:
    explicit SerialLine(const QString& port)
        : m_fd(openedPort(port))
    {
    }
    ~SerialLine() { ::close(m_fd); }
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

    bool isOpen() const { return m_fd >= 0; }
    bool send(const QByteArray& bytes) { return writeAll(m_fd, bytes); }
    /// Up to a "\r\n" at the end.
    QByteArray receive() { return readUntil(m_fd, "\r\n"); }
    /// One reply's bytes where the length is known: leaves what follows.
    QByteArray receive(int count) { return readExactly(m_fd, count); }
    QByteArray receiveOnce(int ms = kPatienceMs) { return readOnce(m_fd, ms); }
    QByteArray ask(const QByteArray& line) { return send(line + '\n') ? receive() : QByteArray(); }

private:
    int m_fd;
};
