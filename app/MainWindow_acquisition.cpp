#include "app/MainWindow.h"

#include "app/settings.h"
#include "camera/framedelivery.h"
#include "ui_MainWindow.h"

#include <opencv2/core.hpp>

#include <QDebug>
#include <QTimer>

namespace {

constexpr int kGainSliderMaximum = 270;
constexpr int kFpsPeriodMs = 500;

} // namespace

void MainWindow::on_checkBox_CROSS_LINE_clicked(bool checked)
{
    if (m_bConnected_Camera)
        ui->BASLER_VIDEO_WIDGET->setCrossLine(checked);
}

void MainWindow::on_checkBox_SCALE_TO_FIT_clicked(bool checked)
{
    if (m_bConnected_Camera)
        ui->BASLER_VIDEO_WIDGET->setFitMode(checked);
}

void MainWindow::initialize_Basler(int, int, int)
{
    qDebug() << Q_FUNC_INFO;
    FrameDelivery* source = FrameDelivery::m_pInstance;
    if (source == nullptr)
        return;

    ui->BASLER_VIDEO_WIDGET->hide();
    source->start();
    source->setCurrentGain(ui->doubleSpinBox_GAIN->text().toFloat());
    source->setCurrentExposure(ui->spinBox_EXPOSURE->text().toDouble());
    ui->BASLER_VIDEO_WIDGET->show();
    ui->tabWidget_CONTROLLER->setEnabled(true);
    ui->horizontalSlider_GAIN->setMaximum(kGainSliderMaximum);

    // A further connection must not double what the first one connected.
    connect(source, &FrameDelivery::sig_IntensityUpdate, this, &MainWindow::slot_IntensityUpdate,
        Qt::UniqueConnection);
    connect(source, &FrameDelivery::sig_FpsUpdate, this, &MainWindow::slot_FpsUpdate, Qt::UniqueConnection);
    connect(m_timer_FPS, &QTimer::timeout, this, &MainWindow::slot_FpsUpdate_UI, Qt::UniqueConnection);
    m_timer_FPS->start(kFpsPeriodMs);

    source->setAutoTriggeringMode(true);
    const QString line(42, '@');
    qDebug().noquote() << "";
    qDebug().noquote() << line;
    qDebug().noquote() << "@ [Basler] CAMERA connected...";
    qDebug().noquote() << line;
    qDebug().noquote() << "";
}

void MainWindow::copyNewestFrame()
{
    if (FrameDelivery::m_pInstance == nullptr)
        return;
    // A header on the buffer: the source copies the frame straight into it.
    cv::Mat frame(FrameDelivery::kFrameHeight, FrameDelivery::kFrameWidth, CV_8UC1, m_pImageBuffer);
    FrameDelivery::m_pInstance->pushMatImage(frame);
}

unsigned char* MainWindow::basler_camera_grab()
{
    copyNewestFrame();
    return m_pImageBuffer;
}

unsigned char* MainWindow::basler_camera_grab(bool)
{
    copyNewestFrame();
    emit sig_ImageGrabbed(m_pImageBuffer, FrameDelivery::kFrameWidth, FrameDelivery::kFrameHeight);
    return m_pImageBuffer;
}

void MainWindow::slot_request_camera_grab()
{
    basler_camera_grab(true);
}

void MainWindow::slot_FpsUpdate(float fps)
{
    m_fps = fps;
}

void MainWindow::slot_FpsUpdate_UI()
{
    ui->lineEdit_FPS->setText(settings::formatReal("%.1f", static_cast<double>(m_fps)));
}

void MainWindow::on_pushButton_INTENSITY_clicked()
{
    ui->pushButton_INTENSITY->setText("~~~");
    if (FrameDelivery::m_pInstance != nullptr)
        FrameDelivery::m_pInstance->IntensityUpdate();
}

void MainWindow::slot_IntensityUpdate(double average, double object, double background)
{
    ui->pushButton_INTENSITY->setText("Intensity");
    ui->lineEdit_INTENSITY_AVERAGE->setText(settings::formatReal("%.2f", average));
    ui->lineEdit_INTENSITY_OBJECT->setText(settings::formatReal("%.2f", object));
    ui->lineEdit_INTENSITY_BACKGROUND->setText(settings::formatReal("%.2f", background));
}
