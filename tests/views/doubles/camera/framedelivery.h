#pragma once

#include <QImage>
#include <QObject>

#include <cstddef>
#include <cstring>
#include <vector>

/// The part of the frame source that the live view sees, in the hand of a test: no camera, no thread.
class FrameDelivery : public QObject {
public:
    static constexpr int kFrameWidth = 1280;
    static constexpr int kFrameHeight = 960;
    static constexpr std::size_t kBytes = std::size_t(kFrameWidth) * kFrameHeight;

    inline static FrameDelivery* m_pInstance = nullptr;

    explicit FrameDelivery(QObject* parent = nullptr)
        : QObject(parent)
    {
    }
    ~FrameDelivery() override
    {
        if (m_pInstance == this)
            m_pInstance = nullptr;
    }

    bool isRunning() { return running; }
    bool getAutoTriggeringMode() { return live; }
    bool pushQImage(QImage& image)
    {
        ++pushes;
        target = image.bits();
        if (frame.empty())
            return false;
        std::memcpy(target, frame.data(), frame.size());
        return true;
    }

    bool running = true;
    bool live = false;
    std::vector<unsigned char> frame; ///< empty, or 1280 by 960 bytes
    int pushes = 0;
    unsigned char* target = nullptr; ///< where the last frame went
};
