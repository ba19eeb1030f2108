#include "app/MainWindow.h"

#include "algorithms/overlay.h"
#include "ui_MainWindow.h"

cv::Mat MainWindow::make_overlayImage(int field, bool shifted)
{
    const auto index = static_cast<std::size_t>(field - 1);
    // The values on show, not those of the file and not the averages.
    const OverlayShift gfp(
        ui->lineEdit_SHIFT_GFP_X->text().toFloat(), ui->lineEdit_SHIFT_GFP_Y->text().toFloat());
    const OverlayShift rfp(
        ui->lineEdit_SHIFT_RFP_X->text().toFloat(), ui->lineEdit_SHIFT_RFP_Y->text().toFloat());
    return composeOverlay(m_matBF.at(index), m_matGFP.at(index), m_matRFP.at(index),
        shifted ? gfp : OverlayShift(), shifted ? rfp : OverlayShift(), shifted);
}

void MainWindow::showOverlay(int field)
{
    cv::Mat overlay = make_overlayImage(field, true);
    ui->CAPTURE_IMAGE_WIDGET->setImageData(overlay.data, overlay.cols, overlay.rows, 24);
}
