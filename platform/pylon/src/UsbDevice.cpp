#include "UsbDevice.h"

#include <cstring>
#include <utility>

namespace Pylon {

namespace wire = qr9::wire;

namespace {

wire::Message messageOf(wire::Kind kind, const std::string& name = {})
{
    wire::Message message;
    message.kind = kind;
    name.copy(static_cast<char*>(message.name), sizeof(message.name) - 1);
    return message;
}

/// The records of a payload; a rest that is no whole record is left out.
template <typename Record> std::vector<Record> recordsOf(const std::vector<unsigned char>& payload)
{
    std::vector<Record> records(payload.size() / sizeof(Record));
    if (!records.empty())
        std::memcpy(records.data(), payload.data(), records.size() * sizeof(Record));
    return records;
}

template <std::size_t size> std::string textOf(const char (&field)[size])
{
    return { static_cast<const char*>(field), ::strnlen(static_cast<const char*>(field), size) };
}

/// Throws the library's exception unless the answer is a good one.
void check(const std::optional<wire::Packet>& reply, const std::string& what)
{
    if (!reply.has_value())
        throw GenICam::TimeoutException(what + ": The device does not answer.");
    if (reply->head.code >= 0)
        return;
    const std::string text = what + ": " + textOf(reply->head.name);
    switch (static_cast<wire::Error>(reply->head.code)) {
    case wire::Error::Removed:
        throw GenICam::RuntimeException(what + ": The device has been removed from the PC.");
    case wire::Error::OutOfRange:
        throw GenICam::OutOfRangeException(text);
    case wire::Error::NoSuchFeature:
        throw GenICam::AccessException(text);
    default:
        throw GenICam::RuntimeException(text);
    }
}

} // namespace

UsbDevice::UsbDevice(CDeviceInfo info, int index)
    : m_info(std::move(info))
    , m_index(index)
{
}

UsbDevice::~UsbDevice()
{
    disconnect();
}

std::vector<CDeviceInfo> UsbDevice::onBus(const char* deviceClass)
{
    std::vector<CDeviceInfo> infos;
    wire::Client client;
    const std::optional<wire::Packet> reply = client.request(messageOf(wire::Kind::Devices, deviceClass));
    if (!reply.has_value())
        return infos;
    for (const wire::Device& device : recordsOf<wire::Device>(reply->payload)) {
        CDeviceInfo info;
        info.SetDeviceClass(textOf(device.deviceClass));
        info.SetModelName(textOf(device.model));
        info.SetSerialNumber(textOf(device.serial));
        infos.push_back(info);
    }
    return infos;
}

void UsbDevice::open(std::function<void()> removed)
{
    disconnect();
    m_removed = std::move(removed);
    m_bRemoved = false;
    m_bClosing = false;
    auto client = std::make_shared<wire::Client>([this](wire::Packet&& event) { takeEvent(event.head); },
        [this](const wire::Message& frame) { return bufferFor(frame); });
    if (!client->connected())
        throw GenICam::RuntimeException("Open: The device cannot be reached.");
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_client = std::move(client);
    }
    wire::Message message = messageOf(wire::Kind::Open, m_info.GetDeviceClass().c_str());
    message.code = m_index;
    try {
        m_features = recordsOf<wire::Feature>(request(message, "Open").payload);
    } catch (...) {
        disconnect();
        m_bRemoved = false;
        throw;
    }
    m_bOpen = true;
}

void UsbDevice::close()
{
    if (!m_bOpen)
        return;
    if (!m_bRemoved)
        ask(messageOf(wire::Kind::Close));
    disconnect();
    m_bOpen = false;
}

void UsbDevice::disconnect()
{
    m_bClosing = true;
    std::shared_ptr<wire::Client> client; // ends outside of the lock
    const std::lock_guard<std::mutex> lock(m_mutex);
    client.swap(m_client);
    m_queue.reset();
}

void UsbDevice::startStream(std::shared_ptr<GrabQueue> queue)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_queue = std::move(queue);
    }
    request(messageOf(wire::Kind::StartStream), "StartGrabbing");
}

void UsbDevice::stopStream()
{
    if (!m_bRemoved)
        ask(messageOf(wire::Kind::StopStream));
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_queue.reset();
}

const wire::Feature* UsbDevice::find(const std::string& name) const
{
    for (const wire::Feature& feature : m_features) {
        if (textOf(feature.name) == name)
            return &feature;
    }
    return nullptr;
}

double UsbDevice::read(const std::string& name)
{
    return request(messageOf(wire::Kind::GetFeature, name), name).head.value;
}

void UsbDevice::write(const std::string& name, double value)
{
    wire::Message message = messageOf(wire::Kind::SetFeature, name);
    message.value = value;
    request(message, name);
}

void UsbDevice::execute(const std::string& name)
{
    // The one command is the software trigger. A camera that does not wait for one ignores it, and nobody is
    // told.
    request(messageOf(wire::Kind::Trigger, name), name);
}

/// Asks the camera, and throws when it refuses or is gone.
wire::Packet UsbDevice::request(const wire::Message& message, const std::string& what)
{
    if (m_bRemoved)
        throw GenICam::RuntimeException(what + ": The device has been removed from the PC.");
    std::optional<wire::Packet> reply = ask(message);
    check(reply, what);
    return std::move(*reply);
}

/// Asks the camera; no answer comes from one that is closed or gone.
std::optional<wire::Packet> UsbDevice::ask(const wire::Message& message)
{
    std::shared_ptr<wire::Client> client;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        client = m_client;
    }
    return client == nullptr ? std::nullopt : client->request(message);
}

std::shared_ptr<GrabQueue> UsbDevice::queue()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_queue;
}

std::uint8_t* UsbDevice::bufferFor(const wire::Message& frame)
{
    const std::shared_ptr<GrabQueue> into = queue();
    if (into == nullptr)
        return nullptr;
    m_incoming = m_pool->acquire(frame);
    if (!m_incoming.IsValid()) {
        into->lose();
        return nullptr;
    }
    return GrabBufferPool::bufferOf(m_incoming);
}

void UsbDevice::takeEvent(const wire::Message& event)
{
    if (event.kind == wire::Kind::FrameEvent)
        frameArrived();
    else
        plugPulled();
}

void UsbDevice::frameArrived()
{
    const std::shared_ptr<GrabQueue> into = queue();
    if (into != nullptr && m_incoming.IsValid())
        into->put(std::move(m_incoming));
    m_incoming.Release();
}

void UsbDevice::plugPulled()
{
    m_incoming.Release();
    if (!m_bClosing
        && !m_bRemoved.exchange(true)) // told once, though the connection ends later than the event
        m_removed();
}

} // namespace Pylon
