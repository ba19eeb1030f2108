#include "views/CAPTURE_ImageWidget.h"

#include <QDebug>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr float kPixelPitchUm = 3.75F; ///< of the camera's sensor
constexpr float kNominalFactor = 0.25F; ///< a fourfold magnification
constexpr float kChamberDepthMm = 0.1F;
constexpr float kUmPerMm = 1000.0F;

/// The value as a text of so many decimals shows it.
float throughText(float value, int decimals)
{
    std::array<char, 64> text {};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, static_cast<double>(value));
    return std::strtof(text.data(), nullptr);
}

} // namespace

float CAPTURE_ImageWidget::diameter(cv::Point a, cv::Point b)
{
    return static_cast<float>(cv::norm(a - b));
}

float CAPTURE_ImageWidget::round2(float value, float scale)
{
    const float product = value * scale;
    const double shifted = value < 0.0F ? product - 0.5 : product + 0.5;
    // Adding zero leaves no negative zero behind: an integer part has none.
    return static_cast<float>(std::trunc(shifted) + 0.0) / scale;
}

/// Single precision throughout and in this order: the results are compared with figures of other instruments.
void CAPTURE_ImageWidget::measure2Point()
{
    measure_info& info = m_measure_info;
    info.length_pixel = diameter(m_point1, m_point2);
    // The raw length takes the nominal magnification; rounding snaps it to the true spacing of the marks.
    info.length_mm = round2(info.length_pixel * 0.1F / 100.0F * kPixelPitchUm * kNominalFactor, 10.0F);
    info.pixel_size = info.length_mm * kUmPerMm / info.length_pixel;
    info.magnification = throughText(info.length_pixel * kPixelPitchUm / (info.length_mm * kUmPerMm), 2);

    const float width_um = static_cast<float>(m_image_width) * kPixelPitchUm / info.magnification;
    const float height_um = static_cast<float>(m_image_height) * kPixelPitchUm / info.magnification;
    info.area_mm = width_um * height_um / 1000000.0F;
    info.volume_factor = throughText(info.area_mm * kChamberDepthMm, 5);

    qDebug() << "m_measure_info.length_pixel:" << info.length_pixel;
    qDebug() << "m_measure_info.length_mm:" << info.length_mm;
    qDebug() << "m_measure_info.pixel_size:" << info.pixel_size;
    qDebug() << "m_measure_info.magnification:" << info.magnification;
    qDebug() << "m_measure_info.area_mm:" << info.area_mm;
    qDebug() << "m_measure_info.volume_factor:" << info.volume_factor;
    emit sig_measure_result(info);
}
