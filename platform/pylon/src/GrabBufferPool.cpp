#include "GrabBufferPool.h"

#include "platform/camera_wire.h"

namespace Pylon {

GrabBufferPool::GrabBufferPool()
{
    for (CGrabResultData& grab : m_grabs)
        m_free[m_freeCount++] = &grab;
}

CGrabResultPtr GrabBufferPool::acquire(const qr9::wire::Message& event)
{
    CGrabResultPtr reference;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_freeCount == 0)
            return reference;
        reference.m_data = m_free[--m_freeCount];
    }
    CGrabResultData& grab = *reference.m_data;
    grab.retain();
    grab.m_home = shared_from_this();
    if (grab.m_capacity < event.payloadBytes) {
        grab.m_buffer.reset(new unsigned char[event.payloadBytes]);
        grab.m_capacity = event.payloadBytes;
    }
    grab.m_imageSize = event.payloadBytes;
    grab.m_width = static_cast<std::uint32_t>(event.width);
    grab.m_height = static_cast<std::uint32_t>(event.height);
    grab.m_bytesPerPixel = event.bytesPerPixel;
    grab.m_blockId = static_cast<std::int64_t>(event.ticket);
    grab.m_skippedImages = 0;
    grab.m_bSucceeded = event.code == 0;
    grab.m_errorCode = static_cast<std::uint32_t>(event.code);
    grab.m_errorDescription = static_cast<const char*>(event.name);
    return reference;
}

unsigned char* GrabBufferPool::bufferOf(const CGrabResultPtr& grab)
{
    return grab.m_data->m_buffer.get();
}

void GrabBufferPool::setSkippedImages(const CGrabResultPtr& grab, size_t count)
{
    grab.m_data->m_skippedImages = count;
}

void GrabBufferPool::giveBack(CGrabResultData& grab)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_free[m_freeCount++] = &grab;
}

} // namespace Pylon
