#include "GrabQueue.h"

#include <utility>

namespace Pylon {

GrabQueue::GrabQueue(EGrabStrategy strategy)
    : m_strategy(strategy)
{
}

void GrabQueue::put(CGrabResultPtr grab)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_bEnded)
            return;
        const bool full = m_count == (m_strategy == GrabStrategy_LatestImageOnly ? 1 : kRoom);
        if (full) {
            m_waiting[m_first].Release();
            m_first = (m_first + 1) % kRoom;
            --m_count;
            ++m_skipped;
        }
        m_waiting[(m_first + m_count) % kRoom] = std::move(grab);
        ++m_count;
    }
    m_changed.notify_one();
}

void GrabQueue::lose()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_skipped;
}

bool GrabQueue::take(CGrabResultPtr& grab, size_t& skipped)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_bEnded || m_count > 0; });
    if (m_bEnded)
        return false;
    grab = std::move(m_waiting[m_first]);
    m_first = (m_first + 1) % kRoom;
    --m_count;
    skipped = std::exchange(m_skipped, 0);
    return true;
}

void GrabQueue::end()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bEnded = true;
        for (CGrabResultPtr& grab : m_waiting)
            grab.Release();
        m_count = 0;
    }
    m_changed.notify_one();
}

} // namespace Pylon
