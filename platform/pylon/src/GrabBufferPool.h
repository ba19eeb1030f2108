#pragma once

#include <pylon/GrabResult.h>

#include <array>
#include <mutex>

namespace qr9::wire {
struct Message;
}

namespace Pylon {

/// Ten grabs with their buffers. A grab is handed out empty, filled by its one holder, and comes back when
/// the last reference to it goes; its buffer is kept for the next one of the same size. Grabs that are out
/// keep the pool alive. Any thread.
class GrabBufferPool : public std::enable_shared_from_this<GrabBufferPool> {
public:
    static constexpr size_t kBuffers = 10;

    GrabBufferPool();

    /// A grab with room for the picture that `event` announces, or an empty reference when all are out.
    CGrabResultPtr acquire(const qr9::wire::Message& event);

    /// Where the picture of a grab goes.
    static unsigned char* bufferOf(const CGrabResultPtr& grab);

    static void setSkippedImages(const CGrabResultPtr& grab, size_t count);

private:
    friend class CGrabResultData;
    void giveBack(CGrabResultData& grab);

    std::mutex m_mutex; ///< guards the two below
    std::array<CGrabResultData*, kBuffers> m_free {};
    size_t m_freeCount = 0;
    std::array<CGrabResultData, kBuffers> m_grabs;
};

} // namespace Pylon
