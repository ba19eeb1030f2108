#pragma once

#include <opencv2/core.hpp>

#include <QImage>
#include <QObject>

/// The monotonic clock in whole milliseconds; it wraps at 2 to the 32nd power.
double getTick();

/// The one interface through which everything above the camera drivers sees a camera.
///
/// Role: starts and stops image flow, sets exposure and gain in units that depend on no device, hands out the
/// newest frame, and tells that one has arrived. Frames are not queued: there is one current frame, and a
/// consumer copies it when it wants it.
/// Frame: one plane of 8 bits, 1280 by 960 pixels, stride 1280, 1228800 bytes, top left pixel first.
/// Thread: the object lives on the GUI thread and is called from there. Frames come in on a thread of the
/// camera's; sig_imgReady is emitted on that one.
/// Owner: the live view, which creates the one source of the process; all others reach it by m_pInstance.
class FrameDelivery : public QObject {
    Q_OBJECT

public:
    static constexpr int kFrameWidth = 1280; ///< pixels
    static constexpr int kFrameHeight = 960; ///< rows
    static constexpr int kFrameBytes = kFrameWidth * kFrameHeight;

    /// The source of the process; null when there is none. Written on the GUI thread only.
    static FrameDelivery* m_pInstance;

    explicit FrameDelivery(QObject* parent = nullptr);
    ~FrameDelivery() override;

    /// True while images are flowing or can flow.
    virtual bool isRunning() = 0;

    /// Exposure in ms, read back from the device: it differs from what was set by the device's own steps.
    virtual float getCurrentExposure() = 0;

    /// Gain in dB, read back from the device.
    virtual double getCurrentGain() = 0;

    /// Sets the gain, in dB.
    virtual void setCurrentGain(float gain) = 0;

    /// Sets the exposure, in ms.
    virtual void setCurrentExposure(double exposure) = 0;

    /// Mean grey value of the current frame, or -1.0 without a frame.
    virtual double getIntensity() = 0;

    /// True while the free-running trigger loop (live mode) is on.
    virtual bool getAutoTriggeringMode() = 0;

    /// Brings the device to the state in which triggers deliver frames. False when there is no device.
    virtual bool start() = 0;

    /// Ends free running and grabbing.
    virtual void stop() = 0;

    /// Copies the current frame into `frame`, which is reallocated unless it is 960 by 1280 of CV_8UC1.
    /// False, and `frame` as it was, when there is no frame.
    virtual bool pushMatImage(cv::Mat& frame) = 0;

    /// Copies the current frame into the bits of `image`, which must be 1280 by 960 with one byte a pixel.
    /// False, and the bits as they were, when there is no frame.
    virtual bool pushQImage(QImage& image) = 0;

    /// Issues one software trigger if `trigger` is set; then waits for the next frame, at most 5 s with a
    /// trigger and 1 s without. Does not wait in live mode.
    virtual void triggerAndWaitForFrame(bool trigger) = 0;

    /// Mirrors the picture in X and in Y, in the camera itself.
    virtual void setCameraReverse(bool reverseX, bool reverseY) = 0;

public slots:
    /// Switches the free-running loop on or off. Switching it off may wait for the frame that is under way.
    virtual void setAutoTriggeringMode(bool mode) = 0;

public:
    /// Mean grey value over the objects of `frame` (8 bits, one channel), which stand out by more than
    /// `offset` grey values. 0.0 with fewer than 10 or more than 1000 objects. Blocks for some milliseconds.
    double IntensityPerObject(cv::Mat& frame, int offset);

    /// Sum of the grey values of `frame` outside of its objects, divided by the area of a whole frame.
    /// 0.0 with fewer than 10 or more than 1000 objects. Blocks for some milliseconds.
    double IntensityBackground(cv::Mat& frame, int offset);

    /// Measures the current frame and emits sig_IntensityUpdate. Without a frame it measures the one that it
    /// measured before, and before the first of all the average is 0. On the object's own thread only.
    void IntensityUpdate();

    /// Counts one frame and emits sig_FpsUpdate about once a second. On the object's own thread only. The
    /// count is shared by all sources of the process.
    void FpsUpdate();

signals:
    /// For mode changes from other threads.
    void sig_setAutoTriggeringMode(bool mode);

    /// Asks for the next software trigger.
    void sig_ExecuteSoftwareTrigger();

    /// A new current frame exists. Emitted on the thread that delivers frames.
    void sig_imgReady();

    /// Average, object and background intensity in grey values.
    void sig_IntensityUpdate(double average, double object, double background);

    /// Frames per second, averaged over at least one second.
    void sig_FpsUpdate(float rate);

protected:
    /// The picture under measurement, a copy of its own, so that the source may go on.
    cv::Mat m_frameMat;
};
