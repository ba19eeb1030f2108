#include "app/MainWindow.h"

#include "app/int_range.h"
#include "app/settings.h"
#include "app/slide_geometry.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QMessageBox>

#include <cstdint>
#include <cstdio>

namespace {

// Heights of the slide types above field A1 of the 2-channel slide; the same for every instrument.
constexpr double kHeight1Ch = -640.0;
constexpr double kHeight2Ch = +1920.0;
constexpr double kHeight3Ch = -640.0;
constexpr double kHeight8Ch = -640.0;

int heightAbove(int position, double height)
{
    return settings::truncated(position + height);
}

QString finishText(const z_slope_cal_info& cal)
{
    char text[512];
    std::snprintf(text, sizeof text,
        "\nfinish Z slope calibration ! \n\nZ ref A1 : %d \nZ ref B1 : %d \nZ ref slope : %.3f \n"
        "Z reference : %d \nZ ref 1ch : %d \nZ ref 2ch : %d \nZ ref 3ch : %d \nZ ref 8ch : %d \n",
        cal.pos_A1, cal.pos_B1, static_cast<double>(cal.slope_per_mm), cal.pos_A1, cal.cal_1ch_pos,
        cal.cal_2ch_pos, cal.cal_3ch_pos, cal.cal_8ch_pos);
    return QString::fromLatin1(text);
}

} // namespace

void MainWindow::on_pushButton_REFERENCE_AUTOFOCUS_SET_clicked()
{
    const int position = ui->lineEdit_POSITION_Z->text().toInt();
    ui->lineEdit_REFERENCE_AUTOFOCUS->setText(QString::number(position));
    settings::writeInt("Calibration", "Z reference", position);
}

void MainWindow::on_pushButton_REFERENCE_Z_SLOPE_clicked()
{
    ui->pushButton_REFERENCE_Z_SLOPE->setText("~~~");
    ui->pushButton_REFERENCE_Z_SLOPE->setEnabled(false);

    m_z_slope_stage = Z_SLOPE_A1;
    if (!focusAt(m_slide_start_2ch))
        return;
    m_z_slope_stage = Z_SLOPE_B1;
    if (!focusAt(withinInt(std::int64_t { m_slide_start_2ch } - kChannelPitchX2Ch)))
        return;
    m_z_slope_stage = Z_SLOPE_NONE;

    z_slope_cal_info& cal = m_z_slope_cal;
    qDebug() << "m_z_slope_cal.pos_A1:" << cal.pos_A1;
    qDebug() << "m_z_slope_cal.pos_B1:" << cal.pos_B1;
    qDebug() << "m_z_slope_cal.slope:" << cal.slope;
    qDebug() << "m_z_slope_cal.slope_per_mm:" << cal.slope_per_mm;
    cal.cal_validation_pos = cal.pos_A1;
    cal.cal_1ch_pos = heightAbove(cal.pos_A1, kHeight1Ch);
    cal.cal_2ch_pos = heightAbove(cal.pos_A1, kHeight2Ch);
    cal.cal_3ch_pos = heightAbove(cal.pos_A1, kHeight3Ch);
    cal.cal_8ch_pos = heightAbove(cal.pos_A1, kHeight8Ch);
    qDebug() << "m_z_slope_cal.cal_1ch_pos:" << cal.cal_1ch_pos;
    qDebug() << "m_z_slope_cal.cal_2ch_pos:" << cal.cal_2ch_pos;
    qDebug() << "m_z_slope_cal.cal_3ch_pos:" << cal.cal_3ch_pos;
    qDebug() << "m_z_slope_cal.cal_8ch_pos:" << cal.cal_8ch_pos;
    storeZSlope(cal);

    // The autofocus reference on show stays: it takes the new value at the next start.
    ui->lineEdit_REFERENCE_Z->setText(QString::number(cal.cal_2ch_pos));
    ui->pushButton_REFERENCE_Z_SLOPE->setText("Slope");
    ui->pushButton_REFERENCE_Z_SLOPE->setEnabled(true);
    m_autofocusSilent = 0;
    QMessageBox::information(this, "Info", finishText(cal), QMessageBox::Ok);
}

bool MainWindow::focusAt(int positionX)
{
    m_strCommand = "$X#STAGE ABS " + QString::number(positionX) + "\n";
    m_pController->direct_read(m_strCommand);
    return focusSilently(true);
}

void MainWindow::recordZSlope(int bestPosition)
{
    if (m_z_slope_stage == Z_SLOPE_A1) {
        m_z_slope_cal.pos_A1 = bestPosition;
    } else if (m_z_slope_stage == Z_SLOPE_B1) {
        m_z_slope_cal.pos_B1 = bestPosition;
        m_z_slope_cal.slope = withinInt(std::int64_t { bestPosition } - m_z_slope_cal.pos_A1);
        m_z_slope_cal.slope_per_mm = static_cast<float>(m_z_slope_cal.slope / kChannelPitchMm2Ch);
    }
}

void MainWindow::storeZSlope(const z_slope_cal_info& cal)
{
    settings::writeInt("Calibration", "Z ref A1", cal.pos_A1);
    settings::writeInt("Calibration", "Z ref B1", cal.pos_B1);
    settings::writeReal("Calibration", "Z ref slope", "%.3f", static_cast<double>(cal.slope_per_mm));
    settings::writeInt("Calibration", "Z reference", cal.pos_A1);
    settings::writeInt("Calibration", "Z ref 1ch", cal.cal_1ch_pos);
    settings::writeInt("Calibration", "Z ref 2ch", cal.cal_2ch_pos);
    settings::writeInt("Calibration", "Z ref 3ch", cal.cal_3ch_pos);
    settings::writeInt("Calibration", "Z ref 8ch", cal.cal_8ch_pos);
    settings::writeInt("Calibration", "Z ref Validation", cal.cal_validation_pos);
}
