#pragma once

#include "camera/framedelivery.h"

#include "views/CameraView.h"

/// A Basler source that finds a camera when the test says so, and notes what it saw when it was made.
class BaslerFrameDelivery : public FrameDelivery {
public:
    /// What the camera library throws is no standard exception.
    struct Refusal { };

    inline static bool attached = false;
    inline static bool usable = true; ///< false: the attached camera cannot be set up
    inline static const QObject* viewAtConstruction = nullptr;

    static bool isCameraAttached() { return attached; }

    explicit BaslerFrameDelivery(QObject* parent)
        : FrameDelivery(parent)
    {
        m_pInstance = nullptr;
        if (!usable)
            throw Refusal();
        m_pInstance = this;
        viewAtConstruction = CameraView::Instance();
    }
};
