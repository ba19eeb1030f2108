#include "app/MainWindow.h"

#include "app/settings.h"
#include "app/styles.h"
#include "camera/framedelivery.h"
#include "link/Controller.h"
#include "views/camera_type.h"
#include "ui_MainWindow.h"

namespace {

const IlluminationChannel& channelOf(ILLUMINATION_type type)
{
    return kIlluminationChannels[type];
}

/// Where a channel's gain is stored; a null key where the channel has no gain for this camera.
struct StoredGain {
    const char* key;
    const char* defaultValue;
};

StoredGain storedGain(const IlluminationChannel& channel, int cameraType)
{
    if (channel.defaultGainAR == nullptr || cameraType == CAMERA_BASLER)
        return { "Gain", channel.defaultGain };
    if (cameraType == CAMERA_AR0134)
        return { "Gain AR", channel.defaultGainAR };
    return { nullptr, nullptr };
}

} // namespace

bool MainWindow::setup_ILLUMINATION()
{
    on_pushButton_ILLUMINATION_BF_clicked();
    return true;
}

void MainWindow::on_pushButton_ILLUMINATION_BF_clicked()
{
    selectIlluminationChannel(ILLUMINATION_BF);
}

void MainWindow::on_pushButton_ILLUMINATION_GFP_clicked()
{
    selectIlluminationChannel(ILLUMINATION_GFP);
}

void MainWindow::on_pushButton_ILLUMINATION_RFP_clicked()
{
    selectIlluminationChannel(ILLUMINATION_RFP);
}

void MainWindow::selectIlluminationChannel(ILLUMINATION_type type)
{
    m_bLED_On = true;
    ui->pushButton_LED_TOGGLE->setText("OFF");
    m_illumination_type = type;
    ui->spinBox_LED1->setEnabled(true);
    ui->spinBox_LED2->setEnabled(type == ILLUMINATION_BF);

    QPushButton* const buttons[] = { ui->pushButton_ILLUMINATION_BF, ui->pushButton_ILLUMINATION_GFP,
        ui->pushButton_ILLUMINATION_RFP };
    for (const IlluminationChannel& channel : kIlluminationChannels)
        buttons[channel.type]->setStyleSheet(channel.type == type ? channel.buttonStyle : styles::kNeutral);

    if (type == ILLUMINATION_BF)
        showSerialNumber();
    get_illumination_ini(type);
    set_illumination_GAIN(m_illumination_gain);
    set_illumination_EXPOSURE(m_illumination_exposure);
    set_illumination_LED(m_illumination_LED1, m_illumination_LED2);
    change_illumination_FILTER(type);
    ui->BASLER_VIDEO_WIDGET->setPseudoColorTable(channelOf(type).colorTable);
}

void MainWindow::set_illumination_GAIN(double gain)
{
    if (FrameDelivery::m_pInstance != nullptr)
        FrameDelivery::m_pInstance->setCurrentGain(static_cast<float>(gain));
}

void MainWindow::set_illumination_EXPOSURE(double exposure)
{
    // A pixel shift run wants its fluorescence frames unsaturated.
    if (m_illumination_type != ILLUMINATION_BF && m_bPixelShiftRun)
        exposure /= 2.0;
    if (FrameDelivery::m_pInstance != nullptr)
        FrameDelivery::m_pInstance->setCurrentExposure(exposure);
}

void MainWindow::set_illumination_LED(int led1, int led2)
{
    switch (m_illumination_type) {
    case ILLUMINATION_BF:
        m_strCommand = "$A#LED BRT1 " + QString::number(led1) + " " + QString::number(led2) + "\n";
        break;
    case ILLUMINATION_GFP:
        m_strCommand = "$A#LED BRT2 " + QString::number(led1) + "\n";
        break;
    case ILLUMINATION_RFP:
        m_strCommand = "$A#LED BRT3 " + QString::number(led1) + "\n";
        break;
    }
    m_pController->direct_read(m_strCommand);
}

void MainWindow::off_illumination_LED()
{
    m_strCommand = channelOf(m_illumination_type).offCommand;
    m_pController->direct_read(m_strCommand);
}

void MainWindow::change_illumination_FILTER(ILLUMINATION_type)
{
    m_strCommand = channelOf(m_illumination_type).filterCommand;
    m_pController->direct_read(m_strCommand);
}

void MainWindow::get_illumination_GAIN_ini(ILLUMINATION_type type)
{
    const IlluminationChannel& channel = channelOf(type);
    const StoredGain gain = storedGain(channel, m_CAM_type);
    m_illumination_gain
        = gain.key != nullptr ? settings::readReal(channel.group, gain.key, gain.defaultValue) : 0.0;
    ui->doubleSpinBox_GAIN->setValue(m_illumination_gain);
    ui->horizontalSlider_GAIN->setValue(settings::truncated(10 * m_illumination_gain));
}

void MainWindow::get_illumination_EXPOSURE_ini(ILLUMINATION_type type)
{
    const IlluminationChannel& channel = channelOf(type);
    m_illumination_exposure = settings::readReal(channel.group, "Exposure", channel.defaultExposure);
    ui->spinBox_EXPOSURE->setValue(settings::truncated(m_illumination_exposure));
    ui->horizontalSlider_EXPOSURE->setValue(settings::truncated(m_illumination_exposure));
}

void MainWindow::get_illumination_LED_ini(ILLUMINATION_type type)
{
    switch (type) {
    case ILLUMINATION_BF:
        m_illumination_LED1 = settings::readInt("Ch. BF", "LED1", "7");
        m_illumination_LED2 = settings::readInt("Ch. BF", "LED2", "6");
        ui->spinBox_LED1->setValue(m_illumination_LED1);
        ui->spinBox_LED2->setValue(m_illumination_LED2);
        return;
    case ILLUMINATION_GFP:
        m_illumination_LED1 = settings::readInt("Ch. GFP", "LED", "300");
        break;
    case ILLUMINATION_RFP:
        m_illumination_LED1 = settings::readInt("Ch. RFP", "LED", "350");
        break;
    }
    ui->spinBox_LED1->setValue(m_illumination_LED1);
    // The fluorescence channels have one LED; the second member keeps its bright-field level.
    ui->spinBox_LED2->setValue(0);
}

void MainWindow::get_illumination_ini(ILLUMINATION_type type)
{
    get_illumination_GAIN_ini(type);
    get_illumination_EXPOSURE_ini(type);
    get_illumination_LED_ini(type);
    get_illumination_CORRECTION_ini();
}

void MainWindow::on_pushButton_LED_TOGGLE_clicked()
{
    m_bLED_On = !m_bLED_On;
    if (!m_bLED_On) {
        ui->pushButton_LED_TOGGLE->setText("ON");
        ui->spinBox_LED1->setEnabled(false);
        ui->spinBox_LED2->setEnabled(false);
        off_illumination_LED();
        return;
    }
    ui->pushButton_LED_TOGGLE->setText("OFF");
    ui->spinBox_LED1->setEnabled(true);
    ui->spinBox_LED2->setEnabled(m_illumination_type == ILLUMINATION_BF);
    // The stored level returns, and not what stood in the box.
    get_illumination_LED_ini(m_illumination_type);
    set_illumination_LED(m_illumination_LED1, m_illumination_LED2);
}

void MainWindow::on_doubleSpinBox_GAIN_editingFinished()
{
    const double gain = ui->doubleSpinBox_GAIN->value();
    ui->horizontalSlider_GAIN->setValue(settings::truncated(10 * gain));
    set_illumination_GAIN(gain);
}

void MainWindow::on_horizontalSlider_GAIN_sliderReleased()
{
    const double gain = ui->horizontalSlider_GAIN->value() / 10.0;
    ui->doubleSpinBox_GAIN->setValue(gain);
    set_illumination_GAIN(gain);
}

void MainWindow::on_spinBox_EXPOSURE_editingFinished()
{
    int exposure = ui->spinBox_EXPOSURE->value();
    if (exposure < 1) {
        exposure = settings::truncated(m_illumination_exposure);
        ui->spinBox_EXPOSURE->setValue(exposure);
    }
    ui->horizontalSlider_EXPOSURE->setValue(exposure);
    set_illumination_EXPOSURE(exposure);
}

void MainWindow::on_horizontalSlider_EXPOSURE_sliderReleased()
{
    const int exposure = ui->horizontalSlider_EXPOSURE->value();
    ui->spinBox_EXPOSURE->setValue(exposure);
    set_illumination_EXPOSURE(exposure);
}

void MainWindow::on_spinBox_LED1_editingFinished()
{
    set_illumination_LED(ui->spinBox_LED1->value(), ui->spinBox_LED2->value());
}

void MainWindow::on_spinBox_LED2_editingFinished()
{
    set_illumination_LED(ui->spinBox_LED1->value(), ui->spinBox_LED2->value());
}

void MainWindow::on_pushButton_ILLUMINATION_SET_clicked()
{
    const IlluminationChannel& channel = channelOf(m_illumination_type);
    // The file holds whole numbers here: tenths of a dB are lost.
    const int gain = settings::truncated(ui->horizontalSlider_GAIN->value() / 10.0);
    if (const char* key = storedGain(channel, m_CAM_type).key)
        settings::writeInt(channel.group, key, gain);
    settings::writeInt(channel.group, "Exposure", ui->horizontalSlider_EXPOSURE->value());
    if (m_illumination_type == ILLUMINATION_BF) {
        settings::writeInt(channel.group, "LED1", ui->spinBox_LED1->value());
        settings::writeInt(channel.group, "LED2", ui->spinBox_LED2->value());
    } else {
        settings::writeInt(channel.group, "LED", ui->spinBox_LED1->value());
    }
}
