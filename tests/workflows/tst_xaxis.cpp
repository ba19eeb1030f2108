#include "tests/workflows/PageTest.h"

/// The tray's axis by hand.
class tst_xaxis : public PageTest {
    Q_OBJECT

public:
    tst_xaxis()
        : PageTest("TAB_QC2")
    {
    }

protected slots:
    void initTestCase() override;
    void init() override;

private slots:
    void step_sendsTheFieldAsTyped_data();
    void step_sendsTheFieldAsTyped();
    void position_isAskedForAndShown();
    void stepMove_setsTheDirectionAndRuns_data();
    void stepMove_setsTheDirectionAndRuns();
    void secondClickWhileTheStageMoves_sendsNothing();
    void lostReplyOfAStep_leavesTheButtonUntilTheNextStep();
    void silentBoard_queuedCommandsDoNotHoldTheWindow();

private:
    QString position() { return m_desk->text("lineEdit_POSITION_X"); }
};

void tst_xaxis::initTestCase()
{
    PageTest::initTestCase();
    QCOMPARE(position(), QString("0"));
    QCOMPARE(m_desk->text("lineEdit_STEP_X"), QString("13"));
}

void tst_xaxis::init()
{
    PageTest::init();
    QVERIFY(m_desk->rig.set("x", 20000));
}

void tst_xaxis::step_sendsTheFieldAsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("number") << "130";
    QTest::newRow("empty") << "";
    QTest::newRow("letters") << "ab";
    QTest::newRow("negative") << "-13";
    QTest::newRow("over-long") << QString(200, '3');
}

void tst_xaxis::step_sendsTheFieldAsTyped()
{
    QFETCH(QString, typed);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_X", typed));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_STEP_X"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE STEP " + typed }));
    QVERIFY(m_desk->isEnabled("pushButton_STEP_X"));
}

void tst_xaxis::position_isAskedForAndShown()
{
    QVERIFY(m_desk->rig.set("x", -77));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(comesToShow("lineEdit_POSITION_X", "-77"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE POS" }));
}

void tst_xaxis::stepMove_setsTheDirectionAndRuns_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<QString>("reached");
    QTest::newRow("minus") << "pushButton_MVN_X"
                           << "pushButton_MVP_X"
                           << "MINUS"
                           << "19987";
    QTest::newRow("plus") << "pushButton_MVP_X"
                          << "pushButton_MVN_X"
                          << "PLUS"
                          << "20013";
}

void tst_xaxis::stepMove_setsTheDirectionAndRuns()
{
    QFETCH(QString, button);
    QFETCH(QString, other);
    QFETCH(QString, direction);
    QFETCH(QString, reached);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_X", "13"));
    QVERIFY(click("pushButton_STEP_X"));
    const int mark = m_desk->mark();
    QVERIFY(hand::click(m_desk->window(), button));
    QVERIFY(!m_desk->isEnabled(qPrintable(button)));
    QVERIFY(m_desk->isEnabled(qPrintable(other)));
    QVERIFY(becomesEnabled(button));
    QVERIFY(m_desk->isEnabled(qPrintable(other)));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE DIR " + direction, "$X#STAGE RUN" }));
    QCOMPARE(position(), reached);
}

void tst_xaxis::secondClickWhileTheStageMoves_sendsNothing()
{
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE RUN", 1, 200));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_MVP_X"));
    QTest::mouseClick(m_desk->widget("pushButton_MVP_X"), Qt::LeftButton);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE DIR PLUS", "$X#STAGE RUN" }));
    QVERIFY(!m_desk->isEnabled("pushButton_MVP_X"));
    QVERIFY(becomesEnabled("pushButton_MVP_X"));
}

void tst_xaxis::lostReplyOfAStep_leavesTheButtonUntilTheNextStep()
{
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE RUN"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_MVN_X"));
    QCOMPARE(m_desk->linesSince(mark).last(), QString("$X#STAGE RUN"));
    QVERIFY(!m_desk->isEnabled("pushButton_MVN_X"));
    QVERIFY(click("pushButton_MVP_X"));
    QVERIFY(becomesEnabled("pushButton_MVN_X"));
}

void tst_xaxis::silentBoard_queuedCommandsDoNotHoldTheWindow()
{
    QVERIFY(m_desk->rig.fault("silent"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(click("pushButton_START_X_REF"));
    QVERIFY(click("pushButton_START_X_REF"));
    QCOMPARE(m_desk->linesSince(mark),
        QStringList({ "$X#STAGE POS", "$X#STAGE POS", "$X#STAGE ABS 12000", "$X#STAGE ABS 12000" }));
    QVERIFY(m_desk->isEnabled("pushButton_START_X_REF"));
}

WORKFLOW_MAIN(tst_xaxis)
#include "tst_xaxis.moc"
