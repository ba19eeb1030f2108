#include "camera/framedelivery.h"

#include <cstdint>
#include <ctime>

namespace {

/// The rate is an average over more than this time, in ms.
constexpr double kRateInterval = 1000.0;

} // namespace

FrameDelivery* FrameDelivery::m_pInstance = nullptr;

double getTick()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    // Summed in 64 bits and cut once: a double beyond the range of 32 bits has no defined conversion to them.
    const auto milliseconds
        = static_cast<std::uint64_t>(now.tv_sec) * 1000U + static_cast<std::uint64_t>(now.tv_nsec) / 1000000U;
    return static_cast<double>(static_cast<std::uint32_t>(milliseconds));
}

FrameDelivery::FrameDelivery(QObject* parent)
    : QObject(parent)
{
}

FrameDelivery::~FrameDelivery() = default;

void FrameDelivery::FpsUpdate()
{
    static double recentTime = getTick();
    static int frameCounter = 0;

    const double tick = getTick();
    const double elapsed = tick - recentTime;
    if (elapsed > kRateInterval) {
        const double rate = frameCounter / elapsed * 1000.0;
        recentTime = tick;
        frameCounter = 1; // the frame at hand counts into the next interval
        emit sig_FpsUpdate(static_cast<float>(rate));
    } else {
        ++frameCounter;
    }
}
