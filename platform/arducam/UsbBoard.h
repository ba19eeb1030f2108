#pragma once

#include "ArduCamLib.h"
#include "platform/wire_client.h"

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace qr9::arducam {

/// One opened ArduCam board on the camera socket: its registers, its trigger, and the one picture that its
/// memory holds. Any thread may call; pictures arrive on the connection's reader thread. Owned by the table
/// of handles in ArduCamLib.cpp. All results are codes of the library.
class UsbBoard {
public:
    /// The boards on the bus, at most 16; empty when nobody serves the socket.
    static std::vector<wire::Device> scan();

    /// Opens the first board and fills in the USB kind of `config`. On a failure `board` stays null.
    static Uint32 open(ArduCamCfg& config, std::shared_ptr<UsbBoard>& board);
    ~UsbBoard();

    Uint32 setMode(int mode);
    Uint32 softTrigger();
    Uint32 isFrameReady();
    Uint32 getSingleFrame(ArduCamOutData*& data, int timeoutMs);
    Uint32 availableImage();
    Uint32 readRegister(Uint32 address, Uint32& value);
    Uint32 writeRegister(Uint32 address, Uint32 value);
    Uint32 readUserData(Uint16 address, Uint8 length, Uint8* data) const;
    Uint32 setBoardConfig(Uint8 command, Uint16 value, Uint16 index, Uint32 length, const Uint8* bytes);

private:
    using Clock = std::chrono::steady_clock;

    UsbBoard();
    Uint32 claim(ArduCamCfg& config);
    void onEvent(wire::Packet&& packet);
    Uint32 deliver(const wire::Packet& frame);

    ArduCamCfg m_config {};
    std::array<Uint8, 0x400> m_userData {};

    std::mutex m_mutex; ///< guards the members up to m_out
    std::condition_variable m_changed;
    bool m_underWay = false; ///< a trigger was taken and its picture has not come
    bool m_removed = false;
    Clock::time_point m_triggered;
    std::optional<wire::Packet> m_frame;
    std::vector<Uint8> m_buffer; ///< handed out again and again
    ArduCamOutData m_out {};

    wire::Client m_wire; ///< last: its reader thread uses what stands above
};

} // namespace qr9::arducam
