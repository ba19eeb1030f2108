#pragma once

#include "camera/BaslerCamera.h"
#include "camera/baslerframedelivery.h"
#include "tests/platform/ScriptedCamera.h"

#include <QObject>

#include <atomic>
#include <memory>

/// A source on a scripted camera that grabs and waits for triggers.
struct LiveSource {
    LiveSource()
    {
        BaslerCamera::m_bFrameIsGrabbing = false; // of the source before this one
        source->start();
        QObject::connect(
            source.get(), &FrameDelivery::sig_imgReady, source.get(), [this] { ++ready; },
            Qt::DirectConnection);
        server.forgetRequests();
    }
    int triggers() const { return server.count("Trigger"); }

    ScriptedCamera server;
    std::atomic<int> ready { 0 }; ///< frames that were told
    std::unique_ptr<BaslerFrameDelivery> source = std::make_unique<BaslerFrameDelivery>();
};
