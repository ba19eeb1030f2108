#include "simulator/optics/SensorNoise.h"

#include "simulator/optics/GroundTruth.h"
#include "simulator/optics/Random.h"
#include "simulator/optics/ScenePainter.h"
#include "simulator/optics/SharpScene.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qr9::optics {

namespace {

constexpr int kMeanScale = 64;
constexpr int kDeviationScale = 1024;
constexpr int kNormalScale = 4096;
// A product of the two, less its lower 16 bits, counts in the mean's own unit.
static_assert(static_cast<std::int64_t>(kDeviationScale) * kNormalScale / 65536 == kMeanScale);

constexpr std::size_t kTableSize = std::size_t { 1 } << 18;
constexpr int kLevels = 512; // of a mean, 0 to 511; from the highest, noise does not lead back below 255
constexpr std::uint64_t kTableKey = 0x4015E;
constexpr std::uint64_t kFrameKey = 0xF4A3E;

/// A sum of twelve even 16-bit numbers is as good as normal up to five standard deviations, and whole-number
/// arithmetic makes it the same on every machine. Its variance is 12 x 65536^2 / 12.
std::int16_t drawNormal(Random& random)
{
    std::int64_t sum = 0;
    for (int i = 0; i < 3; ++i) {
        const std::uint64_t bits = random.next();
        for (int part = 0; part < 4; ++part) {
            sum += static_cast<std::int64_t>((bits >> (16 * part)) & 0xFFFFU);
        }
    }
    constexpr std::int64_t kMiddle = std::int64_t { 6 } * 65535;
    return static_cast<std::int16_t>(
        std::clamp<std::int64_t>((sum - kMiddle) * kNormalScale / 65536, -32767, 32767));
}

/// Standard deviation x kDeviationScale for every whole grey value of mean.
std::array<std::int16_t, kLevels> deviations(const UnitConstants& unit, double gain)
{
    std::array<std::int16_t, kLevels> table {};
    for (int grey = 0; grey < kLevels; ++grey) {
        const double read = unit.readNoise * gain;
        const double shot = unit.shotNoise * gain * std::max(grey - unit.blackLevel, 0.0);
        const double deviation = std::sqrt(read * read + shot) * kDeviationScale;
        table[static_cast<std::size_t>(grey)] = static_cast<std::int16_t>(std::min(deviation + 0.5, 32767.0));
    }
    return table;
}

} // namespace

SensorNoise::SensorNoise(const UnitConstants& unit)
    : m_unit(unit)
    , m_normals(kTableSize)
{
    Random random(joinKeys(kTableKey, unit.seed));
    for (std::int16_t& normal : m_normals) {
        normal = drawNormal(random);
    }
}

void SensorNoise::expose(const cv::Mat& scene, double greyOfFullLight, const LightFall& fall, double gain,
    ExposedFrame& exposed) const
{
    exposed.mean.create(kFrameHeight, kFrameWidth, CV_16SC1);
    exposed.deviation.create(kFrameHeight, kFrameWidth, CV_16SC1);
    const std::array<std::int16_t, kLevels> deviationOf = deviations(m_unit, gain);

    // The fall of light is a sum of a part that goes by column and one that goes by row.
    const auto scale = static_cast<float>(std::min(greyOfFullLight, 1e6) * kMeanScale / kLightOne);
    const auto black = static_cast<float>(m_unit.blackLevel * kMeanScale + 0.5);
    constexpr float kMost = (kLevels - 1) * kMeanScale;
    constexpr double kHalfWidth = kFrameWidth / 2.0;
    constexpr double kHalfHeight = kFrameHeight / 2.0;
    constexpr double kHalfDiagonalSquared = kHalfWidth * kHalfWidth + kHalfHeight * kHalfHeight;
    std::array<float, kFrameWidth> byColumn {};
    for (int x = 0; x < kFrameWidth; ++x) {
        const double dx = x - (kFrameWidth - 1) / 2.0;
        byColumn[static_cast<std::size_t>(x)] = static_cast<float>(
            1.0 - fall.edge * dx * dx / kHalfDiagonalSquared - fall.tilt * dx / kHalfWidth);
    }
    for (int y = 0; y < kFrameHeight; ++y) {
        const double dy = y - (kFrameHeight - 1) / 2.0;
        const auto byRow = static_cast<float>(fall.edge * dy * dy / kHalfDiagonalSquared);
        const auto* light = scene.ptr<std::uint16_t>(y + kSceneMargin) + kSceneMargin;
        auto* mean = exposed.mean.ptr<std::int16_t>(y);
        auto* deviation = exposed.deviation.ptr<std::int16_t>(y);
        for (int x = 0; x < kFrameWidth; ++x) {
            const float grey = black
                + static_cast<float>(light[x]) * (byColumn[static_cast<std::size_t>(x)] - byRow) * scale;
            mean[x] = static_cast<std::int16_t>(std::min(grey, kMost));
        }
        for (int x = 0; x < kFrameWidth; ++x) {
            deviation[x] = deviationOf[static_cast<std::size_t>(mean[x] / kMeanScale)];
        }
    }
}

void SensorNoise::draw(const ExposedFrame& exposed, std::uint64_t frameNumber, cv::Mat& frame) const
{
    frame.create(exposed.mean.size(), CV_8UC1);
    Random random(joinKeys(joinKeys(kFrameKey, m_unit.seed), frameNumber));
    const int width = frame.cols;
    for (int y = 0; y < frame.rows; ++y) {
        const std::int16_t* normal = m_normals.data()
            + random.below(static_cast<std::uint32_t>(kTableSize - static_cast<std::size_t>(width)));
        const auto* mean = exposed.mean.ptr<std::int16_t>(y);
        const auto* deviation = exposed.deviation.ptr<std::int16_t>(y);
        auto* grey = frame.ptr<std::uint8_t>(y);
        for (int x = 0; x < width; ++x) {
            const int noise = (normal[x] * deviation[x]) >> 16;
            const int value = (mean[x] + noise + kMeanScale / 2) >> 6;
            grey[x] = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
        }
    }
}

} // namespace qr9::optics
