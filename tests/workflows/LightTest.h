#pragma once

#include "tests/workflows/PageTest.h"

/// A test of the light controls, and of what reaches the camera.
class LightTest : public PageTest {
    Q_OBJECT

protected:
    LightTest()
        : PageTest("TAB_LIGHT")
    {
    }

    /// Types into a box and ends the entry.
    bool enter(const char* box, const QString& text)
    {
        return hand::type(m_desk->window(), box, text) && hand::press(m_desk->window(), box, Qt::Key_Return);
    }
    int box(const char* name);
    double gainBox();
    int slider(const char* name);

    /// The camera's gain in dB as the program counts them, and its exposure in ms; `about` itself when the
    /// camera is as near to that as its own steps let it be.
    double gain(double about);
    double exposureMs(double about);
    /// The key and the default of a fluorescence gain with this camera.
    QString gainKey() const { return m_bArduCam ? "Gain AR" : "Gain"; }
    double defaultGain() const { return m_bArduCam ? 2.0 : 5.0; }
    bool isArduCam() const { return m_bArduCam; }

protected slots:
    void initTestCase() override;

private:
    QJsonObject camera() { return m_desk->rig.state().value("camera").toObject(); }

    bool m_bArduCam = false;
};
