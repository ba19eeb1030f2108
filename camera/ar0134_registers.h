#pragma once

#include <ArduCamLib.h>

// Registers of the AR0134 sensor that this program writes; all have 16 bits.
namespace ar0134 {

constexpr Uint32 kRegExposure = 0x3012; ///< lines
constexpr Uint32 kRegPedestal = 0x301E; ///< grey value of black
constexpr Uint32 kRegReadMode = 0x3040; ///< mirrors
constexpr Uint32 kRegDigitalGain = 0x305E; ///< in 1/32
constexpr Uint32 kRegAnalogGain = 0x30B0; ///< bits 4 and 5: doublings

/// kRegReadMode with the two mirrors alone.
constexpr Uint32 mirrorBits(bool reverseX, bool reverseY)
{
    return (reverseY ? 1U << 15 : 0U) | (reverseX ? 1U << 14 : 0U);
}

} // namespace ar0134
