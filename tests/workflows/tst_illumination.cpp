#include "tests/workflows/LightTest.h"

#include "views/CameraView.h"

/// The three light channels: lines to the board, settings of the camera, and what the controls show.
class tst_illumination : public LightTest {
    Q_OBJECT

private slots:
    void channel_bringsItsLight_data();
    void channel_bringsItsLight();
    void channel_takesItsValuesFromTheFile_data();
    void channel_takesItsValuesFromTheFile();
    void brightField_showsTheSerialNumberAgain();
    void toggle_switchesOffAndBringsTheStoredLevelBack_data();
    void toggle_switchesOffAndBringsTheStoredLevelBack();
    void cameraGetsTheExposureUnrounded();
    void doubledReply_changesNothing();
    void channelChange_setsCameraThenLightThenFilterThenTint();
    void filterWheel_turnsToTheChannelInUseWhateverIsAskedFor();
    void withoutKnownCamera_fluorescenceHasNoGain();
};

namespace {

const QString kNeutral = "font: 11pt 'Sans Serif'; color : black; background-color : none";
const QString kLit = "font: 11pt 'Sans Serif'; color : white; background-color : ";

/// The same file with the two fluorescence gains exchanged.
QByteArray withGainsExchanged(QByteArray file)
{
    return file.replace("Gain=", "Other=").replace("Gain AR=", "Gain=").replace("Other=", "Gain AR=");
}

} // namespace

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
    const int logMark = m_desk->log.mark();
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QCOMPARE(m_desk->linesSince(mark), lines);
    if (!isArduCam()) { // whose source does not log the gain
        const QStringList toCamera = m_desk->log.lines(logMark).filter("::setCurrent");
        QCOMPARE(toCamera.size(), 2);
        QVERIFY(toCamera[0].contains("::setCurrentGain("));
        QVERIFY(toCamera[1].contains("::setCurrentExposure("));
    }
    QTEST(m_desk->rig.state().value("filter").toInt(), "filter");
    for (const QString name : { "BF", "GFP", "RFP" })
        QCOMPARE(m_desk->style(qPrintable("pushButton_ILLUMINATION_" + name)),
            name == channel ? kLit + colour : kNeutral);
    QTEST(m_desk->widget<CameraView>("BASLER_VIDEO_WIDGET")->pseudoColorTable(), "table");
    QFETCH(double, gain);
    QFETCH(int, exposure);
    QCOMPARE(gainBox(), gain);
    QCOMPARE(slider("horizontalSlider_GAIN"), int(10 * gain));
    QCOMPARE(this->gain(gain), gain);
    QCOMPARE(box("spinBox_EXPOSURE"), exposure);
    QCOMPARE(slider("horizontalSlider_EXPOSURE"), exposure);
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
    if (isArduCam() && channel != "BF")
        file = withGainsExchanged(file);
    Desk::putSettings(file);
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QTEST(gainBox(), "gainShown");
    QTEST(slider("horizontalSlider_GAIN"), "gainSlider");
    QTEST(box("spinBox_EXPOSURE"), "exposureShown");
    QTEST(slider("horizontalSlider_EXPOSURE"), "exposureSlider");
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
    // The boxes show the stored levels again, and a level that was stored meanwhile counts.
    const int stored = on.section(' ', 2, 2).toInt();
    QCOMPARE(box("spinBox_LED1"), stored);
    QCOMPARE(box("spinBox_LED2"), channel == "BF" ? 6 : 0);
    Desk::putSettings("[Ch. " + channel.toLatin1() + "]\nLED=21\nLED1=21\n");
    QVERIFY(click("pushButton_LED_TOGGLE"));
    mark = m_desk->mark();
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QString brighter = on;
    QCOMPARE(m_desk->linesSince(mark), QStringList({ brighter.replace(QString(" %1").arg(stored), " 21") }));
    QCOMPARE(box("spinBox_LED1"), 21);
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
    QCOMPARE(gainBox(), 0.0);
    m_desk->window().get_illumination_GAIN_ini(ILLUMINATION_BF);
    QCOMPARE(gainBox(), 4.0);
    QVERIFY(m_desk->waitForConnection());
}

void tst_illumination::channelChange_setsCameraThenLightThenFilterThenTint()
{
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    const int mark = m_desk->log.mark();
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    int place = mark;
    for (const char* line : { isArduCam() ? "AR0134::slot_setGain(double)" : "::setCurrentGain(float)",
             isArduCam() ? "AR0134::slot_setExposure(unsigned int)" : "::setCurrentExposure(double)",
             "$A#LED BRT2 300", "$A#FILTER GO 2", "CameraView::setPseudoColorTable(int)" }) {
        const int found = m_desk->log.indexOf(line, mark);
        QVERIFY2(found >= place, line);
        place = found;
    }
}

void tst_illumination::filterWheel_turnsToTheChannelInUseWhateverIsAskedFor()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    const int mark = m_desk->mark();
    m_desk->window().change_illumination_FILTER(ILLUMINATION_RFP);
    QCOMPARE(m_desk->linesSince(mark), QStringList { "$A#FILTER GO 2" });
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 2);
}

WORKFLOW_MAIN(tst_illumination)
#include "tst_illumination.moc"
