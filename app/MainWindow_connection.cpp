#include "app/MainWindow.h"

#include "app/acknowledge_box.h"
#include "app/signal_wait.h"
#include "app/styles.h"
#include "camera/framedelivery.h"
#include "link/Controller.h"
#include "views/camera_type.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QMessageBox>
#include <QProcess>
#include <QThread>

namespace {

const char* text(bool flag)
{
    return flag ? "true" : "false";
}

void showError(QWidget* parent, const QString& message)
{
    QMessageBox::information(parent, "Error", message, QMessageBox::Ok);
}

} // namespace

void MainWindow::on_pushButton_CONNECT_clicked()
{
    // The button stays enabled while the sequence waits for the search or for a message box; a second
    // sequence inside the first would home the stage under it.
    if (m_bConnecting)
        return;
    m_bConnecting = true;
    // Open since an earlier connection: a panel would wait for ever for an answer of a port under trial. They
    // open again when the camera has started.
    ui->tabWidget_CONTROLLER->setEnabled(false);
    ui->pushButton_CONNECT->setText("~~~");
    ui->pushButton_CONNECT->setStyleSheet(styles::kBusy);
    setCursor(Qt::WaitCursor);

    SignalWait searched(this, &MainWindow::sig_finish_find_Controller);
    connect_Controller();
    if (!searched.wait() || m_bLeaving)
        return;
    qDebug() << Q_FUNC_INFO << "m_bConnected_Controller:" << text(m_bConnected_Controller);

    const bool bSuccess = bringUpUnit();
    ui->pushButton_CONNECT->setText("Connect");
    ui->pushButton_CONNECT->setStyleSheet(bSuccess ? styles::kConnected : styles::kNeutral);
    if (bSuccess)
        showMirrorBoxes();
    setCursor(Qt::ArrowCursor);
    ui->pushButton_EXIT->setVisible(true);
    m_bConnecting = false;
}

bool MainWindow::bringUpUnit()
{
    if (!m_bConnected_Controller) {
        showError(this, "Fail CONTROLLER connect !");
        return false;
    }
    if (!initialize_Controller()) {
        showError(this, "Fail CONTROLLER initialize !");
        return false;
    }
    check_CameraConnection();
    return true;
}

void MainWindow::showMirrorBoxes()
{
    qDebug() << "m_CAM_type:" << m_CAM_type;
    if (m_CAM_type == CAMERA_BASLER) {
        ui->checkBox_HOR_MIRROR->setChecked(false);
        ui->checkBox_VER_MIRROR->setChecked(false);
        ui->checkBox_HOR_MIRROR->hide();
        ui->checkBox_VER_MIRROR->hide();
    } else if (m_CAM_type == CAMERA_AR0134) {
        ui->checkBox_HOR_MIRROR->show();
        ui->checkBox_VER_MIRROR->show();
    }
}

void MainWindow::connect_Controller()
{
    m_pController->m_portList = QSerialPortInfo::availablePorts();
    m_pController->m_bFound = false;
    m_pController->m_portIndex = 0;
    m_pController->m_bSearching = true;
    m_pController->m_portLast = m_pController->m_portList.count() - 1;
    m_pController->do_COM_PortFind_Controller();
}

void MainWindow::slot_finish_find_Controller(bool found, QString port)
{
    m_pController->m_bSearching = false;
    m_bConnected_Controller = found;
    // Ends the local loop of the connection, which goes on only when this slot has returned.
    emit sig_finish_find_Controller();
    if (found) {
        ui->lineEdit_COM_PORT_CONTROLLER->setText(port);
        ui->lineEdit_COM_PORT_CONTROLLER->setStyleSheet(styles::kReady);
    } else {
        QMessageBox::critical(this, "Error", "COM Port [Controller] not find !!!", QMessageBox::Ok);
    }
}

bool MainWindow::initialize_Controller()
{
    return origin_STAGE() && setup_STAGE() && standby_STAGE() && setup_ILLUMINATION();
}

void MainWindow::check_CameraConnection()
{
    m_bConnected_Camera = false;
    m_CAM_type = ui->BASLER_VIDEO_WIDGET->cameraType();
    if (m_CAM_type != CAMERA_NONE)
        initialize_Basler(FrameDelivery::kFrameWidth, FrameDelivery::kFrameHeight, 8);
    else
        showError(this, "Check if the CAMERA is present !");

    m_bConnected_Camera = FrameDelivery::m_pInstance != nullptr && FrameDelivery::m_pInstance->isRunning();
    if (!m_bConnected_Camera) {
        // The gate of all panels opens for a running camera alone, and a start that failed has opened it.
        ui->tabWidget_CONTROLLER->setEnabled(false);
        showError(this, "Check CAMERA connection !");
    }
    qDebug() << Q_FUNC_INFO << m_CAM_type << text(m_bConnected_Camera);
}

void MainWindow::on_pushButton_EXIT_clicked()
{
    ui->pushButton_EXIT->setEnabled(false);
    m_bLeaving = true;
    // The port under trial need not be the board's, and a line that waits for its answer would wait there for
    // ever: the search ends first, a second at most for each port.
    if (m_pController->m_bSearching) {
        SignalWait searched(this, &MainWindow::sig_finish_find_Controller);
        if (!searched.wait())
            return;
    }
    if (m_bConnected_Controller) {
        off_illumination_LED();
        QThread::msleep(25);
        m_strCommand = "$X#STAGE ORIGIN\n";
        m_pController->direct_read(m_strCommand);
    }
    if (m_bConnected_Camera && FrameDelivery::m_pInstance != nullptr)
        FrameDelivery::m_pInstance->stop();
    qDebug() << "!!!!!!!!!!!!!!!!!!!!!!RESTART";
    if (m_bSerialChanged) {
        AcknowledgeBox box("Info", "The serial number has changed, so a restart will be performed!!", this);
        box.exec();
        if (box.isAcknowledged() && !QProcess::startDetached("systemctl", { "restart", "rc-local.service" }))
            qDebug() << "[Error] : "
                     << "systemctl cannot be started, the instrument keeps its old name";
    }
    close();
}
