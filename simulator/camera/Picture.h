#pragma once

#include "simulator/Clock.h"
#include "simulator/optics/GroundTruth.h"

#include <opencv2/core/mat.hpp>

#include <QByteArray>

namespace qr9::sim {

/// How a camera takes and delivers a picture.
struct CaptureSettings {
    Time exposure { 0 };
    double gainDb = 0.0; ///< 20 dB are a factor of ten in grey
    bool mirrorX = false;
    bool mirrorY = false;
    int width = optics::kFrameWidth; ///< pixels delivered
    int height = optics::kFrameHeight; ///< rows delivered, without the margins
    /// A picture narrower than the sensor comes from its middle, else from its left edge.
    bool bCentreX = false;
    bool bCentreY = false; ///< likewise, else from its upper edge
    int marginRows = 0; ///< rows above and below the picture that are delivered with it
    int bytesPerPixel = 1; ///< 2: twelve valid bits, low byte first
    double gamma = 1.0;
    double pedestal = 0.0; ///< grey values added to every pixel
};

/// A picture as it goes over the wire, row by row without gaps.
struct Picture {
    int width = 0;
    int height = 0;
    int bytesPerPixel = 1;
    QByteArray bytes;
};

/// Makes the picture that the camera delivers of what its sensor saw (CV_8UC1, a whole frame, mirrored
/// already).
Picture develop(const cv::Mat& sensor, const CaptureSettings& settings);

} // namespace qr9::sim
