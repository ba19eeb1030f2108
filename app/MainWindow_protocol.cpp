#include "app/MainWindow.h"

#include "app/reply_walk.h"
#include "app/settings.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

void MainWindow::slot_parsing_protocol_Controller(QString text)
{
    if (!m_pController->m_bFound)
        return;

    ui->plainTextEdit_RECEIVED_CMD_CONTROLLER->moveCursor(QTextCursor::End);
    ui->plainTextEdit_RECEIVED_CMD_CONTROLLER->insertPlainText(text);
    ui->plainTextEdit_RECEIVED_CMD_CONTROLLER->ensureCursorVisible();

    const auto showVersion = [this](const QString& version) {
        ui->lineEdit_FIRMWARE->setText(version);
        settings::write("Software", "Version FW", version.toStdString());
    };
    walkReplies(
        text, m_protocol_info, showVersion, [this] { do_protocol_function_Controller(m_protocol_info); });
}

void MainWindow::do_protocol_function_Controller(protocol_Controller_info info)
{
    switch (info.device) {
    case PROTOCOL_MAIN:
        function_Controller_main(info);
        break;
    case PROTOCOL_STAGE_X:
    case PROTOCOL_STAGE_Z:
        function_Controller_stage(info);
        break;
    case PROTOCOL_FILTER:
        function_Controller_filter(info);
        break;
    default:
        break;
    }
}

void MainWindow::function_Controller_main(protocol_Controller_info)
{
    // Replies of the main unit ask for no action.
}

void MainWindow::function_Controller_filter(protocol_Controller_info info)
{
    if (info.function != FUNCTION_READ)
        return;
    QSpinBox* const boxes[]
        = { ui->spinBox_FILTER1_CORR, ui->spinBox_FILTER2_CORR, ui->spinBox_FILTER3_CORR };
    if (info.value >= 1 && info.value <= 3)
        boxes[info.value - 1]->setValue(info.value2);
}

void MainWindow::function_Controller_stage(protocol_Controller_info info)
{
    if (info.device == PROTOCOL_STAGE_X)
        function_Controller_stageX(info);
    else
        function_Controller_stageZ(info);
}

void MainWindow::function_Controller_stageX(const protocol_Controller_info& info)
{
    switch (info.function) {
    case FUNCTION_RUN:
        ui->pushButton_MVN_X->setEnabled(true);
        ui->pushButton_MVP_X->setEnabled(true);
        ui->lineEdit_POSITION_X->setText(QString::number(info.value));
        break;
    case FUNCTION_EJECT:
        finishEject();
        break;
    case FUNCTION_ABS:
        finishXMove();
        break;
    case FUNCTION_POS:
        ui->lineEdit_POSITION_X->setText(QString::number(info.value));
        break;
    default:
        break;
    }
}

void MainWindow::function_Controller_stageZ(const protocol_Controller_info& info)
{
    switch (info.function) {
    case FUNCTION_ORIGIN:
        ui->lineEdit_POSITION_Z->setText("0");
        break;
    case FUNCTION_RUN:
        ui->pushButton_MVN_Z->setEnabled(true);
        ui->pushButton_MVP_Z->setEnabled(true);
        ui->lineEdit_POSITION_Z->setText(QString::number(info.value));
        advanceAutofocus(info.value);
        break;
    case FUNCTION_ABS:
        ui->pushButton_ABS_Z->setText("[Z] ABS");
        ui->pushButton_ABS_Z->setEnabled(true);
        ui->pushButton_REFERENCE_Z->setText("[Z] Ref");
        ui->pushButton_REFERENCE_Z->setEnabled(true);
        // The position asked for, and not the one reported.
        ui->lineEdit_POSITION_Z->setText(QString::number(m_z_target));
        break;
    case FUNCTION_POS:
        ui->lineEdit_POSITION_Z->setText(QString::number(info.value));
        break;
    default:
        break;
    }
}
