#pragma once

#include <ArduCamLib.h>
#include <arducam_config_parser.h>

#include <QStringList>

#include <vector>

/// A record of the calls that the driver makes of the ArduCam library and its parser, and what they give
/// back. The linker puts it in the library's place (--wrap): for calls that no board sees, and for answers
/// that a good library does not give. One thread alone.
struct ArduCamCalls {
    QStringList calls; ///< with their numbers, as "writeSensorReg 0x3012 815"

    std::vector<Config> configs; ///< what the parser finds in any file
    Uint32 openCode = USB_CAMERA_NO_ERROR;
    Uint32 modeCode = USB_CAMERA_NO_ERROR;
    Uint32 triggerCode = USB_CAMERA_NO_ERROR;
    Uint32 frameReady = 1;
    Uint32 frameCode = USB_CAMERA_NO_ERROR;
    Uint32 availableImages = 1;

    /// The calls since the last time.
    QStringList taken();
};

ArduCamCalls& arduCam();
