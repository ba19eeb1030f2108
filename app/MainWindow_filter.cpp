#include "app/MainWindow.h"

#include "app/settings.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

void MainWindow::get_illumination_CORRECTION_ini()
{
    ui->spinBox_FILTER1_CORR->setValue(settings::readToolInt("Correction", "Filter 1", "10"));
    ui->spinBox_FILTER2_CORR->setValue(settings::readToolInt("Correction", "Filter 2", "10"));
    ui->spinBox_FILTER3_CORR->setValue(settings::readToolInt("Correction", "Filter 3", "10"));
}

void MainWindow::goToFilter(int position)
{
    m_strCommand = QString("$A#FILTER GO %1\n").arg(position);
    m_pController->write_command(m_strCommand);
}

void MainWindow::readFilter(int position)
{
    m_strCommand = QString("$A#FILTER READ%1\n").arg(position);
    m_pController->write_command(m_strCommand);
}

void MainWindow::correctFilter(int position, const QSpinBox* correction)
{
    // The text of the box, and not its value: an emptied box sends 0.
    m_strCommand = QString("$A#FILTER COR%1 %2\n").arg(position).arg(correction->text().toInt());
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_FILTER1_GO_clicked()
{
    goToFilter(1);
}

void MainWindow::on_pushButton_FILTER2_GO_clicked()
{
    goToFilter(2);
}

void MainWindow::on_pushButton_FILTER3_GO_clicked()
{
    goToFilter(3);
}

void MainWindow::on_pushButton_FILTER1_READ_clicked()
{
    readFilter(1);
}

void MainWindow::on_pushButton_FILTER2_READ_clicked()
{
    readFilter(2);
}

void MainWindow::on_pushButton_FILTER3_READ_clicked()
{
    readFilter(3);
}

void MainWindow::on_pushButton_FILTER1_CORR_clicked()
{
    correctFilter(1, ui->spinBox_FILTER1_CORR);
}

void MainWindow::on_pushButton_FILTER2_CORR_clicked()
{
    correctFilter(2, ui->spinBox_FILTER2_CORR);
}

void MainWindow::on_pushButton_FILTER3_CORR_clicked()
{
    correctFilter(3, ui->spinBox_FILTER3_CORR);
}
