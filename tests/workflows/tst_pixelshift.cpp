#include "tests/workflows/Desk.h"

#include <opencv2/core.hpp>

#include <QJsonArray>
#include <QSpinBox>
#include <QTabWidget>

#include <map>

/// The twelve-field run that measures the shifts, and what the technician does with them.
class tst_pixelshift : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void beforeTheFirstRun_noButtonCrashes();
    void wholeRun_sendsTheseLines();
    void wholeRun_endsWithGfpChosenAndTheOverlayInView();
    void averages_areTheInvertedShiftsOfTheUnit();
    void everyFrame_isStoredInItsChannelAndField();
    void fluorescence_isTakenAtHalfTheExposureAndAtItsOwnHeight();
    void set_storesTheValuesOnShow();
    void arrows_moveTheChosenChannelByOnePixel();
    void arrowWithoutANumber_countsFrom0();
    void spinBox_showsTheFieldsOverlay();
    void reset_zeroesPanelFileAndPicture();
    void live_leavesTheInspection();
    void runStartedInGfp_focusesTheFirstFieldByFluorescence();

private:
    void run();
    cv::Mat overlay(int field, bool shifted) { return m_desk->window().make_overlayImage(field, shifted); }
    QStringList shifts()
    {
        return { m_desk->text("lineEdit_SHIFT_GFP_X"), m_desk->text("lineEdit_SHIFT_GFP_Y"),
            m_desk->text("lineEdit_SHIFT_RFP_X"), m_desk->text("lineEdit_SHIFT_RFP_Y") };
    }
    QImage picture() { return m_desk->widget("CAPTURE_IMAGE_WIDGET")->grab().toImage(); }

    struct Grabbed {
        int x = 0;
        int z = 0;
        cv::Mat frame;
    };
    std::unique_ptr<Desk> m_desk;
    QStringList m_sent; ///< what the board was sent during the run
    QStringList m_logged;
    std::map<QString, Grabbed> m_grabbed; ///< last frame of each filter position and X
    QStringList m_boxes;
    int m_reference = 0;
};

namespace {

const QString kNeutral = "font: 11pt 'Sans Serif'; color : black; background-color : none";
constexpr int kStartX = 30931;
constexpr int kFieldPitch = 480;

QString setting(const char* unit, const char* word, const QVariant& value)
{
    return QString("$%1#STAGE %2 %3").arg(unit, word, value.toString());
}

QStringList scan(int steps)
{
    QStringList lines;
    for (int i = 0; i < steps; ++i)
        lines << "$Z#STAGE RUN";
    return lines;
}

/// The lines of a move from one height to another, as the search makes it.
QStringList move(int from, int to)
{
    return { "$Z#STAGE POS", setting("Z", "STEP", std::abs(from - to)),
        setting("Z", "DIR", from < to ? "PLUS" : "MINUS"), "$Z#STAGE RUN" };
}

} // namespace

void tst_pixelshift::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
}

void tst_pixelshift::cleanupTestCase()
{
    m_desk.reset();
}

void tst_pixelshift::beforeTheFirstRun_noButtonCrashes()
{
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QVERIFY(!m_desk->isEnabled("pushButton_SHIFT_X_PLUS"));
    m_desk->widget<QSpinBox>("spinBox_PIXEL_SHIFT")->setValue(7);
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_SET"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_RESET"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_RFP"));
    const cv::Mat empty = overlay(7, true);
    QCOMPARE(empty.size(), cv::Size(1280, 960));
    QCOMPARE(cv::countNonZero(empty.reshape(1)), 0);
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    // Set wrote the values that were loaded, Reset wrote zeros.
    QVERIFY(Desk::settings().contains("Pixel shift GFP X=0.00\nPixel shift GFP Y=0.00\n"));
}

void tst_pixelshift::run()
{
    m_grabbed.clear();
    const int mark = m_desk->rig.mark();
    const int logMark = m_desk->log.mark();
    const int boxes = m_desk->boxes.boxes().size();
    // Sees each frame before the workflow does.
    const auto look
        = connect(&m_desk->window(), &MainWindow::sig_ImageGrabbed, this, [this](uchar* pixels, int, int) {
              const QJsonObject state = m_desk->rig.state();
              const int filter = state.value("filter").toInt();
              const int x = state.value("x").toInt();
              m_grabbed[QString("%1 %2").arg(filter).arg(x)]
                  = { x, state.value("z").toInt(), cv::Mat(960, 1280, CV_8UC1, pixels).clone() };
          });
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT"));
    disconnect(look);
    QVERIFY(m_desk->boxes.waitForBoxes(boxes + 1, 1000));
    m_boxes = m_desk->boxes.texts().mid(boxes);
    // The run ends with an insert, whose X move ends later.
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("pushButton_INSERT"); }));
    m_sent = m_desk->rig.sentSince(mark);
    m_logged = m_desk->log.lines(logMark);
}

void tst_pixelshift::wholeRun_sendsTheseLines()
{
    // The technician's way: slide in, first field, focus, and that focus as the reference.
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_INSERT"));
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("pushButton_INSERT"); }));
    QVERIFY(hand::click(m_desk->window(), "pushButton_FIELD_NEXT"));
    QVERIFY(patience::waitFor([this] { return m_desk->text("lineEdit_FIELD_CURRENT") == "1"; }));
    QVERIFY(hand::click(m_desk->window(), "pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_AUTOFOCUS_SET"));
    m_reference = m_desk->text("lineEdit_REFERENCE_AUTOFOCUS").toInt();
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    run();
    QCOMPARE(m_boxes, QStringList({ "finish calculate pixel shift !" }));

    const auto best = [this](const char* label, int index) {
        return m_logged.filter(QString(label) + " m_AutofocusingRef:")
            .value(index)
            .section(' ', 3, 3)
            .toInt();
    };
    QStringList expected;
    int z = m_reference; // the height at which the last search left the stage
    for (int field = 0; field < 12; ++field) {
        const int coarse = field == 0 ? best("[1]", 0) : m_reference;
        if (field == 0) {
            expected << move(z, m_reference + 3680) << setting("Z", "DIR", "MINUS")
                     << setting("Z", "STEP", 460) << scan(15);
            z = m_reference + 3680 - 15 * 460;
        }
        const int focus = best("[2]", field);
        expected << move(z, coarse + 460) << setting("Z", "DIR", "MINUS") << setting("Z", "STEP", 115)
                 << scan(7);
        expected << setting("Z", "ABS", coarse + 460) << move(coarse + 460, focus);
        expected << setting("Z", "DIR", "MINUS") << setting("Z", "STEP", 115) << "$Z#STAGE RUN";
        z = focus - 115;
        expected << "$A#LED BRT1 7 6"
                 << "$A#FILTER GO 1"
                 << "$Z#STAGE POS" << setting("Z", "ABS", z + 345);
        expected << "$A#LED BRT2 300"
                 << "$A#FILTER GO 2"
                 << "$A#LED BRT3 350"
                 << "$A#FILTER GO 3";
        expected << "$A#LED BRT1 7 6"
                 << "$A#FILTER GO 1"
                 << "$Z#STAGE POS" << setting("Z", "ABS", z);
        if (field < 11)
            expected << setting("X", "ABS", kStartX - (field + 1) * kFieldPitch);
    }
    // The insert at the end.
    expected << "$A#LED BRT1 7 6"
             << "$Z#STAGE ABS 32000"
             << "$X#STAGE ABS 0";
    QCOMPARE(m_sent, expected);
}

void tst_pixelshift::wholeRun_endsWithGfpChosenAndTheOverlayInView()
{
    QCOMPARE(m_desk->text("pushButton_PIXEL_SHIFT"), QString("Live"));
    QVERIFY(!m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
    QCOMPARE(m_desk->text("spinBox_PIXEL_SHIFT"), QString("1"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"),
        QString("font: 11pt 'Sans Serif'; color : white; background-color : rgb(0, 255, 0)"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kNeutral);
    for (const char* arrow : { "pushButton_SHIFT_X_MINUS", "pushButton_SHIFT_X_PLUS",
             "pushButton_SHIFT_Y_MINUS", "pushButton_SHIFT_Y_PLUS" })
        QVERIFY(m_desk->isEnabled(arrow));
    QVERIFY(m_desk->isEnabled("TAB_QC2"));
    QCOMPARE(m_desk->widget<QTabWidget>("tabWidget_CONTROLLER")->currentWidget()->objectName(),
        QString("TAB_QC2"));
    // Measured, and not yet in the file.
    QVERIFY(Desk::settings().contains("Pixel shift GFP X=0.00\n"));
}

void tst_pixelshift::averages_areTheInvertedShiftsOfTheUnit()
{
    // As the picture is delivered, which the camera mirrors.
    const QJsonObject truth = m_desk->rig.request({ { "cmd", "inPicture" } });
    const QJsonArray gfp = truth.value("gfpShift").toArray();
    const QJsonArray rfp = truth.value("rfpShift").toArray();
    QCOMPARE(gfp.size() + rfp.size(), 4);
    const double expected[]
        = { -gfp[0].toDouble(), -gfp[1].toDouble(), -rfp[0].toDouble(), -rfp[1].toDouble() };
    for (int i = 0; i < 4; ++i) {
        const double found = shifts()[i].toDouble();
        QVERIFY2(std::abs(found - expected[i]) <= 0.25,
            qPrintable(QString("%1: %2 for %3").arg(i).arg(found).arg(expected[i])));
    }
    QCOMPARE(m_logged.filter("pixel shift:").filter(QRegularExpression("^[0-9]+ ")).size(), 12);
    QCOMPARE(m_logged.filter("avg. pixel shift:").value(0), "avg. pixel shift: " + shifts().join(" "));
    QCOMPARE(m_logged.filter("time.elapsed():").size(), 12);
}

void tst_pixelshift::everyFrame_isStoredInItsChannelAndField()
{
    for (int field = 1; field <= 12; ++field) {
        const int x = kStartX - (field - 1) * kFieldPitch;
        const cv::Mat bf = m_grabbed[QString("1 %1").arg(x)].frame;
        const cv::Mat gfp = m_grabbed[QString("2 %1").arg(x)].frame;
        const cv::Mat rfp = m_grabbed[QString("3 %1").arg(x)].frame;
        QVERIFY(!bf.empty() && !gfp.empty() && !rfp.empty());
        // Unshifted, a part of the overlay is the brighter of fluorescence and bright field.
        std::vector<cv::Mat> parts;
        cv::split(overlay(field, false), parts);
        QCOMPARE(cv::norm(parts[0], cv::max(rfp, bf), cv::NORM_INF), 0.0);
        QCOMPARE(cv::norm(parts[1], cv::max(gfp, bf), cv::NORM_INF), 0.0);
        QCOMPARE(cv::norm(parts[2], bf, cv::NORM_INF), 0.0);
    }
}

void tst_pixelshift::fluorescence_isTakenAtHalfTheExposureAndAtItsOwnHeight()
{
    const Grabbed bf = m_grabbed[QString("1 %1").arg(kStartX)];
    const Grabbed gfp = m_grabbed[QString("2 %1").arg(kStartX)];
    const Grabbed rfp = m_grabbed[QString("3 %1").arg(kStartX)];
    QCOMPARE(gfp.z - bf.z, 3 * 115);
    QCOMPARE(rfp.z - bf.z, 3 * 115);
    // The Basler source logs milliseconds, the AR0134 driver microseconds.
    const bool bArduCam = m_desk->isArduCam();
    const QStringList exposures = m_logged.filter(
        bArduCam ? "slot_setExposure(unsigned int)" : "setCurrentExposure(double) exposure:");
    const QString tail = bArduCam ? "000" : "";
    QVERIFY(exposures.size() >= 4);
    QVERIFY(exposures[0].endsWith(" 35" + tail));
    QVERIFY(exposures[1].endsWith(" 40" + tail));
    QVERIFY(exposures[2].endsWith(" 40" + tail));
    QVERIFY(exposures[3].endsWith(" 35" + tail));
}

void tst_pixelshift::set_storesTheValuesOnShow()
{
    m_desk->widget<QLineEdit>("lineEdit_SHIFT_RFP_Y")->setText("-3.456");
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_SET"));
    const QStringList shown = shifts();
    const QByteArray expected = QString("Pixel shift GFP X=%1\nPixel shift GFP Y=%2\nPixel shift RFP X=%3\n"
                                        "Pixel shift RFP Y=-3.46\n")
                                    .arg(shown[0], shown[1], shown[2])
                                    .toUtf8();
    QVERIFY2(Desk::settings().contains(expected), Desk::settings().constData());
}

void tst_pixelshift::arrows_moveTheChosenChannelByOnePixel()
{
    const struct {
        const char* channel;
        const char* arrow;
        const char* field;
        const char* before;
        const char* after;
    } presses[] = {
        { "pushButton_SHIFT_GFP", "pushButton_SHIFT_X_PLUS", "lineEdit_SHIFT_GFP_X", "1.50", "2.50" },
        { "pushButton_SHIFT_GFP", "pushButton_SHIFT_X_MINUS", "lineEdit_SHIFT_GFP_X", "2.50", "1.50" },
        { "pushButton_SHIFT_GFP", "pushButton_SHIFT_Y_MINUS", "lineEdit_SHIFT_GFP_Y", "0.00", "-1.00" },
        { "pushButton_SHIFT_GFP", "pushButton_SHIFT_Y_PLUS", "lineEdit_SHIFT_GFP_Y", "-1.00", "0.00" },
        { "pushButton_SHIFT_RFP", "pushButton_SHIFT_X_PLUS", "lineEdit_SHIFT_RFP_X", "-0.25", "0.75" },
        { "pushButton_SHIFT_RFP", "pushButton_SHIFT_X_MINUS", "lineEdit_SHIFT_RFP_X", "0.75", "-0.25" },
        { "pushButton_SHIFT_RFP", "pushButton_SHIFT_Y_MINUS", "lineEdit_SHIFT_RFP_Y", "9.99", "8.99" },
        { "pushButton_SHIFT_RFP", "pushButton_SHIFT_Y_PLUS", "lineEdit_SHIFT_RFP_Y", "8.99", "9.99" },
    };
    for (const auto& press : presses) {
        QVERIFY(hand::click(m_desk->window(), press.channel));
        m_desk->widget<QLineEdit>(press.field)->setText(press.before);
        const QStringList others = shifts();
        const QImage before = picture();
        QVERIFY(hand::click(m_desk->window(), press.arrow));
        QCOMPARE(m_desk->text(press.field), QString(press.after));
        int changed = 0;
        for (int i = 0; i < 4; ++i)
            changed += shifts()[i] != others[i];
        QCOMPARE(changed, 1);
        QVERIFY(picture() != before);
    }
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"),
        QString("font: 11pt 'Sans Serif'; color : white; background-color : rgb(255, 0, 0)"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"), kNeutral);
}

void tst_pixelshift::arrowWithoutANumber_countsFrom0()
{
    m_desk->widget<QLineEdit>("lineEdit_SHIFT_RFP_X")->setText("no number");
    QVERIFY(hand::click(m_desk->window(), "pushButton_SHIFT_X_PLUS"));
    QCOMPARE(m_desk->text("lineEdit_SHIFT_RFP_X"), QString("1.00"));
}

void tst_pixelshift::spinBox_showsTheFieldsOverlay()
{
    const QImage first = picture();
    m_desk->widget<QSpinBox>("spinBox_PIXEL_SHIFT")->setValue(12);
    const QImage last = picture();
    QVERIFY(first != last);
    m_desk->widget<QSpinBox>("spinBox_PIXEL_SHIFT")->setValue(1);
    QCOMPARE(picture(), first);
}

void tst_pixelshift::reset_zeroesPanelFileAndPicture()
{
    const QImage before = picture();
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT_RESET"));
    QCOMPARE(shifts(), QStringList({ "0.00", "0.00", "0.00", "0.00" }));
    QVERIFY(
        Desk::settings().contains("Pixel shift GFP X=0.00\nPixel shift GFP Y=0.00\nPixel shift RFP X=0.00\n"
                                  "Pixel shift RFP Y=0.00\n"));
    QVERIFY(picture() != before);
}

void tst_pixelshift::live_leavesTheInspection()
{
    QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT"));
    QCOMPARE(m_desk->text("pushButton_PIXEL_SHIFT"), QString("Pixel shift"));
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(!m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
    QCOMPARE(m_desk->style("pushButton_SHIFT_GFP"), kNeutral);
    QCOMPARE(m_desk->style("pushButton_SHIFT_RFP"), kNeutral);
    QVERIFY(!m_desk->isEnabled("pushButton_SHIFT_Y_PLUS"));
}

void tst_pixelshift::runStartedInGfp_focusesTheFirstFieldByFluorescence()
{
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_FIELD_NEXT"));
    QVERIFY(patience::waitFor([this] { return m_desk->text("lineEdit_FIELD_CURRENT") == "1"; }));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_ILLUMINATION_GFP"));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    run();
    QCOMPARE(m_boxes, QStringList({ "finish calculate pixel shift !" }));
    const QJsonObject truth = m_desk->rig.request({ { "cmd", "bestFocus" }, { "x", kStartX } });
    const QStringList focus = m_logged.filter("[2] m_AutofocusingRef:");
    QVERIFY(std::abs(focus[0].section(' ', 3, 3).toInt() - truth.value("gfp").toDouble()) <= 115.0);
    const QJsonObject second
        = m_desk->rig.request({ { "cmd", "bestFocus" }, { "x", kStartX - kFieldPitch } });
    QVERIFY(std::abs(focus[1].section(' ', 3, 3).toInt() - second.value("bf").toDouble()) <= 115.0);
}

WORKFLOW_MAIN(tst_pixelshift)
#include "tst_pixelshift.moc"
