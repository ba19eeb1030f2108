#include "tests/workflows/PageTest.h"
#include "tests/workflows/ShiftRun.h"
#include "tests/workflows/SlidePanel.h"

#include <QRegularExpression>

/// How each line goes out: "direct", blocking and unseen by the parser, or "queued", with a reply that
/// reaches it. What a line does is for the tests of its panel.
class tst_commandmodes : public PageTest {
    Q_OBJECT

public:
    tst_commandmodes()
        : PageTest("TAB_STAGE")
    {
    }

private slots:
    void connection_isDirect();
    void button_sendsItsLinesInTheirModes_data();
    void button_sendsItsLinesInTheirModes();
    void slideControls_sendTheirLinesInTheirModes();
    void focusRun_queuesItsMovesAlone();
    void coarseFocusRun_sendsEachLineInItsMode();
    void slopeCalibration_movesXDirect();
    void pixelShiftCalibration_sendsEachLineInItsMode();
    void exit_isDirect();

private:
    /// The lines since a mark of the log, each behind its mode.
    QStringList linesSince(int logMark);
    /// Whatever else a run sends, its relative moves are queued and all other lines direct.
    void compareModesOfARun(const QStringList& lines);
};

namespace {

const QStringList kPosition { "direct $Z#STAGE POS" };
const QStringList kStep { "direct $Z#STAGE STEP <n>" };
const QStringList kDirection { "direct $Z#STAGE DIR <d>" };
const QStringList kMoveZ { "direct $Z#STAGE ABS <n>" };
const QStringList kRun { "queued $Z#STAGE RUN" };

QStringList repeated(const QStringList& lines, int count)
{
    QStringList all;
    for (int i = 0; i < count; ++i)
        all << lines;
    return all;
}

/// The move to where a scan starts, or to the best position.
QStringList move()
{
    return kPosition + kStep + kDirection + kRun;
}

QStringList scan(int frames)
{
    return kDirection + kStep + repeated(kRun, frames);
}

QStringList fineRun()
{
    return move() + scan(7) + kMoveZ + move() + scan(1);
}

QStringList coarseRun()
{
    return move() + scan(15) + fineRun();
}

QStringList light(const char* levels, int filter)
{
    return { QString("direct $A#LED ") + levels, QString("direct $A#FILTER GO %1").arg(filter) };
}

/// What is measured stands where its place is: positions, distances and the directions that follow from them.
QStringList withoutMeasured(QStringList lines)
{
    lines.replaceInStrings(QRegularExpression("(ABS|STEP) -?\\d+$"), "\\1 <n>");
    return lines.replaceInStrings(QRegularExpression("DIR (PLUS|MINUS)$"), "DIR <d>");
}

} // namespace

QStringList tst_commandmodes::linesSince(int logMark)
{
    m_desk->mark(); // nothing is under way any more
    QStringList lines;
    const QStringList logged = m_desk->log.lines(logMark);
    for (const QString& line : logged) {
        const int text = line.indexOf(" command :  \"");
        if (text < 0 || line.contains("$A#LED OFF4")) // the line that the mark itself is
            continue;
        const QString command = line.mid(text + 13).remove("\\n\"");
        if (line.startsWith("void Controller::write_command(QString)"))
            lines << "queued " + command;
        else if (line.startsWith("QString Controller::direct_read(QString)"))
            lines << "direct " + command;
    }
    return lines;
}

void tst_commandmodes::connection_isDirect()
{
    // The version is asked for by the search itself, which logs no command.
    QCOMPARE(linesSince(0),
        QStringList({ "direct $X#STAGE ORIGIN", "direct $Z#STAGE ORIGIN", "direct $A#FILTER ORIGIN",
            "direct $Z#STAGE STEP 115", "direct $Z#STAGE SPEED 100", "direct $X#STAGE EJECT",
            "direct $Z#STAGE ABS 32000", "direct $A#LED BRT1 7 6", "direct $A#FILTER GO 1" }));
}

void tst_commandmodes::button_sendsItsLinesInTheirModes_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* page, const char* button, const QStringList& lines) {
        QTest::newRow(button) << page << lines;
    };
    row("TAB_STAGE", "pushButton_STEP_Z", { "queued $Z#STAGE STEP 115" });
    row("TAB_STAGE", "pushButton_SPEED_Z", { "queued $Z#STAGE SPEED 100" });
    row("TAB_STAGE", "pushButton_POSITION_Z", { "queued $Z#STAGE POS" });
    row("TAB_STAGE", "pushButton_ABS_Z", { "queued $Z#STAGE ABS 0" });
    row("TAB_STAGE", "pushButton_REFERENCE_Z", { "queued $Z#STAGE ABS 32000" });
    row("TAB_STAGE", "pushButton_MVN_Z", { "direct $Z#STAGE DIR MINUS", "queued $Z#STAGE RUN" });
    row("TAB_STAGE", "pushButton_MVP_Z", { "direct $Z#STAGE DIR PLUS", "queued $Z#STAGE RUN" });
    row("TAB_STAGE", "pushButton_STOP_Z", { "direct $Z#STAGE STOP", "queued $Z#STAGE POS" });
    row("TAB_STAGE", "pushButton_RON_Z",
        { "queued $Z#STAGE BOTTOM", "direct $Z#STAGE STOP", "queued $Z#STAGE POS" });
    row("TAB_STAGE", "pushButton_ROP_Z",
        { "queued $Z#STAGE TOP", "direct $Z#STAGE STOP", "queued $Z#STAGE POS" });
    row("TAB_LIGHT", "pushButton_FILTER1_GO", { "queued $A#FILTER GO 1" });
    row("TAB_LIGHT", "pushButton_FILTER2_GO", { "queued $A#FILTER GO 2" });
    row("TAB_LIGHT", "pushButton_FILTER3_GO", { "queued $A#FILTER GO 3" });
    row("TAB_LIGHT", "pushButton_FILTER1_READ", { "queued $A#FILTER READ1" });
    row("TAB_LIGHT", "pushButton_FILTER2_READ", { "queued $A#FILTER READ2" });
    row("TAB_LIGHT", "pushButton_FILTER3_READ", { "queued $A#FILTER READ3" });
    row("TAB_LIGHT", "pushButton_ILLUMINATION_GFP", { "direct $A#LED BRT2 300", "direct $A#FILTER GO 2" });
    row("TAB_LIGHT", "pushButton_ILLUMINATION_RFP", { "direct $A#LED BRT3 350", "direct $A#FILTER GO 3" });
    row("TAB_LIGHT", "pushButton_ILLUMINATION_BF", { "direct $A#LED BRT1 7 6", "direct $A#FILTER GO 1" });
    // The change of channel has brought the corrections of the file back.
    row("TAB_LIGHT", "pushButton_FILTER1_CORR", { "queued $A#FILTER COR1 10" });
    row("TAB_LIGHT", "pushButton_FILTER2_CORR", { "queued $A#FILTER COR2 10" });
    row("TAB_LIGHT", "pushButton_FILTER3_CORR", { "queued $A#FILTER COR3 10" });
    row("TAB_QC2", "pushButton_STEP_X", { "queued $X#STAGE STEP 13" });
    row("TAB_QC2", "pushButton_POSITION_X", { "queued $X#STAGE POS" });
    row("TAB_QC2", "pushButton_MVN_X", { "direct $X#STAGE DIR MINUS", "queued $X#STAGE RUN" });
    row("TAB_QC2", "pushButton_MVP_X", { "direct $X#STAGE DIR PLUS", "queued $X#STAGE RUN" });
    row("TAB_QC2", "pushButton_START_X_REF", { "queued $X#STAGE ABS 12000" });
}

void tst_commandmodes::button_sendsItsLinesInTheirModes()
{
    QFETCH(QString, page);
    const QString button = QTest::currentDataTag();
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", page));
    const int logMark = m_desk->log.mark();
    QVERIFY(click(button));
    QTEST(linesSince(logMark), "lines");
    QVERIFY(becomesEnabled(button));
}

void tst_commandmodes::slideControls_sendTheirLinesInTheirModes()
{
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    SlidePanel panel(*m_desk);
    int logMark = m_desk->log.mark();
    QVERIFY(panel.move("pushButton_INSERT"));
    QCOMPARE(linesSince(logMark),
        QStringList({ "direct $A#LED BRT1 7 6", "direct $Z#STAGE ABS 32000", "queued $X#STAGE ABS 0" }));
    logMark = m_desk->log.mark();
    QVERIFY(panel.move("pushButton_FIELD_NEXT"));
    QVERIFY(panel.move("pushButton_FIELD_NEXT"));
    QVERIFY(panel.move("pushButton_FIELD_PREV"));
    QCOMPARE(linesSince(logMark),
        QStringList(
            { "queued $X#STAGE ABS 30931", "queued $X#STAGE ABS 30451", "queued $X#STAGE ABS 30931" }));
    logMark = m_desk->log.mark();
    QVERIFY(panel.changeChannel(1));
    const QStringList change = linesSince(logMark);
    QCOMPARE(change.size(), 2);
    QCOMPARE(change[0], QString("direct $Z#STAGE ABS 32000"));
    QVERIFY2(change[1].startsWith("queued $X#STAGE ABS "), qPrintable(change[1]));
    logMark = m_desk->log.mark();
    QVERIFY(panel.eject());
    QCOMPARE(linesSince(logMark), QStringList({ "direct $A#LED OFF1", "queued $X#STAGE EJECT" }));
}

void tst_commandmodes::compareModesOfARun(const QStringList& lines)
{
    QVERIFY(lines.filter("queued $Z#STAGE RUN").size() >= 7);
    for (const QString& line : lines)
        QVERIFY2((line == "queued $Z#STAGE RUN") != line.startsWith("direct "), qPrintable(line));
}

void tst_commandmodes::focusRun_queuesItsMovesAlone()
{
    const int logMark = m_desk->log.mark();
    m_desk->window().focusSilently(false);
    const QStringList lines = linesSince(logMark);
    compareModesOfARun(lines);
    QCOMPARE(lines.filter("direct $Z#STAGE ABS 32460").size(), 1);
    QCOMPARE(lines.filter("direct $Z#STAGE POS").size(), 2);
}

void tst_commandmodes::coarseFocusRun_sendsEachLineInItsMode()
{
    const int logMark = m_desk->log.mark();
    QVERIFY(m_desk->window().focusSilently(true));
    QCOMPARE(withoutMeasured(linesSince(logMark)), coarseRun());
}

void tst_commandmodes::slopeCalibration_movesXDirect()
{
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    const int logMark = m_desk->log.mark();
    QVERIFY(click("pushButton_REFERENCE_Z_SLOPE"));
    ++m_boxesAskedFor;
    QVERIFY(m_desk->boxes.waitForBoxes(m_boxesAskedFor, 60000));
    const QStringList lines = linesSince(logMark);
    compareModesOfARun(lines);
    QVERIFY(lines.filter("direct $X#STAGE ABS ").size() >= 2);
}

void tst_commandmodes::pixelShiftCalibration_sendsEachLineInItsMode()
{
    ShiftRun run(*m_desk);
    m_boxesAskedFor += 2; // of the focus run that finds the reference, and of the calibration
    QVERIFY(run.prepare());
    const int logMark = m_desk->log.mark();
    QVERIFY(run.run());

    const QStringList brightField = light("BRT1 7 6", 1);
    const QStringList ofAField = brightField + kPosition + kMoveZ + light("BRT2 300", 2)
        + light("BRT3 350", 3) + brightField + kPosition + kMoveZ;
    const QStringList moveX { "queued $X#STAGE ABS <n>" };
    QStringList expected = coarseRun() + ofAField;
    expected += repeated(moveX + fineRun() + ofAField, ShiftRun::kFields - 1);
    expected += QStringList("direct $A#LED BRT1 7 6") + kMoveZ + moveX; // the insert at the end
    QCOMPARE(withoutMeasured(linesSince(logMark)), expected);
}

void tst_commandmodes::exit_isDirect()
{
    const int logMark = m_desk->log.mark();
    QVERIFY(click("pushButton_EXIT"));
    QCOMPARE(linesSince(logMark), QStringList({ "direct $A#LED OFF1", "direct $X#STAGE ORIGIN" }));
}

WORKFLOW_MAIN(tst_commandmodes)
#include "tst_commandmodes.moc"
