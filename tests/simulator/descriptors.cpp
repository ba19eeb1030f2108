#include "tests/simulator/descriptors.h"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// Without the signal that kills a process whose reader has gone.
ssize_t writeQuietly(int fd, const char* data, int count)
{
    const ssize_t sent = ::send(fd, data, static_cast<size_t>(count), MSG_NOSIGNAL);
    return sent < 0 && errno == ENOTSOCK ? ::write(fd, data, static_cast<size_t>(count)) : sent;
}

QByteArray readSome(int fd, int most, int ms)
{
    pollfd waiting { fd, POLLIN, 0 };
    if (::poll(&waiting, 1, std::max(ms, 0)) <= 0) {
        return {};
    }
    std::vector<char> bytes(static_cast<size_t>(most));
    const ssize_t count = ::read(fd, bytes.data(), bytes.size());
    return { bytes.data(), static_cast<int>(std::max<ssize_t>(count, 0)) };
}

} // namespace

int connectedSocket(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name.constData(), sizeof(address.sun_path) - 1);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

int openedPort(const QString& path)
{
    return ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

bool writeAll(int fd, const QByteArray& bytes)
{
    int written = 0;
    while (written < bytes.size()) {
        const ssize_t count = writeQuietly(fd, bytes.constData() + written, bytes.size() - written);
        if (count <= 0) {
            return false;
        }
        written += static_cast<int>(count);
    }
    return true;
}

QByteArray readUntil(int fd, const QByteArray& end, int ms)
{
    QElapsedTimer waited;
    waited.start();
    QByteArray bytes;
    while (!bytes.endsWith(end)) {
        const QByteArray more = readSome(fd, 65536, ms - static_cast<int>(waited.elapsed()));
        if (more.isEmpty()) {
            break;
        }
        bytes += more;
    }
    return bytes;
}

QByteArray readExactly(int fd, int count, int ms)
{
    QElapsedTimer waited;
    waited.start();
    QByteArray bytes;
    while (bytes.size() < count) {
        const QByteArray more = readSome(fd, count - bytes.size(), ms - static_cast<int>(waited.elapsed()));
        if (more.isEmpty()) {
            break;
        }
        bytes += more;
    }
    return bytes;
}

QByteArray readOnce(int fd, int ms)
{
    return readSome(fd, 65536, ms);
}
