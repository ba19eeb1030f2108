#include "tests/workflows/Desk.h"

#include <QJsonArray>
#include <QPlainTextEdit>

/// Days on which the line to the board is bad: replies in pieces, late, twice, lost, noise between them. What
/// the technician sees, where the stage ends up, and that the settings file holds what was measured alone.
class tst_badday_board : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void bringUpOnABadLine_endsAsOnAGoodOne_data();
    void bringUpOnABadLine_endsAsOnAGoodOne();
    void boardSlowerThanTheSearch_isFoundByTheNextPress();
    void focusOnABadLine_findsTheSamePosition_data();
    void focusOnABadLine_findsTheSamePosition();
    void staleEchoBeforeAPosition_isNotTakenForIt();
    void bringUpWithEveryReplyTwice_endsWithALitUnit();
    void motionReplyTwice_endsTheRunAndLeavesTheFile();
    void slopeOnABadLine_storesTheSameNineValues();
    void lostMotionReply_waitsForItAndLosesNothing();
    void boardThatFallsSilent_leavesTheWindowAndTheFile();
    void floodFromTheBoard_isShownAndChangesNothing();

private:
    bool pressAutofocus();
    bool focus();
    void applyFault(const QString& match);

    std::unique_ptr<Desk> m_desk;
};

namespace {

const QString kRun = "$Z#STAGE RUN";
constexpr int kCellsX = 30931; ///< a field of cells under the objective
/// Best focus of the unit everywhere, on the grid of a run around this reference.
constexpr int kFocus = 30000;
const QByteArray kReferenceInFocus = "[Calibration]\nZ reference=30000\n";

void addLineFaults()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("replies byte by byte") << "cut" << QJsonValue(1);
    QTest::newRow("replies in three pieces") << "cut" << QJsonValue(QJsonArray { 3, 1 });
    QTest::newRow("noise before every reply") << "noise" << QJsonValue(QString::fromLatin1("\xff~\x07OK"));
    QTest::newRow("every reply late") << "late" << QJsonValue(120);
}

} // namespace

void tst_badday_board::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_badday_board::cleanup()
{
    m_desk.reset();
}

/// The fault of the test's row, on every reply to such a line from now on.
void tst_badday_board::applyFault(const QString& match)
{
    QFETCH(QString, fault);
    QFETCH(QJsonValue, value);
    QVERIFY(m_desk->rig.fault(fault, match, 0, value));
}

/// Presses AF on a field of cells.
bool tst_badday_board::pressAutofocus()
{
    return m_desk->rig.set("x", kCellsX)
        && hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE")
        && hand::click(m_desk->window(), "pushButton_AUTOFOCUS");
}

/// The same, until the run has ended.
bool tst_badday_board::focus()
{
    const int before = m_desk->boxes.boxes().size();
    return pressAutofocus() && m_desk->boxes.waitForBoxes(before + 1, 60000);
}

void tst_badday_board::bringUpOnABadLine_endsAsOnAGoodOne_data()
{
    addLineFaults();
}

void tst_badday_board::bringUpOnABadLine_endsAsOnAGoodOne()
{
    QVERIFY(m_desk->connectUnit());
    const QByteArray goodFile = Desk::settings();
    QVERIFY(goodFile.contains("Version FW="));
    m_desk.reset();
    Desk::removeSettings();
    m_desk.reset(new Desk);

    applyFault({});
    const int mark = m_desk->rig.mark();
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    QCOMPARE(Desk::settings(), goodFile);
}

void tst_badday_board::boardSlowerThanTheSearch_isFoundByTheNextPress()
{
    QVERIFY(m_desk->rig.fault("late", "$A#VER", 1, 1500));
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(),
        QStringList({ "COM Port [Controller] not find !!!", "Fail CONTROLLER connect !" }));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    QVERIFY(Desk::settings().isEmpty());

    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("tabWidget_CONTROLLER"); }, 20000));
    QCOMPARE(m_desk->boxes.boxes().size(), 2);
    QVERIFY(Desk::settings().contains("Version FW="));
}

void tst_badday_board::focusOnABadLine_findsTheSamePosition_data()
{
    addLineFaults();
}

void tst_badday_board::focusOnABadLine_findsTheSamePosition()
{
    Desk::putSettings(kReferenceInFocus);
    QVERIFY(m_desk->connectUnit());
    const QByteArray file = Desk::settings();
    applyFault("$Z#STAGE");
    QVERIFY(focus());
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z").toInt(), kFocus - 115);
    QCOMPARE(m_desk->rig.state().value("z").toInt(), kFocus - 115);
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
    QCOMPARE(Desk::settings(), file);
}

void tst_badday_board::staleEchoBeforeAPosition_isNotTakenForIt()
{
    Desk::putSettings(kReferenceInFocus);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.fault("noise", "$Z#STAGE POS", 2, "$OK#Z#STAGE STOP\r\n"));
    QVERIFY(focus());
    QCOMPARE(m_desk->rig.state().value("z").toInt(), kFocus - 115);
}

void tst_badday_board::bringUpWithEveryReplyTwice_endsWithALitUnit()
{
    // A second copy is taken for the answer to the next command: the lines go out all the same.
    QVERIFY(m_desk->rig.fault("double", {}, 0));
    const int mark = m_desk->rig.mark();
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    QCOMPARE(m_desk->rig.state().value("leds").toObject().value("bf1").toInt(), 7);
    QCOMPARE(m_desk->text("lineEdit_FIRMWARE"), m_desk->rig.truth().value("firmware").toString());
}

void tst_badday_board::motionReplyTwice_endsTheRunAndLeavesTheFile()
{
    // A motion that is over twice takes two frames, and asks for two motions, at one place.
    Desk::putSettings(kReferenceInFocus);
    QVERIFY(m_desk->connectUnit());
    const QByteArray file = Desk::settings();
    const int mark = m_desk->rig.mark();
    QVERIFY(pressAutofocus());
    QVERIFY(patience::waitFor([&] { return m_desk->rig.sentSince(mark).count(kRun) >= 3; }));
    QVERIFY(m_desk->rig.fault("double", kRun));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    // One coarse step at most: the two chains of motions pass each place in either step.
    QVERIFY(std::abs(m_desk->rig.state().value("z").toInt() - (kFocus - 115)) <= 460);
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
    QCOMPARE(Desk::settings(), file);
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("AF"));
}

void tst_badday_board::slopeOnABadLine_storesTheSameNineValues()
{
    Desk::putSettings(kReferenceInFocus);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.fault("cut", {}, 0, 1));
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE", 0, 300));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_Z_SLOPE"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    const QByteArray file = Desk::settings();
    for (const char* line :
        { "Z ref A1=30000", "Z ref B1=30000", "Z ref slope=0.000", "Z reference=30000", "Z ref 1ch=29360",
            "Z ref 2ch=31920", "Z ref 3ch=29360", "Z ref 8ch=29360", "Z ref Validation=30000" })
        QVERIFY2(file.contains(QByteArray("\n") + line + "\n"), line);
}

void tst_badday_board::lostMotionReply_waitsForItAndLosesNothing()
{
    Desk::putSettings(kReferenceInFocus);
    QVERIFY(m_desk->connectUnit());
    const QByteArray file = Desk::settings();
    QVERIFY(m_desk->rig.fault("lose", kRun));
    const int mark = m_desk->rig.mark();
    QVERIFY(pressAutofocus());
    QVERIFY(m_desk->rig.waitForSent(kRun, mark));

    // The run waits; the rest of the window goes on.
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_POSITION_X"));
    QVERIFY(m_desk->rig.waitForSent("$X#STAGE POS", mark));
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("~~~"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QCOMPARE(Desk::settings(), file);

    // The stage did arrive; once the board says so the run ends as any other.
    QVERIFY(m_desk->rig.say(QString("$OK#Z#STAGE RUN#%1\r\n").arg(m_desk->rig.state().value("z").toInt())));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(m_desk->rig.state().value("z").toInt(), kFocus - 115);
    QCOMPARE(Desk::settings(), file);
}

void tst_badday_board::boardThatFallsSilent_leavesTheWindowAndTheFile()
{
    Desk::putSettings(kReferenceInFocus);
    QVERIFY(m_desk->connectUnit());
    const QByteArray file = Desk::settings();
    QVERIFY(m_desk->rig.fault("silent", kRun));
    const int mark = m_desk->rig.mark();
    QVERIFY(pressAutofocus());
    QVERIFY(m_desk->rig.waitForSent(kRun, mark));
    const auto exposures
        = [this] { return m_desk->rig.state().value("camera").toObject().value("exposures").toInt(); };
    const int before = exposures();
    QVERIFY(patience::waitFor([&] { return exposures() > before + 5; }));
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("~~~"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QCOMPARE(Desk::settings(), file);
}

void tst_badday_board::floodFromTheBoard_isShownAndChangesNothing()
{
    QVERIFY(m_desk->connectUnit());
    const QByteArray file = Desk::settings();
    const int mark = m_desk->mark();
    for (int i = 0; i < 50; ++i)
        QVERIFY(m_desk->rig.say(QString(1000, QChar(0xa5)) + "$$##\r\n"));
    QVERIFY(patience::waitFor([this] {
        return m_desk->widget<QPlainTextEdit>("plainTextEdit_RECEIVED_CMD_CONTROLLER")->toPlainText().size()
            >= 50000;
    }));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    QCOMPARE(Desk::settings(), file);
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

WORKFLOW_MAIN(tst_badday_board)
#include "tst_badday_board.moc"
