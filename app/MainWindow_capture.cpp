#include "app/MainWindow.h"

#include "app/channel_picture.h"
#include "app/settling.h"
#include "app/signal_wait.h"
#include "camera/framedelivery.h"
#include "storage/ImReaderWriter.h"
#include "ui_MainWindow.h"

#include <opencv2/core.hpp>

#include <QDebug>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>

void MainWindow::on_pushButton_CAPTURE_clicked()
{
    // A stick that was plugged in since the last look is mounted afresh.
    m_media_monitor.umountAll();
    m_media_monitor.mountAll();
    QString mountPoint;
    QString device;
    m_usb_mount_path.clear();
    if (m_media_monitor.isConnectedUSB(mountPoint, device))
        m_usb_mount_path = mountPoint;

    const QString name
        = QFileDialog::getSaveFileName(nullptr, tr("Save Image"), QString(), tr("TIFF Image (*.tif)"));
    if (name.isEmpty())
        return;
    if (ui->checkBox_CAPTURE_BF->isChecked()) {
        m_save_file_name = name + "_BF.tif";
        on_pushButton_ILLUMINATION_BF_clicked();
        if (!saveFrameWhenSettled())
            return;
    }
    if (ui->checkBox_CAPTURE_GFP->isChecked()) {
        m_save_file_name = name + "_GFP.tif";
        on_pushButton_ILLUMINATION_GFP_clicked();
        if (!saveFrameWhenSettled())
            return;
    }
    if (ui->checkBox_CAPTURE_RFP->isChecked()) {
        m_save_file_name = name + "_RFP.tif";
        on_pushButton_ILLUMINATION_RFP_clicked();
        if (!saveFrameWhenSettled())
            return;
    }
    QMessageBox::information(this, "Info", "finish save Image !", QMessageBox::Ok);
}

bool MainWindow::saveFrameWhenSettled()
{
    // LED and filter wheel settle, and the exposure begins anew.
    const int exposure = ui->spinBox_EXPOSURE->text().toInt();
    SignalWait saved(this, &MainWindow::sig_finish_save_ImageGrabbed);
    QTimer::singleShot(exposure + kStillSettlingMs, this, SLOT(slot_save_ImageGrabbed()));
    return saved.wait();
}

void MainWindow::slot_save_ImageGrabbed()
{
    const cv::Mat frame
        = cv::Mat(FrameDelivery::kFrameHeight, FrameDelivery::kFrameWidth, CV_8UC1, basler_camera_grab())
              .clone();
    cv::Mat picture = channelPicture(frame, m_illumination_type);
    save_ImageGrabbed(picture.data, picture.cols, picture.rows);
}

void MainWindow::save_ImageGrabbed(unsigned char* pixels, int width, int height)
{
    std::string name = m_save_file_name.toStdString();
    std::string description;
    general::ImReaderWriter writer;
    writer.load(pixels, static_cast<unsigned>(width), static_cast<unsigned>(height), 8, 3,
        general::kCompressionLzw, general::kPhotometricRgb);
    if (writer.write(name, description))
        qDebug() << "[save_grabImage] save done";
    else
        qDebug() << "[save_grabImage] save fail";
    emit sig_finish_save_ImageGrabbed();
}

void MainWindow::on_pushButton_UNMOUNT_clicked()
{
    if (m_usb_mount_path.isEmpty())
        return;
    if (m_media_monitor.umount(m_usb_mount_path))
        QMessageBox::information(this, "Info", "finish unmount !", QMessageBox::Ok);
}
