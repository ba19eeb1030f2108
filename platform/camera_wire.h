#pragma once

#include <cstdint>

// clang-format off
/// The wire of the camera socket, between a stand-in SDK (client, in the product's process) and the virtual
/// instrument (server). It is the one thing that both sides share: plain records, no code.
///
/// Transport: a Unix stream socket, kSocketPath; tests put another path into the environment variable
/// kSocketVariable. Both ends are on one machine, so that records travel in native byte order and layout.
/// Every message is one Message, followed by `payloadBytes` bytes of payload.
///
/// Every request is answered by exactly one Reply, in order; `kind` and `ticket` of the request are echoed.
/// Events (FrameEvent, RemovedEvent) may come between replies at any time. Request kinds and what they carry:
///
/// | kind          | request                                  | reply                                            |
/// |---------------|------------------------------------------|--------------------------------------------------|
/// | Devices       | name = device class                      | code = count; payload = count x Device           |
/// | Open          | name = device class, code = index        | code 0 or an Error; payload = n x Feature        |
/// | Close         |                                          | code 0                                           |
/// | SetFeature    | name, value                              | code 0, or an Error with its text in name        |
/// | GetFeature    | name                                     | code 0 and value, or an Error                    |
/// | WriteRegister | code = address, value = 16 bit value     | code 0 or an Error                               |
/// | ReadRegister  | code = address                           | code 0 and value, or an Error                    |
/// | StartStream   |                                          | code 0 or an Error; frames may come from now on  |
/// | StopStream    |                                          | code 0; no frame comes after this reply          |
/// | Trigger       |                                          | code 0 taken, code 1 ignored (one is under way)  |
// clang-format on
namespace qr9::wire {

constexpr char kSocketPath[] = "/run/rig/camera.sock";
constexpr char kSocketVariable[] = "QR9_CAMERA_SOCKET";
constexpr std::uint32_t kMagic = 0x51523943; // "QR9C"

/// Device classes that a server may hold.
constexpr char kClassPylon[] = "BaslerUsb";
constexpr char kClassArduCam[] = "ArduCam";

enum class Kind : std::uint32_t {
    Devices = 1,
    Open = 2,
    Close = 3,
    SetFeature = 4,
    GetFeature = 5,
    WriteRegister = 6,
    ReadRegister = 7,
    StartStream = 8,
    StopStream = 9,
    Trigger = 10,
    FrameEvent = 20, ///< code 0: payload is the picture; else the grab failed, `name` tells why
    RemovedEvent = 21, ///< the plug was pulled; every later request is answered with Error::Removed
};

enum class Error : std::int32_t {
    None = 0,
    NoSuchDevice = -1,
    NoSuchFeature = -2,
    OutOfRange = -3,
    Removed = -4,
    Refused = -5,
    Bus = -6,
    OldFirmware = -7,
};

/// One message of either direction. Unused fields are 0.
struct Message {
    std::uint32_t magic = kMagic;
    Kind kind = Kind::Devices;
    std::uint64_t ticket = 0; ///< chosen by the client; echoed. In a FrameEvent: number of the frame, from 1
    std::int32_t code = 0;
    std::uint32_t payloadBytes = 0;
    double value = 0.0;
    std::int32_t width = 0; ///< FrameEvent: pixels
    std::int32_t height = 0; ///< FrameEvent: rows
    std::int32_t bytesPerPixel = 0; ///< FrameEvent: 1 or 2; two bytes come low byte first
    std::int32_t reserved = 0;
    char name[64] = {}; ///< NUL-terminated
};
static_assert(sizeof(Message) == 112, "both ends must agree on the layout");

/// One device of a Devices reply.
struct Device {
    char deviceClass[32] = {};
    char model[64] = {};
    char serial[32] = {};
};
static_assert(sizeof(Device) == 128, "both ends must agree on the layout");

/// One feature of an Open reply: a node of the camera with its limits. Texts (DeviceModelName) travel in
/// `text`. Names and units are those of the camera: ExposureTime in microseconds, Gain in dB, Width and
/// Height in pixels, flags 0 or 1, enumerations by their number.
struct Feature {
    char name[32] = {};
    double value = 0.0;
    double min = 0.0;
    double max = 0.0;
    char text[64] = {};
};
static_assert(sizeof(Feature) == 120, "both ends must agree on the layout");

} // namespace qr9::wire
