#include "tests/workflows/QcTest.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QSpinBox>

#include <cmath>

/// The QC page between live and captured picture. The unit magnifies exactly fourfold.
class tst_qc : public QcTest {
    Q_OBJECT

private slots:
    void atTheStart_thePageIsLiveAndShowsTheStoredValues();
    void capture_waitsOneExposureAnd250ms();
    void capture_showsTheStillPicture();
    void live_goesBackToTheLivePicture();
    void targetingBox_decidesOnTheFiveWidgets();
    void newCapture_leavesThePictureInTargetingMode();
    void captureWhileTargeting_leavesTheFiveWidgetsEnabled();
    void frameThatNeverComes_leavesTheLastPicture();
    void exitDuringACapture_takesNoPicture();
};

namespace {

/// Mean distance of the grey values of two pictures of one size.
double meanDifference(const QImage& a, const QImage& b)
{
    double sum = 0.0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
    }
    return sum / a.width() / a.height();
}

} // namespace

void tst_qc::atTheStart_thePageIsLiveAndShowsTheStoredValues()
{
    QCOMPARE(m_page->enabled(), QString("C"));
    QCOMPARE(m_page->pictures(), QStringList({ "BASLER_VIDEO_WIDGET" }));
    QCOMPARE(m_page->values(),
        QStringList({ "4", "0.10800", "197.00552", "771.60494", "771.60494", "1851.85185", "1851.85185",
            "925.92593" }));
    QCOMPARE(m_desk->text("doubleSpinBox_VOLUME_OFFSET"), QString("1.10"));
}

void tst_qc::capture_waitsOneExposureAnd250ms()
{
    m_desk->widget<QSpinBox>("spinBox_EXPOSURE")->setValue(400);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(m_page->capture());
    QVERIFY2(clock.elapsed() >= 400 + 250, qPrintable(QString::number(clock.elapsed())));
}

void tst_qc::capture_showsTheStillPicture()
{
    QVERIFY(m_page->capture());
    QCOMPARE(m_page->pictures(), QStringList({ "CAPTURE_IMAGE_WIDGET" }));
    QCOMPARE(m_page->enabled(), QString("LT"));
    QVERIFY(!m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE")->isChecked());
    // Bright field, and not the black of an empty widget.
    QVERIFY(qGray(m_page->still().pixel(270, 300)) > 60);
}

void tst_qc::live_goesBackToTheLivePicture()
{
    QVERIFY(m_page->capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QCOMPARE(m_page->pictures(), QStringList({ "BASLER_VIDEO_WIDGET" }));
    QCOMPARE(m_page->enabled(), QString("C"));
}

void tst_qc::targetingBox_decidesOnTheFiveWidgets()
{
    QVERIFY(m_page->capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QCOMPARE(m_page->enabled(), QString("LTS12MW"));
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QCOMPARE(m_page->enabled(), QString("LT"));
}

void tst_qc::newCapture_leavesThePictureInTargetingMode()
{
    QVERIFY(m_page->showMarks({}));
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QVERIFY(m_page->showMarks({}));
    QVERIFY(!m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE")->isChecked());
    QCOMPARE(m_page->enabled(), QString("LT"));
    // A click still brings the green square.
    QVERIFY(hand::clickAt(m_desk->window(), QcPage::kPicture, QPoint(300, 250)));
    QCOMPARE(m_page->still().pixelColor(280, 250), QColor(Qt::green));
    QCOMPARE(m_page->still().pixelColor(319, 250), QColor(Qt::green));
}

void tst_qc::captureWhileTargeting_leavesTheFiveWidgetsEnabled()
{
    QVERIFY(m_page->capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    m_desk->window().on_pushButton_QC_CAPTURE_clicked();
    QVERIFY(!m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE")->isChecked());
    QCOMPARE(m_page->enabled(), QString("LTS12MW"));
}

void tst_qc::frameThatNeverComes_leavesTheLastPicture()
{
    QVERIFY(m_desk->rig.set("x", 30931));
    QVERIFY(m_desk->rig.set("z", 30000));
    QVERIFY(m_page->capture());
    const QImage cells = m_page->still();
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QVERIFY(m_desk->rig.set("plugged", false));
    // A frame of now would show it.
    QVERIFY(m_desk->rig.set("slide", "target"));
    QVERIFY(m_page->capture());
    const QImage last = m_page->still();
    QCOMPARE(m_page->enabled(), QString("LT"));
    QVERIFY2(meanDifference(last, cells) < 2.0, qPrintable(QString::number(meanDifference(last, cells))));
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QVERIFY(m_page->capture());
    QCOMPARE(m_page->still(), last);
}

void tst_qc::exitDuringACapture_takesNoPicture()
{
    m_desk->widget<QSpinBox>("spinBox_EXPOSURE")->setValue(400);
    const int mark = m_desk->rig.mark();
    int presses = 0;
    patience::later(0, this, [&] {
        patience::later(50, this, [&] { presses += hand::click(m_desk->window(), "pushButton_EXIT"); });
        presses += hand::click(m_desk->window(), "pushButton_QC_CAPTURE");
    });
    // As in the program, the end of the window ends the application's loop and all that run in it.
    patience::later(patience::limit(20000), &m_desk->window(), [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(presses, 2);
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    QCOMPARE(m_page->pictures(), QStringList({ "BASLER_VIDEO_WIDGET" }));
    QCOMPARE(m_page->enabled(), QString("C"));
}

WORKFLOW_MAIN(tst_qc)
#include "tst_qc.moc"
