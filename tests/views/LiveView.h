#pragma once

#include "camera/baslerframedelivery.h"
#include "tests/views/picture.h"
#include "views/CameraView.h"

#include <memory>

/// A live view of 540 by 405 pixels with a running source that holds one frame of picture::frame().
struct LiveView {
    LiveView()
        : view(make())
    {
        view->resize(540, 405);
        source().frame = picture::frame(1280, 960);
    }

    static std::unique_ptr<CameraView> make()
    {
        BaslerFrameDelivery::attached = true;
        return std::make_unique<CameraView>();
    }

    static FrameDelivery& source() { return *FrameDelivery::m_pInstance; }

    std::unique_ptr<CameraView> view;
};
