// The serving thread of the scripted board: requests, replies and pictures.
#include "tests/platform/ScriptedBoard.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace qr9;

namespace {

constexpr char kSerial[] = "QR9A00000012";

void sendAll(int socket, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    while (size > 0) {
        const ssize_t sent = ::send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent <= 0) {
            return;
        }
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
}

bool receiveAll(int socket, void* data, std::size_t size)
{
    return size == 0 || ::recv(socket, data, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

void sendPacket(int socket, wire::Message head, const ScriptedBoard::Bytes& payload)
{
    head.payloadBytes = static_cast<std::uint32_t>(payload.size());
    sendAll(socket, &head, sizeof(head));
    sendAll(socket, payload.data(), payload.size());
}

template <std::size_t Size> void setText(char (&field)[Size], const char* text)
{
    std::strncpy(field, text, Size - 1);
}

template <typename Record> void append(ScriptedBoard::Bytes& bytes, const Record& record)
{
    const auto* raw = reinterpret_cast<const std::uint8_t*>(&record);
    bytes.insert(bytes.end(), raw, raw + sizeof(record));
}

void fail(wire::Message& reply, wire::Error error, std::uint32_t code)
{
    reply.code = static_cast<std::int32_t>(error);
    reply.value = code;
}

} // namespace

void ScriptedBoard::serve()
{
    while (true) {
        std::vector<pollfd> sockets { { m_stopPipe[0], POLLIN, 0 }, { m_socket.listener(), POLLIN, 0 } };
        for (const int client : m_clients) {
            sockets.push_back({ client, POLLIN, 0 });
        }
        ::poll(sockets.data(), sockets.size(), pollTimeout());
        if (sockets[0].revents != 0) {
            return;
        }
        for (std::size_t i = 2; i < sockets.size(); ++i) {
            const int client = sockets[i].fd;
            if (sockets[i].revents != 0 && !take(client)) {
                ::close(client);
                m_clients.erase(std::find(m_clients.begin(), m_clients.end(), client));
                const std::lock_guard lock(m_mutex);
                m_pending.erase(std::remove_if(m_pending.begin(), m_pending.end(),
                                    [client](const Pending& pending) { return pending.socket == client; }),
                    m_pending.end());
            }
        }
        if (sockets[1].revents != 0) {
            m_clients.push_back(::accept(m_socket.listener(), nullptr, nullptr));
        }
        sendDueFrames();
    }
}

int ScriptedBoard::pollTimeout() const
{
    const std::lock_guard lock(m_mutex);
    if (m_pending.empty()) {
        return -1;
    }
    Clock::time_point due = Clock::time_point::max();
    for (const Pending& pending : m_pending) {
        due = std::min(due, pending.due);
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(due - Clock::now()).count();
    return static_cast<int>(std::max<std::int64_t>(left, 0));
}

void ScriptedBoard::sendDueFrames()
{
    std::vector<Pending> due;
    {
        const std::lock_guard lock(m_mutex);
        const auto now = Clock::now();
        std::vector<Pending> later;
        for (Pending& pending : m_pending) {
            (pending.due > now ? later : due).push_back(std::move(pending));
        }
        m_pending = std::move(later);
    }
    for (const Pending& frame : due) {
        sendPacket(frame.socket, frame.head, frame.payload);
    }
}

bool ScriptedBoard::take(int socket)
{
    wire::Message request;
    if (!receiveAll(socket, &request, sizeof(request))) {
        return false;
    }
    Bytes payload(request.payloadBytes);
    if (!receiveAll(socket, payload.data(), payload.size())) {
        return false;
    }
    answer(socket, request, payload);
    return true;
}

void ScriptedBoard::answer(int socket, wire::Message request, const Bytes& payload)
{
    wire::Message reply = request;
    Bytes answerPayload;
    {
        const std::lock_guard lock(m_mutex);
        if (request.kind != wire::Kind::Devices) {
            m_requests.push_back({ request.kind, request.code, static_cast<std::int64_t>(request.value),
                request.name, payload });
        }
        reply.code = 0;
        if (m_failure != wire::Error::None) {
            fail(reply, m_failure, 0);
        } else if (request.kind == wire::Kind::Devices) {
            const bool asked = std::string(request.name) == wire::kClassArduCam;
            reply.code = asked ? m_boards : 0;
            for (int i = 0; i < reply.code; ++i) {
                wire::Device device;
                setText(device.deviceClass, wire::kClassArduCam);
                setText(device.serial, kSerial);
                append(answerPayload, device);
            }
        } else if (request.kind == wire::Kind::Open) {
            openAnswer(reply, answerPayload);
        } else if (request.kind == wire::Kind::SetFeature) {
            if (m_modeCode != 0 && std::string(request.name) == "Mode") {
                fail(reply, wire::Error::Refused, m_modeCode);
            }
        } else if (request.kind == wire::Kind::Trigger) {
            trigger(socket, reply);
        } else if (request.kind != wire::Kind::Close) {
            reply.code = registerAnswer(reply);
        }
    }
    reply.kind = request.kind;
    sendPacket(socket, reply, answerPayload);
}

void ScriptedBoard::openAnswer(wire::Message& reply, Bytes& payload)
{
    if (m_refusals > 0) {
        --m_refusals;
        fail(reply, wire::Error::Refused, m_refusalCode);
        return;
    }
    wire::Feature usbType;
    setText(usbType.name, "UsbType");
    usbType.value = m_usbType;
    append(payload, usbType);
}

std::int32_t ScriptedBoard::registerAnswer(wire::Message& reply)
{
    const auto address = static_cast<std::uint32_t>(m_requests.back().code);
    const bool isRead = reply.kind == wire::Kind::ReadRegister;
    const std::uint32_t code = (isRead ? m_failingReads : m_failingWrites)[address];
    if (code != 0) {
        fail(reply, wire::Error::Bus, code);
        return reply.code;
    }
    if (isRead) {
        reply.value = m_registers[address];
    } else {
        m_registers[address] = static_cast<std::uint16_t>(reply.value);
    }
    return 0;
}

void ScriptedBoard::trigger(int socket, wire::Message& reply)
{
    Shot shot;
    shot.delay = m_delay;
    if (!m_shots.empty()) {
        shot = m_shots.front();
        m_shots.pop_front();
    }
    if (shot.what == Shot::Refused) {
        fail(reply, wire::Error::Bus, shot.code);
        return;
    }
    ++m_frames;
    if (shot.what == Shot::Lost) {
        return;
    }
    Pending frame;
    frame.due = Clock::now() + shot.delay;
    frame.socket = socket;
    frame.head.kind = wire::Kind::FrameEvent;
    frame.head.ticket = static_cast<std::uint64_t>(m_frames);
    if (shot.what == Shot::Broken) {
        fail(frame.head, wire::Error::Bus, shot.code);
    } else {
        frame.payload = m_picture ? m_picture(m_frames) : Bytes(std::size_t(1280) * 964, 100);
    }
    m_pending.push_back(std::move(frame));
}
