#include "app/MainWindow.h"

#include "app/settings.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

void MainWindow::on_pushButton_STEP_Z_clicked()
{
    m_strCommand = "$Z#STAGE STEP " + ui->lineEdit_STEP_Z->text() + "\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_SPEED_Z_clicked()
{
    m_strCommand = "$Z#STAGE SPEED " + ui->lineEdit_SPEED_Z->text() + "\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_POSITION_Z_clicked()
{
    m_strCommand = "$Z#STAGE POS\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_ABS_Z_clicked()
{
    moveZAbsolute(ui->pushButton_ABS_Z, ui->lineEdit_ABS_Z);
}

void MainWindow::on_pushButton_REFERENCE_Z_clicked()
{
    moveZAbsolute(ui->pushButton_REFERENCE_Z, ui->lineEdit_REFERENCE_Z);
}

void MainWindow::moveZAbsolute(QPushButton* button, const QLineEdit* target)
{
    button->setText("~~~");
    button->setEnabled(false);
    m_z_target = target->text().toInt();
    m_strCommand = "$Z#STAGE ABS " + QString::number(m_z_target) + "\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_OFFSET_Z_clicked()
{
    settings::writeInt("Calibration", "Z offset", ui->lineEdit_OFFSET_Z->text().toInt());
}

void MainWindow::on_pushButton_MVN_Z_clicked()
{
    ui->pushButton_MVN_Z->setEnabled(false);
    m_strCommand = "$Z#STAGE DIR MINUS\n";
    m_pController->direct_read(m_strCommand);
    m_strCommand = "$Z#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_MVP_Z_clicked()
{
    ui->pushButton_MVP_Z->setEnabled(false);
    m_strCommand = "$Z#STAGE DIR PLUS\n";
    m_pController->direct_read(m_strCommand);
    m_strCommand = "$Z#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_RON_Z_pressed()
{
    m_strCommand = "$Z#STAGE BOTTOM\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_RON_Z_released()
{
    on_pushButton_STOP_Z_clicked();
}

void MainWindow::on_pushButton_ROP_Z_pressed()
{
    m_strCommand = "$Z#STAGE TOP\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_ROP_Z_released()
{
    on_pushButton_STOP_Z_clicked();
}

void MainWindow::on_pushButton_STOP_Z_clicked()
{
    m_strCommand = "$Z#STAGE STOP\n";
    m_pController->direct_read(m_strCommand);
    on_pushButton_POSITION_Z_clicked();
}
