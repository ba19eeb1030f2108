#pragma once

#include <QByteArray>
#include <QObject>

#include <memory>

class QSocketNotifier;

namespace qr9::sim {

/// A byte stream on a file descriptor (a pseudo-terminal's master, a socket) served from the event loop.
/// Neither direction ever blocks: what the other side does not take yet waits here. Thread: that of its
/// creator. Owns and closes the descriptor.
class FdStream : public QObject {
    Q_OBJECT

public:
    explicit FdStream(int fd, QObject* parent = nullptr);
    ~FdStream() override;

    /// Queues bytes behind those that still wait and sends at once what goes.
    void write(const QByteArray& bytes);

    /// Bytes that the other side has not taken yet.
    qint64 pending() const { return m_unsent.size() - m_sent; }

    bool isOpen() const { return m_fd >= 0; }

    /// Closes the stream; no signal comes any more.
    void close();

signals:
    void sig_received(const QByteArray& bytes);
    /// The other side has gone, or the stream failed. Nothing can be sent from now on.
    void sig_closed();

private:
    void read();
    void flush();
    void fail();

    int m_fd;
    std::unique_ptr<QSocketNotifier> m_pReadable;
    std::unique_ptr<QSocketNotifier> m_pWritable;
    QByteArray m_unsent;
    int m_sent = 0; ///< bytes at the front of m_unsent that are gone already
};

} // namespace qr9::sim
