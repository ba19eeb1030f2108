#include "algorithms/alg_pixelShift.h"
#include "tests/workflows/BoardLog.h"
#include "tests/workflows/ShiftRun.h"

#include <opencv2/imgproc.hpp>

#include <QJsonArray>
#include <QTabWidget>

#include <algorithm>
#include <array>
#include <cmath>

/// The twelve-field run that measures the shifts: what it sends, takes, measures and shows.
class tst_pixelshift : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void wholeRun_sendsTheseLines();
    void duringTheRun_thePageIsOffAndStaysInFront();
    void wholeRun_endsWithGfpChosenAndTheOverlayInView();
    void everyFrame_isStoredInItsChannelAndField();
    void fluorescence_isTakenAtHalfTheExposureAndAtItsOwnHeight();
    void everyFrame_waitsForTheExposureOfTheBoxAnd250Ms();
    void averages_areTheInvertedShiftsOfTheUnit();
    void eachField_isMeasuredOnItsObjectsDarkerThan120AndTheAverageIsThePlainMean();
    void offset_isLoggedAtTheStartAndAtEachMove();
    void measured_isNotYetInTheFile();

private:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<ShiftRun> m_run;
};

namespace {

const QString kNeutral = "font: 11pt 'Sans Serif'; color : black; background-color : none";
constexpr int kOffset = 3 * 115;

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

double largestDifference(const cv::Mat& a, const cv::Mat& b)
{
    return cv::norm(a, b, cv::NORM_INF);
}

int countOfAtLeast(int limit, const QVector<int>& times)
{
    return static_cast<int>(std::count_if(times.begin(), times.end(), [=](int ms) { return ms >= limit; }));
}

} // namespace

void tst_pixelshift::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_run.reset(new ShiftRun(*m_desk));
    QVERIFY(m_run->prepare());
    QVERIFY(m_run->run());
}

void tst_pixelshift::cleanupTestCase()
{
    m_run.reset();
    m_desk.reset();
}

void tst_pixelshift::wholeRun_sendsTheseLines()
{
    const int reference = m_run->reference();
    QStringList expected;
    int z = reference; // the height at which the last search left the stage
    for (int field = 1; field <= ShiftRun::kFields; ++field) {
        const int coarse = field == 1 ? m_run->bestOf("[1]", 0) : reference;
        if (field == 1) {
            expected << move(z, reference + 3680) << setting("Z", "DIR", "MINUS") << setting("Z", "STEP", 460)
                     << scan(15);
            z = reference + 3680 - 15 * 460;
        }
        const int focus = m_run->bestOf("[2]", field - 1);
        expected << move(z, coarse + 460) << setting("Z", "DIR", "MINUS") << setting("Z", "STEP", 115)
                 << scan(7);
        expected << setting("Z", "ABS", coarse + 460) << move(coarse + 460, focus);
        expected << setting("Z", "DIR", "MINUS") << setting("Z", "STEP", 115) << "$Z#STAGE RUN";
        z = focus - 115;
        expected << "$A#LED BRT1 7 6"
                 << "$A#FILTER GO 1"
                 << "$Z#STAGE POS" << setting("Z", "ABS", z + kOffset);
        expected << "$A#LED BRT2 300"
                 << "$A#FILTER GO 2"
                 << "$A#LED BRT3 350"
                 << "$A#FILTER GO 3";
        expected << "$A#LED BRT1 7 6"
                 << "$A#FILTER GO 1"
                 << "$Z#STAGE POS" << setting("Z", "ABS", z);
        if (field < ShiftRun::kFields)
            expected << setting("X", "ABS", ShiftRun::fieldX(field + 1));
    }
    // The insert at the end.
    expected << "$A#LED BRT1 7 6"
             << "$Z#STAGE ABS 32000"
             << "$X#STAGE ABS 0";
    QCOMPARE(m_run->sent(), expected);
}

void tst_pixelshift::duringTheRun_thePageIsOffAndStaysInFront()
{
    QVERIFY(!m_run->wasPageEnabled());
    QCOMPARE(m_run->frontPage(), QString("TAB_QC2"));
    QCOMPARE(m_run->buttonText(), QString("Live"));
}

void tst_pixelshift::wholeRun_endsWithGfpChosenAndTheOverlayInView()
{
    QCOMPARE(m_run->boxes().size(), 1);
    QCOMPARE(m_run->boxes()[0].title, QString("Info"));
    QCOMPARE(m_run->boxes()[0].text, QString("finish calculate pixel shift !"));
    QCOMPARE(m_run->boxes()[0].buttons, QStringList({ "OK" }));
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
}

void tst_pixelshift::everyFrame_isStoredInItsChannelAndField()
{
    // Unmoved, a part of the overlay is the brighter of bright field and fluorescence, which is raised by
    // 100.
    for (const char* edit :
        { "lineEdit_SHIFT_GFP_X", "lineEdit_SHIFT_GFP_Y", "lineEdit_SHIFT_RFP_X", "lineEdit_SHIFT_RFP_Y" })
        m_desk->widget<QLineEdit>(edit)->setText("0.00");
    for (int field = 1; field <= ShiftRun::kFields; ++field) {
        const cv::Mat bf = m_run->lastThrough(1, field).pixels;
        const cv::Mat gfp = m_run->lastThrough(2, field).pixels;
        const cv::Mat rfp = m_run->lastThrough(3, field).pixels;
        QVERIFY(!bf.empty() && !gfp.empty() && !rfp.empty());
        const cv::Mat red = cv::max(rfp + cv::Scalar(100), bf);
        const cv::Mat green = cv::max(gfp + cv::Scalar(100), bf);
        QVERIFY(largestDifference(red, bf) > 0.0 && largestDifference(green, bf) > 0.0);
        std::vector<cv::Mat> parts;
        cv::split(m_desk->window().make_overlayImage(field, true), parts);
        QCOMPARE(largestDifference(parts[0], red), 0.0);
        QCOMPARE(largestDifference(parts[1], green), 0.0);
        QCOMPARE(largestDifference(parts[2], bf), 0.0);
    }
}

void tst_pixelshift::fluorescence_isTakenAtHalfTheExposureAndAtItsOwnHeight()
{
    for (int field = 1; field <= ShiftRun::kFields; ++field) {
        const int focus = m_run->lastThrough(1, field).z;
        QCOMPARE(focus, m_run->bestOf("[2]", field - 1) - 115);
        QCOMPARE(m_run->lastThrough(2, field).z - focus, kOffset);
        QCOMPARE(m_run->lastThrough(3, field).z - focus, kOffset);
    }
    // The Basler source logs milliseconds, the AR0134 driver microseconds.
    const bool bArduCam = m_desk->isArduCam();
    const QStringList exposures = m_run->logged().filter(
        bArduCam ? "slot_setExposure(unsigned int)" : "setCurrentExposure(double) exposure:");
    const QString tail = bArduCam ? "000" : "";
    QCOMPARE(exposures.size(), 4 * ShiftRun::kFields);
    for (int i = 0; i < exposures.size(); ++i) {
        const bool bBrightField = i % 4 == 0 || i % 4 == 3;
        QVERIFY2(exposures[i].endsWith((bBrightField ? " 35" : " 40") + tail), qPrintable(exposures[i]));
    }
}

void tst_pixelshift::everyFrame_waitsForTheExposureOfTheBoxAnd250Ms()
{
    // The board's log counts in whole milliseconds.
    constexpr int kBrightField = 35 + 250 - 1;
    constexpr int kFluorescence = 80 + 250 - 1; // the box shows the exposure that is halved
    // The last line of a field is asked for in the same words, and at once.
    QCOMPARE(countOfAtLeast(kBrightField, board_log::pauses("$OK#A#FILTER GO 1", "$Z#STAGE POS")), 12);
    QCOMPARE(countOfAtLeast(kFluorescence, board_log::pauses("$OK#A#FILTER GO 2", "$A#LED BRT3 350")), 12);
    QCOMPARE(countOfAtLeast(kFluorescence, board_log::pauses("$OK#A#FILTER GO 3", "$A#LED BRT1 7 6")), 12);
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
        const double found = m_run->measured()[i].toDouble();
        QVERIFY2(std::abs(found - expected[i]) <= 0.25,
            qPrintable(QString("%1: %2 for %3").arg(i).arg(found).arg(expected[i])));
    }
}

void tst_pixelshift::eachField_isMeasuredOnItsObjectsDarkerThan120AndTheAverageIsThePlainMean()
{
    QStringList expected;
    std::array<float, 4> sums {};
    const auto twoDecimals = [](double value) { return QString::asprintf(" %.2f", value); };
    for (int field = 1; field <= ShiftRun::kFields; ++field) {
        cv::Mat objects;
        cv::threshold(m_run->lastThrough(1, field).pixels, objects, 120.0, 255.0, cv::THRESH_BINARY_INV);
        cv::medianBlur(objects, objects, 3);
        cv::Mat gfp = m_run->lastThrough(2, field).pixels.clone();
        cv::Mat rfp = m_run->lastThrough(3, field).pixels.clone();
        std::array<float, 4> shift {};
        std::array<float, 2> reliability {};
        alg_pixelShift().phaseCorrelatePixelShift_adaptive(
            objects, gfp, rfp, shift.data(), reliability.data());
        QString line = QString("%1 pixel shift:").arg(field);
        for (std::size_t i = 0; i < sums.size(); ++i) {
            line += twoDecimals(static_cast<double>(-shift[i]));
            sums[i] += -shift[i];
        }
        expected << line;
    }
    QCOMPARE(m_run->logged().filter(QRegularExpression("^[0-9]+ pixel shift:")), expected);
    QString averages;
    for (const float sum : sums)
        averages += twoDecimals(static_cast<double>(static_cast<float>(static_cast<double>(sum) / 12.0)));
    QCOMPARE(" " + m_run->measured().join(" "), averages);
    QCOMPARE(m_run->logged().filter("avg. pixel shift:"), QStringList({ "avg. pixel shift:" + averages }));
    QCOMPARE(m_run->logged().filter(QRegularExpression("^time\\.elapsed\\(\\): [0-9]+$")).size(), 12);
}

void tst_pixelshift::offset_isLoggedAtTheStartAndAtEachMove()
{
    const QStringList offsets = m_run->logged().filter("z_offset");
    QCOMPARE(offsets.size(), 1 + 2 * ShiftRun::kFields);
    QCOMPARE(offsets[0], QString("z_offset -----------> :  3"));
    for (int i = 1; i < offsets.size(); i += 2) {
        QCOMPARE(offsets[i], QString("apply z_offset -----------> :  3"));
        QCOMPARE(offsets[i + 1], QString("apply z_offset 2-----------> :  3"));
    }
}

void tst_pixelshift::measured_isNotYetInTheFile()
{
    QVERIFY(!Desk::settings().contains("Pixel shift"));
    QVERIFY(m_run->measured() != QStringList({ "0.00", "0.00", "0.00", "0.00" }));
}

WORKFLOW_MAIN(tst_pixelshift)
#include "tst_pixelshift.moc"
