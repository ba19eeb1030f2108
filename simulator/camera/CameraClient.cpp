#include "simulator/camera/CameraClient.h"

#include <cstring>

#include <sys/socket.h>

namespace qr9::sim {

namespace {

/// Room for three pictures in the socket, so that a frame goes out in few turns. The kernel cuts it to what
/// an ordinary user may have.
constexpr int kSocketBuffer = 4 << 20;

wire::Message makeMessage(wire::Kind kind, quint64 number)
{
    wire::Message message;
    message.kind = kind;
    message.ticket = number;
    return message;
}

void setText(wire::Message& message, const QString& text)
{
    std::strncpy(message.name, text.toLatin1().constData(), sizeof(message.name) - 1);
}

} // namespace

CameraClient::CameraClient(int fd, QObject* parent)
    : QObject(parent)
    , m_stream(fd)
{
    if (::setsockopt(fd, SOL_SOCKET, SO_SNDBUFFORCE, &kSocketBuffer, sizeof(kSocketBuffer)) != 0) {
        ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &kSocketBuffer, sizeof(kSocketBuffer));
    }
    connect(&m_stream, &FdStream::sig_received, this, &CameraClient::receive);
    connect(&m_stream, &FdStream::sig_closed, this, &CameraClient::sig_closed);
}

void CameraClient::reply(
    const wire::Message& request, int code, double value, const QString& text, const QByteArray& payload)
{
    wire::Message message = makeMessage(request.kind, request.ticket);
    message.code = code;
    message.value = value;
    setText(message, text);
    send(message, payload);
}

void CameraClient::sendPicture(quint64 number, const Picture& picture)
{
    if (m_stream.pending() > kMostUnread) {
        return;
    }
    wire::Message message = makeMessage(wire::Kind::FrameEvent, number);
    message.width = picture.width;
    message.height = picture.height;
    message.bytesPerPixel = picture.bytesPerPixel;
    send(message, picture.bytes);
}

void CameraClient::sendFailedGrab(quint64 number, const QString& why, double value)
{
    wire::Message message = makeMessage(wire::Kind::FrameEvent, number);
    message.code = static_cast<std::int32_t>(wire::Error::Bus);
    message.value = value;
    setText(message, why);
    send(message, {});
}

void CameraClient::sendRemoved()
{
    m_bRemoved = true;
    send(makeMessage(wire::Kind::RemovedEvent, 0), {});
}

void CameraClient::receive(const QByteArray& bytes)
{
    m_received.append(bytes);
    while (m_stream.isOpen() && m_received.size() >= static_cast<int>(sizeof(wire::Message))) {
        wire::Message request;
        std::memcpy(&request, m_received.constData(), sizeof(request));
        if (request.magic != wire::kMagic || request.payloadBytes > kLargestPayload) {
            m_stream.close();
            emit sig_closed();
            return;
        }
        const int length = static_cast<int>(sizeof(request) + request.payloadBytes);
        if (m_received.size() < length) {
            return;
        }
        m_received.remove(0, length);
        request.name[sizeof(request.name) - 1] = '\0';
        emit sig_request(request);
    }
}

void CameraClient::send(wire::Message message, const QByteArray& payload)
{
    message.payloadBytes = static_cast<std::uint32_t>(payload.size());
    m_stream.write(QByteArray(reinterpret_cast<const char*>(&message), sizeof(message)) + payload);
}

} // namespace qr9::sim
