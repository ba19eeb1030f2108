#include "simulator/board/PtyPort.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace qr9::sim {

PtyPort::PtyPort(QObject* parent)
    : QObject(parent)
{
}

PtyPort::~PtyPort()
{
    m_pMaster.reset();
    if (m_slave >= 0) {
        ::close(m_slave);
    }
}

QString PtyPort::open()
{
    const auto failure = [](const char* what) {
        return QStringLiteral("pseudo-terminal, %1: %2")
            .arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
    };
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0) {
        return failure("open");
    }
    m_pMaster = std::make_unique<FdStream>(master);
    std::array<char, 128> name {};
    if (::grantpt(master) != 0 || ::unlockpt(master) != 0
        || ::ptsname_r(master, name.data(), name.size()) != 0) {
        return failure("name");
    }
    m_slave = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios mode {};
    if (m_slave < 0 || ::tcgetattr(m_slave, &mode) != 0) {
        return failure("slave");
    }
    ::cfmakeraw(&mode);
    if (::tcsetattr(m_slave, TCSANOW, &mode) != 0) {
        return failure("raw mode");
    }
    m_name = QString::fromLocal8Bit(name.data());
    connect(m_pMaster.get(), &FdStream::sig_received, this, &PtyPort::sig_received);
    return {};
}

void PtyPort::write(const QByteArray& bytes)
{
    if (m_pMaster) {
        m_pMaster->write(bytes);
    }
}

} // namespace qr9::sim
