#include "app/MainWindow.h"

#include "link/Controller.h"
#include "ui_MainWindow.h"

void MainWindow::on_pushButton_SEND_CMD_CONTROLLER_clicked()
{
    m_strCommand = ui->lineEdit_SEND_CMD_CONTROLLER->text() + "\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_lineEdit_SEND_CMD_CONTROLLER_returnPressed()
{
    on_pushButton_SEND_CMD_CONTROLLER_clicked();
}

void MainWindow::on_pushButton_CLEAR_CMD_RECEIVED_clicked()
{
    ui->plainTextEdit_RECEIVED_CMD_CONTROLLER->clear();
}
