#pragma once

#include "camera/framedelivery.h"

#include "views/CameraView.h"

// A Basler source that finds a camera when the test says so, and notes what it saw when it was made.
class BaslerFrameDelivery : public FrameDelivery {
public:
    inline static bool attached = false;
    inline static const QObject* viewAtConstruction = nullptr;

    static bool isCameraAttached() { return attached; }

    explicit BaslerFrameDelivery(QObject* parent)
        : FrameDelivery(parent)
    {
        m_pInstance = this;
        viewAtConstruction = CameraView::Instance();
    }
};
