#include "tests/platform/ScriptedBoard.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

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

bool ScriptedBoard::Request::operator==(const Request& other) const
{
    return kind == other.kind && code == other.code && value == other.value && name == other.name
        && payload == other.payload;
}

ScriptedBoard::ScriptedBoard()
{
    char folder[] = "/tmp/scripted-board-XXXXXX";
    if (::mkdtemp(folder) == nullptr || ::pipe(m_stopPipe) != 0) {
        throw std::runtime_error("no place for the socket of the scripted board");
    }
    m_folder = folder;
    m_path = m_folder + "/camera.sock";
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, m_path.c_str(), sizeof(address.sun_path) - 1);
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(m_listener, 8) != 0) {
        throw std::runtime_error("the scripted board cannot listen");
    }
    ::setenv(wire::kSocketVariable, m_path.c_str(), 1);
    m_thread = std::thread(&ScriptedBoard::serve, this);
}

ScriptedBoard::~ScriptedBoard()
{
    ::unsetenv(wire::kSocketVariable);
    ::close(m_stopPipe[1]);
    m_thread.join();
    for (const int client : m_clients) {
        ::close(client);
    }
    ::close(m_stopPipe[0]);
    ::close(m_listener);
    ::unlink(m_path.c_str());
    ::rmdir(m_folder.c_str());
}

void ScriptedBoard::setBoards(int count)
{
    const std::lock_guard lock(m_mutex);
    m_boards = count;
}

void ScriptedBoard::setUsbType(int usbType)
{
    const std::lock_guard lock(m_mutex);
    m_usbType = usbType;
}

void ScriptedBoard::refuseOpens(int count, std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_refusals = count;
    m_refusalCode = code;
}

void ScriptedBoard::setModeCode(std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_modeCode = code;
}

void ScriptedBoard::setPicture(std::function<Bytes(int)> picture)
{
    const std::lock_guard lock(m_mutex);
    m_picture = std::move(picture);
}

void ScriptedBoard::script(std::vector<Shot> shots)
{
    const std::lock_guard lock(m_mutex);
    m_shots.assign(shots.begin(), shots.end());
}

void ScriptedBoard::setDelay(std::chrono::milliseconds delay)
{
    const std::lock_guard lock(m_mutex);
    m_delay = delay;
}

void ScriptedBoard::failReads(std::uint32_t address, std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_failingReads[address] = code;
}

void ScriptedBoard::failWrites(std::uint32_t address, std::uint32_t code)
{
    const std::lock_guard lock(m_mutex);
    m_failingWrites[address] = code;
}

void ScriptedBoard::setRegister(std::uint32_t address, std::uint16_t value)
{
    const std::lock_guard lock(m_mutex);
    m_registers[address] = value;
}

void ScriptedBoard::unplug()
{
    const std::lock_guard lock(m_mutex);
    m_unplugged = true;
}

std::uint16_t ScriptedBoard::reg(std::uint32_t address) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_registers.find(address);
    return found == m_registers.end() ? std::uint16_t(0) : found->second;
}

std::vector<ScriptedBoard::Request> ScriptedBoard::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

int ScriptedBoard::count(wire::Kind kind) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(m_requests.begin(), m_requests.end(),
        [kind](const Request& request) { return request.kind == kind; }));
}

void ScriptedBoard::forgetRequests()
{
    const std::lock_guard lock(m_mutex);
    m_requests.clear();
}

ScriptedBoard::Request ScriptedBoard::write(std::uint32_t address, std::uint16_t value)
{
    return { wire::Kind::WriteRegister, static_cast<std::int32_t>(address), value, {}, {} };
}

ScriptedBoard::Request ScriptedBoard::read(std::uint32_t address)
{
    return { wire::Kind::ReadRegister, static_cast<std::int32_t>(address), 0, {}, {} };
}

void ScriptedBoard::serve()
{
    while (true) {
        std::vector<pollfd> sockets { { m_stopPipe[0], POLLIN, 0 }, { m_listener, POLLIN, 0 } };
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
            m_clients.push_back(::accept(m_listener, nullptr, nullptr));
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
    const auto due
        = std::min_element(m_pending.begin(), m_pending.end(), [](const Pending& a, const Pending& b) {
              return a.due < b.due;
          })->due;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(due - Clock::now()).count();
    return static_cast<int>(std::max<std::int64_t>(left, 0));
}

void ScriptedBoard::sendDueFrames()
{
    std::vector<Pending> due;
    {
        const std::lock_guard lock(m_mutex);
        const auto now = Clock::now();
        const auto split = std::stable_partition(
            m_pending.begin(), m_pending.end(), [now](const Pending& pending) { return pending.due > now; });
        due.assign(split, m_pending.end());
        m_pending.erase(split, m_pending.end());
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
        if (m_unplugged) {
            fail(reply, wire::Error::Removed, 0);
        } else if (request.kind == wire::Kind::Devices) {
            const bool asked = std::string(request.name) == wire::kClassArduCam;
            reply.code = asked ? m_boards : 0;
            for (int i = 0; i < reply.code; ++i) {
                wire::Device device;
                std::strcpy(device.deviceClass, wire::kClassArduCam);
                std::strcpy(device.serial, kSerial);
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
    std::strcpy(usbType.name, "UsbType");
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
        frame.payload = m_picture ? m_picture(m_frames) : Bytes(1280U * 964U, 100);
    }
    m_pending.push_back(std::move(frame));
}
