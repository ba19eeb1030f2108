#pragma once

#include <cstdint>

// Reader of the text files that describe a sensor to the ArduCam USB board: picture size, I2C address, and
// the list of board commands, register writes and pauses that bring the sensor up. Same names and records as
// the maker's library; see the README of this folder for the text format.

/// Which section an entry came from: bits 24 to 31 of Config::type.
enum ConfigSection : uint32_t {
    CAMERA_SECTION = 1,
    BOARD_SECTION = 2,
    REGISTER_SECTION = 3,
    CONTROL_SECTION = 4,
};

/// Which USB boards an entry is meant for: bits 16 to 23 of Config::type.
enum ConfigUsbKind : uint32_t {
    USB_KIND_ALL = 0,
    USB_KIND_DEV2 = 2,
    USB_KIND_DEV3_INF3 = 3,
    USB_KIND_DEV3_INF2 = 4,
};

/// What an entry asks for: bits 0 to 15 of Config::type.
enum ConfigKind : uint32_t {
    REGISTER_WRITE = 1, ///< params: address, value
    BOARD_COMMAND = 2, ///< params: command, value, index, count, then count bytes
    DELAY_ENTRY = 3, ///< params: ms
};

typedef struct {
    uint32_t type; ///< section << 24 | USB kind << 16 | kind
    uint32_t params[16];
    uint8_t params_length;
} Config;

typedef struct {
    uint32_t cfg_mode;
    char type[50];
    uint32_t width; ///< px
    uint32_t height; ///< rows
    uint8_t bit_width; ///< valid bits of a pixel
    uint16_t format; ///< format_mode << 8 | sub-format
    uint8_t i2c_mode;
    uint16_t i2c_addr;
    uint32_t trans_lvl;
} CameraParam;

/// A knob that a viewer may offer; this reader accepts the section and lists none.
typedef struct {
    int64_t min_value;
    int64_t max_value;
    int32_t step;
    int64_t default_value;
} Control;

typedef struct {
    CameraParam camera_param;
    Config* configs; ///< in the order of the file
    uint32_t configs_length;
    Control* controls;
    uint32_t controls_length;
} CameraConfigs;

extern "C" {

/// Reads `file_name` into `configs`. Returns 0, -1 when the file cannot be opened, -2 when memory is out,
/// else the number (from 1) of the first line that cannot be understood. The lists belong to the parser and
/// stay valid until its next call on the same thread; on a failure `configs` is empty.
int arducam_parse_config(const char* file_name, CameraConfigs* configs);
}
