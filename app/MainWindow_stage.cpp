#include "app/MainWindow.h"

#include "app/settings.h"
#include "app/styles.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

bool MainWindow::origin_STAGE()
{
    for (const char* command : { "$X#STAGE ORIGIN\n", "$Z#STAGE ORIGIN\n", "$A#FILTER ORIGIN\n" }) {
        m_strCommand = command;
        if (m_pController->direct_read(m_strCommand).isEmpty())
            return false;
    }
    return true;
}

bool MainWindow::setup_STAGE()
{
    m_strCommand = "$Z#STAGE STEP " + ui->lineEdit_STEP_Z->text() + "\n";
    if (m_pController->direct_read(m_strCommand).isEmpty())
        return false;
    m_strCommand = "$Z#STAGE SPEED " + ui->lineEdit_SPEED_Z->text() + "\n";
    if (m_pController->direct_read(m_strCommand).isEmpty())
        return false;

    const auto show = [](QLineEdit* field, const char* key, const char* defaultValue) {
        field->setText(QString::number(settings::readInt("Calibration", key, defaultValue)));
    };
    const auto setBox = [](QSpinBox* box, const char* key, const char* defaultValue) {
        box->setValue(settings::readInt("Calibration", key, defaultValue));
    };
    // The shifts are single-precision numbers everywhere, so they are shown as such.
    const auto showShift = [](QLineEdit* field, const char* key) {
        const auto shift = static_cast<float>(settings::readReal("Miscellaneous", key, "0.0"));
        field->setText(settings::formatReal("%.2f", static_cast<double>(shift)));
    };
    show(ui->lineEdit_REFERENCE_AUTOFOCUS, "Z reference", "32000");
    show(ui->lineEdit_OFFSET_Z, "Z offset", "3");
    setBox(ui->spinBox_REUSABLE_OFFSET, "Reusable offset", "5676");
    setBox(ui->spinBox_VALIDATION_OFFSET, "Validation offset", "1280");
    setBox(ui->spinBox_PRISMA_OFFSET, "Prisma offset", "0");
    show(ui->lineEdit_REFERENCE_Z, "Z ref 2ch", "32000");
    showShift(ui->lineEdit_SHIFT_GFP_X, "Pixel shift GFP X");
    showShift(ui->lineEdit_SHIFT_GFP_Y, "Pixel shift GFP Y");
    showShift(ui->lineEdit_SHIFT_RFP_X, "Pixel shift RFP X");
    showShift(ui->lineEdit_SHIFT_RFP_Y, "Pixel shift RFP Y");
    return true;
}

bool MainWindow::standby_STAGE()
{
    ui->pushButton_EJECT->setText("Eject");
    ui->pushButton_EJECT->setStyleSheet(styles::kReady);
    m_strCommand = "$X#STAGE EJECT\n";
    if (m_pController->direct_read(m_strCommand).isEmpty())
        return false;

    const int reference = ui->lineEdit_REFERENCE_Z->text().toInt();
    m_strCommand = "$Z#STAGE ABS " + QString::number(reference) + "\n";
    if (m_pController->direct_read(m_strCommand).isEmpty())
        return false;
    ui->lineEdit_POSITION_Z->setText(QString::number(reference));
    return true;
}
