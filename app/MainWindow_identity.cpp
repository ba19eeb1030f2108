#include "app/MainWindow.h"

#include "app/settings.h"
#include "camera/framedelivery.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QFile>
#include <QProcess>

namespace {

constexpr char kHostNameFile[] = "/etc/hostname";
constexpr int kScriptLimitMs = 30000;

void writeFlag(const char* group, const char* key, bool bYes)
{
    settings::write(group, key, bYes ? "Yes" : "No");
}

} // namespace

QStringList MainWindow::showSerialNumber()
{
    QStringList parts
        = QString::fromStdString(settings::read("TAVO-QR9", "Serial", "TV9-00-00000")).split("-");
    ui->lineEdit_SERIAL_MODEL->setText(parts.value(0));
    ui->lineEdit_SERIAL_PREFIX->setText(parts.value(1));
    ui->lineEdit_SERIAL_SUFFIX->setText(parts.value(2));
    return parts;
}

void MainWindow::on_lineEdit_SERIAL_MODEL_textEdited(const QString& text)
{
    const int cursor = ui->lineEdit_SERIAL_MODEL->cursorPosition();
    ui->lineEdit_SERIAL_MODEL->setText(text.toUpper());
    ui->lineEdit_SERIAL_MODEL->setCursorPosition(cursor);
}

void MainWindow::on_pushButton_SERIAL_WRITE_clicked()
{
    const QString serial = ui->lineEdit_SERIAL_MODEL->text() + "-" + ui->lineEdit_SERIAL_PREFIX->text() + "-"
        + ui->lineEdit_SERIAL_SUFFIX->text();
    settings::write("TAVO-QR9", "Serial", serial.toStdString());

    qDebug() << "Start deleting  host name";
    if (QFile::exists(kHostNameFile))
        QFile::remove(kHostNameFile);
    qDebug() << "delete host name, Start updating hostname";
    // The instrument's script derives the host name from the stored serial number.
    QProcess script;
    script.start("update_hostname.sh", QStringList());
    script.waitForFinished(kScriptLimitMs);
    script.close();
    qDebug() << "Finish update_hostname";
    m_bSerialChanged = true;
}

void MainWindow::on_radioButton_VATLINE_YES_clicked()
{
    writeFlag("TAVO-QR9", "Vatline", true);
}

void MainWindow::on_radioButton_VATLINE_NO_clicked()
{
    writeFlag("TAVO-QR9", "Vatline", false);
}

void MainWindow::on_radioButton_TALLYLINK_YES_clicked()
{
    writeFlag("TAVO-QR9", "TallyLink", true);
}

void MainWindow::on_radioButton_TALLYLINK_NO_clicked()
{
    writeFlag("TAVO-QR9", "TallyLink", false);
}

void MainWindow::on_radioButton_QLPK_YES_clicked()
{
    writeFlag("TAVO-QR9", "QLPK", true);
}

void MainWindow::on_radioButton_QLPK_NO_clicked()
{
    writeFlag("TAVO-QR9", "QLPK", false);
}

void MainWindow::on_checkBox_HOR_MIRROR_clicked(bool checked)
{
    applyMirrors();
    writeFlag("ArduCAM", "Hor. Mirror", checked);
}

void MainWindow::on_checkBox_VER_MIRROR_clicked(bool checked)
{
    applyMirrors();
    writeFlag("ArduCAM", "Ver. Mirror", checked);
}

void MainWindow::applyMirrors()
{
    if (FrameDelivery::m_pInstance != nullptr)
        FrameDelivery::m_pInstance->setCameraReverse(
            ui->checkBox_HOR_MIRROR->isChecked(), ui->checkBox_VER_MIRROR->isChecked());
}

void MainWindow::on_spinBox_REUSABLE_OFFSET_valueChanged(int value)
{
    settings::writeInt("Calibration", "Reusable offset", value);
}

void MainWindow::on_spinBox_VALIDATION_OFFSET_valueChanged(int value)
{
    settings::writeInt("Calibration", "Validation offset", value);
}

void MainWindow::on_spinBox_PRISMA_OFFSET_valueChanged(int value)
{
    settings::writeInt("Calibration", "Prisma offset", value);
}
