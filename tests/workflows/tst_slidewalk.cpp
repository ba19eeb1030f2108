#include "tests/workflows/SlidePanel.h"

/// Every channel of every slide type from its entrance to the last field and back, by the buttons: the lines
/// that go to the board, and after each reply what the panel shows and allows.
class tst_slidewalk : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void walk_visitsEveryFieldAndComesBack_data();
    void walk_visitsEveryFieldAndComesBack();
    void beyondTheEnds_theRulesOfTheTypeHold_data();
    void beyondTheEnds_theRulesOfTheTypeHold();

private:
    bool enter(int type, int channel);
    void press(const QString& button);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<SlidePanel> m_panel;
};

namespace {

/// Stored heights and start positions, all different, and the offsets of the types that have one.
const char kSettings[] = "[Calibration]\nZ reference=32700\nZ ref 1ch=32100\nZ ref 2ch=32200\n"
                         "Z ref 3ch=32300\nZ ref 8ch=32800\nZ ref slope=0\nReusable offset=5000\n"
                         "Validation offset=1000\nPrisma offset=50\n\n"
                         "[Start position]\n1 Channel=10001\n2 Channel=30002\n3 Channel=31003\n"
                         "8 Channel=38008\nPrisma=28006\n";

/// One channel of one slide type, as it is walked.
struct Run {
    const char* name;
    int type;
    int channel;
    int z; // height of the type
    int first; // X of field index 0
    int pitch; // of one field along X, signed
    int last; // highest field index
    bool reversed; // PREV raises the index, NEXT lowers it
    const char* disabledAtPrev; // the button that a press of PREV turns off
};

const char kPrev[] = "pushButton_FIELD_PREV";
const char kNext[] = "pushButton_FIELD_NEXT";

constexpr Run kRuns[] = {
    { "1-Channel", 0, 0, 32100, 10001, +480, 46, false, kPrev },
    { "2-Channel out", 1, 0, 32200, 30002, -480, 11, false, kPrev },
    { "2-Channel back", 1, 1, 32200, 30002 - 20799, +480, 11, true, kNext },
    { "3-Channel first", 2, 0, 32300, 31003, +480, 11, true, kNext },
    { "3-Channel second", 2, 1, 32300, 31003 - 12346, +480, 11, true, kNext },
    { "3-Channel third", 2, 2, 32300, 31003 - 2 * 12346, +480, 11, true, kNext },
    { "8-Channel first", 3, 0, 32800, 38008, -480, 4, false, kPrev },
    { "8-Channel second", 3, 1, 32800, 38008 - 4800, -480, 4, false, kPrev },
    { "8-Channel fifth", 3, 4, 32800, 38008 - 4 * 4800, -480, 4, false, kPrev },
    { "8-Channel last", 3, 7, 32800, 38008 - 7 * 4800, -480, 4, false, kPrev },
    { "Reusable", 4, 0, 32200 + 5000, 30002, -480, 11, false, kPrev },
    { "Validation", 5, 0, 32700 - 1000, 30002, -480, 11, false, kPrev },
    { "Prisma Max", 6, 0, 32200 - 50, 28006, -480, 4, false, kPrev },
};

QString xLine(int position)
{
    return QString("$X#STAGE ABS %1").arg(position);
}

/// What may be pressed when the stage stands at a field.
QString enabledAt(const Run& run, int field)
{
    const bool atFirst = field <= 0;
    const bool atLast = field >= run.last;
    const bool prev = run.reversed ? !atLast : !atFirst;
    const bool next = run.reversed ? !atFirst : !atLast;
    return QString("Insert Eject Combo%1%2 Map").arg(prev ? " Prev" : "", next ? " Next" : "");
}

void addRuns()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const Run& run : kRuns)
        QTest::newRow(run.name) << row++;
}

} // namespace

void tst_slidewalk::initTestCase()
{
    Desk::putSettings(kSettings);
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    m_panel.reset(new SlidePanel(*m_desk));
}

void tst_slidewalk::cleanup()
{
    QVERIFY(m_panel->eject());
}

void tst_slidewalk::cleanupTestCase()
{
    m_panel.reset();
    m_desk.reset();
}

bool tst_slidewalk::enter(int type, int channel)
{
    return m_panel->insert(type) && (channel == 0 || m_panel->changeChannel(channel));
}

/// The slot behind a button, also while the button itself is off.
void tst_slidewalk::press(const QString& button)
{
    if (button == kPrev)
        m_desk->window().on_pushButton_FIELD_PREV_clicked();
    else
        m_desk->window().on_pushButton_FIELD_NEXT_clicked();
}

void tst_slidewalk::walk_visitsEveryFieldAndComesBack_data()
{
    addRuns();
}

void tst_slidewalk::walk_visitsEveryFieldAndComesBack()
{
    QFETCH(int, row);
    const Run& run = kRuns[row];
    // From a 2-channel slide any other type is chosen from the list, which inserts it at once.
    QVERIFY(m_panel->insert(1));
    int mark = m_desk->mark();
    QVERIFY(m_panel->insert(run.type));
    QCOMPARE(m_desk->linesSince(mark),
        QStringList({ "$A#LED BRT1 7 6", QString("$Z#STAGE ABS %1").arg(run.z), "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->field(), QString("0"));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), QString::number(run.z));
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString::number(run.z));

    int field = -1;
    QStringList expected;
    mark = m_desk->mark();
    if (run.channel != 0) {
        QVERIFY(m_panel->changeChannel(run.channel));
        field = 0;
        expected << QString("$Z#STAGE ABS %1").arg(run.z) << xLine(run.first);
    }
    QCOMPARE(m_panel->enabled(), enabledAt(run, field));
    QCOMPARE(m_panel->cells().indexOf('r'), run.channel);

    const char* const raise = run.reversed ? kPrev : kNext;
    const char* const lower = run.reversed ? kNext : kPrev;
    const auto step = [&](const char* button, int target) {
        const QString disabled = button == kPrev ? run.disabledAtPrev : kNext;
        const QString other = disabled == kPrev ? kNext : kPrev;
        const bool otherBefore = m_desk->isEnabled(qPrintable(other));
        const int moves = m_panel->moves();
        QVERIFY(hand::click(m_desk->window(), button));
        QVERIFY(!m_desk->isEnabled(qPrintable(disabled)));
        QCOMPARE(m_desk->isEnabled(qPrintable(other)), otherBefore);
        QVERIFY(m_panel->waitForMoves(moves + 1));
        expected << xLine(run.first + run.pitch * target);
        QCOMPARE(m_panel->enabled(), enabledAt(run, target));
        QCOMPARE(m_panel->field(), QString::number(target + 1));
        QCOMPARE(m_panel->cells().indexOf('r'), run.channel);
    };
    while (field < run.last) {
        step(raise, ++field);
        if (QTest::currentTestFailed())
            return;
    }
    while (field > 0) {
        step(lower, --field);
        if (QTest::currentTestFailed())
            return;
    }
    QCOMPARE(m_desk->linesSince(mark), expected);
    QCOMPARE(m_desk->rig.state().value("x").toInt(), run.first);
}

void tst_slidewalk::beyondTheEnds_theRulesOfTheTypeHold_data()
{
    addRuns();
}

void tst_slidewalk::beyondTheEnds_theRulesOfTheTypeHold()
{
    QFETCH(int, row);
    const Run& run = kRuns[row];
    const char* const raise = run.reversed ? kPrev : kNext;
    const char* const lower = run.reversed ? kNext : kPrev;
    QVERIFY(enter(run.type, run.channel));
    for (int field = run.channel == 0 ? -1 : 0; field < run.last; ++field)
        QVERIFY(m_panel->move(raise));

    // At the last field a further press does nothing at all.
    int mark = m_desk->mark();
    press(raise);
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    QCOMPARE(m_panel->enabled(), enabledAt(run, run.last));

    for (int field = run.last; field > 0; --field)
        QVERIFY(m_panel->move(lower));
    // Below the first field lies the X home, for the first channel alone.
    mark = m_desk->mark();
    const int moves = m_panel->moves();
    press(lower);
    if (run.channel == 0) {
        QVERIFY(m_panel->waitForMoves(moves + 1));
        QCOMPARE(m_panel->field(), QString("0"));
        press(lower);
        QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 0" }));
    } else {
        QCOMPARE(m_desk->linesSince(mark), QStringList());
        QCOMPARE(m_panel->field(), QString("1"));
    }
    QCOMPARE(m_panel->enabled(), enabledAt(run, 0));
}

WORKFLOW_MAIN(tst_slidewalk)
#include "tst_slidewalk.moc"
