#pragma once

#include "platform/camera_wire.h"

#include "simulator/camera/Picture.h"
#include "simulator/io/FdStream.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace qr9::sim {

/// One connection of the camera socket: cuts the stream into requests and sends answers and events.
/// Thread: main. Owner: CameraServer.
class CameraClient : public QObject {
    Q_OBJECT

public:
    /// A payload of a request may be so long.
    static constexpr quint32 kLargestPayload = 1U << 20U;
    /// A client that leaves so many bytes of pictures unread loses the next one, as on a bus that is too
    /// slow.
    static constexpr qint64 kMostUnread = 16 << 20;

    explicit CameraClient(int fd, QObject* parent = nullptr);

    /// Answers a request; `code` is 0 or more for success, else an error of the wire.
    void reply(const wire::Message& request, int code, double value = 0.0, const QString& text = {},
        const QByteArray& payload = {});
    void sendPicture(quint64 number, const Picture& picture);
    /// The grab of a frame failed; `value` is the code that a library of numbers gives for it, or 0.
    void sendFailedGrab(quint64 number, const QString& why, double value);
    void sendRemoved();

    /// The device that this client had open was pulled.
    bool isRemoved() const { return m_bRemoved; }

signals:
    void sig_request(const qr9::wire::Message& request);
    /// The client has gone, or what it sent is no message.
    void sig_closed();

private:
    void receive(const QByteArray& bytes);
    void send(wire::Message message, const QByteArray& payload);

    FdStream m_stream;
    QByteArray m_received;
    bool m_bRemoved = false;
};

} // namespace qr9::sim
