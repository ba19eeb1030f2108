#include "platform/arducam/UsbBoard.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

namespace qr9::arducam {
namespace {

constexpr std::size_t kMaxBoards = 16;
/// The longest exposure of the sensor lasts 1.6 s; the rest is for reading out and transfer.
constexpr std::chrono::milliseconds kFrameLimit { 3000 };
constexpr Uint16 kSerialAddress = 0x3F0;
constexpr std::size_t kSerialLength = 16;
constexpr Uint8 kMaxUserData = 32;

constexpr char kModeFeature[] = "Mode";
constexpr char kBoardConfigFeature[] = "BoardConfig";
constexpr char kUsbTypeFeature[] = "UsbType";

struct CodeRow {
    wire::Error error;
    Uint32 code;
};
/// What the library calls a failure that the wire tells in general words.
constexpr std::array<CodeRow, 7> kCodes { {
    { wire::Error::NoSuchDevice, USB_CAMERA_NOT_FOUND_DEVICE_ERROR },
    { wire::Error::NoSuchFeature, USB_CAMERA_VR_COMMAND_ERROR },
    { wire::Error::OutOfRange, USB_CAMERA_SIZE_EXCEED_ERROR },
    { wire::Error::Removed, USB_CAMERA_USB_TASK_ERROR },
    { wire::Error::Refused, USB_CAMERA_USB_CREATE_ERROR },
    { wire::Error::Bus, USB_CAMERA_I2C_NACK_ERROR },
    { wire::Error::OldFirmware, USB_BOARD_FW_VERSION_NOT_SUPPORT_ERROR },
} };

/// The library's code in the `value` of a failed reply or event, where the instrument asks for a certain one.
std::optional<Uint32> askedCode(const wire::Message& message)
{
    const bool asked = message.value >= 1.0 && message.value <= 0xFFFF;
    return asked ? std::optional(static_cast<Uint32>(message.value)) : std::nullopt;
}

/// The library's code of a failed reply.
Uint32 codeOf(const wire::Message& reply)
{
    const auto row = std::find_if(kCodes.begin(), kCodes.end(),
        [&reply](const CodeRow& candidate) { return static_cast<int>(candidate.error) == reply.code; });
    return askedCode(reply).value_or(row == kCodes.end() ? USB_CAMERA_VR_COMMAND_ERROR : row->code);
}

Uint32 resultOf(const std::optional<wire::Packet>& reply)
{
    if (!reply) {
        return USB_CAMERA_USB_TASK_ERROR;
    }
    return reply->head.code >= 0 ? USB_CAMERA_NO_ERROR : codeOf(reply->head);
}

wire::Message message(wire::Kind kind, const char* name = "")
{
    wire::Message head;
    head.kind = kind;
    wire::setName(head, name);
    return head;
}

std::vector<wire::Device> devices(wire::Client& client)
{
    const auto reply = client.request(message(wire::Kind::Devices, wire::kClassArduCam));
    std::vector<wire::Device> found;
    if (reply && reply->head.code > 0) {
        found.resize(std::min(reply->payload.size() / sizeof(wire::Device), kMaxBoards));
        std::memcpy(found.data(), reply->payload.data(), found.size() * sizeof(wire::Device));
    }
    return found;
}

Uint8 usbTypeOf(const std::vector<std::uint8_t>& features)
{
    for (std::size_t at = 0; at + sizeof(wire::Feature) <= features.size(); at += sizeof(wire::Feature)) {
        wire::Feature feature;
        std::memcpy(&feature, features.data() + at, sizeof(feature));
        if (std::strncmp(feature.name, kUsbTypeFeature, sizeof(feature.name)) == 0) {
            return static_cast<Uint8>(feature.value);
        }
    }
    return 3;
}

} // namespace

std::vector<wire::Device> UsbBoard::scan()
{
    wire::Client client;
    return devices(client);
}

UsbBoard::UsbBoard()
    : m_wire([this](wire::Packet&& packet) { onEvent(std::move(packet)); })
{
}

UsbBoard::~UsbBoard()
{
    m_wire.request(message(wire::Kind::Close));
}

Uint32 UsbBoard::open(ArduCamCfg& config, std::shared_ptr<UsbBoard>& board)
{
    std::shared_ptr<UsbBoard> candidate(new UsbBoard);
    const Uint32 code = candidate->claim(config);
    board = code == USB_CAMERA_NO_ERROR ? candidate : nullptr;
    return code;
}

Uint32 UsbBoard::claim(ArduCamCfg& config)
{
    const std::vector<wire::Device> found = devices(m_wire);
    if (found.empty()) {
        return USB_CAMERA_NOT_FOUND_DEVICE_ERROR;
    }
    if (config.u32Width == 0 || config.u32Height == 0) {
        return USB_CAMERA_SIZE_EXCEED_ERROR;
    }
    const auto reply = m_wire.request(message(wire::Kind::Open, wire::kClassArduCam));
    const Uint32 code = resultOf(reply);
    if (code != USB_CAMERA_NO_ERROR) {
        return code;
    }
    config.usbType = usbTypeOf(reply->payload);
    m_config = config;
    m_userData.fill(0xFF);
    std::memcpy(m_userData.data() + kSerialAddress, found.front().serial, kSerialLength);
    return USB_CAMERA_NO_ERROR;
}

void UsbBoard::onEvent(wire::Packet&& packet)
{
    const std::lock_guard lock(m_mutex);
    if (packet.head.kind == wire::Kind::FrameEvent) {
        m_frame = std::move(packet);
    } else {
        m_removed = true;
    }
    m_underWay = false;
    m_changed.notify_all();
}

Uint32 UsbBoard::setMode(int mode)
{
    wire::Message head = message(wire::Kind::SetFeature, kModeFeature);
    head.value = mode;
    return resultOf(m_wire.request(head));
}

Uint32 UsbBoard::softTrigger()
{
    {
        const std::lock_guard lock(m_mutex);
        m_frame.reset();
        m_underWay = true; // before the request: the picture may come together with its reply
        m_triggered = Clock::now();
    }
    const Uint32 code = resultOf(m_wire.request(message(wire::Kind::Trigger)));
    if (code != USB_CAMERA_NO_ERROR) {
        const std::lock_guard lock(m_mutex);
        m_underWay = false;
    }
    return code;
}

Uint32 UsbBoard::isFrameReady()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_until(lock, m_triggered + kFrameLimit, [this] { return !m_underWay; });
    return m_frame ? 1 : 0;
}

Uint32 UsbBoard::getSingleFrame(ArduCamOutData*& data, int timeoutMs)
{
    std::unique_lock lock(m_mutex);
    const std::chrono::milliseconds limit(std::max(timeoutMs, 0));
    m_changed.wait_for(lock, limit, [this] { return m_frame || m_removed; });
    if (!m_frame) {
        return m_removed ? USB_CAMERA_USB_TASK_ERROR : USB_CAMERA_USB_TIMEOUT_ERROR;
    }
    const wire::Packet frame = std::move(*m_frame);
    m_frame.reset();
    data = &m_out;
    return deliver(frame);
}

Uint32 UsbBoard::deliver(const wire::Packet& frame)
{
    if (frame.head.code != 0) {
        return askedCode(frame.head).value_or(USB_CAMERA_USB_TIMEOUT_ERROR);
    }
    const std::size_t expected = std::size_t(m_config.u32Width) * m_config.u32Height * m_config.u8PixelBytes;
    const std::size_t got = frame.payload.size();
    m_buffer.resize(std::max({ m_buffer.size(), expected, got }));
    // As over a bad cable, the bytes that did come are in the buffer even when the picture is not whole.
    std::copy(frame.payload.begin(), frame.payload.end(), m_buffer.begin());
    // A compressed picture has no fixed length; any other is whole or broken.
    if (m_config.emImageFmtMode != FORMAT_MODE_JPG && got != expected) {
        return USB_CAMERA_DATA_LEN_ERROR;
    }
    m_out.stImagePara = m_config;
    m_out.stImagePara.u32Size = static_cast<Uint32>(got);
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch());
    m_out.u64Time = static_cast<UInt64>(now.count());
    m_out.pu8ImageData = m_buffer.data();
    return USB_CAMERA_NO_ERROR;
}

Uint32 UsbBoard::availableImage()
{
    const std::lock_guard lock(m_mutex);
    return m_frame ? 1 : 0;
}

Uint32 UsbBoard::readRegister(Uint32 address, Uint32& value)
{
    wire::Message head = message(wire::Kind::ReadRegister);
    head.code = static_cast<std::int32_t>(address);
    const auto reply = m_wire.request(head);
    const Uint32 code = resultOf(reply);
    if (code == USB_CAMERA_NO_ERROR) {
        value = static_cast<Uint32>(reply->head.value);
    }
    return code;
}

Uint32 UsbBoard::writeRegister(Uint32 address, Uint32 value)
{
    wire::Message head = message(wire::Kind::WriteRegister);
    head.code = static_cast<std::int32_t>(address);
    head.value = value & 0xFFFF; // two bytes travel on the sensor's bus
    return resultOf(m_wire.request(head));
}

Uint32 UsbBoard::readUserData(Uint16 address, Uint8 length, Uint8* data) const
{
    if (length > kMaxUserData) {
        return USB_USERDATA_LEN_ERROR;
    }
    if (std::size_t(address) + length > m_userData.size()) {
        return USB_USERDATA_ADDR_ERROR;
    }
    std::copy_n(m_userData.begin() + address, length, data);
    return USB_CAMERA_NO_ERROR;
}

Uint32 UsbBoard::setBoardConfig(Uint8 command, Uint16 value, Uint16 index, Uint32 length, const Uint8* bytes)
{
    wire::Message head = message(wire::Kind::SetFeature, kBoardConfigFeature);
    head.code = command;
    head.value = static_cast<double>(Uint32(value) << 16 | index);
    return resultOf(m_wire.request(head, std::vector<Uint8>(bytes, bytes + length)));
}

} // namespace qr9::arducam
