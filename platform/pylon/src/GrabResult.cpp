#include <pylon/GrabResult.h>

#include "GrabBufferPool.h"

#include <utility>

namespace Pylon {

void CGrabResultData::retain() noexcept
{
    m_references.fetch_add(1);
}

void CGrabResultData::release() noexcept
{
    if (m_references.fetch_sub(1) != 1)
        return;
    const std::shared_ptr<GrabBufferPool> home = std::move(m_home); // this may be the last to hold the pool
    home->giveBack(*this);
}

CGrabResultPtr::CGrabResultPtr(const CGrabResultPtr& other) noexcept
    : m_data(other.m_data)
{
    if (m_data != nullptr)
        m_data->retain();
}

CGrabResultPtr::CGrabResultPtr(CGrabResultPtr&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr))
{
}

CGrabResultPtr& CGrabResultPtr::operator=(const CGrabResultPtr& other) noexcept
{
    CGrabResultPtr copy(other);
    std::swap(m_data, copy.m_data);
    return *this;
}

CGrabResultPtr& CGrabResultPtr::operator=(CGrabResultPtr&& other) noexcept
{
    CGrabResultPtr taken(std::move(other));
    std::swap(m_data, taken.m_data);
    return *this;
}

CGrabResultPtr::~CGrabResultPtr()
{
    Release();
}

void CGrabResultPtr::Release() noexcept
{
    if (CGrabResultData* const data = std::exchange(m_data, nullptr))
        data->release();
}

CGrabResultData* CGrabResultPtr::operator->() const
{
    if (m_data == nullptr)
        throw GenICam::LogicalErrorException("No grab result data is referenced.");
    return m_data;
}

CPylonImage::~CPylonImage()
{
    Release();
}

void CPylonImage::Release() noexcept
{
    if (CGrabResultData* const data = m_data.exchange(nullptr))
        data->release();
}

void CPylonImage::AttachGrabResultBuffer(const CGrabResultPtr& grabResult)
{
    Release();
    if (!grabResult->GrabSucceeded() || grabResult->GetBuffer() == nullptr)
        throw GenICam::InvalidArgumentException("The grab result holds no picture.");
    if (grabResult->m_bytesPerPixel != 1 && grabResult->m_bytesPerPixel != 2)
        throw GenICam::InvalidArgumentException("The pixel type of the grab result is not supported.");
    grabResult->retain();
    m_data = grabResult.m_data;
}

void* CPylonImage::GetBuffer() noexcept
{
    const CGrabResultData* const data = m_data;
    return data == nullptr ? nullptr : data->GetBuffer();
}

const void* CPylonImage::GetBuffer() const noexcept
{
    const CGrabResultData* const data = m_data;
    return data == nullptr ? nullptr : data->GetBuffer();
}

} // namespace Pylon
