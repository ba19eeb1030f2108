#pragma once

#include "camera/BaslerCamera.h"
#include "camera/baslerframedelivery.h"
#include "tests/platform/ScriptedCamera.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

/// A source on a scripted camera, not started.
struct SourceBench {
    explicit SourceBench(int cameras = 1)
    {
        BaslerCamera::m_bFrameIsGrabbing = false; // of the source before this one
        server.setCameras(cameras);
        source = std::make_unique<BaslerFrameDelivery>();
        server.forgetRequests();
    }

    /// Lets one frame come in.
    bool grab()
    {
        QSignalSpy ready(source.get(), &FrameDelivery::sig_imgReady);
        source->start();
        source->slot_ExecuteSoftwareTrigger();
        return QTest::qWaitFor([&ready] { return ready.count() > 0; });
    }

    ScriptedCamera server;
    std::unique_ptr<BaslerFrameDelivery> source;
};
