#pragma once

#include "platform/camera_wire.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace qr9::wire {

/// One message of the camera socket with the bytes that follow it.
struct Packet {
    Message head;
    std::vector<std::uint8_t> payload;
};

/// Client end of the camera socket. A stand-in SDK holds one for each open device (and one for the length of
/// a bus scan). Requests may come from any thread; events are handed over on the client's own reader thread.
class Client {
public:
    /// Called on the reader thread for every FrameEvent and RemovedEvent; must not call request(). A
    /// connection that breaks while the client lives is told as a RemovedEvent.
    using EventHandler = std::function<void(Packet&&)>;

    /// Called on the reader thread when a frame begins: where its payload goes (room for `payloadBytes`), or
    /// null to throw it away. The event that follows then carries no payload.
    using FrameBuffer = std::function<std::uint8_t*(const Message& frame)>;

    /// Connects to the socket named by kSocketVariable, else to kSocketPath. Does not wait for a server.
    explicit Client(EventHandler onEvent = {}, FrameBuffer frameBuffer = {});
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    /// Ends the connection and the reader thread; no event comes after it.
    ~Client();

    /// False when there was no server, or when the connection has broken.
    bool connected() const;

    /// Sends one request and blocks until its reply is here, 5 s at most; `ticket` and `payloadBytes` are
    /// filled in. Nothing comes back when the connection is broken or the server stays silent.
    std::optional<Packet> request(Message head, const std::vector<std::uint8_t>& payload = {});

private:
    void readLoop();
    bool receivePacket(Packet& packet);
    void breakOff();

    EventHandler m_onEvent;
    FrameBuffer m_frameBuffer;
    int m_socket = -1;
    std::mutex m_requestMutex; ///< one request at a time
    mutable std::mutex m_mutex; ///< guards the members below
    std::condition_variable m_changed;
    std::uint64_t m_ticket = 0; ///< of the request under way
    std::optional<Packet> m_reply;
    bool m_connected = false;
    bool m_closing = false;
    std::thread m_reader;
};

/// Writes `text` into a NUL-terminated field of a record, cut to its size.
void setName(Message& message, const char* text);

} // namespace qr9::wire
