#include "app/MainWindow.h"

#include "app/int_range.h"
#include "app/settings.h"
#include "app/settling.h"
#include "app/signal_wait.h"
#include "app/styles.h"
#include "camera/framedelivery.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

#include <opencv2/imgproc.hpp>

#include <QDebug>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>

#include <cstdint>

namespace {

constexpr int kLastField = kShiftFields - 1;
constexpr double kObjectLevel = 120.0; ///< objects of bright field are darker than this

QString twoDecimals(float value)
{
    return settings::formatReal("%.2f", static_cast<double>(value));
}

} // namespace

void MainWindow::on_pushButton_PIXEL_SHIFT_clicked()
{
    m_bPixelShiftRun = !m_bPixelShiftRun;
    if (m_bPixelShiftRun)
        runPixelShift();
    else
        leavePixelShift();
}

void MainWindow::leavePixelShift()
{
    ui->pushButton_PIXEL_SHIFT->setText("Pixel shift");
    ui->BASLER_VIDEO_WIDGET->show();
    ui->CAPTURE_IMAGE_WIDGET->hide();
    ui->pushButton_SHIFT_GFP->setStyleSheet(styles::kNeutral);
    ui->pushButton_SHIFT_RFP->setStyleSheet(styles::kNeutral);
    enableShiftArrows(false);
}

void MainWindow::enableShiftArrows(bool enabled)
{
    ui->pushButton_SHIFT_X_MINUS->setEnabled(enabled);
    ui->pushButton_SHIFT_X_PLUS->setEnabled(enabled);
    ui->pushButton_SHIFT_Y_MINUS->setEnabled(enabled);
    ui->pushButton_SHIFT_Y_PLUS->setEnabled(enabled);
}

void MainWindow::runPixelShift()
{
    ui->pushButton_PIXEL_SHIFT->setText("Live");
    connect(this, &MainWindow::sig_ImageGrabbed, this, &MainWindow::slot_ImageGrabbed_pixelshift,
        Qt::UniqueConnection);
    const int zOffset = ui->lineEdit_OFFSET_Z->text().toInt();
    qDebug() << "z_offset -----------> : " << zOffset;
    m_shiftField = 0;
    ui->spinBox_PIXEL_SHIFT->setValue(1);
    ui->TAB_QC2->setEnabled(false);

    FieldShifts shifts;
    for (int field = 0; field < kShiftFields; ++field) {
        if (!focusSilently(field == 0) || !takeShiftFrames(zOffset))
            return;
        shifts[static_cast<std::size_t>(field)] = measureFieldShift(field);
        on_pushButton_ILLUMINATION_BF_clicked();
        moveZForFluorescence("apply z_offset 2-----------> : ", zOffset, -1);
        ++m_shiftField;
        if (field != kLastField && !goToNextShiftField())
            return;
    }
    showAverageShift(shifts);

    m_autofocusSilent = 0;
    ui->TAB_QC2->setEnabled(true);
    showOverlay(ui->spinBox_PIXEL_SHIFT->value());
    ui->BASLER_VIDEO_WIDGET->hide();
    ui->CAPTURE_IMAGE_WIDGET->show();
    on_pushButton_SHIFT_GFP_clicked();
    on_pushButton_INSERT_clicked();
    enableShiftArrows(true);
    disconnect(this, &MainWindow::sig_ImageGrabbed, this, &MainWindow::slot_ImageGrabbed_pixelshift);
    QMessageBox::information(this, "Info", "finish calculate pixel shift !", QMessageBox::Ok);
}

bool MainWindow::takeShiftFrames(int zOffset)
{
    m_shiftChannel = ILLUMINATION_BF;
    on_pushButton_ILLUMINATION_BF_clicked();
    if (!takeShiftFrame())
        return false;
    // The fluorescence is in focus elsewhere than bright field.
    moveZForFluorescence("apply z_offset -----------> : ", zOffset, +1);
    m_shiftChannel = ILLUMINATION_GFP;
    on_pushButton_ILLUMINATION_GFP_clicked();
    if (!takeShiftFrame())
        return false;
    m_shiftChannel = ILLUMINATION_RFP;
    on_pushButton_ILLUMINATION_RFP_clicked();
    return takeShiftFrame();
}

bool MainWindow::takeShiftFrame()
{
    SignalWait stored(this, &MainWindow::sig_finish_pixelshift_ImageGrabbed);
    QTimer::singleShot(
        ui->spinBox_EXPOSURE->value() + kStillSettlingMs, this, SLOT(slot_request_camera_grab()));
    return stored.wait();
}

void MainWindow::moveZForFluorescence(const char* logText, int zOffset, int sign)
{
    m_strCommand = "$Z#STAGE POS\n";
    const int position = m_pController->direct_read(m_strCommand).split("#").value(3).toInt();
    qDebug() << logText << zOffset;
    const int target = withinInt(position + std::int64_t { sign } * zOffset * kFineStep);
    m_strCommand = QString("$Z#STAGE ABS %1\n").arg(target);
    m_pController->direct_read(m_strCommand);
}

bool MainWindow::goToNextShiftField()
{
    SignalWait moved(this, &MainWindow::sig_finish_X_Stage_Move);
    const int field = m_slide_field;
    on_pushButton_FIELD_NEXT_clicked();
    if (m_slide_field == field)
        qDebug() << Q_FUNC_INFO << "no field follows in this channel: waiting for a move of X by hand";
    return moved.wait();
}

void MainWindow::slot_ImageGrabbed_pixelshift(uchar* pixels, int, int)
{
    qDebug() << Q_FUNC_INFO;
    const cv::Mat frame(FrameDelivery::kFrameHeight, FrameDelivery::kFrameWidth, CV_8UC1, pixels);
    const auto field = static_cast<std::size_t>(m_shiftField);
    if (m_shiftChannel == ILLUMINATION_BF)
        frame.copyTo(m_matBF.at(field));
    else if (m_shiftChannel == ILLUMINATION_GFP)
        frame.copyTo(m_matGFP.at(field));
    else
        frame.copyTo(m_matRFP.at(field));
    emit sig_finish_pixelshift_ImageGrabbed();
}

ShiftValues MainWindow::measureFieldShift(int field)
{
    const auto index = static_cast<std::size_t>(field);
    QElapsedTimer time;
    time.start();
    cv::Mat objects;
    cv::threshold(m_matBF[index], objects, kObjectLevel, 255.0, cv::THRESH_BINARY_INV);
    cv::medianBlur(objects, objects, 3);
    cv::Mat gfp = m_matGFP[index].clone();
    cv::Mat rfp = m_matRFP[index].clone();
    ShiftValues shift = {};
    float reliability[2] = {};
    m_pixelShift.phaseCorrelatePixelShift_adaptive(objects, gfp, rfp, shift.data(), reliability);
    // The correction to apply, and not the offset found.
    for (float& value : shift)
        value = -value;
    qDebug() << "time.elapsed():" << time.elapsed();
    return shift;
}

void MainWindow::showAverageShift(const FieldShifts& shifts)
{
    ShiftValues sums = {};
    int number = 0;
    for (const ShiftValues& shift : shifts) {
        qDebug().noquote() << ++number << "pixel shift:" << twoDecimals(shift[0]) << twoDecimals(shift[1])
                           << twoDecimals(shift[2]) << twoDecimals(shift[3]);
        for (std::size_t i = 0; i < sums.size(); ++i)
            sums[i] += shift[i];
    }
    for (std::size_t i = 0; i < sums.size(); ++i)
        m_shiftAverage[i] = static_cast<float>(static_cast<double>(sums[i]) / kShiftFields);

    const auto fields = shiftFields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i]->setText(twoDecimals(m_shiftAverage[i]));
    qDebug().noquote() << "avg. pixel shift:" << fields[0]->text() << fields[1]->text() << fields[2]->text()
                       << fields[3]->text();
}
