#include "app/MainWindow.h"

#include "app/settings.h"
#include "ui_MainWindow.h"

namespace {

void setOption(QRadioButton* yes, QRadioButton* no, const char* key)
{
    const bool bYes = QString::fromStdString(settings::read("TAVO-QR9", key, "No")).contains("Yes");
    (bYes ? yes : no)->setChecked(true);
}

} // namespace

void MainWindow::get_TAVO_QR9_ini()
{
    ui->checkBox_HOR_MIRROR->setChecked(settings::read("ArduCAM", "Hor. Mirror", "No") == "Yes");
    ui->checkBox_VER_MIRROR->setChecked(settings::read("ArduCAM", "Ver. Mirror", "Yes") == "Yes");

    ui->doubleSpinBox_VOLUME_OFFSET->setValue(settings::readReal("TAVO-QR9", "Volume offset", "1.10"));
    ui->lineEdit_MAGNIFICATION->setText(
        QString::number(settings::readReal("TAVO-QR9", "Magnification", "4.00"), 'g'));

    struct {
        QLineEdit* field;
        const char* group;
        const char* key;
        const char* defaultValue;
    } const factors[] = {
        { ui->lineEdit_VOLUME_FACTOR, "TAVO-QR9", "Volume factor", "0.10800" },
        { ui->lineEdit_VOLUME_FACTOR_1CH, "Volume factor", "1 Channel", "197.00552" },
        { ui->lineEdit_VOLUME_FACTOR_2CH, "Volume factor", "2 Channel", "771.60494" },
        { ui->lineEdit_VOLUME_FACTOR_3CH, "Volume factor", "3 Channel", "771.60494" },
        { ui->lineEdit_VOLUME_FACTOR_8CH, "Volume factor", "8 Channel", "1851.85185" },
        { ui->lineEdit_VOLUME_FACTOR_PRISMA, "Volume factor", "Prisma", "1851.85185" },
        { ui->lineEdit_VOLUME_FACTOR_PRISMA_MAX, "Volume factor", "Prisma Max", "925.92593" },
    };
    for (const auto& factor : factors) {
        const double value = settings::readReal(factor.group, factor.key, factor.defaultValue);
        factor.field->setText(settings::formatReal("%.5f", value));
    }

    // A "B" in the last part of the serial number marks a unit without fluorescence.
    if (showSerialNumber().value(2).contains('B')) {
        ui->pushButton_ILLUMINATION_GFP->hide();
        ui->pushButton_ILLUMINATION_RFP->hide();
    }

    setOption(ui->radioButton_VATLINE_YES, ui->radioButton_VATLINE_NO, "Vatline");
    setOption(ui->radioButton_TALLYLINK_YES, ui->radioButton_TALLYLINK_NO, "TallyLink");
    setOption(ui->radioButton_QLPK_YES, ui->radioButton_QLPK_NO, "QLPK");
}
