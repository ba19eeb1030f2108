#include "algorithms/overlay.h"
#include "tests/workflows/ShiftPanel.h"
#include "tests/workflows/ShiftRun.h"

/// What the technician does with measured shifts: looks at them, corrects, stores and resets them.
class tst_pixelshift_panel : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void run_showsTheOverlayOfField1();
    void overlay_takesTheValuesOnShow();
    void overlayWithoutNumbers_isMovedByNothing();
    void spinBox_showsTheOverlayOfItsField();
    void arrows_moveTheChosenChannelByOnePixel_data();
    void arrows_moveTheChosenChannelByOnePixel();
    void channelButtons_tellTheChannelByColour();
    void set_storesTheValuesOnShow();
    void reset_zeroesPanelFileAndPictureWithoutAQuestion();
    void live_leavesTheInspection();
    void framesAndValues_outliveTheInspection();

private:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<ShiftPanel> m_panel;
    std::unique_ptr<ShiftRun> m_run;
};

namespace {

const QString kNeutral = "font: 11pt 'Sans Serif'; color : black; background-color : none";
const QString kGreen = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(0, 255, 0)";
const QString kRed = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(255, 0, 0)";
} // namespace

void tst_pixelshift_panel::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_panel.reset(new ShiftPanel(*m_desk));
    m_run.reset(new ShiftRun(*m_desk));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
}

void tst_pixelshift_panel::cleanupTestCase()
{
    m_run.reset();
    m_panel.reset();
    m_desk.reset();
}

void tst_pixelshift_panel::run_showsTheOverlayOfField1()
{
    m_panel->fieldBox()->setValue(7);
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_RFP"));
    QVERIFY(m_run->prepare());
    QVERIFY(m_run->run());
    QCOMPARE(m_panel->fieldBox()->value(), 1);
    QCOMPARE(m_panel->shown(), m_panel->shownAs(m_panel->overlay(1)));
    // The arrows work on GFP, whatever was chosen before.
    const QString before = m_panel->shifts()[0];
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_X_PLUS"));
    QCOMPARE(m_panel->shifts()[0], QString::number(before.toDouble() + 1.0, 'f', 2));
}

void tst_pixelshift_panel::overlay_takesTheValuesOnShow()
{
    m_panel->show({ "1.50", "-2.00", "10.00", "0.25" });
    for (const int field : { 1, 7, 12 }) {
        const cv::Mat bf = m_run->lastThrough(1, field).pixels;
        const cv::Mat gfp = m_run->lastThrough(2, field).pixels;
        const cv::Mat rfp = m_run->lastThrough(3, field).pixels;
        const cv::Mat expected
            = composeOverlay(bf, gfp, rfp, OverlayShift(1.5F, -2.0F), OverlayShift(10.0F, 0.25F), true);
        QCOMPARE(cv::norm(m_panel->overlay(field), expected, cv::NORM_INF), 0.0);
        const cv::Mat unshifted = composeOverlay(bf, gfp, rfp, {}, {}, false);
        QCOMPARE(cv::norm(m_desk->window().make_overlayImage(field, false), unshifted, cv::NORM_INF), 0.0);
    }
}

void tst_pixelshift_panel::overlayWithoutNumbers_isMovedByNothing()
{
    m_panel->show({ "", "no number", "1,5", "0.00" });
    const cv::Mat expected = composeOverlay(m_run->lastThrough(1, 3).pixels, m_run->lastThrough(2, 3).pixels,
        m_run->lastThrough(3, 3).pixels, {}, {}, true);
    QCOMPARE(cv::norm(m_panel->overlay(3), expected, cv::NORM_INF), 0.0);
}

void tst_pixelshift_panel::spinBox_showsTheOverlayOfItsField()
{
    m_panel->show({ "0.00", "0.00", "0.00", "0.00" });
    QImage before = m_panel->shown();
    for (const int field : { 2, 12, 11, 1 }) {
        m_panel->fieldBox()->setValue(field);
        QCOMPARE(m_panel->shown(), m_panel->shownAs(m_panel->overlay(field)));
        QVERIFY(m_panel->shown() != before);
        before = m_panel->shown();
    }
}

void tst_pixelshift_panel::arrows_moveTheChosenChannelByOnePixel_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QString>("arrow");
    QTest::addColumn<int>("edit"); // in the order of ShiftPanel::shifts
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const auto row
        = [](const char* channel, const char* arrow, int edit, const char* before, const char* after) {
              QTest::addRow("%s %s from %s", channel, arrow, before)
                  << QString("pushButton_SHIFT_%1").arg(channel) << QString("pushButton_SHIFT_%1").arg(arrow)
                  << edit << before << after;
          };
    row("GFP", "X_PLUS", 0, "1.50", "2.50");
    row("GFP", "X_MINUS", 0, "2.50", "1.50");
    row("GFP", "Y_MINUS", 1, "0.00", "-1.00");
    row("GFP", "Y_PLUS", 1, "-1.00", "0.00");
    row("RFP", "X_PLUS", 2, "-0.25", "0.75");
    row("RFP", "X_MINUS", 2, "0.75", "-0.25");
    row("RFP", "Y_MINUS", 3, "9.99", "8.99");
    row("RFP", "Y_PLUS", 3, "8.99", "9.99");
    row("RFP", "X_PLUS", 2, "no number", "1.00");
    // Whole numbers beyond these are too coarse for one pixel in single precision.
    row("RFP", "Y_PLUS", 3, "16777216", "16777216.00");
}

void tst_pixelshift_panel::arrows_moveTheChosenChannelByOnePixel()
{
    QFETCH(QString, channel);
    QFETCH(QString, arrow);
    QFETCH(int, edit);
    QFETCH(QString, before);
    QFETCH(QString, after);
    QVERIFY(hand::click(m_desk->window(), channel));
    QStringList expected { "0.10", "0.20", "0.30", "0.40" };
    expected[edit] = before;
    m_panel->show(expected);
    QVERIFY(hand::click(m_desk->window(), arrow));
    expected[edit] = after;
    QCOMPARE(m_panel->shifts(), expected);
    QCOMPARE(m_panel->shown(), m_panel->shownAs(m_panel->overlay(1)));
}

void tst_pixelshift_panel::channelButtons_tellTheChannelByColour()
{
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_RFP"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"), kNeutral);
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kRed);
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_GFP"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"), kGreen);
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kNeutral);
}

void tst_pixelshift_panel::set_storesTheValuesOnShow()
{
    m_panel->show({ "7.10", "-0.004", "1e1", "-3.456" });
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_SET"));
    QVERIFY2(Desk::settings().contains(ShiftPanel::stored({ "7.10", "-0.00", "10.00", "-3.46" })),
        Desk::settings().constData());
    QCOMPARE(m_desk->boxes.boxes().size(), boxes);
    // The edits keep what was typed.
    QCOMPARE(m_panel->shifts()[3], QString("-3.456"));
}

void tst_pixelshift_panel::reset_zeroesPanelFileAndPictureWithoutAQuestion()
{
    m_panel->fieldBox()->setValue(5);
    m_panel->show({ "20.00", "20.00", "-20.00", "-20.00" });
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_X_PLUS"));
    const QImage before = m_panel->shown();
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_RESET"));
    QCOMPARE(m_panel->shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    QVERIFY(Desk::settings().contains(ShiftPanel::stored(m_panel->shifts())));
    QVERIFY(m_panel->shown() != before);
    QCOMPARE(m_panel->shown(), m_panel->shownAs(m_panel->overlay(5)));
    QCOMPARE(m_desk->boxes.boxes().size(), boxes);
}

void tst_pixelshift_panel::live_leavesTheInspection()
{
    m_panel->show({ "1.00", "2.00", "3.00", "4.00" });
    const int mark = m_desk->mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT"));
    QCOMPARE(m_desk->text("pushButton_PIXEL_SHIFT"), QString("Pixel shift"));
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(!m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"), kNeutral);
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kNeutral);
    for (const char* arrow : ShiftPanel::kArrows)
        QVERIFY(!m_desk->isEnabled(arrow));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

void tst_pixelshift_panel::framesAndValues_outliveTheInspection()
{
    QCOMPARE(m_panel->shifts(), QStringList({ "1.00", "2.00", "3.00", "4.00" }));
    QVERIFY(Desk::settings().contains(ShiftPanel::stored({ "0.00", "0.00", "0.00", "0.00" })));
    m_panel->fieldBox()->setValue(9);
    QCOMPARE(m_panel->shown(), m_panel->shownAs(m_panel->overlay(9)));
    QVERIFY(cv::countNonZero(m_panel->overlay(9).reshape(1)) > 0);
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
}

WORKFLOW_MAIN(tst_pixelshift_panel)
#include "tst_pixelshift_panel.moc"
