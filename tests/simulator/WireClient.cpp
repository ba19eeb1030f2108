#include "tests/simulator/WireClient.h"

#include "tests/simulator/descriptors.h"

#include <cstring>

#include <unistd.h>

using namespace qr9;
using wire::Kind;

WireClient::WireClient(const QString& socket)
    : m_fd(connectedSocket(socket))
{
}

WireClient::~WireClient()
{
    close();
}

void WireClient::close()
{
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

bool WireClient::sendBytes(const QByteArray& bytes)
{
    return writeAll(m_fd, bytes);
}

std::optional<WireClient::Packet> WireClient::receive()
{
    Packet packet;
    const QByteArray head = readExactly(m_fd, sizeof(packet.head));
    if (head.size() != static_cast<int>(sizeof(packet.head))) {
        return std::nullopt;
    }
    std::memcpy(&packet.head, head.constData(), sizeof(packet.head));
    packet.payload = readExactly(m_fd, static_cast<int>(packet.head.payloadBytes));
    if (packet.head.magic != wire::kMagic
        || packet.payload.size() != static_cast<int>(packet.head.payloadBytes)) {
        return std::nullopt;
    }
    return packet;
}

bool WireClient::isQuiet()
{
    return m_events.empty() && readOnce(m_fd, 0).isEmpty();
}

WireClient::Packet WireClient::request(
    Kind kind, const char* name, double value, int code, const QByteArray& payload)
{
    wire::Message message;
    message.kind = kind;
    message.ticket = ++m_ticket;
    message.code = code;
    message.value = value;
    message.payloadBytes = static_cast<std::uint32_t>(payload.size());
    std::strncpy(message.name, name, sizeof(message.name) - 1);
    sendBytes(QByteArray(reinterpret_cast<const char*>(&message), sizeof(message)) + payload);
    while (auto packet = receive()) {
        if (packet->head.kind == Kind::FrameEvent || packet->head.kind == Kind::RemovedEvent) {
            m_events.push_back(*packet);
        } else if (packet->head.kind == kind && packet->head.ticket == m_ticket) {
            return *packet;
        } else {
            break;
        }
    }
    Packet wrong;
    wrong.head.code = -1000;
    return wrong;
}

std::optional<WireClient::Packet> WireClient::nextEvent()
{
    if (m_events.empty()) {
        return receive();
    }
    const Packet first = m_events.front();
    m_events.erase(m_events.begin());
    return first;
}

std::vector<wire::Feature> WireClient::open(const char* deviceClass)
{
    const Packet reply = request(Kind::Open, deviceClass);
    std::vector<wire::Feature> features(
        static_cast<std::size_t>(reply.payload.size()) / sizeof(wire::Feature));
    std::memcpy(features.data(), reply.payload.constData(), features.size() * sizeof(wire::Feature));
    return features;
}

bool WireClient::openBasler(double exposureUs)
{
    return !open(wire::kClassPylon).empty() && code(Kind::SetFeature, "ExposureTime", exposureUs) == 0
        && code(Kind::SetFeature, "TriggerMode", 1.0) == 0 && code(Kind::StartStream) == 0;
}

QByteArray WireClient::picture()
{
    if (code(Kind::Trigger) != 0) {
        return {};
    }
    const auto event = nextEvent();
    return event && event->head.kind == Kind::FrameEvent && event->head.code == 0 ? event->payload
                                                                                  : QByteArray();
}
