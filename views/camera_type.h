#pragma once

/// Kind of camera in the unit, as the live view finds it at start.
enum CameraType : int {
    CAMERA_NONE = 0,
    CAMERA_BASLER = 1,
    CAMERA_AR0134 = 2,
};
