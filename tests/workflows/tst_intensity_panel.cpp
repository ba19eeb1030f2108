#include "tests/workflows/PageTest.h"

#include "camera/framedelivery.h"

#include <opencv2/core.hpp>

#include <QPushButton>

#include <cmath>

/// The intensity button: frames of the virtual unit measured, and three numbers on show.
class tst_intensity_panel : public PageTest {
    Q_OBJECT

public:
    tst_intensity_panel()
        : PageTest("TAB_LIGHT")
    {
    }

protected slots:
    void init() override;

private slots:
    void values_areThoseOfTheFrame();
    void brightField_isOneObjectAndShows0();
    void emptySlide_hasNoObjects();
    void darkFrame_isNearTheBlackLevel();
    void button_isBusyWhileItMeasures();
    void secondPress_measuresAgain();
    void values_areShownWithTwoDecimals();

private:
    bool press() { return click("pushButton_INTENSITY"); }
    double average() { return m_desk->text("lineEdit_INTENSITY_AVERAGE").toDouble(); }
    double object() { return m_desk->text("lineEdit_INTENSITY_OBJECT").toDouble(); }
    double background() { return m_desk->text("lineEdit_INTENSITY_BACKGROUND").toDouble(); }
    bool show(const char* slide, int x, const char* channel = "bf");
};

void tst_intensity_panel::init()
{
    PageTest::init();
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
}

/// Puts a slide under the objective, in focus, and waits until a frame of it has come.
bool tst_intensity_panel::show(const char* slide, int x, const char* channel)
{
    const int z
        = qRound(m_desk->rig.request({ { "cmd", "bestFocus" }, { "x", x } }).value(channel).toDouble());
    if (!m_desk->rig.set("slide", slide) || !m_desk->rig.set("x", x) || !m_desk->rig.set("z", z))
        return false;
    const auto exposures
        = [this] { return m_desk->rig.state().value("camera").toObject().value("exposures").toInt(); };
    const int before = exposures();
    // The exposure after the next one began with all of this in place; one more has been delivered by then.
    return patience::waitFor([&] { return exposures() >= before + 4; });
}

void tst_intensity_panel::values_areThoseOfTheFrame()
{
    QVERIFY(click("pushButton_ILLUMINATION_GFP"));
    QVERIFY(show("2ch", 30931, "gfp"));
    cv::Mat frame;
    QVERIFY(FrameDelivery::m_pInstance->pushMatImage(frame));
    const double mean = cv::mean(frame)[0];
    QVERIFY(press());
    // Another frame of the same field: sensor noise alone lies between them.
    QVERIFY2(std::abs(average() - mean) < 0.5, qPrintable(QString("%1 %2").arg(average()).arg(mean)));
    // Stained cells are bright on dark.
    QVERIFY(object() > 2.0 * average() && object() < 255.0);
    QVERIFY(background() > 0.0 && background() < average());
}

void tst_intensity_panel::brightField_isOneObjectAndShows0()
{
    // Where cells are dark on bright, it is the ground between them that stands out, as one piece.
    QVERIFY(show("2ch", 30931));
    QVERIFY(press());
    QVERIFY(average() > 100.0);
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_OBJECT"), QString("0.00"));
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_BACKGROUND"), QString("0.00"));
}

void tst_intensity_panel::emptySlide_hasNoObjects()
{
    // Fewer than ten things stand out where the tray alone is seen in the dark.
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QVERIFY(show("empty", 60000));
    QVERIFY(press());
    QVERIFY(average() > 0.0);
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_OBJECT"), QString("0.00"));
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_BACKGROUND"), QString("0.00"));
}

void tst_intensity_panel::darkFrame_isNearTheBlackLevel()
{
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QVERIFY(show("2ch", 30931));
    QVERIFY(press());
    const double blackLevel = m_desk->rig.truth().value("blackLevel").toDouble();
    QVERIFY2(
        std::abs(average() - blackLevel) < 1.0, qPrintable(QString("%1 %2").arg(average()).arg(blackLevel)));
}

void tst_intensity_panel::button_isBusyWhileItMeasures()
{
    QVERIFY(show("2ch", 30931));
    const auto* button = m_desk->widget<QPushButton>("pushButton_INTENSITY");
    QCOMPARE(button->text(), QString("Intensity"));
    // A look at the button between the measurement and the window's own slot.
    const FrameDelivery* source = FrameDelivery::m_pInstance;
    const auto signal = &FrameDelivery::sig_IntensityUpdate;
    QVERIFY(disconnect(source, signal, &m_desk->window(), &MainWindow::slot_IntensityUpdate));
    QString during;
    const auto look = connect(source, signal, this, [&] { during = button->text(); });
    connect(source, signal, &m_desk->window(), &MainWindow::slot_IntensityUpdate);
    const int logMark = m_desk->log.mark();
    QVERIFY(press());
    disconnect(look);
    QCOMPARE(during, QString("~~~"));
    QCOMPARE(button->text(), QString("Intensity"));
    QVERIFY(m_desk->log.contains("intensity_Ave:", logMark));
    QVERIFY(m_desk->log.contains("intensity_Object:", logMark));
    QVERIFY(m_desk->log.contains("intensity_Background:", logMark));
}

void tst_intensity_panel::secondPress_measuresAgain()
{
    QVERIFY(show("2ch", 30931));
    int measured = 0;
    QObject context;
    QObject::connect(FrameDelivery::m_pInstance, &FrameDelivery::sig_IntensityUpdate, &context,
        [&measured] { ++measured; });
    QVERIFY(press());
    const double bright = average();
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QVERIFY(show("2ch", 30931));
    QVERIFY(press());
    QVERIFY(press());
    QCOMPARE(measured, 3);
    QVERIFY(average() < bright / 2.0);
    QCOMPARE(m_desk->text("pushButton_INTENSITY"), QString("Intensity"));
}

void tst_intensity_panel::values_areShownWithTwoDecimals()
{
    m_desk->widget<QPushButton>("pushButton_INTENSITY")->setText("~~~");
    m_desk->window().slot_IntensityUpdate(1.005, 254.999, 0.0);
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_AVERAGE"), QString("1.00"));
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_OBJECT"), QString("255.00"));
    QCOMPARE(m_desk->text("lineEdit_INTENSITY_BACKGROUND"), QString("0.00"));
    QCOMPARE(m_desk->text("pushButton_INTENSITY"), QString("Intensity"));
    // No number at all is shown as it is.
    m_desk->window().slot_IntensityUpdate(0.0, std::nan(""), 0.0);
    QVERIFY(m_desk->text("lineEdit_INTENSITY_OBJECT").contains("nan"));
}

WORKFLOW_MAIN(tst_intensity_panel)
#include "tst_intensity_panel.moc"
