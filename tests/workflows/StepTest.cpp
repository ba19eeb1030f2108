#include "tests/workflows/StepTest.h"

#include <utility>

StepTest::StepTest(const QString& page, QString axis, int start, int stepSize)
    : PageTest(page)
    , m_axis(std::move(axis))
    , m_down("pushButton_MVN_" + m_axis)
    , m_up("pushButton_MVP_" + m_axis)
    , m_start(start)
    , m_stepSize(stepSize)
{
}

void StepTest::init()
{
    PageTest::init();
    QVERIFY(m_desk->rig.set(m_axis.toLower(), m_start));
}

void StepTest::stepButton_setsTheDirectionAndRuns_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<int>("reached");
    QTest::newRow("down") << m_down << m_up << line("DIR MINUS") << m_start - m_stepSize;
    QTest::newRow("up") << m_up << m_down << line("DIR PLUS") << m_start + m_stepSize;
}

void StepTest::stepButton_setsTheDirectionAndRuns()
{
    QFETCH(QString, button);
    QFETCH(QString, other);
    QFETCH(QString, direction);
    QFETCH(int, reached);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_" + m_axis, QString::number(m_stepSize)));
    QVERIFY(click("pushButton_STEP_" + m_axis));
    const int mark = m_desk->mark();
    QVERIFY(click(button));
    QVERIFY(!m_desk->isEnabled(qPrintable(button)));
    QVERIFY(m_desk->isEnabled(qPrintable(other))); // the pressed button only
    QVERIFY(becomesEnabled(button));
    QVERIFY(m_desk->isEnabled(qPrintable(other)));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ direction, line("RUN") }));
    QCOMPARE(position(), QString::number(reached));
    QCOMPARE(truePosition(), reached);
}

void StepTest::secondClickWhileTheStageSteps_sendsNothing()
{
    QVERIFY(m_desk->rig.fault("late", line("RUN"), 1, 200));
    const int mark = m_desk->mark();
    QVERIFY(click(m_up));
    QTest::mouseClick(m_desk->widget(qPrintable(m_up)), Qt::LeftButton);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line("DIR PLUS"), line("RUN") }));
    QVERIFY(!m_desk->isEnabled(qPrintable(m_up)));
    QVERIFY(becomesEnabled(m_up));
}

void StepTest::lostReplyOfAStep_leavesTheButtonUntilTheNextStep()
{
    QVERIFY(m_desk->rig.fault("lose", line("RUN")));
    const int mark = m_desk->mark();
    QVERIFY(click(m_down));
    QCOMPARE(m_desk->linesSince(mark).last(), line("RUN"));
    QVERIFY(!m_desk->isEnabled(qPrintable(m_down)));
    QVERIFY(click(m_up));
    QVERIFY(becomesEnabled(m_down));
    QVERIFY(m_desk->isEnabled(qPrintable(m_up)));
}
