#include "platform/wire_client.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace qr9::wire {
namespace {

constexpr std::chrono::seconds kReplyLimit { 5 };
/// Far above the largest picture; a larger count means that the stream has lost its step.
constexpr std::uint32_t kLargestPayload = 64U * 1024U * 1024U;

bool sendAll(int socket, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    while (size > 0) {
        const ssize_t sent = ::send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return false;
        }
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool receiveAll(int socket, void* data, std::size_t size)
{
    auto* bytes = static_cast<std::uint8_t*>(data);
    while (size > 0) {
        const ssize_t got = ::recv(socket, bytes, size, 0);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return false;
        }
        bytes += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool discardAll(int socket, std::size_t size)
{
    std::array<std::uint8_t, 65536> waste;
    while (size > 0) {
        const std::size_t part = std::min(size, waste.size());
        if (!receiveAll(socket, waste.data(), part)) {
            return false;
        }
        size -= part;
    }
    return true;
}

int connectedSocket()
{
    const char* path = std::getenv(kSocketVariable);
    if (path == nullptr || *path == '\0') {
        path = kSocketPath;
    }
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (std::strlen(path) >= sizeof(address.sun_path)) {
        return -1;
    }
    std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // A server that takes nothing in must not hold the caller for ever.
    const timeval limit { kReplyLimit.count(), 0 };
    if (socket >= 0) {
        ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
    }
    if (socket >= 0 && ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        ::close(socket);
        return -1;
    }
    return socket;
}

} // namespace

void setName(Message& message, const char* text)
{
    std::strncpy(message.name, text, sizeof(message.name) - 1);
    message.name[sizeof(message.name) - 1] = '\0';
}

Client::Client(EventHandler onEvent, FrameBuffer frameBuffer)
    : m_onEvent(std::move(onEvent))
    , m_frameBuffer(std::move(frameBuffer))
    , m_socket(connectedSocket())
    , m_connected(m_socket >= 0)
{
    if (m_connected) {
        m_reader = std::thread(&Client::readLoop, this);
    }
}

Client::~Client()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closing = true;
    }
    if (m_reader.joinable()) {
        ::shutdown(m_socket, SHUT_RDWR);
        m_reader.join();
    }
    if (m_socket >= 0) {
        ::close(m_socket);
    }
}

bool Client::connected() const
{
    const std::lock_guard lock(m_mutex);
    return m_connected;
}

std::optional<Packet> Client::request(Message head, const std::vector<std::uint8_t>& payload)
{
    const std::lock_guard one(m_requestMutex);
    std::unique_lock lock(m_mutex);
    if (!m_connected) {
        return std::nullopt;
    }
    head.ticket = ++m_ticket;
    head.payloadBytes = static_cast<std::uint32_t>(payload.size());
    m_reply.reset();
    lock.unlock();
    const bool sent
        = sendAll(m_socket, &head, sizeof(head)) && sendAll(m_socket, payload.data(), payload.size());
    lock.lock();
    if (!sent) {
        return std::nullopt;
    }
    m_changed.wait_for(lock, kReplyLimit, [this] { return m_reply.has_value() || !m_connected; });
    return std::exchange(m_reply, std::nullopt);
}

void Client::readLoop()
{
    Packet packet;
    while (receivePacket(packet)) {
        const bool event = packet.head.kind == Kind::FrameEvent || packet.head.kind == Kind::RemovedEvent;
        if (event) {
            if (m_onEvent) {
                m_onEvent(std::move(packet));
            }
        } else {
            const std::lock_guard lock(m_mutex);
            // A reply that comes after its request was given up is nobody's.
            if (packet.head.ticket == m_ticket) {
                m_reply = std::move(packet);
                m_changed.notify_all();
            }
        }
        packet = {};
    }
    breakOff();
}

bool Client::receivePacket(Packet& packet)
{
    if (!receiveAll(m_socket, &packet.head, sizeof(Message))) {
        return false;
    }
    if (packet.head.magic != kMagic || packet.head.payloadBytes > kLargestPayload) {
        return false;
    }
    packet.head.name[sizeof(packet.head.name) - 1] = '\0';
    const std::uint32_t size = packet.head.payloadBytes;
    if (packet.head.kind == Kind::FrameEvent && m_frameBuffer) {
        if (std::uint8_t* const buffer = m_frameBuffer(packet.head)) {
            return receiveAll(m_socket, buffer, size);
        }
        return discardAll(m_socket, size);
    }
    packet.payload.resize(size);
    return receiveAll(m_socket, packet.payload.data(), size);
}

void Client::breakOff()
{
    bool tell = false;
    {
        const std::lock_guard lock(m_mutex);
        m_connected = false;
        tell = !m_closing;
        m_changed.notify_all();
    }
    if (tell && m_onEvent) {
        Packet removed;
        removed.head.kind = Kind::RemovedEvent;
        m_onEvent(std::move(removed));
    }
}

} // namespace qr9::wire
