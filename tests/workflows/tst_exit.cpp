#include "tests/workflows/DuringSearch.h"

#include <QFile>
#include <QJsonArray>

/// The orderly way out.
class tst_exit : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void exit_switchesOffHomesAndCloses();
    void exit_givesTheLightTimeToGoOut();
    void exitAfterFailedInitialize_sendsItsCommandsAllTheSame();
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

} // namespace

void tst_exit::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_exit::cleanup()
{
    m_desk.reset();
}

void tst_exit::exit_switchesOffHomesAndCloses()
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

void tst_exit::exit_givesTheLightTimeToGoOut()
{
    QVERIFY(m_desk->connectUnit());
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    // The light has 25 ms to go out before the axis moves.
    const QJsonArray lines
        = m_desk->rig.request({ { "cmd", "transcript" }, { "from", mark } }).value("lines").toArray();
    QCOMPARE(lines[1].toObject().value("text").toString().trimmed(), QString("$OK#A#LED OFF1"));
    QCOMPARE(lines[2].toObject().value("text").toString().trimmed(), QString("$X#STAGE ORIGIN"));
    const double pause
        = lines[2].toObject().value("ms").toDouble() - lines[1].toObject().value("ms").toDouble();
    QVERIFY2(pause >= 25.0, qPrintable(QString::number(pause)));
    QVERIFY(m_desk->log.contains("!!!!!!!!!!!!!!!!!!!!!!RESTART"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_exit::exitAfterFailedInitialize_sendsItsCommandsAllTheSame()
{
    QVERIFY(m_desk->rig.fault("nul", "$X#STAGE EJECT"));
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Fail CONTROLLER initialize !" }));
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    QVERIFY(!m_desk->window().isVisible());
}

/// Presses CONNECT, and EXIT while the search is under way; true when that ended the program's event loop.
bool tst_exit::leaveDuringASearch()
{
    int presses = 0;
    DuringSearch leave(*m_desk, [&] { presses += hand::click(m_desk->window(), "pushButton_EXIT"); });
    patience::later(0, this, [&] { presses += hand::click(m_desk->window(), "pushButton_CONNECT"); });
    // As in the program, the end of the window ends the application's loop and all that run in it.
    patience::later(patience::limit(20000), &m_desk->window(), [] { QCoreApplication::exit(1); });
    return QCoreApplication::exec() == 0 && presses == 2 && !m_desk->window().isVisible();
}

void tst_exit::exitDuringASearch_goesHomeOnceAndBringsNothingUp()
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
void tst_exit::exitDuringASearchInVain_sendsNothing()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.fault("silent"));
    const int mark = m_desk->rig.mark();
    QVERIFY(leaveDuringASearch());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#VER" }));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "COM Port [Controller] not find !!!" }));
}

void tst_exit::exitWithChangedSerial_restartsAfterOk()
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

void tst_exit::exitWithChangedSerial_closedBoxDoesNotRestart()
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

void tst_exit::exitWithChangedSerial_missingServiceManagerIsLogged()
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

WORKFLOW_MAIN(tst_exit)
#include "tst_exit.moc"
