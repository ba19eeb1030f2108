#pragma once

#include <cstdint>

/// One reply of the controller board, parsed. A reply overwrites only the fields that it carries, so that a
/// field may still hold what an earlier reply put there.
struct protocol_Controller_info {
    std::int32_t device = 0; ///< which unit answered, PROTOCOL_*
    std::int32_t function = 0; ///< which command was answered, FUNCTION_*
    std::int32_t value = 0; ///< position in motor steps, LED channel, or filter position 1 to 3
    std::int32_t value2 = 0; ///< correction of a filter position
};

enum : std::int32_t {
    PROTOCOL_MAIN = 0,
    PROTOCOL_STAGE_X = 1,
    PROTOCOL_STAGE_Z = 2,
    PROTOCOL_FILTER = 3,
};

/// The numbers overlap between devices: a function means something only together with its device.
/// 5, 6, 7 and 10 are not used and stay free.
enum : std::int32_t {
    FUNCTION_ORIGIN = 0,
    FUNCTION_INSERT = 1, ///< X stage
    FUNCTION_GO = 1, ///< filter
    FUNCTION_LED = 1, ///< PROTOCOL_MAIN
    FUNCTION_EJECT = 2, ///< X stage
    FUNCTION_READ = 2, ///< filter
    FUNCTION_BOTTOM = 3, ///< Z stage
    FUNCTION_TOP = 4, ///< Z stage
    FUNCTION_RUN = 8,
    FUNCTION_ABS = 9,
    FUNCTION_POS = 11,
};
