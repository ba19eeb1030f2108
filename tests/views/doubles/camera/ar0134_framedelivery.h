#pragma once

#include "camera/framedelivery.h"

#include "views/CameraView.h"

/// An AR0134 source that finds a camera when the test says so, and notes what it saw when it was made.
class Ar0134FrameDelivery : public FrameDelivery {
public:
    inline static bool attached = false;
    inline static const QObject* viewAtConstruction = nullptr;

    explicit Ar0134FrameDelivery(QObject* parent)
        : FrameDelivery(parent)
    {
        m_pInstance = attached ? this : nullptr;
        viewAtConstruction = CameraView::Instance();
    }
};
