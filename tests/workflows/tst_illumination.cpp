#include "tests/workflows/Desk.h"

#include "views/CameraView.h"

#include <QDoubleSpinBox>
#include <QSlider>
#include <QSpinBox>

/// The three light channels and the tuning of the one in use: lines to the board, settings of the camera,
/// controls, and what is stored.
class tst_illumination : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void channel_bringsItsLight_data();
    void channel_bringsItsLight();
    void channel_takesItsValuesFromTheFile_data();
    void channel_takesItsValuesFromTheFile();
    void brightField_showsTheSerialNumberAgain();
    void toggle_switchesOffAndBringsTheStoredLevelBack_data();
    void toggle_switchesOffAndBringsTheStoredLevelBack();
    void gainBox_actsWhenTheEntryEnds();
    void exposureBox_actsWhenTheEntryEnds();
    void exposureOf0_isRefused();
    void cameraGetsTheExposureUnrounded();
    void ledBoxes_sendBothLevels_data();
    void ledBoxes_sendBothLevels();
    void sliders_areDisabled();
    void sliders_actOnReleaseOnly();
    void gainSliderAbove180_shows18();
    void set_storesTheControls_data();
    void set_storesTheControls();
    void setAndRecallOnGfp_losesTheTenths();
    void doubledReply_changesNothing();
    void withoutKnownCamera_fluorescenceHasNoGain();

private:
    bool click(const QString& button) { return hand::click(m_desk->window(), button); }
    bool enter(const char* box, const QString& text)
    {
        return hand::type(m_desk->window(), box, text) && hand::press(m_desk->window(), box, Qt::Key_Return);
    }
    /// The camera's gain in dB as the program counts them, and its exposure in ms; `about` itself when the
    /// camera is as near to that as its own steps let it be.
    double gain(double about);
    double exposureMs(double about);
    /// The key and the default of a fluorescence gain with this camera.
    QString gainKey() const { return m_bArduCam ? "Gain AR" : "Gain"; }
    double defaultGain() const { return m_bArduCam ? 2.0 : 5.0; }
    QJsonObject camera() { return m_desk->rig.state().value("camera").toObject(); }
    int box(const char* name) { return m_desk->widget<QSpinBox>(name)->value(); }

    std::unique_ptr<Desk> m_desk;
    bool m_bArduCam = false;
};

namespace {

const QString kNeutral = "font: 11pt 'Sans Serif'; color : black; background-color : none";
const QString kLit = "font: 11pt 'Sans Serif'; color : white; background-color : ";

/// Steps of the AR0134 in the range in use: one in 32 of the gain at the most, and half a line of exposure.
constexpr double kGainStep = 0.15; ///< dB
constexpr double kExposureStep = 0.0125; ///< ms

/// The same file with the two fluorescence gains exchanged.
QByteArray withGainsExchanged(QByteArray file)
{
    return file.replace("Gain=", "Other=").replace("Gain AR=", "Gain=").replace("Other=", "Gain AR=");
}

} // namespace

double tst_illumination::gain(double about)
{
    const double found = camera().value("gainDb").toDouble();
    if (!m_bArduCam)
        return found;
    // What the program calls one dB with this camera is 2 dB of the signal.
    return std::abs(found / 2.0 - about) < kGainStep ? about : found / 2.0;
}

double tst_illumination::exposureMs(double about)
{
    const double found = camera().value("exposureUs").toDouble() / 1000.0;
    return m_bArduCam && std::abs(found - about) < kExposureStep ? about : found;
}

void tst_illumination::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    m_bArduCam = m_desk->isArduCam();
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
}

void tst_illumination::init()
{
    Desk::removeSettings();
}

void tst_illumination::cleanup()
{
    m_desk->rig.clearFaults();
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_illumination::cleanupTestCase()
{
    m_desk.reset();
}

void tst_illumination::channel_bringsItsLight_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("colour");
    QTest::addColumn<int>("table");
    QTest::addColumn<int>("filter");
    QTest::addColumn<double>("gain");
    QTest::addColumn<int>("exposure");
    QTest::addColumn<int>("led1");
    QTest::addColumn<int>("led2");
    QTest::newRow("GFP") << "GFP" << QStringList({ "$A#LED BRT2 300", "$A#FILTER GO 2" }) << "rgb(0, 255, 0)"
                         << 2 << 2 << defaultGain() << 80 << 300 << 0;
    QTest::newRow("RFP") << "RFP" << QStringList({ "$A#LED BRT3 350", "$A#FILTER GO 3" }) << "rgb(255, 0, 0)"
                         << 1 << 3 << defaultGain() << 80 << 350 << 0;
    QTest::newRow("BF") << "BF" << QStringList({ "$A#LED BRT1 7 6", "$A#FILTER GO 1" })
                        << "rgb(128, 128, 128)" << 0 << 1 << 0.0 << 35 << 7 << 6;
    QTest::newRow("BF again") << "BF" << QStringList({ "$A#LED BRT1 7 6", "$A#FILTER GO 1" })
                              << "rgb(128, 128, 128)" << 0 << 1 << 0.0 << 35 << 7 << 6;
}

void tst_illumination::channel_bringsItsLight()
{
    QFETCH(QString, channel);
    QFETCH(QStringList, lines);
    QFETCH(QString, colour);
    QFETCH(int, led2);
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QCOMPARE(m_desk->linesSince(mark), lines);
    QTEST(m_desk->rig.state().value("filter").toInt(), "filter");
    for (const QString name : { "BF", "GFP", "RFP" })
        QCOMPARE(m_desk->style(qPrintable("pushButton_ILLUMINATION_" + name)),
            name == channel ? kLit + colour : kNeutral);
    QTEST(m_desk->widget<CameraView>("BASLER_VIDEO_WIDGET")->pseudoColorTable(), "table");
    QFETCH(double, gain);
    QFETCH(int, exposure);
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), gain);
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_GAIN")->value(), int(10 * gain));
    QCOMPARE(this->gain(gain), gain);
    QCOMPARE(box("spinBox_EXPOSURE"), exposure);
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_EXPOSURE")->value(), exposure);
    QCOMPARE(exposureMs(exposure), double(exposure));
    QTEST(box("spinBox_LED1"), "led1");
    QCOMPARE(box("spinBox_LED2"), led2);
    QVERIFY(m_desk->isEnabled("spinBox_LED1"));
    QCOMPARE(m_desk->isEnabled("spinBox_LED2"), channel == "BF");
    QCOMPARE(m_desk->text("pushButton_LED_TOGGLE"), QString("OFF"));
    QCOMPARE(Desk::settings(), QByteArray()); // a recall writes nothing
}

void tst_illumination::channel_takesItsValuesFromTheFile_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<double>("gainShown");
    QTest::addColumn<int>("gainSlider");
    QTest::addColumn<int>("exposureShown");
    QTest::addColumn<int>("exposureSlider");
    QTest::addColumn<QString>("led");
    QTest::newRow("BF") << "BF" << QByteArray("[Ch. BF]\nGain=3\nExposure=50\nLED1=20\nLED2=30\n") << 3.0
                        << 30 << 50 << 50 << "$A#LED BRT1 20 30";
    QTest::newRow("BF, gain of the other camera")
        << "BF" << QByteArray("[Ch. BF]\nGain AR=9\n") << 0.0 << 0 << 35 << 35 << "$A#LED BRT1 7 6";
    QTest::newRow("GFP") << "GFP" << QByteArray("[Ch. GFP]\nGain=7.5\nGain AR=1\nExposure=120\nLED=400\n")
                         << 7.5 << 75 << 120 << 120 << "$A#LED BRT2 400";
    QTest::newRow("RFP") << "RFP" << QByteArray("[Ch. RFP]\nGain=0.9\nExposure=1\nLED=0\n") << 0.9 << 9 << 1
                         << 1 << "$A#LED BRT3 0";
    QTest::newRow("no numbers") << "GFP" << QByteArray("[Ch. GFP]\nGain=x\nExposure=y\nLED=z\n") << 0.0 << 0
                                << 0 << 1 << "$A#LED BRT2 0";
    QTest::newRow("empty values") << "GFP" << QByteArray("[Ch. GFP]\nGain=\nExposure=\nLED=\n")
                                  << defaultGain() << int(10 * defaultGain()) << 80 << 80
                                  << "$A#LED BRT2 300";
    QTest::newRow("beyond the boxes") << "RFP" << QByteArray("[Ch. RFP]\nGain=25\nExposure=2000\nLED=5000\n")
                                      << 18.0 << 250 << 1000 << 1000 << "$A#LED BRT3 5000";
    QTest::newRow("negative") << "GFP" << QByteArray("[Ch. GFP]\nGain=-3\nExposure=-5\nLED=-7\n") << 0.0 << 0
                              << 0 << 1 << "$A#LED BRT2 -7";
    QTest::newRow("fraction") << "GFP" << QByteArray("[Ch. GFP]\nGain=1.96\nExposure=62.9\nLED=12.9\n") << 2.0
                              << 19 << 62 << 62 << "$A#LED BRT2 12";
}

void tst_illumination::channel_takesItsValuesFromTheFile()
{
    QFETCH(QString, channel);
    QFETCH(QByteArray, file);
    QFETCH(QString, led);
    if (m_bArduCam && channel != "BF")
        file = withGainsExchanged(file);
    Desk::putSettings(file);
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QTEST(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), "gainShown");
    QTEST(m_desk->widget<QSlider>("horizontalSlider_GAIN")->value(), "gainSlider");
    QTEST(box("spinBox_EXPOSURE"), "exposureShown");
    QTEST(m_desk->widget<QSlider>("horizontalSlider_EXPOSURE")->value(), "exposureSlider");
    QCOMPARE(m_desk->linesSince(mark).value(0), led);
    QCOMPARE(Desk::settings(), file);
}

void tst_illumination::brightField_showsTheSerialNumberAgain()
{
    const auto shown = [this] {
        return QStringList({ m_desk->text("lineEdit_SERIAL_MODEL"), m_desk->text("lineEdit_SERIAL_PREFIX"),
            m_desk->text("lineEdit_SERIAL_SUFFIX") });
    };
    QCOMPARE(shown(), QStringList({ "TV9", "00", "00000" }));
    Desk::putSettings("[TAVO-QR9]\nSerial=ABC-12-34567\n");
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QCOMPARE(shown(), QStringList({ "TV9", "00", "00000" }));
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    QCOMPARE(shown(), QStringList({ "ABC", "12", "34567" }));
    Desk::putSettings("[TAVO-QR9]\nSerial=A--C-D\n"); // an empty part is a part
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    QCOMPARE(shown(), QStringList({ "A", "", "C" }));
    Desk::putSettings("[TAVO-QR9]\nSerial=A\n");
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    QCOMPARE(shown(), QStringList({ "A", "", "" }));
}

void tst_illumination::toggle_switchesOffAndBringsTheStoredLevelBack_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QString>("off");
    QTest::addColumn<QString>("on");
    QTest::newRow("BF") << "BF"
                        << "$A#LED OFF1"
                        << "$A#LED BRT1 7 6";
    QTest::newRow("GFP") << "GFP"
                         << "$A#LED OFF2"
                         << "$A#LED BRT2 300";
    QTest::newRow("RFP") << "RFP"
                         << "$A#LED OFF3"
                         << "$A#LED BRT3 350";
}

void tst_illumination::toggle_switchesOffAndBringsTheStoredLevelBack()
{
    QFETCH(QString, channel);
    QFETCH(QString, off);
    QFETCH(QString, on);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QVERIFY(enter("spinBox_LED1", "44")); // and not stored
    int mark = m_desk->mark();
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QCOMPARE(m_desk->text("pushButton_LED_TOGGLE"), QString("ON"));
    QVERIFY(!m_desk->isEnabled("spinBox_LED1"));
    QVERIFY(!m_desk->isEnabled("spinBox_LED2"));
    QCOMPARE(m_desk->linesSince(mark).last(), off);
    mark = m_desk->mark();
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QCOMPARE(m_desk->text("pushButton_LED_TOGGLE"), QString("OFF"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ on }));
    QVERIFY(m_desk->isEnabled("spinBox_LED1"));
    QCOMPARE(m_desk->isEnabled("spinBox_LED2"), channel == "BF");
    QCOMPARE(box("spinBox_LED2"), channel == "BF" ? 6 : 0);
}

void tst_illumination::gainBox_actsWhenTheEntryEnds()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_GAIN", "7.5"));
    QCOMPARE(gain(defaultGain()), defaultGain());
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_GAIN", Qt::Key_Return));
    QCOMPARE(gain(7.5), 7.5);
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_GAIN")->value(), 75);
}

void tst_illumination::exposureBox_actsWhenTheEntryEnds()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(hand::type(m_desk->window(), "spinBox_EXPOSURE", "123"));
    QCOMPARE(exposureMs(80.0), 80.0);
    QVERIFY(hand::press(m_desk->window(), "spinBox_EXPOSURE", Qt::Key_Return));
    QCOMPARE(exposureMs(123.0), 123.0);
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_EXPOSURE")->value(), 123);
}

void tst_illumination::exposureOf0_isRefused()
{
    Desk::putSettings("[Ch. GFP]\nExposure=62.9\n");
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(enter("spinBox_EXPOSURE", "200"));
    QVERIFY(enter("spinBox_EXPOSURE", "0"));
    QCOMPARE(box("spinBox_EXPOSURE"), 62); // what was read, cut
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_EXPOSURE")->value(), 62);
    QCOMPARE(exposureMs(62.0), 62.0);
}

void tst_illumination::cameraGetsTheExposureUnrounded()
{
    Desk::putSettings("[Ch. RFP]\nGain=1.96\nExposure=62.9\n");
    QVERIFY(click("pushButton_ILLUMINATION_RFP"));
    QCOMPARE(box("spinBox_EXPOSURE"), 62);
    const double exposure = exposureMs(62.9);
    QVERIFY2(std::abs(exposure - 62.9) < 0.05, qPrintable(QString::number(exposure)));
    QVERIFY2(std::abs(gain(1.96) - 1.96) < 0.001, qPrintable(QString::number(gain(1.96))));
}

void tst_illumination::ledBoxes_sendBothLevels_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("line");
    QTest::newRow("BF, first") << "BF"
                               << "spinBox_LED1"
                               << "$A#LED BRT1 123 6";
    QTest::newRow("BF, second") << "BF"
                                << "spinBox_LED2"
                                << "$A#LED BRT1 7 123";
    QTest::newRow("GFP") << "GFP"
                         << "spinBox_LED1"
                         << "$A#LED BRT2 123";
    QTest::newRow("RFP") << "RFP"
                         << "spinBox_LED1"
                         << "$A#LED BRT3 123";
}

void tst_illumination::ledBoxes_sendBothLevels()
{
    QFETCH(QString, channel);
    QFETCH(QString, box);
    QFETCH(QString, line);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QVERIFY(hand::type(m_desk->window(), box, "123"));
    const int mark = m_desk->mark();
    QCOMPARE(m_desk->linesSince(mark), QStringList()); // typing sends nothing
    QVERIFY(hand::press(m_desk->window(), box, Qt::Key_Return));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line }));
}

void tst_illumination::sliders_areDisabled()
{
    for (const char* channel : { "GFP", "RFP", "BF" }) {
        QVERIFY(click(QString("pushButton_ILLUMINATION_") + channel));
        QVERIFY(!m_desk->isEnabled("horizontalSlider_GAIN"));
        QVERIFY(!m_desk->isEnabled("horizontalSlider_EXPOSURE"));
    }
    // With a camera the gain goes no further than this.
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_GAIN")->maximum(), 270);
}

void tst_illumination::sliders_actOnReleaseOnly()
{
    // No hand reaches them in this form; the rule is that of their slots.
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    auto* gainSlider = m_desk->widget<QSlider>("horizontalSlider_GAIN");
    gainSlider->setSliderDown(true);
    gainSlider->setValue(105);
    QCOMPARE(gain(defaultGain()), defaultGain());
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), defaultGain());
    gainSlider->setSliderDown(false);
    QCOMPARE(gain(10.5), 10.5);
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), 10.5);

    auto* exposureSlider = m_desk->widget<QSlider>("horizontalSlider_EXPOSURE");
    exposureSlider->setSliderDown(true);
    exposureSlider->setValue(250);
    QCOMPARE(exposureMs(80.0), 80.0);
    exposureSlider->setSliderDown(false);
    QCOMPARE(exposureMs(250.0), 250.0);
    QCOMPARE(box("spinBox_EXPOSURE"), 250);
}

void tst_illumination::gainSliderAbove180_shows18()
{
    // The AR0134 takes more, up to where both its stages end, which is 18.04 dB.
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    auto* slider = m_desk->widget<QSlider>("horizontalSlider_GAIN");
    slider->setSliderDown(true);
    slider->setValue(260);
    slider->setSliderDown(false);
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), 18.0);
    QCOMPARE(gain(18.0), 18.0);
}

void tst_illumination::set_storesTheControls_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("BF") << "BF" << QStringList({ "[Ch. BF]", "Gain=7", "Exposure=123", "LED1=44", "LED2=6" });
    QTest::newRow("GFP") << "GFP" << QStringList({ "[Ch. GFP]", gainKey() + "=7", "Exposure=123", "LED=44" });
    QTest::newRow("RFP") << "RFP" << QStringList({ "[Ch. RFP]", gainKey() + "=7", "Exposure=123", "LED=44" });
}

void tst_illumination::set_storesTheControls()
{
    QFETCH(QString, channel);
    QFETCH(QStringList, lines);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QVERIFY(enter("doubleSpinBox_GAIN", "7.5")); // stored as 7
    QVERIFY(enter("spinBox_EXPOSURE", "123"));
    QVERIFY(enter("spinBox_LED1", "44"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ILLUMINATION_SET"));
    lines.sort();
    QCOMPARE(sortedLines(Desk::settings()), lines);
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    // The recall brings back what was stored.
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QCOMPARE(gain(7.0), 7.0);
    QCOMPARE(exposureMs(123.0), 123.0);
    QCOMPARE(box("spinBox_LED1"), 44);
}

void tst_illumination::setAndRecallOnGfp_losesTheTenths()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(enter("doubleSpinBox_GAIN", "0.9"));
    QVERIFY(click("pushButton_ILLUMINATION_SET"));
    QVERIFY(click("pushButton_ILLUMINATION_SET")); // a second press stores the same
    QVERIFY(sortedLines(Desk::settings()).contains(gainKey() + "=0"));
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), 0.0);
    QCOMPARE(gain(0.0), 0.0);
}

void tst_illumination::doubledReply_changesNothing()
{
    QVERIFY(m_desk->rig.fault("double", "$A#", 2));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#LED BRT2 300", "$A#FILTER GO 2" }));
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 2);
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 1);
}

void tst_illumination::withoutKnownCamera_fluorescenceHasNoGain()
{
    // Before the first connection the camera is not known yet. One live view a process: the desk is cleared.
    m_desk.reset();
    Desk::putSettings("[Ch. BF]\nGain=4\n\n[Ch. GFP]\nGain=7\nGain AR=8\n");
    m_desk.reset(new Desk);
    m_desk->open();
    m_desk->window().get_illumination_GAIN_ini(ILLUMINATION_GFP);
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), 0.0);
    m_desk->window().get_illumination_GAIN_ini(ILLUMINATION_BF);
    QCOMPARE(m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(), 4.0);
    QVERIFY(m_desk->waitForConnection());
}

WORKFLOW_MAIN(tst_illumination)
#include "tst_illumination.moc"
