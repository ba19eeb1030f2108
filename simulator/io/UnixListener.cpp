#include "simulator/io/UnixListener.h"

#include <QFile>
#include <QSocketNotifier>

#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace qr9::sim {

namespace {

QString failure(const char* what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

int makeSocket()
{
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

/// Is there a process behind this socket?
bool isAnswered(const sockaddr_un& address)
{
    const int fd = makeSocket();
    const bool answered
        = fd >= 0 && ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    if (fd >= 0) {
        ::close(fd);
    }
    return answered;
}

/// Nothing but a socket may lose its file here.
void removeIfSocket(const char* path)
{
    struct stat entry { };
    if (::lstat(path, &entry) == 0 && S_ISSOCK(entry.st_mode)) {
        ::unlink(path);
    }
}

} // namespace

UnixListener::UnixListener(QObject* parent)
    : QObject(parent)
{
}

UnixListener::~UnixListener()
{
    if (m_fd >= 0) {
        m_pNotifier.reset();
        ::close(m_fd);
        QFile::remove(m_path);
    }
}

QString UnixListener::listen(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (static_cast<size_t>(name.size()) >= sizeof(address.sun_path)) {
        return QStringLiteral("%1: the name is too long for a socket").arg(path);
    }
    std::memcpy(address.sun_path, name.constData(), static_cast<size_t>(name.size()));
    if (isAnswered(address)) {
        return QStringLiteral("%1: another instrument is running here").arg(path);
    }
    removeIfSocket(name.constData());
    const int fd = makeSocket();
    if (fd < 0) {
        return failure("socket");
    }
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(fd, 8) != 0) {
        QString why = failure(name.constData());
        ::close(fd);
        return why;
    }
    m_fd = fd;
    m_path = path;
    m_pNotifier = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    connect(m_pNotifier.get(), &QSocketNotifier::activated, this, [this] {
        const int client = ::accept4(m_fd, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            emit sig_connected(client);
        }
    });
    return {};
}

} // namespace qr9::sim
