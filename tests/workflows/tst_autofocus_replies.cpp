#include "tests/workflows/FocusTest.h"

using namespace focus_lines;

/// The focus search when the board's replies are not what was asked for.
class tst_autofocus_replies : public FocusTest {
    Q_OBJECT

private slots:
    void staleReply_isThrownAwayAndTheCommandSentAgain();
    void emptyReplyAtTheBeginningOfAScan_goesToTheLastStep();
    void emptyReplyAtTheLastStep_isRepeated();
    void runAfterAnEarlyEnd_measuresEachFrameOnce();
};

void tst_autofocus_replies::staleReply_isThrownAwayAndTheCommandSentAgain()
{
    // An echo where a position was asked for has three fields instead of four.
    QVERIFY(m_desk->rig.fault("noise", kPos, 1, "$OK#Z#STAGE STOP\r\n"));
    const int mark = m_desk->rig.mark();
    QVERIFY(runFine());
    const QStringList sent = m_desk->rig.sentSince(mark);
    QCOMPARE(sent.mid(0, 3), QStringList({ kPos, kPos, step(460) }));
}

void tst_autofocus_replies::emptyReplyAtTheBeginningOfAScan_goesToTheLastStep()
{
    QVERIFY(m_desk->rig.fault("nul", step(115)));
    const int mark = m_desk->rig.mark();
    QVERIFY(runFine());
    QStringList expected { kPos, step(460), direction("PLUS"), kRun, direction("MINUS"), step(115) };
    expected << direction("MINUS") << step(115) << kRun;
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
}

void tst_autofocus_replies::emptyReplyAtTheLastStep_isRepeated()
{
    // Both of the scan's beginning and the first two of the last step.
    QVERIFY(m_desk->rig.fault("nul", direction("MINUS"), 3));
    const int mark = m_desk->rig.mark();
    QVERIFY(runFine());
    QStringList expected { kPos, step(460), direction("PLUS"), kRun };
    expected << repeated(direction("MINUS"), 4) << step(115) << kRun;
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
}

void tst_autofocus_replies::runAfterAnEarlyEnd_measuresEachFrameOnce()
{
    QVERIFY(m_desk->rig.fault("nul", step(115)));
    QVERIFY(runFine());
    const int logMark = m_desk->log.mark();
    QVERIFY(runFine());
    QCOMPARE(m_desk->log.lines(logMark).filter("val:").size(), 7);
}

WORKFLOW_MAIN(tst_autofocus_replies)
#include "tst_autofocus_replies.moc"
