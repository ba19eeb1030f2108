// The trigger loop: frames come in, and each asks for the next one.

#include "camera/baslerframedelivery.h"
#include "camera/BaslerCamera.h"

#include <QDebug>
#include <QMutexLocker>
#include <QThread>

namespace {

constexpr unsigned long kLandingLimit = 10000; ///< ms that a change of mode waits for the frame under way
constexpr unsigned long kTriggeredFrameLimit = 5000; ///< ms
constexpr unsigned long kNextFrameLimit = 1000; ///< ms

} // namespace

void BaslerFrameDelivery::OnImagesSkipped(Pylon::CInstantCamera& /*camera*/, size_t /*count*/)
{
    qDebug() << Q_FUNC_INFO;
}

void BaslerFrameDelivery::OnImageGrabbed(Pylon::CInstantCamera& camera, const Pylon::CGrabResultPtr& result)
{
    try {
        if (!result->GrabSucceeded()) {
            qDebug() << Q_FUNC_INFO << "Grab is not succeeded" << result->GetErrorDescription().c_str();
            emit sig_ExecuteSoftwareTrigger();
            return;
        }
        takeOver(result);
        if (m_bNotifyImageReady)
            emit sig_imgReady();
        const QMutexLocker lock(&m_mutex);
        m_frameArrived.wakeAll();
    } catch (const GenICam::GenericException& exception) {
        qDebug() << Q_FUNC_INFO
                 << (camera.IsCameraDeviceRemoved() ? "Exception: Basler Camera failed or removed: "
                                                    : "Exception in Basler camera: failed getting a frame: ")
                 << exception.GetDescription();
    }
}

/// Makes `result` the current frame, and asks for the next one in live mode.
void BaslerFrameDelivery::takeOver(const Pylon::CGrabResultPtr& result)
{
    const QMutexLocker lock(&m_mutex);
    BaslerCamera::m_bFrameIsGrabbing = false;
    m_grabbedImage.Release();
    if (result->GetImageSize() >= static_cast<size_t>(kFrameBytes))
        m_grabbedImage.AttachGrabResultBuffer(result);
    else // consumers copy a whole frame, and this one does not hold as much
        qDebug() << Q_FUNC_INFO << "frame is too small:" << result->GetWidth() << result->GetHeight();
    if (m_bAutoTriggering)
        emit sig_ExecuteSoftwareTrigger();
}

void BaslerFrameDelivery::slot_ExecuteSoftwareTrigger()
{
    m_pCamera->ExecuteSWTrigger();
}

void BaslerFrameDelivery::setAutoTriggeringMode(bool mode)
{
    qDebug() << "setAutoTriggeringMode" << __LINE__ << mode;
    if (mode == getAutoTriggeringMode())
        return;
    if (!isRunning()) {
        if (!m_bConnected)
            return;
        m_pCamera->start();
    }
    {
        const QMutexLocker lock(&m_mutex);
        m_bAutoTriggering = mode;
        if (QThread::currentThread() != m_ownerThread && BaslerCamera::m_bFrameIsGrabbing) {
            qDebug() << "! wait up to 10 seconds to trigger camera !";
            m_frameArrived.wait(&m_mutex, kLandingLimit);
            qDebug() << "! waiting finished !";
        }
    }
    if (mode)
        emit sig_ExecuteSoftwareTrigger();
}

void BaslerFrameDelivery::triggerAndWaitForFrame(bool trigger)
{
    const unsigned long limit = trigger ? kTriggeredFrameLimit : kNextFrameLimit;
    const bool live = getAutoTriggeringMode();
    qDebug() << Q_FUNC_INFO << "Live mode is on:" << live;
    if (trigger) {
        const QMutexLocker lock(&m_mutex);
        m_pCamera->ExecuteSWTrigger();
    }
    if (live)
        return;
    const QMutexLocker lock(&m_mutex);
    if (!m_frameArrived.wait(&m_mutex, limit))
        qDebug() << "triggerAndWaitForFrame"
                 << "!!! Wait condition timeout !!!";
}
