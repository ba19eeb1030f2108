#pragma once

#include "camera/framedelivery.h"

#include <pylon/PylonIncludes.h>

#include <QMutex>
#include <QWaitCondition>

class BaslerCamera;
class QThread;

/// The frame source on a Basler camera.
///
/// Role: keeps the camera in software trigger mode and makes live video by a trigger loop: each frame that
/// arrives asks for the next trigger, so that exactly one frame is ever under way and the rate follows the
/// exposure.
/// Threads: lives on the GUI thread. OnImageGrabbed and OnImagesSkipped run on the library's grab thread; the
/// next trigger and sig_imgReady reach the GUI thread as queued calls.
/// Failures: those of the camera are logged and absorbed; the layers above only see that no frame comes.
/// Owner: the live view.
class BaslerFrameDelivery : public FrameDelivery,
                            public Pylon::CImageEventHandler,
                            public Pylon::CSoftwareTriggerConfiguration {
    Q_OBJECT

public:
    /// Attaches, opens and sets up the first camera on the bus. Throws GenICam::GenericException when a
    /// camera is attached but cannot be set up; the reason is logged, nothing is left registered, and
    /// m_pInstance is null.
    explicit BaslerFrameDelivery(QObject* parent = nullptr);
    ~BaslerFrameDelivery() override;

    /// True when a Basler camera is on the bus.
    static bool isCameraAttached();

    bool isRunning() override;
    float getCurrentExposure() override;
    double getCurrentGain() override;
    void setCurrentGain(float gain) override;
    void setCurrentExposure(double exposure) override;
    double getIntensity() override;
    bool getAutoTriggeringMode() override;
    bool start() override;
    void stop() override;
    bool pushMatImage(cv::Mat& frame) override;
    bool pushQImage(QImage& image) override;
    void triggerAndWaitForFrame(bool trigger) override;
    void setCameraReverse(bool reverseX, bool reverseY) override;

    /// Sets the camera's gamma.
    void setGamma(double gamma);

    /// Called by the constructor.
    void initialize();

    /// Ends the trigger loop by disconnecting everything from sig_ExecuteSoftwareTrigger.
    void deinitialize();

    void OnImagesSkipped(Pylon::CInstantCamera& camera, size_t count) override;
    void OnImageGrabbed(Pylon::CInstantCamera& camera, const Pylon::CGrabResultPtr& result) override;

public slots:
    void setAutoTriggeringMode(bool mode) override;

    /// Fires one software trigger.
    void slot_ExecuteSoftwareTrigger();

private:
    void takeOver(const Pylon::CGrabResultPtr& result);
    void giveUpCamera() noexcept;

    BaslerCamera* m_pCamera = nullptr; ///< never deleted: the process is ending when it is given up
    bool m_bConnected = false; ///< a camera was found and attached; gate of every device call
    Pylon::CPylonImage m_grabbedImage; ///< the current frame: a reference to the library's buffer, no copy
    QThread* m_ownerThread = nullptr; ///< null after construction, so that every thread waits for its frame
    QMutex m_mutex; ///< guards m_grabbedImage and m_bAutoTriggering
    QWaitCondition m_frameArrived; ///< woken for each good frame
    bool m_bAutoTriggering = false; ///< live mode
    bool m_bNotifyImageReady = true; ///< emit sig_imgReady for each frame
};
