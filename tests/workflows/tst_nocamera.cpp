#include "tests/workflows/Desk.h"

#include <QSlider>
#include <QSpinBox>

/// No camera on the bus: the board is brought up all the same, and the panels stay out of reach.
class tst_nocamera : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_desk.reset(); }

    void threeBoxes_tellOfIt();
    void exitButton_appearsOnlyAfterTheLastBox();
    void window_showsAConnectedBoardAndClosedTabs();
    void boxesBesideThePicture_arePassedToNobody();
    void secondAttempt_tellsTheSameAgain();
    void set_storesNoFluorescenceGain_data();
    void set_storesNoFluorescenceGain();
    void exit_sendsItsCommands();

private:
    /// What the connection tells; the view has told before, when it looked for a camera.
    const QStringList m_texts { "Check if the CAMERA is present !", "Check CAMERA connection !" };
    QVector<bool> m_exitShown; ///< while each box was open
    int m_mark = 0;
    std::unique_ptr<Desk> m_desk;
};

void tst_nocamera::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    m_mark = m_desk->rig.mark();
    m_desk->open();
    m_desk->boxes.lookAtEach([this](QDialog&) { m_exitShown << m_desk->isShown("pushButton_EXIT"); });
    QVERIFY(m_desk->waitForConnection());
    m_desk->boxes.lookAtEach({});
}

void tst_nocamera::threeBoxes_tellOfIt()
{
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Check the CAMERA connection !" }) + m_texts);
    for (const ShownBox& box : m_desk->boxes.boxes().mid(1)) {
        QCOMPARE(box.title, QString("Error"));
        QCOMPARE(box.buttons.size(), 1);
    }
}

void tst_nocamera::exitButton_appearsOnlyAfterTheLastBox()
{
    QCOMPARE(m_exitShown, QVector<bool>({ false, false }));
    QVERIFY(m_desk->isShown("pushButton_EXIT"));
}

void tst_nocamera::window_showsAConnectedBoardAndClosedTabs()
{
    QCOMPARE(m_desk->rig.sentSince(m_mark), linesOfConnection());
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
    QCOMPARE(m_desk->style("pushButton_CONNECT"),
        QString("font: 11pt 'Sans Serif'; color : gray; background-color : none"));
    QCOMPARE(m_desk->text("lineEdit_COM_PORT_CONTROLLER"), QString("ttyUSB0"));
    QCOMPARE(m_desk->window().cursor().shape(), Qt::ArrowCursor);
    QVERIFY(!m_desk->isShown("BASLER_VIDEO_WIDGET"));
    const int checked = m_desk->log.indexOf("void MainWindow::check_CameraConnection() 0 false");
    QVERIFY(checked >= 0);
    QVERIFY(m_desk->log.indexOf("m_CAM_type: 0") > checked);
    // Of no kind: the mirror boxes are neither hidden nor cleared.
    QVERIFY(m_desk->isShown("checkBox_HOR_MIRROR"));
    QVERIFY(m_desk->isShown("checkBox_VER_MIRROR"));
    QVERIFY(m_desk->widget("checkBox_VER_MIRROR")->property("checked").toBool());
}

void tst_nocamera::boxesBesideThePicture_arePassedToNobody()
{
    const int logMark = m_desk->log.mark();
    for (const char* box :
        { "checkBox_CROSS_LINE", "checkBox_SCALE_TO_FIT", "checkBox_HOR_MIRROR", "checkBox_VER_MIRROR" })
        QVERIFY(hand::click(m_desk->window(), box));
    QCOMPARE(m_desk->log.lines(logMark).filter("CameraView::"), QStringList());
}

void tst_nocamera::secondAttempt_tellsTheSameAgain()
{
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts().mid(3), m_texts);
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_nocamera::set_storesNoFluorescenceGain_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("BF") << "BF" << QByteArray()
                        << QByteArray("[Ch. BF]\nGain=6\nExposure=45\nLED1=11\nLED2=12\n");
    QTest::newRow("GFP") << "GFP" << QByteArray() << QByteArray("[Ch. GFP]\nExposure=45\nLED=11\n");
    QTest::newRow("RFP") << "RFP" << QByteArray() << QByteArray("[Ch. RFP]\nExposure=45\nLED=11\n");
    QTest::newRow("GFP, stored gains stay")
        << "GFP" << QByteArray("[Ch. GFP]\nGain=7\nGain AR=8\n")
        << QByteArray("[Ch. GFP]\nExposure=45\nGain=7\nGain AR=8\nLED=11\n");
}

/// Where the camera is of no known kind a fluorescence gain has no key of its own.
void tst_nocamera::set_storesNoFluorescenceGain()
{
    QFETCH(QString, channel);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    if (before.isEmpty())
        Desk::removeSettings();
    else
        Desk::putSettings(before);
    MainWindow& window = m_desk->window();
    // The pages are out of reach of a hand.
    if (channel == "BF")
        window.on_pushButton_ILLUMINATION_BF_clicked();
    else if (channel == "GFP")
        window.on_pushButton_ILLUMINATION_GFP_clicked();
    else
        window.on_pushButton_ILLUMINATION_RFP_clicked();
    m_desk->widget<QSlider>("horizontalSlider_GAIN")->setValue(65);
    m_desk->widget<QSlider>("horizontalSlider_EXPOSURE")->setValue(45);
    m_desk->widget<QSpinBox>("spinBox_LED1")->setValue(11);
    m_desk->widget<QSpinBox>("spinBox_LED2")->setValue(12);
    window.on_pushButton_ILLUMINATION_SET_clicked();
    QCOMPARE(sortedLines(Desk::settings()), sortedLines(after));
    window.on_pushButton_ILLUMINATION_BF_clicked();
}

void tst_nocamera::exit_sendsItsCommands()
{
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
}

WORKFLOW_MAIN(tst_nocamera)
#include "tst_nocamera.moc"
