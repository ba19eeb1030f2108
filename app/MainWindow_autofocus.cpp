#include "app/MainWindow.h"

#include "app/best_sample.h"
#include "app/int_range.h"
#include "app/settling.h"
#include "app/signal_wait.h"
#include "camera/framedelivery.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kFieldsOfPosition = 4; ///< "$OK#Z#STAGE POS#1234"
constexpr int kFieldsOfEcho = 3; ///< "$OK#Z#STAGE STEP 115"

} // namespace

void MainWindow::on_pushButton_AUTOFOCUS_clicked()
{
    m_autofocusSilent = 0;
    pushButton_AUTOFOCUS_clicked(true);
}

void MainWindow::pushButton_AUTOFOCUS_clicked(bool coarse)
{
    m_strAutofocusing.clear();
    if (ui->checkBox_AUTOFOCUS_DEBUG->isChecked()) {
        const QString folder
            = QFileDialog::getExistingDirectory(nullptr, QString(), QString(), QFileDialog::ShowDirsOnly);
        if (!folder.isEmpty()) {
            m_strAutofocusing = folder;
            qDebug() << "m_strAutofocusing:" << m_strAutofocusing;
        }
    }
    ui->pushButton_AUTOFOCUS->setText("~~~");
    ui->pushButton_AUTOFOCUS->setEnabled(false);
    m_AutofocusingRef = ui->lineEdit_REFERENCE_AUTOFOCUS->text().toInt();
    // A connection may have outlived a run that ended early: each frame is measured once all the same.
    connect(this, &MainWindow::sig_ImageGrabbed, this, &MainWindow::slot_ImageGrabbed_AutoFocusing,
        Qt::UniqueConnection);
    if (coarse)
        prepareAutoFocusing_Step1();
    else
        prepareAutoFocusing_Step2();
}

bool MainWindow::focusSilently(bool coarse)
{
    m_autofocusSilent = 1;
    pushButton_AUTOFOCUS_clicked(coarse);
    // Only now: while the debug folder is asked for, a run of before may end.
    SignalWait ended(this, &MainWindow::sig_finish_Autofocusing);
    return ended.wait();
}

void MainWindow::prepareAutoFocusing_Step1()
{
    prepareScan(kAutofocusSteps[0]);
}

void MainWindow::prepareAutoFocusing_Step2()
{
    m_autofocusFineStart = withinInt(std::int64_t { m_AutofocusingRef } + kAutofocusSteps[1].startOffset);
    prepareScan(kAutofocusSteps[1]);
}

void MainWindow::prepareAutoFocusing_Step3()
{
    prepareScan(kAutofocusSteps[2]);
}

void MainWindow::beginAutoFocusing_Step1()
{
    qDebug() << Q_FUNC_INFO;
    beginScan(kAutofocusSteps[0]);
}

void MainWindow::beginAutoFocusing_Step2()
{
    qDebug() << Q_FUNC_INFO;
    beginScan(kAutofocusSteps[1]);
}

void MainWindow::beginAutoFocusing_Step3()
{
    qDebug() << Q_FUNC_INFO;
    beginScan(kAutofocusSteps[2]);
}

void MainWindow::prepareScan(const AutofocusStep& step)
{
    m_autofocusState = step.toStart;
    m_autofocusCount = 0;
    m_autoFocus.m_samples.clear();
    setUpMoveZ(readPositionZ(), withinInt(std::int64_t { m_AutofocusingRef } + step.startOffset));
    m_strCommand = "$Z#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::beginScan(const AutofocusStep& step)
{
    m_strCommand = QString("$Z#STAGE DIR %1\n").arg(step.direction);
    if (m_pController->direct_read(m_strCommand).isEmpty()) {
        endAutoFocusing(false);
        return;
    }
    m_strCommand = QString("$Z#STAGE STEP %1\n").arg(step.step);
    if (m_pController->direct_read(m_strCommand).isEmpty()) {
        endAutoFocusing(false);
        return;
    }
    m_autofocusState = step.scan;
    m_strCommand = "$Z#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

int MainWindow::readPositionZ()
{
    QStringList fields;
    do {
        m_strCommand = "$Z#STAGE POS\n";
        fields = m_pController->direct_read(m_strCommand).split("#");
    } while (fields.size() != kFieldsOfPosition);
    return fields[3].toInt();
}

void MainWindow::sendSettingZ(const QString& command)
{
    QStringList fields;
    do {
        m_strCommand = command;
        fields = m_pController->direct_read(m_strCommand).split("#");
    } while (fields.size() != kFieldsOfEcho);
}

int MainWindow::setUpMoveZ(int from, int to)
{
    const int distance = withinInt(std::abs(std::int64_t { to } - from));
    const bool bUp = from < to;
    ui->lineEdit_POSITION_Z->setText(QString::number(from));
    sendSettingZ(QString("$Z#STAGE STEP %1\n").arg(distance));
    sendSettingZ(QString("$Z#STAGE DIR %1\n").arg(bUp ? "PLUS" : "MINUS"));
    const int target = withinInt(std::int64_t { from } + (bUp ? distance : -distance));
    ui->lineEdit_POSITION_Z->setText(QString::number(target));
    return target;
}

void MainWindow::slot_ImageGrabbed_AutoFocusing(uchar* pixels, int width, int height)
{
    // The frame usually stands in the buffer already.
    if (pixels != m_pImageBuffer && width * height <= FrameDelivery::kFrameBytes)
        std::memmove(
            m_pImageBuffer, pixels, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));

    const ALG_focus measure
        = m_illumination_type == ILLUMINATION_BF ? ALG_FOCUS_LAPLACIAN : ALG_FOCUS_TENENGRAD;
    const double value = m_autoFocus.get_focusValue(measure, pixels, width, height);
    m_autoFocus.m_samples.emplace_back(m_autofocusPos, value);
    ++m_autofocusCount;
    qDebug() << Q_FUNC_INFO << m_autofocusCount << "pos:" << m_autofocusPos << "val:" << value;

    for (const AutofocusStep& step : kAutofocusSteps) {
        if (step.scan != m_autofocusState)
            continue;
        if (step.folder != nullptr && !m_strAutofocusing.isEmpty())
            saveDebugFrame(step, width, height, value);
        if (m_autofocusCount < step.frames) {
            m_strCommand = "$Z#STAGE RUN\n";
            m_pController->write_command(m_strCommand);
        } else {
            finishScan(step);
        }
        return;
    }
}

void MainWindow::finishScan(const AutofocusStep& step)
{
    const QByteArray label = QString("[%1]").arg(step.number).toLatin1();
    const std::size_t best
        = bestSample(m_autoFocus.m_samples, static_cast<std::size_t>(step.fallbackIndex), label.constData());
    if (step.folder != nullptr && !m_strAutofocusing.isEmpty())
        saveDebugTable(step, best);
    const auto [position, value] = m_autoFocus.m_samples[best];
    m_AutofocusingRef = position;
    qDebug().noquote() << QString("[%1] m_AutofocusingRef:").arg(step.number) << best << position << value;

    switch (step.scan) {
    case AF_STEP1_SCAN:
        prepareAutoFocusing_Step2();
        break;
    case AF_STEP2_SCAN:
        prepareEndAutoFocusing(true);
        break;
    default:
        endAutoFocusing(true);
        break;
    }
}

void MainWindow::prepareEndAutoFocusing(bool)
{
    disconnect(this, &MainWindow::sig_ImageGrabbed, this, &MainWindow::slot_ImageGrabbed_AutoFocusing);
    m_autofocusState = AF_FINAL_APPROACH;
    // Back above the scan, so that the best position is approached in the direction of the scan.
    m_strCommand = QString("$Z#STAGE ABS %1\n").arg(m_autofocusFineStart);
    m_pController->direct_read(m_strCommand);
    recordZSlope(setUpMoveZ(readPositionZ(), m_AutofocusingRef));
    m_strCommand = "$Z#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::endAutoFocusing(bool)
{
    // Begun anew after an empty reply, for as long as it takes: a run that stopped here would never end.
    for (;;) {
        m_strCommand = "$Z#STAGE DIR MINUS\n";
        if (m_pController->direct_read(m_strCommand).isEmpty())
            continue;
        m_strCommand = QString("$Z#STAGE STEP %1\n").arg(kFineStep);
        if (!m_pController->direct_read(m_strCommand).isEmpty())
            break;
    }
    m_autofocusState = AF_FINAL_OFFSET;
    m_strCommand = "$Z#STAGE RUN\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::advanceAutofocus(int position)
{
    switch (m_autofocusState) {
    case AF_FINAL_APPROACH:
        endAutoFocusing(true);
        break;
    case AF_FINAL_OFFSET:
        finishAutofocus();
        break;
    case AF_STEP1_TO_START:
        beginAutoFocusing_Step1();
        break;
    case AF_STEP2_TO_START:
        beginAutoFocusing_Step2();
        break;
    case AF_STEP3_TO_START:
        beginAutoFocusing_Step3();
        break;
    case AF_STEP1_SCAN:
    case AF_STEP2_SCAN:
    case AF_STEP3_SCAN:
        m_autofocusPos = position;
        // The stage stands: one exposure and a little more, and the newest frame shows this position.
        QTimer::singleShot(
            ui->spinBox_EXPOSURE->text().toInt() + kFocusSettlingMs, this, SLOT(slot_request_camera_grab()));
        break;
    default:
        break;
    }
}

void MainWindow::finishAutofocus()
{
    ui->pushButton_AUTOFOCUS->setText("AF");
    ui->pushButton_AUTOFOCUS->setEnabled(true);
    m_autofocusState = AF_IDLE;
    emit sig_finish_Autofocusing();
    if (m_autofocusSilent == 0)
        QMessageBox::information(this, "Info", "finish auto focusing !", QMessageBox::Ok);
}
