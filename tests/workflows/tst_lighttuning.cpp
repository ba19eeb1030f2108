#include "tests/workflows/LightTest.h"
#include "tests/workflows/SettingsWrites.h"

#include <QSlider>

/// Gain, exposure and LED levels of the channel in use: when a control acts, and what is stored.
class tst_lighttuning : public LightTest {
    Q_OBJECT

private slots:
    void gainBox_actsWhenTheEntryEnds();
    void exposureBox_actsWhenTheEntryEnds();
    void exposureOf0_isRefused();
    void ledBoxes_sendBothLevels_data();
    void ledBoxes_sendBothLevels();
    void sliders_areDisabled();
    void sliders_actOnReleaseOnly();
    void gainSliderAbove180_shows18();
    void set_storesTheControls_data();
    void set_storesTheControls();
    void set_storesTheSlidersAndNotTheBoxes();
    void setAndRecallOnGfp_losesTheTenths();
};

void tst_lighttuning::gainBox_actsWhenTheEntryEnds()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_GAIN", "7.5"));
    QCOMPARE(gain(defaultGain()), defaultGain());
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_GAIN", Qt::Key_Return));
    QCOMPARE(gain(7.5), 7.5);
    QCOMPARE(slider("horizontalSlider_GAIN"), 75);
}

void tst_lighttuning::exposureBox_actsWhenTheEntryEnds()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(hand::type(m_desk->window(), "spinBox_EXPOSURE", "123"));
    QCOMPARE(exposureMs(80.0), 80.0);
    QVERIFY(hand::press(m_desk->window(), "spinBox_EXPOSURE", Qt::Key_Return));
    QCOMPARE(exposureMs(123.0), 123.0);
    QCOMPARE(slider("horizontalSlider_EXPOSURE"), 123);
}

void tst_lighttuning::exposureOf0_isRefused()
{
    Desk::putSettings("[Ch. GFP]\nExposure=62.9\n");
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(enter("spinBox_EXPOSURE", "200"));
    QVERIFY(enter("spinBox_EXPOSURE", "0"));
    QCOMPARE(box("spinBox_EXPOSURE"), 62); // what was read, cut
    QCOMPARE(slider("horizontalSlider_EXPOSURE"), 62);
    QCOMPARE(exposureMs(62.0), 62.0);
    QVERIFY(enter("spinBox_EXPOSURE", "1")); // the shortest one
    QCOMPARE(box("spinBox_EXPOSURE"), 1);
    QCOMPARE(slider("horizontalSlider_EXPOSURE"), 1);
    QCOMPARE(exposureMs(1.0), 1.0);
}

void tst_lighttuning::ledBoxes_sendBothLevels_data()
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

void tst_lighttuning::ledBoxes_sendBothLevels()
{
    QFETCH(QString, channel);
    QFETCH(QString, box);
    QFETCH(QString, line);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    const int mark = m_desk->mark();
    QVERIFY(hand::type(m_desk->window(), box, "123"));
    QCOMPARE(m_desk->linesSince(mark), QStringList()); // typing sends nothing
    QVERIFY(hand::press(m_desk->window(), box, Qt::Key_Return));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line }));
}

void tst_lighttuning::sliders_areDisabled()
{
    for (const char* channel : { "GFP", "RFP", "BF" }) {
        QVERIFY(click(QString("pushButton_ILLUMINATION_") + channel));
        QVERIFY(!m_desk->isEnabled("horizontalSlider_GAIN"));
        QVERIFY(!m_desk->isEnabled("horizontalSlider_EXPOSURE"));
    }
    // With a camera the gain goes no further than this.
    QCOMPARE(m_desk->widget<QSlider>("horizontalSlider_GAIN")->maximum(), 270);
}

void tst_lighttuning::sliders_actOnReleaseOnly()
{
    // No hand reaches them in this form; the rule is that of their slots.
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    auto* gainSlider = m_desk->widget<QSlider>("horizontalSlider_GAIN");
    gainSlider->setSliderDown(true);
    gainSlider->setValue(105);
    QCOMPARE(gain(defaultGain()), defaultGain());
    QCOMPARE(gainBox(), defaultGain());
    gainSlider->setSliderDown(false);
    QCOMPARE(gain(10.5), 10.5);
    QCOMPARE(gainBox(), 10.5);

    auto* exposureSlider = m_desk->widget<QSlider>("horizontalSlider_EXPOSURE");
    exposureSlider->setSliderDown(true);
    exposureSlider->setValue(250);
    QCOMPARE(exposureMs(80.0), 80.0);
    exposureSlider->setSliderDown(false);
    QCOMPARE(exposureMs(250.0), 250.0);
    QCOMPARE(box("spinBox_EXPOSURE"), 250);
}

void tst_lighttuning::gainSliderAbove180_shows18()
{
    // The AR0134 takes more, up to where both its stages end, which is 18.04 dB.
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    auto* slider = m_desk->widget<QSlider>("horizontalSlider_GAIN");
    slider->setSliderDown(true);
    slider->setValue(260);
    slider->setSliderDown(false);
    QCOMPARE(gainBox(), 18.0);
    QCOMPARE(gain(18.0), 18.0);
}

void tst_lighttuning::set_storesTheControls_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QString>("gainKey");
    QTest::addColumn<QStringList>("leds");
    QTest::newRow("BF") << "BF"
                        << "Gain" << QStringList({ "LED1=44", "LED2=6" });
    QTest::newRow("GFP") << "GFP" << gainKey() << QStringList({ "LED=44" });
    QTest::newRow("RFP") << "RFP" << gainKey() << QStringList({ "LED=44" });
}

void tst_lighttuning::set_storesTheControls()
{
    QFETCH(QString, channel);
    QFETCH(QString, gainKey);
    QFETCH(QStringList, leds);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QVERIFY(enter("doubleSpinBox_GAIN", "7.5")); // stored as 7
    QVERIFY(enter("spinBox_EXPOSURE", "123"));
    QVERIFY(enter("spinBox_LED1", "44"));
    const int mark = m_desk->mark();
    Desk::putSettings("[Software]\nVersion FW=1\n");
    const SettingsWrites writes;
    QVERIFY(click("pushButton_ILLUMINATION_SET"));
    QStringList inOrder = QStringList({ gainKey + "=7", "Exposure=123" }) + leds;
    QCOMPARE(writes.changes(), inOrder.replaceInStrings(QRegularExpression("^"), "Ch. " + channel + "/"));
    QCOMPARE(Desk::settings(),
        QString("[Ch. %1]\nExposure=123\n%2=7\n%3\n\n[Software]\nVersion FW=1\n")
            .arg(channel, gainKey, leds.join('\n'))
            .toLatin1());
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    // The recall brings back what was stored.
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QCOMPARE(gain(7.0), 7.0);
    QCOMPARE(exposureMs(123.0), 123.0);
    QCOMPARE(box("spinBox_LED1"), 44);
}

void tst_lighttuning::set_storesTheSlidersAndNotTheBoxes()
{
    // Where the two ranges differ the slider counts.
    Desk::putSettings("[Ch. BF]\nGain=26\nExposure=0\n");
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    QCOMPARE(gainBox(), 18.0);
    QCOMPARE(box("spinBox_EXPOSURE"), 0);
    Desk::removeSettings();
    QVERIFY(click("pushButton_ILLUMINATION_SET"));
    QCOMPARE(Desk::settings(), QByteArray("[Ch. BF]\nExposure=1\nGain=26\nLED1=7\nLED2=6\n"));
}

void tst_lighttuning::setAndRecallOnGfp_losesTheTenths()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(enter("doubleSpinBox_GAIN", "0.9"));
    QVERIFY(click("pushButton_ILLUMINATION_SET"));
    QVERIFY(click("pushButton_ILLUMINATION_SET")); // a second press stores the same
    QVERIFY(sortedLines(Desk::settings()).contains(gainKey() + "=0"));
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QCOMPARE(gainBox(), 0.0);
    QCOMPARE(gain(0.0), 0.0);
}

WORKFLOW_MAIN(tst_lighttuning)
#include "tst_lighttuning.moc"
