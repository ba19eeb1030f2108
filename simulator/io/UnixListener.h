#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QSocketNotifier;

namespace qr9::sim {

/// A Unix stream socket in the file system that waits for clients. The file goes with the object.
/// Thread: that of its creator. Owner: the server behind the socket.
class UnixListener : public QObject {
    Q_OBJECT

public:
    explicit UnixListener(QObject* parent = nullptr);
    ~UnixListener() override;

    /// Opens the socket. A file left behind by a process that has died is replaced; one that somebody still
    /// answers on is an error.
    /// \returns an empty text, or why it failed
    QString listen(const QString& path);

signals:
    /// A client has come; the receiver owns the descriptor.
    void sig_connected(int fd);

private:
    int m_fd = -1;
    QString m_path;
    std::unique_ptr<QSocketNotifier> m_pNotifier;
};

} // namespace qr9::sim
