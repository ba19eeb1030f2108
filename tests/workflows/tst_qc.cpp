#include "tests/views/TargetFrame.h"
#include "tests/workflows/Desk.h"
#include "tests/workflows/SettingsWrites.h"
#include "views/CAPTURE_ImageWidget.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QRadioButton>

#include <algorithm>
#include <cmath>
#include <optional>

/// The QC page, on a unit that magnifies exactly fourfold. Where the arithmetic counts, a drawn frame with
/// marks at known places stands in for the captured one.
class tst_qc : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void atTheStart_thePageIsLiveAndShowsTheStoredValues();
    void capture_waitsOneExposureAnd250ms();
    void capture_showsTheStillPicture();
    void live_goesBackToTheLivePicture();
    void targetingBox_decidesOnTheFiveWidgets();
    void newCapture_leavesThePictureInTargetingMode();
    void captureWhileTargeting_leavesTheFiveWidgetsEnabled();
    void marksOfTheTargetSlide_giveTheMagnification();
    void setPoint_goesToTheChosenPoint();
    void setPointWithoutAChoice_doesNothing();
    void noMark_isToldInABox();
    void twoMarks_areToldInABox();
    void measurement_showsSinglePrecision_data();
    void measurement_showsSinglePrecision();
    void measureWithoutPoints_showsWhatComesOut();
    void equalPoints_showWhatComesOut();
    void lengthThatRoundsToZero_showsWhatComesOut();
    void write_storesNineValuesInThisOrder();
    void writeBeforeAnyMeasurement_storesTheRecordAsItStands();
    void write_takesTheMeasurementAndNotWhatIsShown();
    void volumeOffset_isStoredAtOnce();
    void textInTheOffsetBox_leavesTheOffset();
    void frameThatNeverComes_leavesTheLastPicture();

private:
    bool capture();
    bool showMarks(const QVector<QPoint>& marks);
    bool target(QPoint place);
    bool setPoint(const char* radioButton, QPoint place);
    bool measure(QPoint first, QPoint second);
    QStringList shownValues();
    QStringList pictures();
    QString enabledWidgets();
    QImage still();

    std::unique_ptr<Desk> m_desk;
};

namespace {

const QString kPicture = "CAPTURE_IMAGE_WIDGET";
constexpr int kMarkSide = 12;

/// What the search finds of a drawn mark: the centre lies between two pixels.
QPoint centreOf(QPoint mark)
{
    return mark + QPoint(kMarkSide / 2 - 1, kMarkSide / 2 - 1);
}

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

QString textOf(QPoint point)
{
    return QString("%1, %2").arg(point.x()).arg(point.y());
}

} // namespace

void tst_qc::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->rig.set("plugged", true));
    QVERIFY(m_desk->rig.set("slide", "2ch"));
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC1"));
}

void tst_qc::cleanup()
{
    m_desk.reset();
}

bool tst_qc::capture()
{
    QSignalSpy grabbed(&m_desk->window(), &MainWindow::sig_finish_QC_ImageGrabbed);
    return hand::click(m_desk->window(), "pushButton_QC_CAPTURE") && grabbed.count() == 1;
}

/// Captures, and puts a drawn frame in place of what came.
bool tst_qc::showMarks(const QVector<QPoint>& marks)
{
    if (!capture())
        return false;
    TargetFrame frame(1280, 960);
    for (const QPoint& mark : marks)
        frame.mark(mark.x(), mark.y(), kMarkSide);
    m_desk->widget<CAPTURE_ImageWidget>("CAPTURE_IMAGE_WIDGET")->setImageData(frame.data(), 1280, 960, 8);
    return true;
}

/// Brings a pixel of the frame into view with the hand and clicks on it in targeting mode.
bool tst_qc::target(QPoint place)
{
    MainWindow& window = m_desk->window();
    auto* box = m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE");
    if (box->isChecked() && !hand::click(window, "checkBox_TARGETING_MODE"))
        return false;
    const QPoint view(std::clamp(place.x() - 270, 0, 740), std::clamp(place.y() - 216, 0, 528));
    const QPoint grip(250, 200);
    return hand::drag(window, kPicture, grip, { grip + QPoint(2000, 2000) })
        && hand::drag(window, kPicture, grip, { grip - view })
        && hand::click(window, "checkBox_TARGETING_MODE") && hand::clickAt(window, kPicture, place - view);
}

bool tst_qc::setPoint(const char* radioButton, QPoint place)
{
    return target(place) && hand::click(m_desk->window(), radioButton)
        && hand::click(m_desk->window(), "pushButton_SET_POINT");
}

bool tst_qc::measure(QPoint first, QPoint second)
{
    return setPoint("radioButton_POINT_1", first) && setPoint("radioButton_POINT_2", second)
        && hand::click(m_desk->window(), "pushButton_MEASURE");
}

QStringList tst_qc::shownValues()
{
    QStringList values;
    for (const char* name :
        { "lineEdit_MAGNIFICATION", "lineEdit_VOLUME_FACTOR", "lineEdit_VOLUME_FACTOR_1CH",
            "lineEdit_VOLUME_FACTOR_2CH", "lineEdit_VOLUME_FACTOR_3CH", "lineEdit_VOLUME_FACTOR_8CH",
            "lineEdit_VOLUME_FACTOR_PRISMA", "lineEdit_VOLUME_FACTOR_PRISMA_MAX" })
        values << m_desk->text(name);
    return values;
}

/// Which of the two pictures are shown.
QStringList tst_qc::pictures()
{
    QStringList shown;
    for (const char* name : { "BASLER_VIDEO_WIDGET", "CAPTURE_IMAGE_WIDGET" }) {
        if (m_desk->isShown(name))
            shown << name;
    }
    return shown;
}

/// A letter for each widget of the page that is enabled: Live, Capture, Targeting, Set point, the points 1
/// and 2, Measure, Write.
QString tst_qc::enabledWidgets()
{
    struct {
        const char* name;
        const char* letter;
    } const widgets[] = { { "pushButton_QC_LIVE", "L" }, { "pushButton_QC_CAPTURE", "C" },
        { "checkBox_TARGETING_MODE", "T" }, { "pushButton_SET_POINT", "S" }, { "radioButton_POINT_1", "1" },
        { "radioButton_POINT_2", "2" }, { "pushButton_MEASURE", "M" }, { "pushButton_MEASURE_WRITE", "W" } };
    QString enabled;
    for (const auto& widget : widgets) {
        if (m_desk->isEnabled(widget.name))
            enabled += widget.letter;
    }
    return enabled;
}

QImage tst_qc::still()
{
    return m_desk->widget<QWidget>("CAPTURE_IMAGE_WIDGET")->grab().toImage();
}

void tst_qc::atTheStart_thePageIsLiveAndShowsTheStoredValues()
{
    QCOMPARE(enabledWidgets(), QString("C"));
    QCOMPARE(pictures(), QStringList({ "BASLER_VIDEO_WIDGET" }));
    QCOMPARE(shownValues(),
        QStringList({ "4", "0.10800", "197.00552", "771.60494", "771.60494", "1851.85185", "1851.85185",
            "925.92593" }));
    QCOMPARE(m_desk->text("doubleSpinBox_VOLUME_OFFSET"), QString("1.10"));
}

void tst_qc::capture_waitsOneExposureAnd250ms()
{
    QElapsedTimer clock;
    clock.start();
    QVERIFY(capture());
    QVERIFY2(clock.elapsed() >= 35 + 250, qPrintable(QString::number(clock.elapsed())));
}

void tst_qc::capture_showsTheStillPicture()
{
    QVERIFY(capture());
    QCOMPARE(pictures(), QStringList({ "CAPTURE_IMAGE_WIDGET" }));
    QCOMPARE(enabledWidgets(), QString("LT"));
    QVERIFY(!m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE")->isChecked());
    // Bright field, and not the black of an empty widget.
    QVERIFY(qGray(still().pixel(270, 300)) > 60);
}

void tst_qc::live_goesBackToTheLivePicture()
{
    QVERIFY(capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QCOMPARE(pictures(), QStringList({ "BASLER_VIDEO_WIDGET" }));
    QCOMPARE(enabledWidgets(), QString("C"));
}

void tst_qc::targetingBox_decidesOnTheFiveWidgets()
{
    QVERIFY(capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QCOMPARE(enabledWidgets(), QString("LTS12MW"));
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QCOMPARE(enabledWidgets(), QString("LT"));
}

void tst_qc::newCapture_leavesThePictureInTargetingMode()
{
    QVERIFY(showMarks({}));
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QVERIFY(showMarks({}));
    QVERIFY(!m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE")->isChecked());
    QCOMPARE(enabledWidgets(), QString("LT"));
    // A click still brings the green square.
    QVERIFY(hand::clickAt(m_desk->window(), kPicture, QPoint(300, 250)));
    QCOMPARE(still().pixelColor(280, 250), QColor(Qt::green));
    QCOMPARE(still().pixelColor(319, 250), QColor(Qt::green));
}

void tst_qc::captureWhileTargeting_leavesTheFiveWidgetsEnabled()
{
    QVERIFY(capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    m_desk->window().on_pushButton_QC_CAPTURE_clicked();
    QVERIFY(!m_desk->widget<QCheckBox>("checkBox_TARGETING_MODE")->isChecked());
    QCOMPARE(enabledWidgets(), QString("LTS12MW"));
}

void tst_qc::marksOfTheTargetSlide_giveTheMagnification()
{
    QVERIFY(m_desk->rig.set("slide", "target"));
    QVERIFY(m_desk->rig.set("x", 20000));
    QVERIFY(m_desk->rig.set("z", 30000));
    QVERIFY(capture());

    // Two marks of a row that are 1.0 mm apart.
    const QJsonArray marks = m_desk->rig.request({ { "cmd", "inPicture" } }).value("targetMarks").toArray();
    std::optional<QPointF> first;
    std::optional<QPointF> second;
    for (const QJsonValue a : marks) {
        for (const QJsonValue b : marks) {
            if (a["row"] == b["row"] && std::abs(a["column"].toInt() - b["column"].toInt()) == 2) {
                first = QPointF(a["x"].toDouble(), a["y"].toDouble());
                second = QPointF(b["x"].toDouble(), b["y"].toDouble());
            }
        }
    }
    QVERIFY(first && second);
    QVERIFY(measure(first->toPoint() + QPoint(5, -4), second->toPoint() + QPoint(-3, 6)));
    QCOMPARE(m_desk->boxes.texts(), QStringList());

    const auto isNear = [](const QString& text, QPointF mark) {
        const QPointF found(text.section(", ", 0, 0).toDouble(), text.section(", ", 1, 1).toDouble());
        return (found - mark).manhattanLength() <= 3.0;
    };
    QVERIFY2(isNear(m_desk->text("lineEdit_POINT_1"), *first), qPrintable(m_desk->text("lineEdit_POINT_1")));
    QVERIFY2(isNear(m_desk->text("lineEdit_POINT_2"), *second), qPrintable(m_desk->text("lineEdit_POINT_2")));
    const double magnification = m_desk->text("lineEdit_MAGNIFICATION").toDouble();
    QVERIFY2(std::abs(magnification - 4.0) < 0.0101, qPrintable(m_desk->text("lineEdit_MAGNIFICATION")));
}

void tst_qc::setPoint_goesToTheChosenPoint()
{
    const QPoint one(300, 200);
    const QPoint two(900, 600);
    QVERIFY(showMarks({ one, two }));
    QVERIFY(setPoint("radioButton_POINT_2", two));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), textOf(centreOf(two)));
    QVERIFY(setPoint("radioButton_POINT_1", one));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), textOf(centreOf(one)));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), textOf(centreOf(two)));
}

void tst_qc::setPointWithoutAChoice_doesNothing()
{
    QVERIFY(showMarks({ { 300, 200 } }));
    QVERIFY(target({ 300, 200 }));
    for (const char* name : { "radioButton_POINT_1", "radioButton_POINT_2" }) {
        auto* button = m_desk->widget<QRadioButton>(name);
        button->setAutoExclusive(false);
        button->setChecked(false);
    }
    const QImage before = still();
    QVERIFY(hand::click(m_desk->window(), "pushButton_SET_POINT"));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QString("0, 0"));
    QCOMPARE(still(), before);
    QCOMPARE(m_desk->boxes.texts(), QStringList());
}

void tst_qc::noMark_isToldInABox()
{
    QVERIFY(showMarks({ { 300, 200 } }));
    QVERIFY(setPoint("radioButton_POINT_1", { 300, 200 }));
    const QStringList values = shownValues();
    QVERIFY(setPoint("radioButton_POINT_1", { 600, 500 }));
    QVERIFY(m_desk->boxes.waitForBoxes(1));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "No circle detected !!!" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes().first().icon, QMessageBox::Critical);
    QCOMPARE(m_desk->boxes.boxes().first().buttons, QStringList({ "OK" }));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), textOf(centreOf({ 300, 200 })));
    QCOMPARE(shownValues(), values);
}

void tst_qc::twoMarks_areToldInABox()
{
    QVERIFY(showMarks({ { 300, 200 }, { 320, 200 } }));
    QVERIFY(setPoint("radioButton_POINT_2", { 316, 206 }));
    QVERIFY(m_desk->boxes.waitForBoxes(1));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Too many circle detected !!!" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes().first().icon, QMessageBox::Critical);
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QString("0, 0"));
}

void tst_qc::measurement_showsSinglePrecision_data()
{
    // Worked out apart from this program, with each operation rounded to single precision.
    QTest::addColumn<int>("pixels");
    QTest::addColumn<QStringList>("values");
    QTest::newRow("fourfold") << 1067
                              << QStringList({ "4.00", "0.10800", "197.00551", "771.60492", "771.60492",
                                     "1851.85181", "1851.85181", "925.92590" });
    QTest::newRow("3.90") << 1040
                          << QStringList({ "3.90", "0.11361", "187.27748", "733.50354", "733.50354",
                                 "1760.40833", "1760.40833", "880.20416" });
    QTest::newRow("4.10") << 1093
                          << QStringList({ "4.10", "0.10280", "206.97076", "810.63550", "810.63550",
                                 "1945.52527", "1945.52527", "972.76263" });
}

void tst_qc::measurement_showsSinglePrecision()
{
    QFETCH(int, pixels);
    QFETCH(QStringList, values);
    const QPoint one(100, 300);
    const QPoint two(100 + pixels, 300);
    QVERIFY(showMarks({ one, two }));
    QVERIFY(measure(one, two));
    QCOMPARE(shownValues(), values);
}

void tst_qc::measureWithoutPoints_showsWhatComesOut()
{
    QVERIFY(capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE"));
    // Nothing divided by nothing; the sign in front of it is the processor's.
    QCOMPARE(shownValues().filter(QRegularExpression("^-?nan$")).size(), 8);
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
}

void tst_qc::equalPoints_showWhatComesOut()
{
    const QPoint mark(300, 200);
    QVERIFY(showMarks({ mark }));
    QVERIFY(measure(mark, mark));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), m_desk->text("lineEdit_POINT_2"));
    QCOMPARE(shownValues().filter(QRegularExpression("^-?nan$")).size(), 8);
}

void tst_qc::lengthThatRoundsToZero_showsWhatComesOut()
{
    const QPoint one(300, 200);
    const QPoint two(353, 200);
    QVERIFY(showMarks({ one, two }));
    QVERIFY(measure(one, two));
    QCOMPARE(shownValues(), QStringList({ "inf", "0.00000", "inf", "inf", "inf", "inf", "inf", "inf" }));
}

void tst_qc::write_storesNineValuesInThisOrder()
{
    const QByteArray before = Desk::settings();
    QVERIFY(showMarks({ { 100, 300 }, { 1140, 300 } }));
    QVERIFY(measure({ 100, 300 }, { 1140, 300 }));
    QCOMPARE(Desk::settings(), before);
    const SettingsWrites writes;
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE_WRITE"));
    QCOMPARE(m_desk->boxes.texts(), QStringList());
    QCOMPARE(writes.changes(),
        QStringList(
            { "TAVO-QR9/Magnification=3.90", "TAVO-QR9/Volume factor=0.11361", "TAVO-QR9/Volume offset=1.10",
                "Volume factor/1 Channel=187.27748", "Volume factor/2 Channel=733.50354",
                "Volume factor/3 Channel=733.50354", "Volume factor/8 Channel=1760.40833",
                "Volume factor/Prisma=1760.40833", "Volume factor/Prisma Max=880.20416" }));
    QCOMPARE(Desk::settings(),
        before
            + "\n[TAVO-QR9]\nMagnification=3.90\nVolume factor=0.11361\nVolume offset=1.10\n"
              "\n[Volume factor]\n1 Channel=187.27748\n2 Channel=733.50354\n3 Channel=733.50354\n"
              "8 Channel=1760.40833\nPrisma=1760.40833\nPrisma Max=880.20416\n");
}

void tst_qc::writeBeforeAnyMeasurement_storesTheRecordAsItStands()
{
    const QByteArray before = Desk::settings();
    QVERIFY(capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE_WRITE"));
    QCOMPARE(Desk::settings(),
        before
            + "\n[TAVO-QR9]\nMagnification=0.00\nVolume factor=0.00000\nVolume offset=1.10\n"
              "\n[Volume factor]\n1 Channel=0.00000\n2 Channel=0.00000\n3 Channel=0.00000\n"
              "8 Channel=0.00000\nPrisma=0.00000\nPrisma Max=0.00000\n");
}

void tst_qc::write_takesTheMeasurementAndNotWhatIsShown()
{
    QVERIFY(showMarks({ { 100, 300 }, { 1167, 300 } }));
    QVERIFY(measure({ 100, 300 }, { 1167, 300 }));
    m_desk->widget<QLineEdit>("lineEdit_MAGNIFICATION")->setText("9.99");
    m_desk->widget<QLineEdit>("lineEdit_VOLUME_FACTOR_1CH")->setText("9.99");
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", "1.25"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE_WRITE"));
    QVERIFY(Desk::settings().contains("\nMagnification=4.00\n"));
    QVERIFY(Desk::settings().contains("\n1 Channel=197.00551\n"));
    QVERIFY(Desk::settings().contains("\nVolume offset=1.25\n"));
}

void tst_qc::volumeOffset_isStoredAtOnce()
{
    const QByteArray before = Desk::settings();
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", "1.5"));
    QCOMPARE(Desk::settings(), before);
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", Qt::Key_Return));
    QCOMPARE(Desk::settings(), before + "\n[TAVO-QR9]\nVolume offset=1.50\n");
}

void tst_qc::textInTheOffsetBox_leavesTheOffset()
{
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", "abc"));
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", Qt::Key_Return));
    QCOMPARE(m_desk->text("doubleSpinBox_VOLUME_OFFSET"), QString("1.10"));
    QVERIFY(Desk::settings().contains("\nVolume offset=1.10\n"));
}

void tst_qc::frameThatNeverComes_leavesTheLastPicture()
{
    QVERIFY(m_desk->rig.set("x", 30931));
    QVERIFY(m_desk->rig.set("z", 30000));
    QVERIFY(capture());
    const QImage cells = still();
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QVERIFY(m_desk->rig.set("plugged", false));
    // A frame of now would show it.
    QVERIFY(m_desk->rig.set("slide", "target"));
    QVERIFY(capture());
    const QImage last = still();
    QCOMPARE(enabledWidgets(), QString("LT"));
    QVERIFY2(meanDifference(last, cells) < 2.0, qPrintable(QString::number(meanDifference(last, cells))));
    QVERIFY(hand::click(m_desk->window(), "pushButton_QC_LIVE"));
    QVERIFY(capture());
    QCOMPARE(still(), last);
}

WORKFLOW_MAIN(tst_qc)
#include "tst_qc.moc"
