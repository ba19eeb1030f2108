#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

/// A whole number that was read or worked out in 64 bits, kept within the range of an integer. What a damaged
/// settings file or a garbled reply gives so stays at its end of the range, and a position worked out from it
/// does not come round to the other end of the axis.
constexpr int withinInt(std::int64_t number)
{
    constexpr std::int64_t kLowest = std::numeric_limits<int>::min();
    constexpr std::int64_t kHighest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, kLowest, kHighest));
}
