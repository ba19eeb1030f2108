#include "tests/platform/ScriptedCamera.h"
#include "tests/platform/wire_text.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

using namespace qr9;
using wiretext::copyText;

namespace {

void sendAll(int socket, const void* data, std::size_t size)
{
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    while (size > 0) {
        const ssize_t sent = ::send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent <= 0)
            return;
        bytes += sent;
        size -= static_cast<std::size_t>(sent);
    }
}

void sendMessage(int socket, wire::Message head, const ScriptedCamera::Bytes& payload)
{
    head.payloadBytes = static_cast<std::uint32_t>(payload.size());
    sendAll(socket, &head, sizeof(head));
    sendAll(socket, payload.data(), payload.size());
}

template <typename Record> void append(ScriptedCamera::Bytes& bytes, const Record& record)
{
    const auto* raw = reinterpret_cast<const std::uint8_t*>(&record);
    bytes.insert(bytes.end(), raw, raw + sizeof(record));
}

void fail(wire::Message& reply, wire::Error error, const std::string& text)
{
    reply.code = static_cast<std::int32_t>(error);
    copyText(reply.name, text);
}

/// Values as a test writes them: "1280", "0.5".
std::string textOf(double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.10g", value);
    return text;
}

std::string textOf(const wire::Message& request)
{
    switch (request.kind) {
    case wire::Kind::Open:
        return "Open " + std::to_string(request.code);
    case wire::Kind::Close:
        return "Close";
    case wire::Kind::SetFeature:
        return std::string("Set ") + request.name + " " + textOf(request.value);
    case wire::Kind::GetFeature:
        return std::string("Get ") + request.name;
    case wire::Kind::StartStream:
        return "StartStream";
    case wire::Kind::StopStream:
        return "StopStream";
    case wire::Kind::Trigger:
        return "Trigger";
    default:
        return "?";
    }
}

} // namespace

void ScriptedCamera::serve()
{
    for (;;) {
        std::vector<pollfd> waits { { m_socket.listener(), POLLIN, 0 }, { m_wakePipe[0], POLLIN, 0 } };
        for (const int client : m_clients)
            waits.push_back({ client, POLLIN, 0 });
        ::poll(waits.data(), waits.size(), pollTimeout());
        char bytes[64];
        while (::read(m_wakePipe[0], bytes, sizeof(bytes)) > 0) { }
        bool hungUp = false;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_bEnding)
                return;
            hungUp = std::exchange(m_bHungUp, false);
        }
        sendDueFrames(); // before requests: an answer tells the test that the frames are there
        for (std::size_t i = 2; i < waits.size(); ++i) {
            const int client = waits[i].fd;
            if (hungUp || (waits[i].revents != 0 && !take(client))) {
                ::close(client);
                m_clients.erase(std::find(m_clients.begin(), m_clients.end(), client));
                const std::lock_guard<std::mutex> lock(m_mutex);
                m_opened = m_opened == client ? -1 : m_opened;
            }
        }
        if (waits[0].revents != 0)
            m_clients.push_back(::accept4(m_socket.listener(), nullptr, nullptr, SOCK_CLOEXEC));
    }
}

int ScriptedCamera::pollTimeout() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_pending.empty())
        return -1;
    const auto first = std::min_element(m_pending.begin(), m_pending.end(),
        [](const Pending& left, const Pending& right) { return left.due < right.due; });
    const auto left = std::chrono::ceil<Milliseconds>(first->due - Clock::now()).count();
    return static_cast<int>(std::max<Milliseconds::rep>(left, 0));
}

/// Answers one request; false when the client is gone.
bool ScriptedCamera::take(int socket)
{
    wire::Message request;
    if (::recv(socket, &request, sizeof(request), MSG_WAITALL) != static_cast<ssize_t>(sizeof(request)))
        return false;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (request.kind != wire::Kind::Devices)
        m_requests.push_back(textOf(request));
    if (!m_bSilent)
        answer(socket, request);
    return true;
}

void ScriptedCamera::answer(int socket, const wire::Message& request)
{
    wire::Message reply = request;
    Bytes payload;
    if (m_bUnplugged && request.kind != wire::Kind::Devices) {
        fail(reply, wire::Error::Removed, "removed");
        sendMessage(socket, reply, payload);
        return;
    }
    switch (request.kind) {
    case wire::Kind::Devices:
        reply.code = m_bUnplugged ? 0 : m_cameras;
        for (int i = 0; i < reply.code; ++i) {
            wire::Device device;
            copyText(device.deviceClass, wire::kClassPylon);
            copyText(device.model, find("DeviceModelName")->text);
            copyText(device.serial, "2200" + std::to_string(i));
            append(payload, device);
        }
        break;
    case wire::Kind::Open:
        if (m_bOpensRefused) {
            fail(reply, wire::Error::Refused, "controlled by another application");
            break;
        }
        reply.code = 0;
        m_opened = socket;
        for (const wire::Feature& feature : m_features)
            append(payload, feature);
        break;
    case wire::Kind::SetFeature:
        setFeature(reply);
        break;
    case wire::Kind::GetFeature:
        getFeature(reply);
        break;
    case wire::Kind::StopStream:
        m_pending.clear();
        m_bUnderWay = false;
        break;
    case wire::Kind::Trigger:
        trigger(socket, reply);
        break;
    default:
        break;
    }
    sendMessage(socket, reply, payload);
}

void ScriptedCamera::setFeature(wire::Message& reply)
{
    const std::string name = reply.name;
    const auto refusal = std::find_if(
        m_refusals.rbegin(), m_refusals.rend(), [&name](const auto& entry) { return entry.first == name; });
    if (refusal != m_refusals.rend() && !refusal->second.empty())
        fail(reply, wire::Error::Refused, refusal->second);
    else if (wire::Feature* const feature = find(name))
        feature->value = reply.value;
    else
        fail(reply, wire::Error::NoSuchFeature, "no such node");
}

void ScriptedCamera::getFeature(wire::Message& reply) const
{
    if (const wire::Feature* const feature = find(reply.name))
        reply.value = feature->value;
    else
        fail(reply, wire::Error::NoSuchFeature, "no such node");
}

void ScriptedCamera::trigger(int socket, wire::Message& reply)
{
    if (m_bUnderWay) {
        ++m_ignoredTriggers;
        reply.code = 1;
        return;
    }
    Shot shot { Shot::Good, m_delay, {} };
    if (!m_shots.empty()) {
        shot = m_shots.front();
        m_shots.pop_front();
    }
    const Clock::time_point due = Clock::now() + shot.delay;
    switch (shot.what) {
    case Shot::Good:
        m_bUnderWay = true;
        addFrame(socket, due, true);
        break;
    case Shot::Failed: {
        m_bUnderWay = true;
        wire::Message event;
        event.kind = wire::Kind::FrameEvent;
        event.ticket = static_cast<std::uint64_t>(++m_frames);
        fail(event, wire::Error::Bus, shot.text);
        m_pending.push_back({ due, socket, event, {}, true });
        break;
    }
    case Shot::Lost:
        break;
    case Shot::Refused:
        fail(reply, wire::Error::Refused, shot.text);
        break;
    }
}

void ScriptedCamera::addFrame(int socket, Clock::time_point due, bool ofTrigger)
{
    const int number = ++m_frames;
    Picture picture = m_picture(number);
    wire::Message event;
    event.kind = wire::Kind::FrameEvent;
    event.ticket = static_cast<std::uint64_t>(number);
    event.width = picture.width;
    event.height = picture.height;
    event.bytesPerPixel = picture.bytesPerPixel;
    m_pending.push_back({ due, socket, event, std::move(picture.pixels), ofTrigger });
}

void ScriptedCamera::sendDueFrames()
{
    const Clock::time_point now = Clock::now();
    std::vector<Pending> due;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto rest = std::stable_partition(
            m_pending.begin(), m_pending.end(), [now](const Pending& frame) { return frame.due > now; });
        due.assign(std::make_move_iterator(rest), std::make_move_iterator(m_pending.end()));
        m_pending.erase(rest, m_pending.end());
        for (const Pending& frame : due)
            m_bUnderWay = m_bUnderWay && !frame.ofTrigger;
    }
    for (const Pending& frame : due)
        sendMessage(frame.socket, frame.head, frame.payload);
}
