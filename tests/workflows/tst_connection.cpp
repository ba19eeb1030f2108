#include "tests/workflows/Desk.h"

#include <QCheckBox>
#include <QTabWidget>

/// From the press of CONNECT to open tabs, on a good day.
class tst_connection : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void wholeConnection_sendsTheseLines();
    void connectedUnit_showsItsState();
    void mirrorBoxes_standOnUnitsWithTheAr0134();
    void withoutSettings_theFileHoldsOnlyWhatTheConnectionWrites();

private:
    std::unique_ptr<Desk> m_desk;
};

void tst_connection::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_connection::cleanup()
{
    m_desk.reset();
}

void tst_connection::wholeConnection_sendsTheseLines()
{
    const int mark = m_desk->rig.mark();
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    const int logged = m_desk->log.indexOf("void MainWindow::on_pushButton_CONNECT_clicked()");
    QCOMPARE(m_desk->log.lines().value(logged),
        QString("void MainWindow::on_pushButton_CONNECT_clicked() m_bConnected_Controller: true"));
    QVERIFY(m_desk->log.contains("@ [Basler] CAMERA connected..."));
}

void tst_connection::connectedUnit_showsItsState()
{
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
    QCOMPARE(m_desk->style("pushButton_CONNECT"),
        QString("font: 11pt 'Sans Serif'; color : gray; background-color : none"));
    QCOMPARE(m_desk->text("lineEdit_COM_PORT_CONTROLLER"), QString("ttyUSB0"));
    QCOMPARE(m_desk->style("lineEdit_COM_PORT_CONTROLLER"),
        QString("font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)"));
    QCOMPARE(m_desk->window().cursor().shape(), Qt::ArrowCursor);
    QVERIFY(m_desk->isShown("BASLER_VIDEO_WIDGET"));
    QVERIFY(!m_desk->isShown("CAPTURE_IMAGE_WIDGET"));
    QVERIFY(!m_desk->isShown("lineEdit_FIRMWARE"));
    QVERIFY(!m_desk->isEnabled("pushButton_SHIFT_X_PLUS"));
    QCOMPARE(m_desk->widget<QTabWidget>("tabWidget_CONTROLLER")->currentIndex(), 2);
    // The firmware went to the hidden field and to the file.
    QCOMPARE(m_desk->text("lineEdit_FIRMWARE"), m_desk->rig.truth().value("firmware").toString());
}

void tst_connection::mirrorBoxes_standOnUnitsWithTheAr0134()
{
    const bool bArduCam = m_desk->isArduCam();
    const auto expectBoxes = [&] {
        for (const char* name : { "checkBox_HOR_MIRROR", "checkBox_VER_MIRROR" }) {
            QCOMPARE(m_desk->isShown(name), bArduCam);
            QCOMPARE(m_desk->widget<QCheckBox>(name)->isChecked(), bArduCam);
        }
    };
    Desk::putSettings("[ArduCAM]\nHor. Mirror=Yes\n"); // and the vertical one by default
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->log.contains(bArduCam ? "m_CAM_type: 2" : "m_CAM_type: 1"));
    expectBoxes();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    expectBoxes();
}

void tst_connection::withoutSettings_theFileHoldsOnlyWhatTheConnectionWrites()
{
    QVERIFY(m_desk->connectUnit());
    const QByteArray firmware = m_desk->rig.truth().value("firmware").toString().toUtf8();
    QCOMPARE(Desk::settings(),
        QByteArray("[Calibration]\nPrisma offset=0\n\n[Software]\nVersion FW=" + firmware + "\n"));
    QVERIFY(!m_desk->log.contains("settings cannot be read"));
}

WORKFLOW_MAIN(tst_connection)
#include "tst_connection.moc"
