// Life of the driver, its trigger loop and its newest frame.
#include "camera/ar0134.h"
#include "camera/ar0134_image.h"

#include <QCoreApplication>
#include <QDebug>
#include <QMutexLocker>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <iterator>

namespace {

/// The frame that the product works with, without the two rows that the sensor puts above it.
const cv::Rect FRAME_REGION(0, 2, 1280, 960);
/// The intensity is summed over two rows more.
const cv::Rect INTENSITY_REGION(0, 2, 1280, 962);

constexpr unsigned long kFrameReadyLimit = 3000; ///< ms
constexpr int kGetFrameLimit = 3000; ///< ms
constexpr unsigned long kBusyPause = 500; ///< us between two looks at a trigger under way

constexpr double kFirstGain = 0.0; ///< dB
constexpr unsigned int kFirstExposure = 20000; ///< us

struct ErrorText {
    AR0134::cameraError error;
    const char* text;
};
constexpr ErrorText kErrorTexts[] = {
    { AR0134::ERROR_EXPOSURE_READ, "Reading a camera registry error" },
    { AR0134::ERROR_EXPOSURE_WRITE, "Writing a camera registry error" },
    { AR0134::ERROR_GAIN_READ, "Reading a camera registry error" },
    { AR0134::ERROR_GAIN_WRITE, "Writing a camera registry error" },
    { AR0134::ERROR_MIRROR_WRITE, "Writing a camera registry error" },
    { AR0134::ERROR_GAIN_NEGATIVE, "Gain input value < 0" },
    { AR0134::ERROR_TRIGGER, "Software Trigger failed" },
    { AR0134::ERROR_FRAME_NOT_READY, "Frame is not ready error" },
    { AR0134::ERROR_GET_FRAME, "Get Frame Error" },
    { AR0134::ERROR_CONVERT, "Convert image failed, No image data \n" },
};

std::atomic<int> total_frames { 0 };

} // namespace

AR0134::AR0134(const char* file, QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<AR0134::cameraError>("AR0134::cameraError");
    if (open(file)) {
        const QMutexLocker lock(&m_mutex);
        m_state = STATE_OPEN;
    }
    connect(this, &AR0134::sig_selfExecuteSoftwareTrigger, this, &AR0134::slot_executeSoftwareTrigger,
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
    slot_setGain(kFirstGain);
    slot_setExposure(kFirstExposure);
}

AR0134::~AR0134()
{
    closeCamera();
}

void AR0134::closeCamera()
{
    slot_setLiveViewState(false);
    qDebug() << Q_FUNC_INFO << "closing";
    QMutexLocker lock(&m_mutex);
    while (m_bBusy) {
        lock.unlock();
        if (QThread::currentThread()->loopLevel() > 0) {
            QCoreApplication::processEvents();
        }
        QThread::usleep(kBusyPause);
        lock.relock();
    }
    // Taken away under the same lock under which a trigger finds it: a trigger that is still queued comes too
    // late.
    void* handle = m_handle;
    m_handle = nullptr;
    m_state = STATE_CLOSED;
    lock.unlock();
    if (handle != nullptr) {
        ArduCam_close(handle);
    }
    qDebug() << Q_FUNC_INFO << "closed, frames:" << total_frames;
}

int AR0134::state() const
{
    const QMutexLocker lock(&m_mutex);
    return m_state;
}

void AR0134::slot_setLiveViewState(bool on)
{
    QMutexLocker lock(&m_mutex);
    const int asked = on ? STATE_LIVE : STATE_OPEN;
    if (m_state == STATE_CLOSED || m_state == asked) {
        return;
    }
    m_state = asked;
    lock.unlock();
    if (on) {
        queueTrigger();
    }
}

void AR0134::queueTrigger()
{
    QMutexLocker lock(&m_mutex);
    if (m_bTriggerQueued) {
        return;
    }
    m_bTriggerQueued = true;
    lock.unlock();
    emit sig_selfExecuteSoftwareTrigger();
}

void AR0134::slot_executeSoftwareTrigger()
{
    QMutexLocker lock(&m_mutex);
    if (sender() == this) {
        m_bTriggerQueued = false;
    }
    if (m_handle == nullptr || m_bBusy) {
        return;
    }
    m_bBusy = true;
    lock.unlock();

    if (ArduCam_softTrigger(m_handle) != USB_CAMERA_NO_ERROR) {
        report(Q_FUNC_INFO, ERROR_TRIGGER);
    } else if (ArduCam_isFrameReady(m_handle) != 1) {
        report(Q_FUNC_INFO, ERROR_FRAME_NOT_READY);
    } else {
        ArduCam_availableImage(m_handle);
        getSingleFrame();
        if (state() == STATE_LIVE) {
            queueTrigger();
        }
        lock.relock();
        m_frameReady.wakeAll();
        lock.unlock();
    }

    lock.relock();
    m_bBusy = false;
}

void AR0134::getSingleFrame()
{
    QMutexLocker lock(&m_mutex);
    void* handle = m_handle;
    lock.unlock();
    if (handle == nullptr) {
        return;
    }
    ArduCamOutData* data = nullptr;
    if (ArduCam_getSingleFrame(handle, data, kGetFrameLimit) != USB_CAMERA_NO_ERROR) {
        report(Q_FUNC_INFO, ERROR_GET_FRAME);
        return;
    }
    lock.relock();
    m_image = ConvertImage(data);
    const bool good = !m_image.empty();
    lock.unlock();
    if (good) {
        emit sig_imgReady();
        ++total_frames;
    } else {
        report(Q_FUNC_INFO, ERROR_CONVERT);
    }
}

cv::Mat AR0134::ConvertImage(const ArduCamOutData* data) const
{
    return ar0134::toMat(*data, m_subFormat);
}

bool AR0134::waitForFrameReady()
{
    const QMutexLocker lock(&m_mutex);
    return m_frameReady.wait(&m_mutex, kFrameReadyLimit);
}

bool AR0134::holdsRegion(const cv::Rect& region) const
{
    const cv::Rect whole(0, 0, m_image.cols, m_image.rows);
    return m_handle != nullptr && (whole & region) == region;
}

bool AR0134::getMatImg(cv::Mat& image)
{
    const QMutexLocker lock(&m_mutex);
    if (!holdsRegion(FRAME_REGION)) {
        return false;
    }
    m_image(FRAME_REGION).copyTo(image);
    return true;
}

bool AR0134::getQImg(QImage& image)
{
    const QMutexLocker lock(&m_mutex);
    const bool fits
        = image.width() >= FRAME_REGION.width && image.height() >= FRAME_REGION.height && image.depth() == 8;
    // A picture in colour has no bytes that an image of grey values could take.
    if (!holdsRegion(FRAME_REGION) || m_image.type() != CV_8UC1 || !fits) {
        return false;
    }
    const cv::Mat frame = m_image(FRAME_REGION);
    for (int row = 0; row < frame.rows; ++row) {
        std::copy_n(frame.ptr(row), frame.cols, image.scanLine(row));
    }
    return true;
}

double AR0134::getIntensity()
{
    const QMutexLocker lock(&m_mutex);
    return holdsRegion(INTENSITY_REGION) ? cv::sum(m_image(INTENSITY_REGION))[0] : -1.0;
}

int AR0134::totalFrames()
{
    return total_frames;
}

void AR0134::report(const char* signature, cameraError error)
{
    const auto* row = std::find_if(std::begin(kErrorTexts), std::end(kErrorTexts),
        [error](const ErrorText& candidate) { return candidate.error == error; });
    qCritical() << signature << row->text;
    emit signal_cameraError(error);
}
