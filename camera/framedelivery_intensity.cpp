#include "camera/framedelivery.h"
#include "camera/intensity.h"

#include <QDebug>

namespace {

/// Grey values that are taken off before objects are looked for.
constexpr int kObjectOffset = 15;

} // namespace

double FrameDelivery::IntensityPerObject(cv::Mat& frame, int offset)
{
    return intensity::perObject(frame, intensity::findObjects(frame, offset));
}

double FrameDelivery::IntensityBackground(cv::Mat& frame, int offset)
{
    return intensity::background(frame, intensity::findObjects(frame, offset));
}

void FrameDelivery::IntensityUpdate()
{
    pushMatImage(m_frameMat);
    const double average = cv::sum(m_frameMat)[0] / static_cast<double>(kFrameBytes);
    qDebug() << "intensity_Ave:" << average;

    // Object and background values are taken over the same objects, which are the costly part to find.
    const intensity::Objects objects = intensity::findObjects(m_frameMat, kObjectOffset);
    const double object = intensity::perObject(m_frameMat, objects);
    qDebug() << "intensity_Object:" << object;
    const double background = intensity::background(m_frameMat, objects);
    qDebug() << "intensity_Background:" << background;

    emit sig_IntensityUpdate(average, object, background);
}
