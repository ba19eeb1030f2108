#include "tests/link/PseudoPort.h"

#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

PseudoPort::PseudoPort()
    : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    std::array<char, 64> name {};
    if (grantpt(m_master) != 0 || unlockpt(m_master) != 0
        || ptsname_r(m_master, name.data(), name.size()) != 0) {
        return;
    }
    m_name = name.data();
    m_slave = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    // Raw before anyone writes, otherwise the terminal echoes.
    termios settings {};
    tcgetattr(m_slave, &settings);
    cfmakeraw(&settings);
    tcsetattr(m_slave, TCSANOW, &settings);
}

PseudoPort::~PseudoPort()
{
    hangUp();
}

void PseudoPort::send(const QByteArray& bytes) const
{
    for (int sent = 0; sent < bytes.size();) {
        const ssize_t now
            = ::write(m_master, bytes.constData() + sent, static_cast<size_t>(bytes.size() - sent));
        if (now <= 0) {
            qFatal("the pseudo-terminal takes no bytes");
        }
        sent += static_cast<int>(now);
    }
}

QByteArray PseudoPort::receive(int atLeast) const
{
    constexpr int kLimitMs = 5000;
    QByteArray bytes;
    pollfd waiting { m_master, POLLIN, 0 };
    while (bytes.size() < atLeast && poll(&waiting, 1, kLimitMs) > 0) {
        std::array<char, 256> chunk {};
        const ssize_t count = ::read(m_master, chunk.data(), chunk.size());
        if (count <= 0) {
            break;
        }
        bytes.append(chunk.data(), static_cast<int>(count));
    }
    return bytes;
}

void PseudoPort::hangUp()
{
    for (int* end : { &m_slave, &m_master }) {
        if (*end >= 0) {
            close(*end);
            *end = -1;
        }
    }
}
