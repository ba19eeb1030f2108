#pragma once

#include "camera/BaslerCamera.h"
#include "tests/platform/ScriptedCamera.h"

/// A camera on a scripted device.
struct CameraBench {
    /// Open, and told nothing yet. As the frame source does it, but without handlers.
    void open()
    {
        camera.connect(nullptr, nullptr);
        camera.open();
        server.forgetRequests();
    }

    void setUp(uint bits = 8)
    {
        open();
        camera.initalize(1280, 960, bits, map);
        server.forgetRequests();
    }

    ScriptedCamera server;
    BaslerCamera camera;
    DeviceNodeMap map;
};
