#include "ArduCamLib.h"

#include "platform/arducam/UsbBoard.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

using qr9::arducam::UsbBoard;

namespace {

/// The open boards by handle. A handle is a number that is never given twice, so that a call with one that
/// was closed is told apart from every open board.
class Handles {
public:
    ArduCamHandle add(std::shared_ptr<UsbBoard> board)
    {
        const std::lock_guard lock(m_mutex);
        const ArduCamHandle handle = reinterpret_cast<ArduCamHandle>(++m_last);
        m_boards[handle] = std::move(board);
        return handle;
    }
    std::shared_ptr<UsbBoard> find(ArduCamHandle handle)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_boards.find(handle);
        return found == m_boards.end() ? nullptr : found->second;
    }
    bool remove(ArduCamHandle handle)
    {
        const std::lock_guard lock(m_mutex);
        return m_boards.erase(handle) > 0;
    }

private:
    std::mutex m_mutex;
    std::map<ArduCamHandle, std::shared_ptr<UsbBoard>> m_boards;
    std::uintptr_t m_last = 0;
};

Handles& handles()
{
    static Handles instance;
    return instance;
}

/// Runs `call` on the board of a handle.
template <typename Call> Uint32 onBoard(ArduCamHandle handle, Call call)
{
    const std::shared_ptr<UsbBoard> board = handles().find(handle);
    return board ? call(*board) : USB_CAMERA_USB_CREATE_ERROR;
}

} // namespace

Uint32 ArduCam_autoopen(ArduCamHandle& useHandle, ArduCamCfg* useCfg)
{
    std::shared_ptr<UsbBoard> board;
    const Uint32 code = UsbBoard::open(*useCfg, board);
    // A failed open leaves something in the caller's handle that is no board, as the maker's library may.
    useHandle = handles().add(board);
    if (code != USB_CAMERA_NO_ERROR) {
        handles().remove(useHandle);
    }
    return code;
}

Uint32 ArduCam_close(ArduCamHandle useHandle)
{
    return handles().remove(useHandle) ? USB_CAMERA_NO_ERROR : USB_CAMERA_USB_CREATE_ERROR;
}

Uint32 ArduCam_scan(ArduCamIndexinfo* pUsbIdxArray)
{
    Uint8 index = 0;
    for (const qr9::wire::Device& device : UsbBoard::scan()) {
        ArduCamIndexinfo& info = pUsbIdxArray[index];
        info.u8UsbIndex = index;
        std::memcpy(info.u8SerialNum, device.serial, sizeof(info.u8SerialNum));
        ++index;
    }
    return index;
}

Uint32 ArduCam_setMode(ArduCamHandle useHandle, int mode)
{
    return onBoard(useHandle, [&](UsbBoard& board) { return board.setMode(mode); });
}

Uint32 ArduCam_softTrigger(ArduCamHandle useHandle)
{
    return onBoard(useHandle, [](UsbBoard& board) { return board.softTrigger(); });
}

Uint32 ArduCam_isFrameReady(ArduCamHandle useHandle)
{
    return onBoard(useHandle, [](UsbBoard& board) { return board.isFrameReady(); });
}

Uint32 ArduCam_getSingleFrame(ArduCamHandle useHandle, ArduCamOutData*& pstFrameData, int timeout)
{
    return onBoard(useHandle, [&](UsbBoard& board) { return board.getSingleFrame(pstFrameData, timeout); });
}

Uint32 ArduCam_availableImage(ArduCamHandle useHandle)
{
    return onBoard(useHandle, [](UsbBoard& board) { return board.availableImage(); });
}

Uint32 ArduCam_readSensorReg(ArduCamHandle useHandle, Uint32 regAddr, Uint32* pval)
{
    return onBoard(useHandle, [&](UsbBoard& board) { return board.readRegister(regAddr, *pval); });
}

Uint32 ArduCam_writeSensorReg(ArduCamHandle useHandle, Uint32 regAddr, Uint32 val)
{
    return onBoard(useHandle, [&](UsbBoard& board) { return board.writeRegister(regAddr, val); });
}

Uint32 ArduCam_readUserData(ArduCamHandle useHandle, Uint16 addr, Uint8 len, Uint8* data)
{
    return onBoard(useHandle, [&](UsbBoard& board) { return board.readUserData(addr, len, data); });
}

Uint32 ArduCam_setboardConfig(ArduCamHandle useHandle, Uint8 u8Command, Uint16 u16Value, Uint16 u16Index,
    Uint32 u32BufSize, Uint8* pu8Buf)
{
    return onBoard(useHandle, [&](UsbBoard& board) {
        return board.setBoardConfig(u8Command, u16Value, u16Index, u32BufSize, pu8Buf);
    });
}
