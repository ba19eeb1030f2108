#include "tests/workflows/PageTest.h"

#include <QPushButton>

/// The manual controls of the focus axis that name a number: settings, moves by position, the offset.
class tst_zaxis : public PageTest {
    Q_OBJECT

public:
    tst_zaxis()
        : PageTest("TAB_STAGE")
    {
    }

protected slots:
    void init() override;

private slots:
    void commands_sendTheFieldAsTyped_data();
    void commands_sendTheFieldAsTyped();
    void absolute_sendsTheNumberInTheField_data();
    void absolute_sendsTheNumberInTheField();
    void absolute_isBusyUntilItsReply();
    void reference_isBusyUntilItsReply();
    void absoluteWhileReferenceIsUnderWay_bothReturnAtTheFirstReply();
    void secondClickWhileTheStageMoves_sendsNothing();
    void lostReply_leavesTheButtonUntilTheNextOfItsKind();
    void doubledReply_changesNothingMore();
    void position_isAskedForAndShown();
    void silentBoard_queuedCommandsDoNotHoldTheWindow();
    void offset_isStoredAndNothingIsSent_data();
    void offset_isStoredAndNothingIsSent();
    void moveTypedAtTheConsole_leavesThePositionShown();

private:
    QString position() { return m_desk->text("lineEdit_POSITION_Z"); }
    int trueZ() { return m_desk->rig.state().value("z").toInt(); }
};

void tst_zaxis::init()
{
    PageTest::init();
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(m_desk->rig.set("z", 32000));
}

void tst_zaxis::commands_sendTheFieldAsTyped_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("line");
    const auto rows = [](const char* name, const QString& field, const QString& command) {
        const auto row = [&](const char* kind, const QString& typed) {
            QTest::addRow("%s, %s", name, kind) << name << field << typed << command + " " + typed;
        };
        row("number", "230");
        row("empty", "");
        row("letter", "x7");
        row("sign and fraction", "-1.5");
        row("blanks", " 5 ");
        row("a dollar", "1$Z#STAGE TOP");
        row("over-long", QString(200, '9'));
    };
    rows("pushButton_STEP_Z", "lineEdit_STEP_Z", "$Z#STAGE STEP");
    rows("pushButton_SPEED_Z", "lineEdit_SPEED_Z", "$Z#STAGE SPEED");
}

void tst_zaxis::commands_sendTheFieldAsTyped()
{
    QFETCH(QString, button);
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QString, line);
    QVERIFY(hand::type(m_desk->window(), field, typed));
    const int mark = m_desk->mark();
    QVERIFY(hand::click(m_desk->window(), button));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line }));
    QVERIFY(m_desk->window().findChild<QPushButton*>(button)->isEnabled());
}

void tst_zaxis::absolute_sendsTheNumberInTheField_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("number");
    QTest::newRow("number") << "31000"
                            << "31000";
    QTest::newRow("empty") << ""
                           << "0";
    QTest::newRow("letters") << "abc"
                             << "0";
    QTest::newRow("number and letters") << "12a"
                                        << "0";
    QTest::newRow("negative") << "-5"
                              << "-5";
    QTest::newRow("beyond 32 bits") << "99999999999"
                                    << "0";
    QTest::newRow("over-long") << QString(300, '7') << "0";
}

void tst_zaxis::absolute_sendsTheNumberInTheField()
{
    QFETCH(QString, typed);
    QFETCH(QString, number);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", typed));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ABS_Z"));
    QVERIFY(becomesEnabled("pushButton_ABS_Z"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE ABS " + number }));
    QCOMPARE(position(), number); // what was asked for, wherever the stage could get to
}

void tst_zaxis::absolute_isBusyUntilItsReply()
{
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31000"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("[Z] ABS"));
    QVERIFY(click("pushButton_ABS_Z"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("~~~"));
    QVERIFY(!m_desk->isEnabled("pushButton_ABS_Z"));
    QCOMPARE(m_desk->text("pushButton_REFERENCE_Z"), QString("[Z] Ref"));
    QVERIFY(m_desk->isEnabled("pushButton_REFERENCE_Z"));
    QVERIFY(becomesEnabled("pushButton_ABS_Z"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("[Z] ABS"));
    QCOMPARE(trueZ(), 31000);
}

void tst_zaxis::reference_isBusyUntilItsReply()
{
    QVERIFY(m_desk->rig.set("z", 100));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), QString("32000"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_REFERENCE_Z"));
    QCOMPARE(m_desk->text("pushButton_REFERENCE_Z"), QString("~~~"));
    QVERIFY(!m_desk->isEnabled("pushButton_REFERENCE_Z"));
    QVERIFY(m_desk->isEnabled("pushButton_ABS_Z"));
    QVERIFY(becomesEnabled("pushButton_REFERENCE_Z"));
    QCOMPARE(m_desk->text("pushButton_REFERENCE_Z"), QString("[Z] Ref"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE ABS 32000" }));
    QCOMPARE(position(), QString("32000"));
    QCOMPARE(trueZ(), 32000);
}

void tst_zaxis::absoluteWhileReferenceIsUnderWay_bothReturnAtTheFirstReply()
{
    // The two replies are alike, and both show the target of the later press.
    QVERIFY(m_desk->rig.fault("late", "$Z#STAGE ABS 31500", 1, 400));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31500"));
    QVERIFY(click("pushButton_REFERENCE_Z"));
    QVERIFY(click("pushButton_ABS_Z"));
    QCOMPARE(m_desk->text("pushButton_REFERENCE_Z"), QString("~~~"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("~~~"));
    QVERIFY(becomesEnabled("pushButton_REFERENCE_Z"));
    QVERIFY(m_desk->isEnabled("pushButton_ABS_Z"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("[Z] ABS"));
    QCOMPARE(m_desk->text("pushButton_REFERENCE_Z"), QString("[Z] Ref"));
    QCOMPARE(position(), QString("31500"));
    const int logMark = m_desk->log.mark();
    QVERIFY(m_desk->log.waitForLine("$OK#Z#STAGE ABS 31500", 5000, logMark));
}

void tst_zaxis::secondClickWhileTheStageMoves_sendsNothing()
{
    QVERIFY(m_desk->rig.fault("late", "$Z#STAGE ABS", 1, 200));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31800"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ABS_Z"));
    QTest::mouseClick(m_desk->widget("pushButton_ABS_Z"), Qt::LeftButton);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE ABS 31800" }));
    QVERIFY(becomesEnabled("pushButton_ABS_Z"));
}

void tst_zaxis::lostReply_leavesTheButtonUntilTheNextOfItsKind()
{
    QVERIFY(m_desk->rig.fault("lose", "$Z#STAGE ABS 31700"));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31700"));
    QVERIFY(click("pushButton_ABS_Z"));
    // Another reply of the axis does not bring it back.
    QVERIFY(click("pushButton_POSITION_Z"));
    QVERIFY(comesToShow("lineEdit_POSITION_Z", "31700"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("~~~"));
    QVERIFY(!m_desk->isEnabled("pushButton_ABS_Z"));
    QVERIFY(click("pushButton_REFERENCE_Z"));
    QVERIFY(becomesEnabled("pushButton_ABS_Z"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("[Z] ABS"));
}

void tst_zaxis::doubledReply_changesNothingMore()
{
    QVERIFY(m_desk->rig.fault("double", "$Z#STAGE", 2));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31600"));
    QVERIFY(click("pushButton_ABS_Z"));
    QVERIFY(becomesEnabled("pushButton_ABS_Z"));
    QCOMPARE(position(), QString("31600"));
    QCOMPARE(m_desk->text("pushButton_ABS_Z"), QString("[Z] ABS"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_POSITION_Z"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE POS" }));
    QCOMPARE(trueZ(), 31600);
}

void tst_zaxis::position_isAskedForAndShown()
{
    QVERIFY(m_desk->rig.set("z", 30123));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_POSITION_Z"));
    QVERIFY(comesToShow("lineEdit_POSITION_Z", "30123"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE POS" }));
}

void tst_zaxis::silentBoard_queuedCommandsDoNotHoldTheWindow()
{
    QVERIFY(m_desk->rig.fault("silent"));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31000"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_ABS_Z"));
    QVERIFY(click("pushButton_POSITION_Z"));
    QVERIFY(click("pushButton_POSITION_Z"));
    QVERIFY(click("pushButton_REFERENCE_Z"));
    QCOMPARE(m_desk->linesSince(mark),
        QStringList({ "$Z#STAGE ABS 31000", "$Z#STAGE POS", "$Z#STAGE POS", "$Z#STAGE ABS 32000" }));
    QVERIFY(!m_desk->isEnabled("pushButton_ABS_Z"));
    QVERIFY(!m_desk->isEnabled("pushButton_REFERENCE_Z"));
    // The board speaks again: an answer of the kind brings both back.
    m_desk->rig.clearFaults();
    QVERIFY(m_desk->rig.say("$OK#Z#STAGE ABS 32000\r\n"));
    QVERIFY(becomesEnabled("pushButton_ABS_Z"));
    QVERIFY(m_desk->isEnabled("pushButton_REFERENCE_Z"));
}

void tst_zaxis::offset_isStoredAndNothingIsSent_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("number") << "7" << QByteArray("7");
    QTest::newRow("negative") << "-3" << QByteArray("-3");
    QTest::newRow("empty") << "" << QByteArray("0");
    QTest::newRow("letters") << "three" << QByteArray("0");
    QTest::newRow("leading zeros") << "007" << QByteArray("7");
    QTest::newRow("over-long") << QString(300, '1') << QByteArray("0");
}

void tst_zaxis::offset_isStoredAndNothingIsSent()
{
    QFETCH(QString, typed);
    QFETCH(QByteArray, stored);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_OFFSET_Z", typed));
    QCOMPARE(Desk::settings(), QByteArray()); // typing alone stores nothing
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_OFFSET_Z"));
    QCOMPARE(Desk::settings(), "[Calibration]\nZ offset=" + stored + "\n");
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    QCOMPARE(m_desk->text("lineEdit_OFFSET_Z"), typed);
}

void tst_zaxis::moveTypedAtTheConsole_leavesThePositionShown()
{
    QVERIFY(click("pushButton_POSITION_Z"));
    QVERIFY(comesToShow("lineEdit_POSITION_Z", "32000"));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_DEBUG"));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_SEND_CMD_CONTROLLER", "$Z#STAGE TOP"));
    const int logMark = m_desk->log.mark();
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QVERIFY(m_desk->log.waitForLine("$OK#Z#STAGE TOP", 5000, logMark));
    QCOMPARE(position(), QString("32000"));
    QVERIFY(trueZ() > 32000);
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(click("pushButton_POSITION_Z"));
    QVERIFY(patience::waitFor([this] { return position() == QString::number(trueZ()); }));
}

WORKFLOW_MAIN(tst_zaxis)
#include "tst_zaxis.moc"
