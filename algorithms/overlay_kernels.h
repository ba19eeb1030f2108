#pragma once

#include <cstdint>

/// The arithmetic of one row of an overlay. No state, any thread.
namespace overlay_kernels {

/// Fractions of a pixel that an affine warp works in: 32 to a pixel.
constexpr int kFractionsPerPixel = 32;

/// blended[x] = upperWeight * upper[x] + lowerWeight * lower[x], the pixels raised by `raise` (0..255)
/// before, saturating at 255. The weights are at most 32 together.
void blendRows(const std::uint8_t* upper, const std::uint8_t* lower, int upperWeight, int lowerWeight,
    int raise, std::uint16_t* blended, int count);

/// overlaid[x] = the larger of ground[x] and the pixel that lies `fraction` / 32 beyond blended[x], where
/// `blended` holds 32nds and count + 1 values.
void overlayRow(const std::uint16_t* blended, int fraction, const std::uint8_t* ground,
    std::uint8_t* overlaid, int count);

} // namespace overlay_kernels
