#pragma once

#include "platform/camera_wire.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// A raw client of the camera socket: sends records and takes them apart. Everything blocks, 10 s at most.
class WireClient {
public:
    struct Packet {
        qr9::wire::Message head;
        QByteArray payload;
    };

    explicit WireClient(const QString& socket);
    ~WireClient();
    WireClient(const WireClient&) = delete;
    WireClient& operator=(const WireClient&) = delete;

    /// The next packet, whatever it is; nothing when the server has closed the connection.
    std::optional<Packet> receive();
    /// Nothing has arrived by now.
    bool isQuiet();

    /// Sends a request and returns its answer; frames that come before it are kept for nextEvent(). A test
    /// that goes on with an answer of another kind or ticket would prove nothing, so that such an answer has
    /// code -1000.
    Packet request(qr9::wire::Kind kind, const char* name = "", double value = 0.0, int code = 0,
        const QByteArray& payload = {});
    int code(qr9::wire::Kind kind, const char* name = "", double value = 0.0, int code = 0)
    {
        return request(kind, name, value, code).head.code;
    }
    /// The next frame or removal.
    std::optional<Packet> nextEvent();

    bool sendBytes(const QByteArray& bytes);
    void close();

    /// Opens the camera and lets it wait for software triggers.
    bool openBasler(double exposureUs = 1000.0);
    std::vector<qr9::wire::Feature> open(const char* deviceClass);
    /// Triggers and takes the picture.
    QByteArray picture();

private:
    int m_fd;
    std::uint64_t m_ticket = 0;
    std::vector<Packet> m_events;
};
