#include "tests/workflows/StepTest.h"

/// The tray's axis by hand.
class tst_xaxis : public StepTest {
    Q_OBJECT

public:
    tst_xaxis()
        : StepTest("TAB_QC2", "X", 20000, 13)
    {
    }

protected slots:
    void initTestCase() override;

private slots:
    void step_sendsTheFieldAsTyped_data();
    void step_sendsTheFieldAsTyped();
    void position_isAskedForAndShown();
    void silentBoard_queuedCommandsDoNotHoldTheWindow();
};

void tst_xaxis::initTestCase()
{
    PageTest::initTestCase();
    QCOMPARE(position(), QString("0"));
    QCOMPARE(m_desk->text("lineEdit_STEP_X"), QString("13"));
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
