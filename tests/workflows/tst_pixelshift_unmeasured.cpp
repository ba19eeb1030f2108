#include "tests/workflows/ShiftPanel.h"

/// The pixel shift page before the first run, when there are no frames: it works, and its picture is empty.
class tst_pixelshift_unmeasured : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void spinBox_namesTheFieldsFrom1To12();
    void spinBox_showsAnEmptyPicture();
    void set_storesTheValuesOnShow();
    void reset_storesZeros();
    void arrows_areOff();

private:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<ShiftPanel> m_panel;
};

namespace {

const QString kRed = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(255, 0, 0)";

} // namespace

void tst_pixelshift_unmeasured::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_panel.reset(new ShiftPanel(*m_desk));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
}

void tst_pixelshift_unmeasured::cleanupTestCase()
{
    m_panel.reset();
    m_desk.reset();
}

void tst_pixelshift_unmeasured::spinBox_namesTheFieldsFrom1To12()
{
    QCOMPARE(m_panel->fieldBox()->minimum(), 1);
    QCOMPARE(m_panel->fieldBox()->maximum(), 12);
}

void tst_pixelshift_unmeasured::spinBox_showsAnEmptyPicture()
{
    m_panel->fieldBox()->setValue(7);
    const cv::Mat empty = m_panel->overlay(7);
    QCOMPARE(empty.size(), cv::Size(1280, 960));
    QCOMPARE(empty.type(), CV_8UC3);
    QCOMPARE(cv::countNonZero(empty.reshape(1)), 0);
    QCOMPARE(m_panel->shown(), m_panel->shownAs(empty));
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(!m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
}

void tst_pixelshift_unmeasured::set_storesTheValuesOnShow()
{
    QCOMPARE(m_panel->shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    m_panel->show({ "1.25", "-2.50", "no number", "4" });
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_SET"));
    QVERIFY2(Desk::settings().contains(ShiftPanel::stored({ "1.25", "-2.50", "0.00", "4.00" })),
        Desk::settings().constData());
}

void tst_pixelshift_unmeasured::reset_storesZeros()
{
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_RESET"));
    QCOMPARE(m_panel->shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    QVERIFY(Desk::settings().contains(ShiftPanel::stored(m_panel->shifts())));
    QCOMPARE(cv::countNonZero(m_panel->overlay(7).reshape(1)), 0);
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_pixelshift_unmeasured::arrows_areOff()
{
    for (const char* arrow : ShiftPanel::kArrows)
        QVERIFY(!m_desk->isEnabled(arrow));
    // A channel can be chosen all the same.
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_RFP"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kRed);
}

WORKFLOW_MAIN(tst_pixelshift_unmeasured)
#include "tst_pixelshift_unmeasured.moc"
