#include "simulator/io/FdStream.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace qr9::sim {

namespace {

/// write() on a socket whose reader has gone would kill the process with SIGPIPE; send() can be told not to.
ssize_t sendQuietly(int fd, const char* data, size_t size)
{
    const ssize_t sent = ::send(fd, data, size, MSG_NOSIGNAL);
    return sent < 0 && errno == ENOTSOCK ? ::write(fd, data, size) : sent;
}

} // namespace

FdStream::FdStream(int fd, QObject* parent)
    : QObject(parent)
    , m_fd(fd)
    , m_pReadable(std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read))
    , m_pWritable(std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write))
{
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    m_pWritable->setEnabled(false);
    connect(m_pReadable.get(), &QSocketNotifier::activated, this, &FdStream::read);
    connect(m_pWritable.get(), &QSocketNotifier::activated, this, &FdStream::flush);
}

FdStream::~FdStream()
{
    close();
}

void FdStream::write(const QByteArray& bytes)
{
    if (m_fd < 0) {
        return;
    }
    m_unsent.append(bytes);
    flush();
}

void FdStream::close()
{
    if (m_fd < 0) {
        return;
    }
    // A notifier may be the sender of the call that leads here: it must outlive it.
    m_pReadable->setEnabled(false);
    m_pWritable->setEnabled(false);
    m_pReadable.release()->deleteLater();
    m_pWritable.release()->deleteLater();
    ::close(m_fd);
    m_fd = -1;
}

void FdStream::read()
{
    std::array<char, 65536> buffer;
    const ssize_t count = ::read(m_fd, buffer.data(), buffer.size());
    if (count > 0) {
        emit sig_received(QByteArray(buffer.data(), static_cast<int>(count)));
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        fail();
    }
}

void FdStream::flush()
{
    while (m_sent < m_unsent.size()) {
        const ssize_t count
            = sendQuietly(m_fd, m_unsent.constData() + m_sent, static_cast<size_t>(m_unsent.size() - m_sent));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 && errno == EAGAIN) {
            m_pWritable->setEnabled(true);
            return;
        }
        if (count < 0) {
            fail();
            return;
        }
        m_sent += static_cast<int>(count);
    }
    m_unsent.clear();
    m_sent = 0;
    m_pWritable->setEnabled(false);
}

void FdStream::fail()
{
    close();
    emit sig_closed();
}

} // namespace qr9::sim
