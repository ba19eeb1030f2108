#include "camera/framedelivery.h"
#include "tests/workflows/Desk.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <QCheckBox>

/// The mirror boxes of a unit with the AR0134 camera: their way to the sensor, to the picture and to the
/// file.
class tst_mirrors : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutKeys_theVerticalBoxIsTickedAndThePictureIsUpright();
    void storedWords_areReadByTheFormAndByTheDriver_data();
    void storedWords_areReadByTheFormAndByTheDriver();
    void tickedBoxes_areShownBySight_data();
    void tickedBoxes_areShownBySight();
    void click_reachesTheSensorBeforeItReturns();
    void firstClick_bringsBothBoxesToTheSensor();
    void click_isInTheFileAtOnce();
    void storedMirrors_areThereInTheNextWindow();
    void secondConnection_leavesTheMirrorsAlone();

private:
    bool clickBox(const QString& box) { return hand::click(m_desk->window(), box); }
    bool isTicked(const char* box) { return m_desk->widget<QCheckBox>(box)->isChecked(); }
    QString boxes();
    QString sensor();
    cv::Mat picture();

    std::unique_ptr<Desk> m_desk;
};

namespace {

const QString kHor = "checkBox_HOR_MIRROR";
const QString kVer = "checkBox_VER_MIRROR";

QString words(bool bHorizontal, bool bVertical)
{
    return QString("%1 %2").arg(bHorizontal ? "hor" : "-", bVertical ? "ver" : "-");
}

/// Correlation of two pictures, 1 for the same; noise is smoothed away first.
double likeness(const cv::Mat& a, const cv::Mat& b)
{
    cv::Mat smoothA, smoothB, result;
    cv::blur(a, smoothA, { 5, 5 });
    cv::blur(b, smoothB, { 5, 5 });
    cv::matchTemplate(smoothA, smoothB, result, cv::TM_CCOEFF_NORMED);
    return static_cast<double>(result.at<float>(0, 0));
}

cv::Mat mirrored(const cv::Mat& picture, bool bHorizontal, bool bVertical)
{
    cv::Mat result = picture.clone();
    if (bHorizontal)
        cv::flip(result, result, 1);
    if (bVertical)
        cv::flip(result, result, 0);
    return result;
}

} // namespace

void tst_mirrors::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->isArduCam());
}

void tst_mirrors::cleanup()
{
    m_desk.reset();
}

QString tst_mirrors::boxes()
{
    return words(isTicked("checkBox_HOR_MIRROR"), isTicked("checkBox_VER_MIRROR"));
}

QString tst_mirrors::sensor()
{
    const QJsonObject camera = m_desk->rig.state().value("camera").toObject();
    return words(camera.value("mirrorX").toBool(), camera.value("mirrorY").toBool());
}

/// A picture that was begun after the call.
cv::Mat tst_mirrors::picture()
{
    const auto exposures
        = [this] { return m_desk->rig.state().value("camera").toObject().value("exposures").toInt(); };
    // The one under way has begun before; the beginning of the one behind the next means that this is there.
    const int begin = exposures();
    cv::Mat frame;
    if (patience::waitFor([&] { return exposures() >= begin + 3; }, 10000))
        FrameDelivery::m_pInstance->pushMatImage(frame);
    return frame;
}

void tst_mirrors::withoutKeys_theVerticalBoxIsTickedAndThePictureIsUpright()
{
    // Form and driver read the same key, each with a default of its own.
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(boxes(), words(false, true));
    QCOMPARE(sensor(), words(false, false));
}

void tst_mirrors::storedWords_areReadByTheFormAndByTheDriver_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("driver");
    QTest::newRow("hor") << QByteArray("Hor. Mirror=Yes\nVer. Mirror=No\n") << words(true, false)
                         << words(true, false);
    QTest::newRow("ver") << QByteArray("Hor. Mirror=No\nVer. Mirror=Yes\n") << words(false, true)
                         << words(false, true);
    QTest::newRow("both") << QByteArray("Hor. Mirror=Yes\nVer. Mirror=Yes\n") << words(true, true)
                          << words(true, true);
    QTest::newRow("none") << QByteArray("Hor. Mirror=No\nVer. Mirror=No\n") << words(false, false)
                          << words(false, false);
    // The form asks for "Yes", the driver for anything but "No".
    QTest::newRow("other words") << QByteArray("Hor. Mirror=yes\nVer. Mirror=no\n") << words(false, false)
                                 << words(true, true);
}

void tst_mirrors::storedWords_areReadByTheFormAndByTheDriver()
{
    QFETCH(QByteArray, settings);
    Desk::putSettings("[ArduCAM]\n" + settings);
    QVERIFY(m_desk->connectUnit());
    QTEST(boxes(), "form");
    QTEST(sensor(), "driver");
}

void tst_mirrors::tickedBoxes_areShownBySight_data()
{
    QTest::addColumn<QStringList>("clicks");
    QTest::addColumn<bool>("horizontal");
    QTest::addColumn<bool>("vertical");
    QTest::newRow("hor") << QStringList { kHor } << true << false;
    QTest::newRow("ver") << QStringList { kVer } << false << true;
    QTest::newRow("both") << QStringList { kHor, kVer } << true << true;
    QTest::newRow("there and back") << QStringList { kHor, kHor } << false << false;
}

void tst_mirrors::tickedBoxes_areShownBySight()
{
    QFETCH(QStringList, clicks);
    QFETCH(bool, horizontal);
    QFETCH(bool, vertical);
    Desk::putSettings("[ArduCAM]\nHor. Mirror=No\nVer. Mirror=No\n");
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.set("x", 30931)); // a field of cells
    const cv::Mat upright = picture();
    QVERIFY(!upright.empty());
    for (const QString& box : clicks)
        QVERIFY(clickBox(box));
    const cv::Mat seen = picture();
    for (const bool bHor : { false, true }) {
        for (const bool bVer : { false, true }) {
            const double found = likeness(mirrored(upright, bHor, bVer), seen);
            const QString what = QString("%1: %2").arg(words(bHor, bVer)).arg(found);
            const bool bExpected = bHor == horizontal && bVer == vertical;
            QVERIFY2(bExpected ? found > 0.9 : found < 0.5, qPrintable(what));
        }
    }
}

void tst_mirrors::click_reachesTheSensorBeforeItReturns()
{
    Desk::putSettings("[ArduCAM]\nHor. Mirror=No\nVer. Mirror=No\n");
    QVERIFY(m_desk->connectUnit());
    QVERIFY(clickBox(kHor));
    QCOMPARE(sensor(), words(true, false));
    QVERIFY(clickBox(kVer));
    QCOMPARE(sensor(), words(true, true));
    QVERIFY(clickBox(kHor));
    QCOMPARE(sensor(), words(false, true));
    QVERIFY(clickBox(kVer));
    QCOMPARE(sensor(), words(false, false));
}

void tst_mirrors::firstClick_bringsBothBoxesToTheSensor()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(clickBox(kHor));
    QCOMPARE(sensor(), words(true, true));
}

void tst_mirrors::click_isInTheFileAtOnce()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(!Desk::settings().contains("[ArduCAM]"));
    QVERIFY(clickBox(kHor));
    QVERIFY(Desk::settings().contains("[ArduCAM]\nHor. Mirror=Yes\n"));
    QVERIFY(!Desk::settings().contains("Ver. Mirror")); // each box its own key
    QVERIFY(clickBox(kVer)); // it was ticked
    QVERIFY(Desk::settings().contains("[ArduCAM]\nHor. Mirror=Yes\nVer. Mirror=No\n"));
    QVERIFY(clickBox(kHor));
    QVERIFY(clickBox(kVer));
    QVERIFY(Desk::settings().contains("[ArduCAM]\nHor. Mirror=No\nVer. Mirror=Yes\n"));
}

void tst_mirrors::storedMirrors_areThereInTheNextWindow()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(clickBox(kHor));
    QVERIFY(clickBox(kVer));
    m_desk->close();
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(boxes(), words(true, false));
    QCOMPARE(sensor(), words(true, false));
}

void tst_mirrors::secondConnection_leavesTheMirrorsAlone()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(clickBox(kHor));
    QVERIFY(clickBox("pushButton_CONNECT"));
    QVERIFY(m_desk->isShown("checkBox_HOR_MIRROR"));
    QCOMPARE(boxes(), words(true, true));
    QCOMPARE(sensor(), words(true, true));
}

WORKFLOW_MAIN(tst_mirrors)
#include "tst_mirrors.moc"
