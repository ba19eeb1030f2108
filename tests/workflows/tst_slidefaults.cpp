#include "tests/workflows/SlideTest.h"

/// Replies to the slide controls that are late, lost or doubled, and presses that come too early.
class tst_slidefaults : public SlideTest {
    Q_OBJECT

private slots:
    void secondPressWhileTheStageMoves_sendsNothing();
    void secondPressOfARisingPrev_movesOnceMore();
    void lostReplyOfAnInsert_isMadeUpForByTheNextMove();
    void lostReplyOfAnEject_leavesThePanelLockedUntilTheNext();
    void silentBoard_leavesEachButtonOneMove();
    void doubledReply_changesNothingMore();
    void numberThatIsNoType_leavesThePanelLocked();
};

void tst_slidefaults::secondPressWhileTheStageMoves_sendsNothing()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE", 1, 100));
    const int mark = m_desk->mark();
    const int moves = m_panel->moves();
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(m_desk->widget("pushButton_FIELD_NEXT"), Qt::LeftButton);
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 30931" }));
    QCOMPARE(m_panel->field(), QString("1"));
}

void tst_slidefaults::secondPressOfARisingPrev_movesOnceMore()
{
    // The button turned off by this press is the other one, so the second press counts.
    QVERIFY(m_panel->insert(2));
    QVERIFY(m_panel->move("pushButton_FIELD_PREV"));
    const int mark = m_desk->mark();
    const int moves = m_panel->moves();
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(m_desk->widget("pushButton_FIELD_PREV"), Qt::LeftButton);
    QVERIFY(m_panel->waitForMoves(moves + 2));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 30985", "$X#STAGE ABS 31465" }));
    QCOMPARE(m_panel->field(), QString("3"));
}

void tst_slidefaults::lostReplyOfAnInsert_isMadeUpForByTheNextMove()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE ABS 0"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_INSERT"));
    QCOMPARE(m_desk->linesSince(mark).last(), QString("$X#STAGE ABS 0"));
    QCOMPARE(m_panel->enabled(), QString());
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("~~~"));
    const int moves = m_panel->moves();
    m_desk->window().on_pushButton_START_X_REF_clicked(); // a button of another page
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(m_panel->enabled(), enabledAtHome());
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("Insert"));
    QCOMPARE(m_desk->style("pushButton_INSERT"), activeStyle());
}

void tst_slidefaults::lostReplyOfAnEject_leavesThePanelLockedUntilTheNext()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE EJECT"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_EJECT"));
    QVERIFY(!click("pushButton_EJECT"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE EJECT" }));
    QCOMPARE(m_panel->enabled(), QString());
    QCOMPARE(m_desk->text("pushButton_EJECT"), QString("~~~"));
    QCOMPARE(m_panel->field(), QString("0"));
    QVERIFY(m_desk->rig.say("$OK#X#STAGE EJECT\r\n"));
    QVERIFY(comesToShow("pushButton_EJECT", "Eject"));
    QCOMPARE(m_panel->enabled(), enabledWithoutSlide());
    QCOMPARE(m_panel->field(), QString("X"));
}

void tst_slidefaults::silentBoard_leavesEachButtonOneMove()
{
    QVERIFY(m_panel->insert(0));
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QVERIFY(m_desk->rig.fault("silent"));
    const int mark = m_desk->mark();
    for (const char* button : { "pushButton_FIELD_NEXT", "pushButton_FIELD_PREV" }) {
        QVERIFY(click(button));
        QVERIFY(!click(button));
    }
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 10853", "$X#STAGE ABS 10373" }));
    QCOMPARE(m_panel->enabled(), QString("Insert Eject Combo Map"));
    QCOMPARE(m_panel->field(), QString("2")); // it is the replies that renew it
    // The board speaks again.
    m_desk->rig.clearFaults();
    const int moves = m_panel->moves();
    QVERIFY(m_desk->rig.say("$OK#X#STAGE ABS 10373\r\n"));
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(m_panel->enabled(), QString("Insert Eject Combo Prev Next Map"));
    QCOMPARE(m_panel->field(), QString("2"));
}

void tst_slidefaults::doubledReply_changesNothingMore()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("double", "$X#STAGE", 2));
    int moves = m_panel->moves();
    QVERIFY(click("pushButton_FIELD_NEXT"));
    QVERIFY(m_panel->waitForMoves(moves + 2));
    QCOMPARE(m_panel->field(), QString("1"));
    QCOMPARE(m_panel->enabled(), enabledAtHome());
    QVERIFY(m_panel->eject());
    QCOMPARE(m_panel->enabled(), enabledWithoutSlide());
    QCOMPARE(m_panel->cells(), QString("ww"));
}

void tst_slidefaults::numberThatIsNoType_leavesThePanelLocked()
{
    QVERIFY(m_panel->insert(1));
    int mark = m_desk->mark();
    m_desk->window().on_comboBox_SLIDE_currentIndexChanged(7);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#LED BRT1 7 6" }));
    QCOMPARE(m_panel->enabled(), QString());
    mark = m_desk->mark();
    m_desk->window().on_pushButton_FIELD_NEXT_clicked();
    m_desk->window().on_pushButton_FIELD_PREV_clicked();
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    // The map of no type is not drawn, and the read-out is.
    m_desk->window().set_SLIDE_indicator(static_cast<SLIDE_type>(7), 0, 4);
    QCOMPARE(m_panel->cells(), QString("rw"));
    QCOMPARE(m_panel->field(), QString("5"));
}

WORKFLOW_MAIN(tst_slidefaults)
#include "tst_slidefaults.moc"
