#pragma once

#include "camera/framedelivery.h"

/// A source without a camera: its current frame is what the test puts there.
class FakeSource : public FrameDelivery {
public:
    bool isRunning() override { return false; }
    float getCurrentExposure() override { return 0.0F; }
    double getCurrentGain() override { return 0.0; }
    void setCurrentGain(float /*gain*/) override { }
    void setCurrentExposure(double /*exposure*/) override { }
    double getIntensity() override { return -1.0; }
    bool getAutoTriggeringMode() override { return false; }
    bool start() override { return false; }
    void stop() override { }
    bool pushMatImage(cv::Mat& frame) override
    {
        if (current.empty())
            return false;
        current.copyTo(frame);
        return true;
    }
    bool pushQImage(QImage& /*image*/) override { return false; }
    void triggerAndWaitForFrame(bool /*trigger*/) override { }
    void setCameraReverse(bool /*reverseX*/, bool /*reverseY*/) override { }
    void setAutoTriggeringMode(bool /*mode*/) override { }

    cv::Mat current;
};
