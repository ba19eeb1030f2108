#include "app/MainWindow.h"

#include "app/int_range.h"
#include "app/settings.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

#include <cstdint>

namespace {

/// The key "Calibration" holds the position of the reference mark less this, in motor steps.
constexpr std::int64_t kMarkOffset = 12000;

/// Stored X positions, by their fixed distances from the mark in motor steps.
struct MarkDistance {
    const char* key;
    std::int64_t distance;
};

constexpr MarkDistance kMarkDistances[] = {
    { "Calibration", -kMarkOffset },
    { "1 Channel", -2107 },
    { "2 Channel", +18931 },
    { "3 Channel", +18505 },
    { "8 Channel", +26291 },
    { "Prisma", +16580 },
};

} // namespace

void MainWindow::on_pushButton_STEP_X_clicked()
{
    m_strCommand = "$X#STAGE STEP " + ui->lineEdit_STEP_X->text() + "\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_POSITION_X_clicked()
{
    m_strCommand = "$X#STAGE POS\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_MVN_X_clicked()
{
    ui->pushButton_MVN_X->setEnabled(false);
    m_strCommand = "$X#STAGE DIR MINUS\n";
    m_pController->direct_read(m_strCommand);
    m_strCommand = "$X#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_MVP_X_clicked()
{
    ui->pushButton_MVP_X->setEnabled(false);
    m_strCommand = "$X#STAGE DIR PLUS\n";
    m_pController->direct_read(m_strCommand);
    m_strCommand = "$X#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::moveXTo(int target)
{
    m_strCommand = "$X#STAGE ABS " + QString::number(target) + "\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_START_X_REF_clicked()
{
    const int target = withinInt(settings::readInt("Start position", "Calibration", "0") + kMarkOffset);
    moveXTo(target);
    // Shown before the move has ended, so that a calibration right behind takes the requested position.
    ui->lineEdit_POSITION_X->setText(QString::number(target));
}

void MainWindow::on_pushButton_START_X_CALIBRATION_clicked()
{
    const int position = ui->lineEdit_POSITION_X->text().toInt();
    for (const MarkDistance& mark : kMarkDistances)
        settings::writeInt("Start position", mark.key, withinInt(position + mark.distance));
}
