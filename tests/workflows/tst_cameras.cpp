#include "camera/framedelivery.h"
#include "tests/workflows/Desk.h"

#include <QElapsedTimer>
#include <QSignalSpy>

#include <algorithm>
#include <iterator>

/// What differs from camera to camera: its words in the log, the frame rate, where a fluorescence gain is
/// kept. And what must not: the way out in the middle of live mode.
class tst_cameras : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void camera_isNamedInTheLog();
    void cameraStart_goesInThisOrder();
    void frameRate_isShownTwiceASecondWithOneDecimal();
    void frameRate_isToldByTheAr0134Alone();
    void fluorescenceGain_isTheOneOfThisCamera_data();
    void fluorescenceGain_isTheOneOfThisCamera();
    void fluorescenceGain_isStoredForThisCameraAlone_data();
    void fluorescenceGain_isStoredForThisCameraAlone();
    void brightFieldGain_isOneForBothCameras();
    void exitInLiveMode_endsTheStream();
    void windowThatGoesInLiveMode_takesTheCameraAlong();
    void nextWindow_findsTheCameraAgain();

private:
    QJsonObject camera() { return m_desk->rig.state().value("camera").toObject(); }
    bool waitForExposures(int count);
    /// The camera's true gain in dB of amplitude, where the program asked for this many dB.
    double trueGain(double asked) const { return m_bArduCam ? 2.0 * asked : asked; }

    std::unique_ptr<Desk> m_desk;
    bool m_bArduCam = false;
};

namespace {

/// The AR0134 has its gain in steps of 1/32: at the gains in use here this is less than 0.2 dB.
constexpr double kGainStep = 0.2;

} // namespace

void tst_cameras::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    m_bArduCam = m_desk->isArduCam();
}

void tst_cameras::cleanup()
{
    m_desk.reset();
}

bool tst_cameras::waitForExposures(int count)
{
    const int begin = camera().value("exposures").toInt();
    return patience::waitFor(
        [&] { return camera().value("exposures").toInt() >= begin + count; }, 20000 + 100 * count);
}

void tst_cameras::camera_isNamedInTheLog()
{
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(m_desk->log.contains("!!! Basler Camera is Attached !!!"), !m_bArduCam);
    QCOMPARE(m_desk->log.contains("!!! AR0134 Camera is Attached !!!"), m_bArduCam);
    QCOMPARE(m_desk->log.contains("!!! Arducam is ON !!!"), m_bArduCam);
    // One line of the connection names the first camera that was there, whatever the unit has.
    QVERIFY(m_desk->log.contains("@ [Basler] CAMERA connected..."));
    QVERIFY(m_desk->log.contains(m_bArduCam ? "void MainWindow::check_CameraConnection() 2 true"
                                            : "void MainWindow::check_CameraConnection() 1 true"));
}

void tst_cameras::cameraStart_goesInThisOrder()
{
    Desk::putSettings("[Ch. BF]\nGain=3\nExposure=50\n");
    QVERIFY(m_desk->connectUnit());
    // At the second connection the picture stands in the window before it is hidden.
    const int mark = m_desk->log.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    const int begin = m_desk->log.indexOf("void MainWindow::initialize_Basler(int, int, int)", mark);
    QVERIFY(begin >= 0);
    const char* const gain = m_bArduCam ? "AR0134::slot_setGain(double) 3" : "again: 3";
    const char* const exposure = m_bArduCam ? "AR0134::slot_setExposure(unsigned int) 50000" : "exposure: 50";
    int place = begin;
    for (const char* line : { "hideEvent", "FrameDelivery::start()", gain, exposure, "showEvent ",
             "@ [Basler] CAMERA connected..." }) {
        const int found = m_desk->log.indexOf(line, begin + 1);
        QVERIFY2(found > place, line);
        place = found;
    }
    // Live mode, and behind it the five lines of the banner.
    const QStringList lines = m_desk->log.lines();
    const QString frame(42, '@');
    QCOMPARE(
        lines.mid(place - 2, 5), (QStringList { "", frame, "@ [Basler] CAMERA connected...", frame, "" }));
    const int live = m_desk->log.indexOf("setAutoTriggeringMode", m_desk->log.indexOf("showEvent ", begin));
    QVERIFY(live > begin && live < place - 2);
    QVERIFY(lines[live].endsWith(" true"));
}

void tst_cameras::frameRate_isShownTwiceASecondWithOneDecimal()
{
    QVERIFY(m_desk->connectUnit());
    auto* const edit = m_desk->widget<QLineEdit>("lineEdit_FPS");
    const auto waitForShow = [edit] {
        edit->setText("-");
        QElapsedTimer timer;
        timer.start();
        patience::waitFor([edit] { return edit->text() != "-"; });
        return timer.elapsed();
    };
    waitForShow();
    const qint64 times[] = { waitForShow(), waitForShow(), waitForShow() };
    const qint64 shortest = *std::min_element(std::begin(times), std::end(times));
    QVERIFY2(shortest > 400 && shortest < 700, qPrintable(QString::number(shortest)));
    const auto shown = [this](float rate) {
        m_desk->window().slot_FpsUpdate(rate);
        const QString before = m_desk->text("lineEdit_FPS");
        m_desk->window().slot_FpsUpdate_UI();
        return before + " " + m_desk->text("lineEdit_FPS");
    };
    edit->setText("-");
    QCOMPARE(shown(12.34F), QString("- 12.3")); // the rate itself changes nothing on show
    QCOMPARE(shown(9.96F), QString("12.3 10.0"));
    QCOMPARE(shown(0.25F), QString("10.0 0.2")); // ties to even
}

void tst_cameras::frameRate_isToldByTheAr0134Alone()
{
    QVERIFY(m_desk->connectUnit());
    QSignalSpy told(FrameDelivery::m_pInstance, &FrameDelivery::sig_FpsUpdate);
    if (!m_bArduCam) {
        QVERIFY(waitForExposures(60)); // more than two seconds
        QCOMPARE(told.count(), 0);
        QCOMPARE(m_desk->text("lineEdit_FPS"), QString("0.0"));
        return;
    }
    QVERIFY(told.wait(patience::limit(5000)));
    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY_WITH_TIMEOUT(told.count() >= 4, patience::limit(10000));
    const qint64 elapsed = timer.elapsed();
    QVERIFY2(elapsed >= 2900 && elapsed < patience::limit(4500), qPrintable(QString::number(elapsed)));
    const double rate = told.last().first().toDouble();
    QVERIFY2(rate > 5.0 && rate < 1000.0 / 35.0, qPrintable(QString::number(rate)));
    QTRY_VERIFY(m_desk->text("lineEdit_FPS").toDouble() > 5.0);
}

void tst_cameras::fluorescenceGain_isTheOneOfThisCamera_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<double>("basler");
    QTest::addColumn<double>("ar0134");
    QTest::newRow("no file") << QByteArray() << 5.0 << 2.0;
    QTest::newRow("stored") << QByteArray("[Ch. GFP]\nGain=7\nGain AR=3\n[Ch. RFP]\nGain=7\nGain AR=3\n")
                            << 7.0 << 3.0;
}

void tst_cameras::fluorescenceGain_isTheOneOfThisCamera()
{
    QFETCH(QByteArray, settings);
    QFETCH(double, basler);
    QFETCH(double, ar0134);
    if (!settings.isEmpty())
        Desk::putSettings(settings);
    const double expected = m_bArduCam ? ar0134 : basler;
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
    for (const char* button : { "pushButton_ILLUMINATION_GFP", "pushButton_ILLUMINATION_RFP" }) {
        QVERIFY(hand::click(m_desk->window(), "pushButton_ILLUMINATION_BF"));
        QVERIFY(std::abs(camera().value("gainDb").toDouble()) < kGainStep);
        QVERIFY(hand::click(m_desk->window(), button));
        QCOMPARE(m_desk->text("doubleSpinBox_GAIN").toDouble(), expected);
        const double found = camera().value("gainDb").toDouble();
        QVERIFY2(
            std::abs(found - trueGain(expected)) < kGainStep, qPrintable(QString::number(found, 'f', 3)));
    }
}

void tst_cameras::fluorescenceGain_isStoredForThisCameraAlone_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("group");
    QTest::newRow("GFP") << "pushButton_ILLUMINATION_GFP"
                         << "Ch. GFP";
    QTest::newRow("RFP") << "pushButton_ILLUMINATION_RFP"
                         << "Ch. RFP";
}

void tst_cameras::fluorescenceGain_isStoredForThisCameraAlone()
{
    QFETCH(QString, button);
    QFETCH(QString, group);
    Desk::putSettings(QString("[%1]\nGain=6\nGain AR=4\n").arg(group).toLatin1());
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
    QVERIFY(hand::click(m_desk->window(), button));
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_GAIN", "9.7"));
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_GAIN", Qt::Key_Return));
    QVERIFY(hand::click(m_desk->window(), "pushButton_ILLUMINATION_SET"));
    const QByteArray file = Desk::settings();
    QVERIFY2(file.contains(m_bArduCam ? "\nGain=6\n" : "\nGain=9\n"), file);
    QVERIFY2(file.contains(m_bArduCam ? "\nGain AR=9\n" : "\nGain AR=4\n"), file);
}

void tst_cameras::brightFieldGain_isOneForBothCameras()
{
    Desk::putSettings("[Ch. BF]\nGain=3\nGain AR=8\n");
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(m_desk->text("doubleSpinBox_GAIN").toDouble(), 3.0);
    QVERIFY(std::abs(camera().value("gainDb").toDouble() - trueGain(3.0)) < kGainStep);
}

void tst_cameras::exitInLiveMode_endsTheStream()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(FrameDelivery::m_pInstance->getAutoTriggeringMode());
    QVERIFY(waitForExposures(5));
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    // The order to end reaches the camera's thread by its event loop.
    QTRY_VERIFY(!FrameDelivery::m_pInstance->getAutoTriggeringMode());
    m_desk->close();
    QVERIFY(FrameDelivery::m_pInstance == nullptr);
    QTRY_VERIFY(!camera().value("open").toBool());
    const int exposures = camera().value("exposures").toInt();
    QTest::qWait(200); // several exposures would fit in
    QCOMPARE(camera().value("exposures").toInt(), exposures);
}

void tst_cameras::windowThatGoesInLiveMode_takesTheCameraAlong()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(waitForExposures(5));
    QElapsedTimer timer;
    timer.start();
    m_desk->closeInLiveMode();
    QVERIFY2(timer.elapsed() < patience::limit(3000), qPrintable(QString::number(timer.elapsed())));
    QVERIFY(FrameDelivery::m_pInstance == nullptr);
    QTRY_VERIFY(!camera().value("open").toBool());
    QCoreApplication::processEvents(); // what was still queued for the window
}

void tst_cameras::nextWindow_findsTheCameraAgain()
{
    for (int i = 0; i < 3; ++i) {
        QVERIFY(m_desk->connectUnit());
        QVERIFY(waitForExposures(3));
        m_desk->closeInLiveMode();
    }
}

WORKFLOW_MAIN(tst_cameras)
#include "tst_cameras.moc"
