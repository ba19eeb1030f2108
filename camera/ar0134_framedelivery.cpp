#include "camera/ar0134_framedelivery.h"

#include "camera/ar0134.h"
#include "views/CameraView.h"

#include <QDebug>

#include <algorithm>
#include <limits>

namespace {

constexpr double kUsPerMs = 1000.0;

} // namespace

Ar0134FrameDelivery::Ar0134FrameDelivery(QObject* parent)
    : FrameDelivery(parent)
{
    m_pInstance = nullptr;
    if (openAR0134Camera()) {
        m_pInstance = this;
    }
}

Ar0134FrameDelivery::~Ar0134FrameDelivery()
{
    qDebug() << Q_FUNC_INFO;
    const bool onThread = m_thread.isRunning();
    m_pCamera->closeCamera();
    m_thread.quit();
    m_thread.wait();
    if (!onThread) {
        delete m_pCamera;
    }
    if (m_pInstance == this) {
        m_pInstance = nullptr;
    }
}

bool Ar0134FrameDelivery::openAR0134Camera()
{
    m_pCamera = new AR0134(config_file_name);
    if (m_pCamera->state() == AR0134::STATE_CLOSED) {
        qDebug() << "!!! The second atempt to open Arducam !!!";
        delete m_pCamera;
        m_pCamera = new AR0134(config_file_name);
        if (m_pCamera->state() == AR0134::STATE_CLOSED) {
            return false;
        }
    }
    if (m_pCamera->state() == AR0134::STATE_OPEN) {
        qDebug() << "!!! Arducam is ON !!!";
    }
    m_pCamera->moveToThread(&m_thread);
    connectCamera();
    m_thread.start();
    return true;
}

void Ar0134FrameDelivery::connectCamera()
{
    connect(&m_thread, &QThread::finished, m_pCamera, &QObject::deleteLater);
    connect(this, &Ar0134FrameDelivery::sig_ExecuteSoftwareTrigger, m_pCamera,
        &AR0134::slot_executeSoftwareTrigger,
        static_cast<Qt::ConnectionType>(Qt::BlockingQueuedConnection | Qt::UniqueConnection));
    connect(this, &Ar0134FrameDelivery::sig_setExposure, m_pCamera, &AR0134::slot_setExposure,
        Qt::UniqueConnection);
    connect(this, &Ar0134FrameDelivery::sig_setGain, m_pCamera, &AR0134::slot_setGain, Qt::UniqueConnection);
    connect(this, &Ar0134FrameDelivery::sig_setLiveViewState, m_pCamera, &AR0134::slot_setLiveViewState,
        Qt::UniqueConnection);
    connect(
        m_pCamera, &AR0134::sig_imgReady, this, &Ar0134FrameDelivery::slot_updateImg, Qt::UniqueConnection);
    if (CameraView* view = CameraView::Instance()) {
        connect(m_pCamera, &AR0134::sig_imgReady, view, &CameraView::slot_update, Qt::UniqueConnection);
    }
}

bool Ar0134FrameDelivery::isCameraAttached()
{
    return AR0134::is_AR0134Attached() > 0;
}

bool Ar0134FrameDelivery::isRunning()
{
    return m_pCamera->state() != AR0134::STATE_CLOSED;
}

bool Ar0134FrameDelivery::getAutoTriggeringMode()
{
    return m_pCamera->state() == AR0134::STATE_LIVE;
}

double Ar0134FrameDelivery::getCurrentGain()
{
    return m_pCamera->getGain();
}

float Ar0134FrameDelivery::getCurrentExposure()
{
    return static_cast<float>(m_pCamera->getExposure() / kUsPerMs);
}

void Ar0134FrameDelivery::setCurrentGain(float gain)
{
    m_pCamera->slot_setGain(static_cast<double>(gain));
}

void Ar0134FrameDelivery::setCurrentExposure(double exposure)
{
    constexpr double kLongest = std::numeric_limits<unsigned int>::max();
    // What is no number counts as the shortest.
    const double microseconds = std::min(std::max(0.0, exposure * kUsPerMs + 0.5), kLongest);
    m_pCamera->slot_setExposure(static_cast<unsigned int>(microseconds));
}

void Ar0134FrameDelivery::setCameraReverse(bool reverseX, bool reverseY)
{
    m_pCamera->setReverse(reverseX, reverseY);
}

double Ar0134FrameDelivery::getIntensity()
{
    qDebug() << Q_FUNC_INFO;
    return m_pCamera->getIntensity() / kFrameBytes;
}

bool Ar0134FrameDelivery::pushMatImage(cv::Mat& frame)
{
    return m_pCamera->getMatImg(frame);
}

bool Ar0134FrameDelivery::pushQImage(QImage& image)
{
    return m_pCamera->getQImg(image);
}

bool Ar0134FrameDelivery::start()
{
    qDebug() << Q_FUNC_INFO;
    const int state = m_pCamera->state();
    if (state == AR0134::STATE_CLOSED) {
        qDebug() << "Arducam is closed";
        return false;
    }
    if (state != AR0134::STATE_LIVE || !m_bLiveAsked) {
        setAutoTriggeringMode(true);
    }
    return true;
}

void Ar0134FrameDelivery::stop()
{
    qDebug() << Q_FUNC_INFO;
    if (getAutoTriggeringMode() || m_bLiveAsked) {
        setAutoTriggeringMode(false);
    }
}

void Ar0134FrameDelivery::setAutoTriggeringMode(bool mode)
{
    qDebug() << Q_FUNC_INFO << mode;
    m_bLiveAsked = mode;
    emit sig_setLiveViewState(mode);
}

void Ar0134FrameDelivery::waitForNextFrameReady()
{
    qDebug() << Q_FUNC_INFO;
    m_pCamera->waitForFrameReady();
}

void Ar0134FrameDelivery::triggerAndWaitForFrame(bool trigger)
{
    if (!trigger) {
        waitForNextFrameReady();
    } else if (!getAutoTriggeringMode()) {
        emit sig_ExecuteSoftwareTrigger();
    }
}

void Ar0134FrameDelivery::slot_updateImg()
{
    FpsUpdate();
}
