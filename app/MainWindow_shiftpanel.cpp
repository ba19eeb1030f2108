#include "app/MainWindow.h"

#include "app/settings.h"
#include "app/styles.h"
#include "ui_MainWindow.h"

namespace {

constexpr int kAdjustGFP = 0;
constexpr int kAdjustRFP = 1;

/// Keys of the four shifts in the group "Miscellaneous", in the order of the fields.
constexpr const char* kShiftKeys[]
    = { "Pixel shift GFP X", "Pixel shift GFP Y", "Pixel shift RFP X", "Pixel shift RFP Y" };

} // namespace

std::array<QLineEdit*, 4> MainWindow::shiftFields() const
{
    return { ui->lineEdit_SHIFT_GFP_X, ui->lineEdit_SHIFT_GFP_Y, ui->lineEdit_SHIFT_RFP_X,
        ui->lineEdit_SHIFT_RFP_Y };
}

void MainWindow::on_pushButton_PIXEL_SHIFT_SET_clicked()
{
    storeShifts();
}

void MainWindow::on_pushButton_PIXEL_SHIFT_RESET_clicked()
{
    for (QLineEdit* field : shiftFields())
        field->setText(settings::formatReal("%.2f", 0.0));
    storeShifts();
    showOverlay(ui->spinBox_PIXEL_SHIFT->value());
}

void MainWindow::storeShifts()
{
    const auto fields = shiftFields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const float shift = fields[i]->text().toFloat();
        settings::writeReal("Miscellaneous", kShiftKeys[i], "%.2f", static_cast<double>(shift));
    }
}

void MainWindow::on_pushButton_SHIFT_GFP_clicked()
{
    m_shiftAdjust = kAdjustGFP;
    ui->pushButton_SHIFT_GFP->setStyleSheet(styles::kChannelGreen);
    ui->pushButton_SHIFT_RFP->setStyleSheet(styles::kNeutral);
}

void MainWindow::on_pushButton_SHIFT_RFP_clicked()
{
    m_shiftAdjust = kAdjustRFP;
    ui->pushButton_SHIFT_GFP->setStyleSheet(styles::kNeutral);
    ui->pushButton_SHIFT_RFP->setStyleSheet(styles::kChannelRed);
}

void MainWindow::on_pushButton_SHIFT_X_MINUS_clicked()
{
    adjustShift(m_shiftAdjust == kAdjustGFP ? ui->lineEdit_SHIFT_GFP_X : ui->lineEdit_SHIFT_RFP_X, -1.0F);
}

void MainWindow::on_pushButton_SHIFT_X_PLUS_clicked()
{
    adjustShift(m_shiftAdjust == kAdjustGFP ? ui->lineEdit_SHIFT_GFP_X : ui->lineEdit_SHIFT_RFP_X, +1.0F);
}

void MainWindow::on_pushButton_SHIFT_Y_MINUS_clicked()
{
    adjustShift(m_shiftAdjust == kAdjustGFP ? ui->lineEdit_SHIFT_GFP_Y : ui->lineEdit_SHIFT_RFP_Y, -1.0F);
}

void MainWindow::on_pushButton_SHIFT_Y_PLUS_clicked()
{
    adjustShift(m_shiftAdjust == kAdjustGFP ? ui->lineEdit_SHIFT_GFP_Y : ui->lineEdit_SHIFT_RFP_Y, +1.0F);
}

void MainWindow::adjustShift(QLineEdit* field, float change)
{
    const float shift = field->text().toFloat() + change;
    field->setText(settings::formatReal("%.2f", static_cast<double>(shift)));
    showOverlay(ui->spinBox_PIXEL_SHIFT->value());
}

void MainWindow::on_spinBox_PIXEL_SHIFT_valueChanged(int field)
{
    showOverlay(field);
}
