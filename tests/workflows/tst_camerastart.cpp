#include "camera/framedelivery.h"
#include "tests/workflows/Desk.h"

/// A camera that was there when the window looked for it, and is pulled or fails before its picture runs. The
/// Basler camera has to grab to count as running, the AR0134 to be open.
class tst_camerastart : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void cameraThatIsNotStarted_isToldOfByOneBox_data();
    void cameraThatIsNotStarted_isToldOfByOneBox();
    void boardWithoutAPicture_staysConnectedAndIsLeftInOrder();
    void boxesBesideThePicture_arePassedOnToARunningCameraAlone();
    void furtherConnection_tellsTheSameUntilTheCameraStarts();
    void secondConnectionWithADeadCamera_closesTheTabsAgain();
    void cameraThatCannotBeOpened_countsAsNone_data();
    void cameraThatCannotBeOpened_countsAsNone();

private:
    /// What keeps the camera of this unit from starting, from now on.
    bool failAtTheStart();
    bool openWithAFailingStart();
    /// The AR0134 is open all the same: its first picture fails, and nothing else.
    bool runs() const { return m_bArduCam; }
    QStringList textsOfTheStart() const { return runs() ? QStringList() : QStringList { kNotRunning }; }

    const QString kNotRunning = "Check CAMERA connection !";
    std::unique_ptr<Desk> m_desk;
    bool m_bArduCam = false;
};

namespace {

constexpr int kBusError = -6; ///< of the camera's wire

} // namespace

void tst_camerastart::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    m_bArduCam = m_desk->isArduCam();
}

void tst_camerastart::cleanup()
{
    m_desk.reset();
}

bool tst_camerastart::failAtTheStart()
{
    return m_desk->rig.fault("cameraError", m_bArduCam ? "Trigger" : "StartStream", 0, kBusError);
}

bool tst_camerastart::openWithAFailingStart()
{
    m_desk->open();
    return failAtTheStart() && m_desk->waitForConnection();
}

void tst_camerastart::cameraThatIsNotStarted_isToldOfByOneBox_data()
{
    QTest::addColumn<bool>("pulled");
    QTest::newRow("pulled before the start") << true;
    QTest::newRow("fails at the start") << false;
}

void tst_camerastart::cameraThatIsNotStarted_isToldOfByOneBox()
{
    QFETCH(bool, pulled);
    m_desk->open();
    QVERIFY(FrameDelivery::m_pInstance != nullptr);
    QVERIFY(pulled ? m_desk->rig.fault("unplug") : failAtTheStart());
    QVector<bool> exitShown;
    m_desk->boxes.lookAtEach([&](QDialog&) { exitShown << m_desk->isShown("pushButton_EXIT"); });
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), textsOfTheStart());
    for (const ShownBox& box : m_desk->boxes.boxes())
        QCOMPARE(box.title, QString("Error"));
    QCOMPARE(exitShown, QVector<bool>(textsOfTheStart().size(), false));
    // The gate of all panels opens when the camera runs.
    QCOMPARE(m_desk->isEnabled("tabWidget_CONTROLLER"), runs());
    QVERIFY(m_desk->log.contains(runs() ? "void MainWindow::check_CameraConnection() 2 true"
                                        : "void MainWindow::check_CameraConnection() 1 false"));
    QVERIFY(m_desk->log.contains(runs() ? "Software Trigger failed" : "Exception: Start Grabbing failed"));
}

void tst_camerastart::boardWithoutAPicture_staysConnectedAndIsLeftInOrder()
{
    int mark = m_desk->rig.mark();
    QVERIFY(openWithAFailingStart());
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
    QCOMPARE(m_desk->style("pushButton_CONNECT"),
        QString("font: 11pt 'Sans Serif'; color : gray; background-color : none"));
    QCOMPARE(m_desk->text("lineEdit_COM_PORT_CONTROLLER"), QString("ttyUSB0"));
    QCOMPARE(m_desk->window().cursor().shape(), Qt::ArrowCursor);
    // The mirrors follow the kind of the camera, which is known.
    QCOMPARE(m_desk->isShown("checkBox_HOR_MIRROR"), m_bArduCam);
    QCOMPARE(m_desk->isShown("checkBox_VER_MIRROR"), m_bArduCam);
    mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
}

void tst_camerastart::boxesBesideThePicture_arePassedOnToARunningCameraAlone()
{
    QVERIFY(openWithAFailingStart());
    const int logMark = m_desk->log.mark();
    QVERIFY(hand::click(m_desk->window(), "checkBox_CROSS_LINE"));
    QVERIFY(hand::click(m_desk->window(), "checkBox_SCALE_TO_FIT"));
    QCOMPARE(m_desk->log.contains("CameraView::setCrossLine(bool) true", logMark), runs());
    QCOMPARE(m_desk->log.contains("CameraView::setFitMode(bool) false", logMark), runs());
}

void tst_camerastart::furtherConnection_tellsTheSameUntilTheCameraStarts()
{
    QVERIFY(openWithAFailingStart());
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts(), textsOfTheStart() + textsOfTheStart());
    QCOMPARE(m_desk->isEnabled("tabWidget_CONTROLLER"), runs());
    QVERIFY(m_desk->rig.clearFaults());
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts(), textsOfTheStart() + textsOfTheStart());
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_camerastart::secondConnectionWithADeadCamera_closesTheTabsAgain()
{
    QVERIFY(m_desk->connectUnit());
    FrameDelivery::m_pInstance->stop();
    QTRY_VERIFY(!FrameDelivery::m_pInstance->getAutoTriggeringMode());
    QVERIFY(m_desk->rig.fault("unplug"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts(), textsOfTheStart());
    QCOMPARE(m_desk->isEnabled("tabWidget_CONTROLLER"), runs());
}

void tst_camerastart::cameraThatCannotBeOpened_countsAsNone_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("refuses") << "openFails";
    QTest::newRow("pulled") << "unplug";
}

void tst_camerastart::cameraThatCannotBeOpened_countsAsNone()
{
    QFETCH(QString, fault);
    QVERIFY(m_desk->rig.fault(fault, "Open", 0));
    m_desk->open();
    QVERIFY(FrameDelivery::m_pInstance == nullptr);
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(),
        QStringList({ "Check the CAMERA connection !", "Check if the CAMERA is present !", kNotRunning }));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    QVERIFY(m_desk->log.contains("m_CAM_type: 0"));
}

WORKFLOW_MAIN(tst_camerastart)
#include "tst_camerastart.moc"
