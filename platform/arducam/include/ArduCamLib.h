#pragma once

#include <cstdint>

// The calls of the ArduCam USB library that drive one sensor board. Same names, records and codes as the
// maker's library; behind them is the virtual instrument's camera socket. All calls may come from any thread.

typedef void* ArduCamHandle;
typedef uint8_t Uint8;
typedef uint16_t Uint16;
typedef uint32_t Uint32;
typedef uint64_t UInt64;

constexpr Uint32 USB_CAMERA_NO_ERROR = 0x0000;
constexpr Uint32 USB_CAMERA_USB_CREATE_ERROR = 0xFF01;
constexpr Uint32 USB_CAMERA_USB_SET_CONTEXT_ERROR = 0xFF02;
constexpr Uint32 USB_CAMERA_VR_COMMAND_ERROR = 0xFF03;
constexpr Uint32 USB_CAMERA_USB_VERSION_ERROR = 0xFF04;
constexpr Uint32 USB_CAMERA_BUFFER_ERROR = 0xFF05;
constexpr Uint32 USB_CAMERA_NOT_FOUND_DEVICE_ERROR = 0xFF06;
constexpr Uint32 USB_CAMERA_I2C_BIT_ERROR = 0xFF0B;
constexpr Uint32 USB_CAMERA_I2C_NACK_ERROR = 0xFF0C;
constexpr Uint32 USB_CAMERA_I2C_TIMEOUT = 0xFF0D;
constexpr Uint32 USB_CAMERA_USB_TASK_ERROR = 0xFF20;
constexpr Uint32 USB_CAMERA_DATA_OVERFLOW_ERROR = 0xFF21;
constexpr Uint32 USB_CAMERA_DATA_LACK_ERROR = 0xFF22;
constexpr Uint32 USB_CAMERA_FIFO_FULL_ERROR = 0xFF23;
constexpr Uint32 USB_CAMERA_DATA_LEN_ERROR = 0xFF24;
constexpr Uint32 USB_CAMERA_FRAME_INDEX_ERROR = 0xFF25;
constexpr Uint32 USB_CAMERA_USB_TIMEOUT_ERROR = 0xFF26;
constexpr Uint32 USB_CAMERA_READ_EMPTY_ERROR = 0xFF30;
constexpr Uint32 USB_CAMERA_DEL_EMPTY_ERROR = 0xFF31;
constexpr Uint32 USB_CAMERA_SIZE_EXCEED_ERROR = 0xFF51;
constexpr Uint32 USB_USERDATA_ADDR_ERROR = 0xFF61;
constexpr Uint32 USB_USERDATA_LEN_ERROR = 0xFF62;
constexpr Uint32 USB_BOARD_FW_VERSION_NOT_SUPPORT_ERROR = 0xFF71;

/// Widths in bits of a register's address and value on the sensor's I2C bus.
typedef enum {
    I2C_MODE_8_8 = 0,
    I2C_MODE_8_16 = 1,
    I2C_MODE_16_8 = 2,
    I2C_MODE_16_16 = 3,
    I2C_MODE_16_32 = 4,
} i2c_mode;

/// How the bytes of a picture are to be read; the two D modes carry the pictures of two sensors at once.
typedef enum {
    FORMAT_MODE_RAW = 0,
    FORMAT_MODE_RGB = 1,
    FORMAT_MODE_YUV = 2,
    FORMAT_MODE_JPG = 3,
    FORMAT_MODE_MON = 4,
    FORMAT_MODE_RAW_D = 5,
    FORMAT_MODE_MON_D = 6,
} format_mode;

typedef struct {
    Uint32 u32CameraType;
    Uint16 u16Vid;
    Uint32 u32Width; ///< px
    Uint32 u32Height; ///< rows
    Uint8 u8PixelBytes;
    Uint8 u8PixelBits; ///< valid bits of a pixel
    Uint32 u32I2cAddr;
    Uint32 u32Size; ///< bytes of the picture at hand
    Uint8 usbType; ///< filled in by the library: 2 USB 2 board, 3 USB 3 board, 4 USB 3 board on a USB 2 port
    i2c_mode emI2cMode;
    format_mode emImageFmtMode;
    Uint32 u32TransLvl;
} ArduCamCfg;

typedef struct {
    Uint8 u8UsbIndex;
    Uint8 u8SerialNum[16];
} ArduCamIndexinfo;

typedef struct {
    ArduCamCfg stImagePara;
    UInt64 u64Time; ///< ms of a monotonic clock
    Uint8* pu8ImageData; ///< the library's own buffer, used again for the next picture
} ArduCamOutData;

extern "C" {

/// Opens the first board that is free. On a failure the handle is left undefined.
Uint32 ArduCam_autoopen(ArduCamHandle& useHandle, ArduCamCfg* useCfg);
Uint32 ArduCam_close(ArduCamHandle useHandle);

/// Fills in what hangs on the bus and returns the number; the caller gives 16 slots.
Uint32 ArduCam_scan(ArduCamIndexinfo* pUsbIdxArray);

/// 1 external trigger, 2 continuous; old boards answer USB_BOARD_FW_VERSION_NOT_SUPPORT_ERROR.
Uint32 ArduCam_setMode(ArduCamHandle useHandle, int mode);

/// Starts one exposure. A picture that nobody fetched makes room for the new one.
Uint32 ArduCam_softTrigger(ArduCamHandle useHandle);
/// 1 when the triggered picture is in the board. Waits for it, 3 s from the trigger at most, which is the
/// longest exposure and its transfer; 0 when it has not come, or none is under way.
Uint32 ArduCam_isFrameReady(ArduCamHandle useHandle);
/// Hands out the picture in the library's buffer. Waits up to `timeout` ms for it.
Uint32 ArduCam_getSingleFrame(ArduCamHandle useHandle, ArduCamOutData*& pstFrameData, int timeout = 1500);
/// Number of pictures waiting: 0 or 1.
Uint32 ArduCam_availableImage(ArduCamHandle useHandle);

Uint32 ArduCam_readSensorReg(ArduCamHandle useHandle, Uint32 regAddr, Uint32* pval);
Uint32 ArduCam_writeSensorReg(ArduCamHandle useHandle, Uint32 regAddr, Uint32 val);
Uint32 ArduCam_readUserData(ArduCamHandle useHandle, Uint16 addr, Uint8 len, Uint8* data);
Uint32 ArduCam_setboardConfig(ArduCamHandle useHandle, Uint8 u8Command, Uint16 u16Value, Uint16 u16Index,
    Uint32 u32BufSize, Uint8* pu8Buf);
}
