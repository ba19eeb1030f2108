#include "app/MainWindow.h"

#include "app/settings.h"
#include "app/settling.h"
#include "app/signal_wait.h"
#include "camera/framedelivery.h"
#include "ui_MainWindow.h"

#include <QMessageBox>
#include <QTimer>

#include <cstdlib>

namespace {

/// Fields counted for one sample, by slide type.
struct SlideFields {
    const char* key; ///< group "Volume factor"
    int fields;
    float measure_info::*factor;
    QLineEdit* Ui::MainWindow::*field;
};

using Form = Ui::MainWindow;

constexpr SlideFields kSlideFields[] = {
    { "1 Channel", 47, &measure_info::volume_factor_1ch, &Form::lineEdit_VOLUME_FACTOR_1CH },
    { "2 Channel", 12, &measure_info::volume_factor_2ch, &Form::lineEdit_VOLUME_FACTOR_2CH },
    { "3 Channel", 12, &measure_info::volume_factor_3ch, &Form::lineEdit_VOLUME_FACTOR_3CH },
    { "8 Channel", 5, &measure_info::volume_factor_8ch, &Form::lineEdit_VOLUME_FACTOR_8CH },
    { "Prisma", 5, &measure_info::volume_factor_prisma, &Form::lineEdit_VOLUME_FACTOR_PRISMA },
    { "Prisma Max", 10, &measure_info::volume_factor_prisma_max, &Form::lineEdit_VOLUME_FACTOR_PRISMA_MAX },
};

QString fiveDecimals(float value)
{
    return settings::formatReal("%.5f", static_cast<double>(value));
}

/// Number by which a count on `fields` fields is multiplied to give a concentration per millilitre. The
/// counted volume is cut to five decimals on the way, as the file holds it.
float slideFactor(float volumeFactor, int fields)
{
    const float volume = volumeFactor * static_cast<float>(fields);
    const float rounded = std::strtof(fiveDecimals(volume).toLatin1().constData(), nullptr);
    return 1000.0F / rounded;
}

} // namespace

void MainWindow::on_pushButton_QC_CAPTURE_clicked()
{
    const int exposure = ui->spinBox_EXPOSURE->text().toInt();
    SignalWait grabbed(this, &MainWindow::sig_finish_QC_ImageGrabbed);
    QTimer::singleShot(exposure + kStillSettlingMs, this, SLOT(slot_QC_ImageGrabbed()));
    if (!grabbed.wait())
        return;

    ui->BASLER_VIDEO_WIDGET->hide();
    ui->CAPTURE_IMAGE_WIDGET->show();
    ui->pushButton_QC_LIVE->setEnabled(true);
    ui->pushButton_QC_CAPTURE->setEnabled(false);
    // Without its click signal: the widget stays in targeting mode until the box is clicked.
    ui->checkBox_TARGETING_MODE->setChecked(false);
    ui->checkBox_TARGETING_MODE->setEnabled(true);
}

void MainWindow::slot_QC_ImageGrabbed()
{
    ui->CAPTURE_IMAGE_WIDGET->setImageData(
        basler_camera_grab(), FrameDelivery::kFrameWidth, FrameDelivery::kFrameHeight, 8);
    emit sig_finish_QC_ImageGrabbed();
}

void MainWindow::on_pushButton_QC_LIVE_clicked()
{
    ui->CAPTURE_IMAGE_WIDGET->hide();
    ui->BASLER_VIDEO_WIDGET->show();
    ui->pushButton_QC_LIVE->setEnabled(false);
    ui->pushButton_QC_CAPTURE->setEnabled(true);
    ui->checkBox_TARGETING_MODE->setEnabled(false);
    enableTargeting(false);
}

void MainWindow::on_checkBox_TARGETING_MODE_clicked(bool checked)
{
    enableTargeting(checked);
    ui->CAPTURE_IMAGE_WIDGET->setTargetingMode(checked);
}

void MainWindow::enableTargeting(bool enabled)
{
    ui->pushButton_SET_POINT->setEnabled(enabled);
    ui->radioButton_POINT_1->setEnabled(enabled);
    ui->radioButton_POINT_2->setEnabled(enabled);
    ui->pushButton_MEASURE->setEnabled(enabled);
    ui->pushButton_MEASURE_WRITE->setEnabled(enabled);
}

void MainWindow::on_pushButton_SET_POINT_clicked()
{
    if (ui->radioButton_POINT_1->isChecked())
        ui->CAPTURE_IMAGE_WIDGET->setPoint(0);
    else if (ui->radioButton_POINT_2->isChecked())
        ui->CAPTURE_IMAGE_WIDGET->setPoint(1);
}

void MainWindow::on_pushButton_MEASURE_clicked()
{
    ui->CAPTURE_IMAGE_WIDGET->measure2Point();
}

void MainWindow::slot_measure_point(int index, int x, int y)
{
    const QString text = QString("%1, %2").arg(x).arg(y);
    if (index == 0)
        ui->lineEdit_POINT_1->setText(text);
    else if (index == 1)
        ui->lineEdit_POINT_2->setText(text);
}

void MainWindow::slot_measure_error(TargetingError error)
{
    switch (error) {
    case TARGETING_NO_CIRCLE:
        QMessageBox::critical(this, "Error", "No circle detected !!!", QMessageBox::Ok);
        break;
    case TARGETING_TOO_MANY_CIRCLES:
        QMessageBox::critical(this, "Error", "Too many circle detected !!!", QMessageBox::Ok);
        break;
    }
}

void MainWindow::slot_measure_result(measure_info info)
{
    m_measure_info = info;
    ui->lineEdit_MAGNIFICATION->setText(
        settings::formatReal("%.2f", static_cast<double>(info.magnification)));
    ui->lineEdit_VOLUME_FACTOR->setText(fiveDecimals(info.volume_factor));
    for (const SlideFields& slide : kSlideFields) {
        const float factor = slideFactor(info.volume_factor, slide.fields);
        m_measure_info.*slide.factor = factor;
        (ui->*slide.field)->setText(fiveDecimals(factor));
    }
}

void MainWindow::on_pushButton_MEASURE_WRITE_clicked()
{
    const auto write = [](const char* group, const char* key, const char* format, float value) {
        settings::writeReal(group, key, format, static_cast<double>(value));
    };
    write("TAVO-QR9", "Magnification", "%.2f", m_measure_info.magnification);
    write("TAVO-QR9", "Volume factor", "%.5f", m_measure_info.volume_factor);
    write("TAVO-QR9", "Volume offset", "%.2f", ui->doubleSpinBox_VOLUME_OFFSET->text().toFloat());
    for (const SlideFields& slide : kSlideFields)
        write("Volume factor", slide.key, "%.5f", m_measure_info.*slide.factor);
}

void MainWindow::on_doubleSpinBox_VOLUME_OFFSET_editingFinished()
{
    const float offset = ui->doubleSpinBox_VOLUME_OFFSET->text().toFloat();
    settings::writeReal("TAVO-QR9", "Volume offset", "%.2f", static_cast<double>(offset));
}
