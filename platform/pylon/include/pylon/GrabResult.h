#pragma once

#include <pylon/GenICam.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

/// Pictures on their way from the camera. Their buffers come from a pool of ten and are not copied: whoever
/// holds a reference keeps the buffer from being used again.
namespace Pylon {

class GrabBufferPool;

/// One grab, good or failed. Written by the library before it is handed out, read-only from then on.
class CGrabResultData {
public:
    bool GrabSucceeded() const noexcept { return m_bSucceeded; }
    GenICam::gcstring GetErrorDescription() const { return m_errorDescription; }
    std::uint32_t GetErrorCode() const noexcept { return m_errorCode; }
    std::uint32_t GetWidth() const noexcept { return m_width; }
    std::uint32_t GetHeight() const noexcept { return m_height; }
    void* GetBuffer() const noexcept { return m_imageSize == 0 ? nullptr : m_buffer.get(); }
    size_t GetImageSize() const noexcept { return m_imageSize; }
    std::int64_t GetBlockID() const noexcept { return m_blockId; }
    size_t GetNumberOfSkippedImages() const noexcept { return m_skippedImages; }

private:
    friend class GrabBufferPool;
    friend class CGrabResultPtr;
    friend class CPylonImage;

    void retain() noexcept;
    void release() noexcept;

    std::atomic<int> m_references { 0 };
    std::shared_ptr<GrabBufferPool> m_home; ///< set while the buffer is out
    std::unique_ptr<unsigned char[]> m_buffer;
    size_t m_capacity = 0; ///< bytes of the buffer
    size_t m_imageSize = 0; ///< bytes of the picture
    std::uint32_t m_width = 0; ///< px
    std::uint32_t m_height = 0; ///< rows
    int m_bytesPerPixel = 0;
    std::int64_t m_blockId = 0;
    size_t m_skippedImages = 0;
    bool m_bSucceeded = false;
    std::uint32_t m_errorCode = 0;
    GenICam::gcstring m_errorDescription;
};

/// A reference to a grab. Use of an empty one throws.
class CGrabResultPtr {
public:
    CGrabResultPtr() = default;
    CGrabResultPtr(const CGrabResultPtr& other) noexcept;
    CGrabResultPtr(CGrabResultPtr&& other) noexcept;
    CGrabResultPtr& operator=(const CGrabResultPtr& other) noexcept;
    CGrabResultPtr& operator=(CGrabResultPtr&& other) noexcept;
    ~CGrabResultPtr();

    bool IsValid() const noexcept { return m_data != nullptr; }
    void Release() noexcept;
    CGrabResultData* operator->() const;

private:
    friend class GrabBufferPool;
    friend class CPylonImage;

    CGrabResultData* m_data = nullptr;
};

/// A picture that shares the buffer of a grab. IsValid may be asked on any thread; everything else needs a
/// lock of the caller's.
class CPylonImage {
public:
    CPylonImage() = default;
    CPylonImage(const CPylonImage&) = delete;
    CPylonImage& operator=(const CPylonImage&) = delete;
    ~CPylonImage();

    bool IsValid() const noexcept { return m_data.load() != nullptr; }
    void Release() noexcept;

    /// Throws, and holds nothing then, for a grab that failed or is no picture of 8 or 16 bits.
    void AttachGrabResultBuffer(const CGrabResultPtr& grabResult);

    /// Null without a picture.
    void* GetBuffer() noexcept;
    const void* GetBuffer() const noexcept;

private:
    std::atomic<CGrabResultData*> m_data { nullptr };
};

} // namespace Pylon
