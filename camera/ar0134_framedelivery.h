#pragma once

#include "camera/framedelivery.h"

#include <QThread>

class AR0134;

/// Frame source of an AR0134 sensor on an ArduCam USB board.
///
/// Role: puts the driver on a thread of its own and talks to it by queued signals. The live loop runs wholly
/// on that thread. Thread: lives on the GUI thread. Gain, exposure, mirrors and the copies of frames are
/// direct calls into the driver, under its mutex. Owner: the live view, as its child.
class Ar0134FrameDelivery : public FrameDelivery {
    Q_OBJECT

public:
    /// Opens the board, with a second attempt, and starts the thread; m_pInstance is set only when that
    /// worked. Blocks for as long as the sensor's register list takes.
    explicit Ar0134FrameDelivery(QObject* parent = nullptr);

    /// Blocks until the trigger under way has ended and the thread has gone.
    ~Ar0134FrameDelivery() override;

    /// True when a board is on the bus.
    static bool isCameraAttached();

    bool isRunning() override;
    float getCurrentExposure() override;
    double getCurrentGain() override;
    void setCurrentGain(float gain) override;
    void setCurrentExposure(double exposure) override;

    /// Sum of the grey values of 962 rows divided by the area of 960; without a frame a very small negative
    /// number.
    double getIntensity() override;
    bool getAutoTriggeringMode() override;

    /// Switches live mode on. False when the board is closed.
    bool start() override;
    void stop() override;
    bool pushMatImage(cv::Mat& frame) override;
    bool pushQImage(QImage& image) override;

    /// Without `trigger` waits for the next frame, 3 s at most. With it asks for one frame and stands still
    /// until the driver has worked the trigger through; in live mode nothing happens then.
    void triggerAndWaitForFrame(bool trigger) override;
    void setCameraReverse(bool reverseX, bool reverseY) override;

    /// Takes effect on the driver's thread, after the trigger that is under way there.
    void setAutoTriggeringMode(bool mode) override;

    /// Blocks until the next frame, 3 s at most.
    void waitForNextFrameReady();

public slots:
    /// Counts a frame.
    void slot_updateImg();

signals:
    void sig_setExposure(unsigned int exposure);
    void sig_setGain(double gain);

    /// One trigger, worked through before the emission returns. The signal of this name that the base class
    /// declares triggers nothing here.
    void sig_ExecuteSoftwareTrigger();
    void sig_setLiveViewState(bool on);
    void sig_update();

private:
    bool openAR0134Camera();
    void connectCamera();

    AR0134* m_pCamera = nullptr; ///< never null after construction; deleted at the end of the thread
    QThread m_thread;
    /// The mode that the driver has been asked for and takes on with some delay, so that a start() right
    /// after a stop(), or the other way round, is not taken for done already.
    bool m_bLiveAsked = false;
};
