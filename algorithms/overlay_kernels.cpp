#include "algorithms/overlay_kernels.h"

#include "algorithms/kernel_targets.h"

namespace overlay_kernels {

QR9_KERNEL void blendRows(const std::uint8_t* upper, const std::uint8_t* lower, int upperWeight,
    int lowerWeight, int raise, std::uint16_t* blended, int count)
{
    const auto add = static_cast<std::uint8_t>(raise);
    const auto most = static_cast<std::uint8_t>(255 - raise);
    const auto upperFactor = static_cast<std::uint16_t>(upperWeight);
    const auto lowerFactor = static_cast<std::uint16_t>(lowerWeight);
    for (int x = 0; x < count; ++x) {
        const auto above = static_cast<std::uint8_t>((upper[x] < most ? upper[x] : most) + add);
        const auto below = static_cast<std::uint8_t>((lower[x] < most ? lower[x] : most) + add);
        blended[x] = static_cast<std::uint16_t>(upperFactor * above + lowerFactor * below);
    }
}

QR9_KERNEL void overlayRow(
    const std::uint16_t* blended, int fraction, const std::uint8_t* ground, std::uint8_t* overlaid, int count)
{
    // Both weightings together are 32 x 32 parts; half of that rounds.
    constexpr int kScaleBits = 10;
    const int rest = kFractionsPerPixel - fraction;
    for (int x = 0; x < count; ++x) {
        const int sum = rest * blended[x] + fraction * blended[x + 1];
        const auto value = static_cast<std::uint8_t>((sum + (1 << (kScaleBits - 1))) >> kScaleBits);
        overlaid[x] = value > ground[x] ? value : ground[x];
    }
}

} // namespace overlay_kernels
