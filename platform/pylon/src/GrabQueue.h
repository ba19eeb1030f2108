#pragma once

#include <pylon/InstantCamera.h>

#include <array>
#include <condition_variable>
#include <mutex>

namespace Pylon {

/// Grabs between the reader of the connection, which puts them in, and the grab thread, which takes them out.
class GrabQueue {
public:
    explicit GrabQueue(EGrabStrategy strategy);

    /// With LatestImageOnly a grab that still waits is dropped in favour of the new one.
    void put(CGrabResultPtr grab);

    /// A picture could not be taken because all buffers are held.
    void lose();

    /// Waits for a grab. `grab` is empty, and the result false, after the end. `skipped` tells how many
    /// pictures were dropped or lost before this one.
    bool take(CGrabResultPtr& grab, size_t& skipped);

    /// Nothing is handed out any more.
    void end();

private:
    static constexpr size_t kRoom = 10; ///< as many as there are buffers

    const EGrabStrategy m_strategy;
    std::mutex m_mutex; ///< guards all that follows
    std::condition_variable m_changed;
    std::array<CGrabResultPtr, kRoom> m_waiting; ///< a ring
    size_t m_first = 0;
    size_t m_count = 0;
    size_t m_skipped = 0;
    bool m_bEnded = false;
};

} // namespace Pylon
