#include "tests/workflows/Desk.h"

#include <QCheckBox>
#include <QTabWidget>
#include <QTimer>

#include <functional>

/// From the press of CONNECT to open tabs, and out again.
class tst_connection : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void wholeConnection_sendsTheseLines();
    void connectedUnit_showsItsState();
    void mirrorBoxes_standOnUnitsWithTheAr0134();
    void whileSearching_buttonIsBusyAndExitHidden();
    void withoutSettings_theFileHoldsOnlyWhatTheConnectionWrites();
    void secondPress_runsTheWholeSequenceAgain();
    void whileSearchingAgain_panelsAreOutOfReach();
    void pressDuringTheSequence_doesNothing();
    void emptyAnswerDuringBringUp_failsInitialize_data();
    void emptyAnswerDuringBringUp_failsInitialize();
    void failedInitialize_canBeRepeatedByTheButton();
    void failedSecondConnection_closesTheTabsAgain();
    void exit_switchesOffHomesAndCloses();
    void exitDuringASearch_goesHomeOnceAndBringsNothingUp();
    void exitDuringASearchInVain_sendsNothing();
    void exitWithChangedSerial_restartsAfterOk();
    void exitWithChangedSerial_closedBoxDoesNotRestart();
    void exitWithChangedSerial_missingServiceManagerIsLogged();

private:
    bool leaveDuringASearch();

    std::unique_ptr<Desk> m_desk;
};

namespace {

QByteArray callsOfSystemctl()
{
    QFile log("/run/rig/stubs.log");
    QByteArray calls;
    if (log.open(QIODevice::ReadOnly)) {
        const auto lines = log.readAll().split('\n');
        for (const QByteArray& line : lines) {
            if (line.contains("systemctl"))
                calls += line + "\n";
        }
    }
    return calls;
}

/// Acts once, from inside the search's own event loop, as soon as the button tells that it is under way.
class DuringSearch {
public:
    DuringSearch(Desk& desk, std::function<void()> action)
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this, &desk, action] {
            if (desk.text("pushButton_CONNECT") != "~~~")
                return;
            m_timer.stop();
            action();
        });
        m_timer.start(10);
    }

private:
    QTimer m_timer;
};

} // namespace

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

void tst_connection::whileSearching_buttonIsBusyAndExitHidden()
{
    struct {
        QString style;
        int cursor = -1;
        bool connectEnabled = false;
        bool exitShown = true;
        bool tabsEnabled = true;
    } seen;
    m_desk->open();
    QVERIFY(!m_desk->isShown("pushButton_EXIT"));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    DuringSearch look(*m_desk, [&] {
        seen.style = m_desk->style("pushButton_CONNECT");
        seen.cursor = m_desk->window().cursor().shape();
        seen.connectEnabled = m_desk->isEnabled("pushButton_CONNECT");
        seen.exitShown = m_desk->isShown("pushButton_EXIT");
        seen.tabsEnabled = m_desk->isEnabled("tabWidget_CONTROLLER");
    });
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(
        seen.style, QString("font: 11pt 'Sans Serif'; color : black; background-color : rgb(255, 170, 0)"));
    QCOMPARE(seen.cursor, int(Qt::WaitCursor));
    QVERIFY(seen.connectEnabled);
    QVERIFY(!seen.exitShown);
    QVERIFY(!seen.tabsEnabled);
}

void tst_connection::withoutSettings_theFileHoldsOnlyWhatTheConnectionWrites()
{
    QVERIFY(m_desk->connectUnit());
    const QByteArray firmware = m_desk->rig.truth().value("firmware").toString().toUtf8();
    QCOMPARE(Desk::settings(),
        QByteArray("[Calibration]\nPrisma offset=0\n\n[Software]\nVersion FW=" + firmware + "\n"));
    QVERIFY(!m_desk->log.contains("settings cannot be read"));
}

void tst_connection::secondPress_runsTheWholeSequenceAgain()
{
    QVERIFY(m_desk->connectUnit());
    const int mark = m_desk->rig.mark();
    const int logMark = m_desk->log.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(m_desk->log.contains("@ [Basler] CAMERA connected...", logMark));
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_connection::whileSearchingAgain_panelsAreOutOfReach()
{
    // The port under trial may be one that never answers: a panel would wait for it for ever.
    QVERIFY(m_desk->connectUnit());
    bool tabsEnabled = true;
    DuringSearch look(*m_desk, [&] { tabsEnabled = m_desk->isEnabled("tabWidget_CONTROLLER"); });
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(!tabsEnabled);
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_connection::pressDuringTheSequence_doesNothing()
{
    const int mark = m_desk->rig.mark();
    m_desk->open();
    int presses = 0;
    DuringSearch press(*m_desk, [&] {
        presses += hand::click(m_desk->window(), "pushButton_CONNECT");
        presses += hand::click(m_desk->window(), "pushButton_CONNECT");
    });
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(presses, 2);
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
}

void tst_connection::emptyAnswerDuringBringUp_failsInitialize_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("sent"); // lines up to the one that is answered by nothing
    const QStringList lines = linesOfConnection();
    // The light has no test of its answers: the first eight lines behind the search count.
    for (int i = 1; i <= 7; ++i)
        QTest::newRow(qPrintable(lines[i])) << lines[i] << i + 1;
}

void tst_connection::emptyAnswerDuringBringUp_failsInitialize()
{
    QFETCH(QString, line);
    QFETCH(int, sent);
    const int mark = m_desk->rig.mark();
    QVERIFY(m_desk->rig.fault("nul", line));
    QString textWhileOpen;
    QCursor cursorWhileOpen;
    m_desk->boxes.lookAtEach([&](QDialog&) {
        textWhileOpen = m_desk->text("pushButton_CONNECT");
        cursorWhileOpen = m_desk->window().cursor();
    });
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Fail CONTROLLER initialize !" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes().first().buttons.size(), 1);
    QCOMPARE(m_desk->boxes.boxes().first().icon, QMessageBox::Information);
    QCOMPARE(textWhileOpen, QString("~~~"));
    QCOMPARE(cursorWhileOpen.shape(), Qt::WaitCursor);
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection().mid(0, sent));
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
    QCOMPARE(m_desk->style("pushButton_CONNECT"),
        QString("font: 11pt 'Sans Serif'; color : black; background-color : none"));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_connection::failedInitialize_canBeRepeatedByTheButton()
{
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE ORIGIN"));
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
}

void tst_connection::failedSecondConnection_closesTheTabsAgain()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE ORIGIN"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Fail CONTROLLER initialize !" }));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
    // The board is gone: searched for in vain.
    QVERIFY(m_desk->rig.fault("silent"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts().mid(1),
        QStringList({ "COM Port [Controller] not find !!!", "Fail CONTROLLER connect !" }));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_connection::exit_switchesOffHomesAndCloses()
{
    QVERIFY(m_desk->connectUnit());
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    QVERIFY(m_desk->log.contains("!!!!!!!!!!!!!!!!!!!!!!RESTART"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QCOMPARE(callsOfSystemctl(), QByteArray());
}

/// Presses CONNECT, and EXIT while the search is under way; true when that ended the program's event loop.
bool tst_connection::leaveDuringASearch()
{
    int presses = 0;
    DuringSearch leave(*m_desk, [&] { presses += hand::click(m_desk->window(), "pushButton_EXIT"); });
    patience::later(0, this, [&] { presses += hand::click(m_desk->window(), "pushButton_CONNECT"); });
    // As in the program, the end of the window ends the application's loop and all that run in it.
    patience::later(patience::limit(20000), &m_desk->window(), [] { QCoreApplication::exit(1); });
    return QCoreApplication::exec() == 0 && presses == 2 && !m_desk->window().isVisible();
}

void tst_connection::exitDuringASearch_goesHomeOnceAndBringsNothingUp()
{
    QVERIFY(m_desk->connectUnit());
    const int mark = m_desk->rig.mark();
    const int logMark = m_desk->log.mark();
    QVERIFY(leaveDuringASearch());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#VER", "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    QVERIFY(!m_desk->log.contains("CAMERA connected...", logMark));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

/// The port under trial is not the board's then: a line that waits for its answer would wait for ever.
void tst_connection::exitDuringASearchInVain_sendsNothing()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.fault("silent"));
    const int mark = m_desk->rig.mark();
    QVERIFY(leaveDuringASearch());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#VER" }));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "COM Port [Controller] not find !!!" }));
}

void tst_connection::exitWithChangedSerial_closedBoxDoesNotRestart()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_SERIAL_WRITE"));
    const QByteArray before = callsOfSystemctl();
    m_desk->boxes.closeNext();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QCOMPARE(m_desk->boxes.texts(),
        QStringList({ "The serial number has changed, so a restart will be performed!!" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Info"));
    QVERIFY(!m_desk->window().isVisible());
    QTest::qWait(200);
    QCOMPARE(callsOfSystemctl(), before);
}

void tst_connection::exitWithChangedSerial_restartsAfterOk()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_SERIAL_WRITE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QCOMPARE(m_desk->boxes.texts(),
        QStringList({ "The serial number has changed, so a restart will be performed!!" }));
    QVERIFY(patience::waitFor([] { return callsOfSystemctl().contains("restart rc-local.service"); }));
    QVERIFY(!m_desk->window().isVisible());
}

void tst_connection::exitWithChangedSerial_missingServiceManagerIsLogged()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_SERIAL_WRITE"));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    const bool clicked = hand::click(m_desk->window(), "pushButton_EXIT");
    qputenv("PATH", path);
    QVERIFY(clicked);
    QVERIFY(m_desk->log.contains("systemctl cannot be started"));
    QVERIFY(!m_desk->window().isVisible());
}

WORKFLOW_MAIN(tst_connection)
#include "tst_connection.moc"
