#include "tests/workflows/ShiftPanel.h"

#include "views/CAPTURE_ImageWidget.h"

namespace {

constexpr const char* kEdits[]
    = { "lineEdit_SHIFT_GFP_X", "lineEdit_SHIFT_GFP_Y", "lineEdit_SHIFT_RFP_X", "lineEdit_SHIFT_RFP_Y" };

QImage pictureOf(QWidget& widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

QStringList ShiftPanel::shifts()
{
    QStringList texts;
    for (const char* edit : kEdits)
        texts << m_desk.text(edit);
    return texts;
}

void ShiftPanel::show(const QStringList& shifts)
{
    for (int i = 0; i < 4; ++i)
        m_desk.widget<QLineEdit>(kEdits[i])->setText(shifts[i]);
}

QByteArray ShiftPanel::stored(const QStringList& shifts)
{
    return QString("Pixel shift GFP X=%1\nPixel shift GFP Y=%2\nPixel shift RFP X=%3\nPixel shift RFP Y=%4\n")
        .arg(shifts[0], shifts[1], shifts[2], shifts[3])
        .toUtf8();
}

QImage ShiftPanel::shown()
{
    return pictureOf(*m_desk.widget("CAPTURE_IMAGE_WIDGET"));
}

QImage ShiftPanel::shownAs(cv::Mat overlay)
{
    CAPTURE_ImageWidget fresh;
    fresh.resize(m_desk.widget("CAPTURE_IMAGE_WIDGET")->size());
    fresh.setImageData(overlay.data, 1280, 960, 24);
    return pictureOf(fresh);
}
