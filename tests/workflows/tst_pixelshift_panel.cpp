#include "algorithms/overlay.h"
#include "tests/workflows/ShiftRun.h"
#include "views/CAPTURE_ImageWidget.h"

#include <QSpinBox>

/// What the technician does with measured shifts: looks at them, corrects, stores and resets them.
class tst_pixelshift_panel : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void spinBox_namesTheFieldsFrom1To12();
    void spinBoxBeforeTheFirstRun_showsAnEmptyPicture();
    void setBeforeTheFirstRun_storesTheValuesOnShow();
    void resetBeforeTheFirstRun_storesZeros();
    void arrowsBeforeTheFirstRun_areOff();
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
    void show(const QStringList& shifts);
    cv::Mat overlay(int field) { return m_desk->window().make_overlayImage(field, true); }
    QImage shown();
    QImage shownAs(cv::Mat overlay);
    QSpinBox* spinBox() { return m_desk->widget<QSpinBox>("spinBox_PIXEL_SHIFT"); }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<ShiftRun> m_run;
};

namespace {

const QString kNeutral = "font: 11pt 'Sans Serif'; color : black; background-color : none";
const QString kGreen = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(0, 255, 0)";
const QString kRed = "font: 11pt 'Sans Serif'; color : white; background-color : rgb(255, 0, 0)";
QImage pictureOf(QWidget& widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

constexpr const char* kEdits[]
    = { "lineEdit_SHIFT_GFP_X", "lineEdit_SHIFT_GFP_Y", "lineEdit_SHIFT_RFP_X", "lineEdit_SHIFT_RFP_Y" };
constexpr const char* kArrows[] = { "pushButton_SHIFT_X_MINUS", "pushButton_SHIFT_X_PLUS",
    "pushButton_SHIFT_Y_MINUS", "pushButton_SHIFT_Y_PLUS" };

QByteArray stored(const QStringList& shifts)
{
    return QString("Pixel shift GFP X=%1\nPixel shift GFP Y=%2\nPixel shift RFP X=%3\nPixel shift RFP Y=%4\n")
        .arg(shifts[0], shifts[1], shifts[2], shifts[3])
        .toUtf8();
}

} // namespace

void tst_pixelshift_panel::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_run.reset(new ShiftRun(*m_desk));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
}

void tst_pixelshift_panel::cleanupTestCase()
{
    m_run.reset();
    m_desk.reset();
}

void tst_pixelshift_panel::show(const QStringList& shifts)
{
    for (int i = 0; i < 4; ++i)
        m_desk->widget<QLineEdit>(kEdits[i])->setText(shifts[i]);
}

QImage tst_pixelshift_panel::shown()
{
    return pictureOf(*m_desk->widget("CAPTURE_IMAGE_WIDGET"));
}

/// An overlay as a widget shows it that was given nothing else.
QImage tst_pixelshift_panel::shownAs(cv::Mat overlay)
{
    CAPTURE_ImageWidget fresh;
    fresh.resize(m_desk->widget("CAPTURE_IMAGE_WIDGET")->size());
    fresh.setImageData(overlay.data, 1280, 960, 24);
    return pictureOf(fresh);
}

void tst_pixelshift_panel::spinBox_namesTheFieldsFrom1To12()
{
    QCOMPARE(spinBox()->minimum(), 1);
    QCOMPARE(spinBox()->maximum(), 12);
}

void tst_pixelshift_panel::spinBoxBeforeTheFirstRun_showsAnEmptyPicture()
{
    spinBox()->setValue(7);
    const cv::Mat empty = overlay(7);
    QCOMPARE(empty.size(), cv::Size(1280, 960));
    QCOMPARE(empty.type(), CV_8UC3);
    QCOMPARE(cv::countNonZero(empty.reshape(1)), 0);
    QCOMPARE(shown(), shownAs(empty));
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(!m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
}

void tst_pixelshift_panel::setBeforeTheFirstRun_storesTheValuesOnShow()
{
    QCOMPARE(m_run->shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    show({ "1.25", "-2.50", "no number", "4" });
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_SET"));
    QVERIFY2(
        Desk::settings().contains(stored({ "1.25", "-2.50", "0.00", "4.00" })), Desk::settings().constData());
}

void tst_pixelshift_panel::resetBeforeTheFirstRun_storesZeros()
{
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_RESET"));
    QCOMPARE(m_run->shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    QVERIFY(Desk::settings().contains(stored(m_run->shifts())));
    QCOMPARE(cv::countNonZero(overlay(7).reshape(1)), 0);
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_pixelshift_panel::arrowsBeforeTheFirstRun_areOff()
{
    for (const char* arrow : kArrows)
        QVERIFY(!m_desk->isEnabled(arrow));
    // A channel can be chosen all the same.
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_RFP"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kRed);
}

void tst_pixelshift_panel::run_showsTheOverlayOfField1()
{
    QVERIFY(m_run->prepare());
    QVERIFY(m_run->run());
    QCOMPARE(spinBox()->value(), 1); // it stood on 7
    QCOMPARE(shown(), shownAs(overlay(1)));
    // The arrows work on GFP, whatever was chosen before.
    const QString before = m_run->shifts()[0];
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_X_PLUS"));
    QCOMPARE(m_run->shifts()[0], QString::number(before.toDouble() + 1.0, 'f', 2));
}

void tst_pixelshift_panel::overlay_takesTheValuesOnShow()
{
    show({ "1.50", "-2.00", "10.00", "0.25" });
    for (const int field : { 1, 7, 12 }) {
        const cv::Mat bf = m_run->lastThrough(1, field).pixels;
        const cv::Mat gfp = m_run->lastThrough(2, field).pixels;
        const cv::Mat rfp = m_run->lastThrough(3, field).pixels;
        const cv::Mat expected
            = composeOverlay(bf, gfp, rfp, OverlayShift(1.5F, -2.0F), OverlayShift(10.0F, 0.25F), true);
        QCOMPARE(cv::norm(overlay(field), expected, cv::NORM_INF), 0.0);
        const cv::Mat unshifted = composeOverlay(bf, gfp, rfp, {}, {}, false);
        QCOMPARE(cv::norm(m_desk->window().make_overlayImage(field, false), unshifted, cv::NORM_INF), 0.0);
    }
}

void tst_pixelshift_panel::overlayWithoutNumbers_isMovedByNothing()
{
    show({ "", "no number", "1,5", "0.00" });
    const cv::Mat expected = composeOverlay(m_run->lastThrough(1, 3).pixels, m_run->lastThrough(2, 3).pixels,
        m_run->lastThrough(3, 3).pixels, {}, {}, true);
    QCOMPARE(cv::norm(overlay(3), expected, cv::NORM_INF), 0.0);
}

void tst_pixelshift_panel::spinBox_showsTheOverlayOfItsField()
{
    show({ "0.00", "0.00", "0.00", "0.00" });
    QImage before = shown();
    for (const int field : { 2, 12, 11, 1 }) {
        spinBox()->setValue(field);
        QCOMPARE(shown(), shownAs(overlay(field)));
        QVERIFY(shown() != before);
        before = shown();
    }
}

void tst_pixelshift_panel::arrows_moveTheChosenChannelByOnePixel_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QString>("arrow");
    QTest::addColumn<int>("edit"); // in the order of kEdits
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
    show(expected);
    QVERIFY(hand::click(m_desk->window(), arrow));
    expected[edit] = after;
    QCOMPARE(m_run->shifts(), expected);
    QCOMPARE(shown(), shownAs(overlay(1)));
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
    show({ "7.10", "-0.004", "1e1", "-3.456" });
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_SET"));
    QVERIFY2(Desk::settings().contains(stored({ "7.10", "-0.00", "10.00", "-3.46" })),
        Desk::settings().constData());
    QCOMPARE(m_desk->boxes.boxes().size(), boxes);
    // The edits keep what was typed.
    QCOMPARE(m_run->shifts()[3], QString("-3.456"));
}

void tst_pixelshift_panel::reset_zeroesPanelFileAndPictureWithoutAQuestion()
{
    spinBox()->setValue(5);
    show({ "20.00", "20.00", "-20.00", "-20.00" });
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_X_PLUS"));
    const QImage before = shown();
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_RESET"));
    QCOMPARE(m_run->shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    QVERIFY(Desk::settings().contains(stored(m_run->shifts())));
    QVERIFY(shown() != before);
    QCOMPARE(shown(), shownAs(overlay(5)));
    QCOMPARE(m_desk->boxes.boxes().size(), boxes);
}

void tst_pixelshift_panel::live_leavesTheInspection()
{
    show({ "1.00", "2.00", "3.00", "4.00" });
    const int mark = m_desk->mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT"));
    QCOMPARE(m_desk->text("pushButton_PIXEL_SHIFT"), QString("Pixel shift"));
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(!m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"), kNeutral);
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kNeutral);
    for (const char* arrow : kArrows)
        QVERIFY(!m_desk->isEnabled(arrow));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

void tst_pixelshift_panel::framesAndValues_outliveTheInspection()
{
    QCOMPARE(m_run->shifts(), QStringList({ "1.00", "2.00", "3.00", "4.00" }));
    QVERIFY(Desk::settings().contains(stored({ "0.00", "0.00", "0.00", "0.00" })));
    spinBox()->setValue(9);
    QCOMPARE(shown(), shownAs(overlay(9)));
    QVERIFY(cv::countNonZero(overlay(9).reshape(1)) > 0);
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
}

WORKFLOW_MAIN(tst_pixelshift_panel)
#include "tst_pixelshift_panel.moc"
