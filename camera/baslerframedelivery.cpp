#include "camera/baslerframedelivery.h"
#include "camera/BaslerCamera.h"
#include "views/CameraView.h"

#include <QDebug>
#include <QMutexLocker>
#include <QThread>

#include <cstring>

namespace {

constexpr uint kBitsPerPixel = 8;
constexpr float kFirstGain = 0.0F; ///< dB
constexpr double kFirstExposure = 100.0; ///< ms
constexpr float kHighestGain = 18.0F; ///< dB
constexpr double kLongestExposure = 1000.0; ///< ms
constexpr float kMicrosecondsPerMillisecond = 1000.0F;

/// Runs a call to the camera whose failure must not leave this layer: a camera may vanish at any moment.
template <typename Call> void absorbed(const char* signature, Call&& call)
{
    try {
        call();
    } catch (const GenICam::GenericException& exception) {
        qDebug() << signature << "Exception in Basler camera:" << exception.GetDescription();
    }
}

/// A header on the current frame, without a copy.
cv::Mat headerOn(Pylon::CPylonImage& image)
{
    return { FrameDelivery::kFrameHeight, FrameDelivery::kFrameWidth, CV_8UC1, image.GetBuffer() };
}

} // namespace

BaslerFrameDelivery::BaslerFrameDelivery(QObject* parent)
    : FrameDelivery(parent)
{
    FrameDelivery::m_pInstance = nullptr;
    try {
        initialize();
    } catch (const GenICam::GenericException& exception) {
        qDebug() << Q_FUNC_INFO << "Exception in Basler camera:" << exception.GetDescription();
        giveUpCamera(); // the library must not keep handlers of an object that never came to be
        throw;
    }
    FrameDelivery::m_pInstance = this;
    m_ownerThread = nullptr;
}

BaslerFrameDelivery::~BaslerFrameDelivery()
{
    qDebug() << Q_FUNC_INFO;
    giveUpCamera();
    FrameDelivery::m_pInstance = nullptr;
}

bool BaslerFrameDelivery::isCameraAttached()
{
    int count = 0;
    absorbed(Q_FUNC_INFO, [&count] { count = BaslerCamera::is_BaslerCamAttached(); });
    return count > 0;
}

void BaslerFrameDelivery::initialize()
{
    qDebug() << Q_FUNC_INFO;
    m_pCamera = new BaslerCamera;
    m_bConnected = m_pCamera->connect(this, this);
    if (m_bConnected) {
        DeviceNodeMap map;
        m_pCamera->open();
        m_pCamera->initalize(kFrameWidth, kFrameHeight, kBitsPerPixel, map);
        BaslerFrameDelivery::setCurrentGain(kFirstGain);
        BaslerFrameDelivery::setCurrentExposure(kFirstExposure);
        qDebug() << "initialize"
                 << "BASLER CAM Width :" << map.width << " Height :" << map.height;
    }
    if (CameraView* const view = CameraView::Instance())
        QObject::connect(this, &FrameDelivery::sig_imgReady, view, &CameraView::slot_update);
    QObject::connect(this, &FrameDelivery::sig_ExecuteSoftwareTrigger, this,
        &BaslerFrameDelivery::slot_ExecuteSoftwareTrigger,
        static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection));
    m_pCamera->SetSoftwareTriggerMode(true);
    m_ownerThread = QThread::currentThread();
}

void BaslerFrameDelivery::deinitialize()
{
    qDebug() << Q_FUNC_INFO << this;
    QObject::disconnect(this, &FrameDelivery::sig_ExecuteSoftwareTrigger, nullptr, nullptr);
}

void BaslerFrameDelivery::giveUpCamera() noexcept
{
    if (m_pCamera == nullptr)
        return;
    absorbed(Q_FUNC_INFO, [this] { m_pCamera->release(this, this); });
    qDebug() << __LINE__ << Pylon::CImageEventHandler::DebugGetEventHandlerRegistrationCount();
    absorbed(Q_FUNC_INFO, [this] { m_pCamera->close(); });
    absorbed(Q_FUNC_INFO, [this] { m_pCamera->disconnect(); });
    m_pCamera = nullptr;
}

bool BaslerFrameDelivery::isRunning()
{
    return m_pCamera->isRunning();
}

float BaslerFrameDelivery::getCurrentExposure()
{
    float exposure = 0.0F;
    absorbed(Q_FUNC_INFO, [&] { exposure = m_pCamera->getExposure(); });
    return static_cast<float>(static_cast<double>(exposure) / 1000.0);
}

double BaslerFrameDelivery::getCurrentGain()
{
    float gain = 0.0F;
    absorbed(Q_FUNC_INFO, [&] { gain = m_pCamera->getGain(); });
    return static_cast<double>(gain);
}

void BaslerFrameDelivery::setCurrentGain(float gain)
{
    qDebug() << Q_FUNC_INFO << "again:" << gain;
    if (m_bConnected)
        m_pCamera->setGain(gain > kHighestGain ? kHighestGain : gain);
}

void BaslerFrameDelivery::setCurrentExposure(double exposure)
{
    qDebug() << Q_FUNC_INFO << "exposure:" << exposure;
    if (m_bConnected) {
        const double limited = exposure > kLongestExposure ? kLongestExposure : exposure;
        m_pCamera->setExposure(static_cast<float>(limited) * kMicrosecondsPerMillisecond);
    }
}

void BaslerFrameDelivery::setGamma(double gamma)
{
    qDebug() << Q_FUNC_INFO << "gamma:" << gamma;
    if (m_bConnected)
        absorbed(Q_FUNC_INFO, [&] { m_pCamera->setGamma(gamma); });
}

void BaslerFrameDelivery::setCameraReverse(bool reverseX, bool reverseY)
{
    qDebug() << Q_FUNC_INFO << "reverse x , y" << reverseX << reverseY;
    if (m_bConnected)
        absorbed(Q_FUNC_INFO, [&] { m_pCamera->setReverse(reverseX, reverseY); });
}

bool BaslerFrameDelivery::start()
{
    qDebug() << Q_FUNC_INFO;
    if (m_bConnected)
        m_pCamera->start();
    return m_bConnected;
}

void BaslerFrameDelivery::stop()
{
    qDebug() << Q_FUNC_INFO;
    if (isRunning()) {
        setAutoTriggeringMode(false);
        absorbed(Q_FUNC_INFO, [this] { m_pCamera->stop(); });
    }
}

bool BaslerFrameDelivery::getAutoTriggeringMode()
{
    const QMutexLocker lock(&m_mutex);
    return m_bAutoTriggering;
}

bool BaslerFrameDelivery::pushMatImage(cv::Mat& frame)
{
    qDebug() << Q_FUNC_INFO;
    if (!m_grabbedImage.IsValid())
        return false;
    const QMutexLocker lock(&m_mutex);
    if (!m_grabbedImage.IsValid()) // gone since: the next frame could not be taken over
        return false;
    headerOn(m_grabbedImage).copyTo(frame);
    return true;
}

bool BaslerFrameDelivery::pushQImage(QImage& image)
{
    const QMutexLocker lock(&m_mutex);
    const bool valid = m_grabbedImage.IsValid();
    if (valid)
        std::memcpy(image.bits(), m_grabbedImage.GetBuffer(), kFrameBytes);
    return valid;
}

double BaslerFrameDelivery::getIntensity()
{
    qDebug() << Q_FUNC_INFO;
    const QMutexLocker lock(&m_mutex);
    if (!m_grabbedImage.IsValid())
        return -1.0;
    return cv::sum(headerOn(m_grabbedImage))[0] / static_cast<double>(kFrameBytes);
}
