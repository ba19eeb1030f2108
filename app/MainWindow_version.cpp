#include "app/MainWindow.h"

#include "app/version_text.h"
#include "app/zr_meta.h"
#include "ui_MainWindow.h"

#include <QCoreApplication>
#include <QDebug>
#include <QProcess>

namespace {

constexpr int kReadelfLimitMs = 30000;

/// What `readelf` says of the build metadata of the instrument's main application, which lies in the working
/// directory. Empty when the program or the file is missing. Blocks for at most 30 s.
QString readMainApplicationMetadata()
{
    QProcess readelf;
    readelf.start("readelf", { "-p", "ZR_META", "TAVO_QR9.app" });
    readelf.waitForReadyRead(kReadelfLimitMs);
    QString output = readelf.readAll();
    readelf.close();
    return output;
}

} // namespace

void MainWindow::set_version()
{
    qulonglong buildSeconds = 0;
    QString baseVersion;
    const QStringList lines = readMainApplicationMetadata().split("\n");
    for (const QString& line : lines) {
        qDebug() << "===>> str : " << line;
        if (line.contains("BUILD_DATE"))
            buildSeconds = version_text::valueOf(line).toULong(nullptr, 10);
        if (line.contains("BASE_VERSION"))
            baseVersion = version_text::valueOf(line);
    }
    const QString buildDate = version_text::dateText(buildSeconds);
    qDebug() << "===>> BUILD_DATE : " << buildDate;
    qDebug() << "===>> BASE_VERSION : " << baseVersion;

    const QString ownDate
        = version_text::dateText(version_text::valueOf(zr_meta::BUILD_DATE).toULong(nullptr, 10));
    ui->textBrowser->append("From global vars:");
    ui->textBrowser->append(zr_meta::VERSION);
    ui->textBrowser->append(zr_meta::BASE_VERSION);
    ui->textBrowser->append(ownDate);
    ui->textBrowser->append(zr_meta::BASE_SVN_REV);
    ui->textBrowser->append("\nFrom application version:");
    const QStringList pieces = QCoreApplication::applicationVersion().split("|");
    for (const QString& piece : pieces)
        ui->textBrowser->append(piece);
    // For debugging only: the technician reads the four fields below.
    ui->textBrowser->hide();

    ui->lineEdit_QC_VERSION->setText(version_text::valueOf(zr_meta::VERSION));
    ui->lineEdit_LAST_QC_BUILD->setText(ownDate);
    ui->lineEdit_QR9_VERSION->setText(baseVersion);
    ui->lineEdit_LAST_QR9_BUILD->setText(buildDate);
}
