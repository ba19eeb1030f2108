#include "tests/workflows/PageTest.h"

#include <QPushButton>

/// The focus axis by steps, by a held button, and to a stop.
class tst_zstep : public PageTest {
    Q_OBJECT

public:
    tst_zstep()
        : PageTest("TAB_STAGE")
    {
    }

protected slots:
    void init() override;
    void cleanup() override;

private slots:
    void step_setsTheDirectionAndRuns_data();
    void step_setsTheDirectionAndRuns();
    void stepSize_isTheOneLastSent();
    void heldStepButton_movesOnce();
    void secondClickWhileTheStageSteps_sendsNothing();
    void lostReplyOfAStep_leavesTheButtonUntilTheNextStep();
    void heldBottomOrTop_runsUntilReleased_data();
    void heldBottomOrTop_runsUntilReleased();
    void stop_asksForThePosition();

private:
    QString position() { return m_desk->text("lineEdit_POSITION_Z"); }
    int trueZ() { return m_desk->rig.state().value("z").toInt(); }
};

void tst_zstep::init()
{
    PageTest::init();
    QVERIFY(m_desk->rig.set("z", 32000));
}

void tst_zstep::cleanup()
{
    m_desk->rig.set("quick", true);
    PageTest::cleanup();
}

void tst_zstep::step_setsTheDirectionAndRuns_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<int>("reached");
    QTest::newRow("down") << "pushButton_MVN_Z"
                          << "pushButton_MVP_Z"
                          << "MINUS" << 31885;
    QTest::newRow("up") << "pushButton_MVP_Z"
                        << "pushButton_MVN_Z"
                        << "PLUS" << 32115;
}

void tst_zstep::step_setsTheDirectionAndRuns()
{
    QFETCH(QString, button);
    QFETCH(QString, other);
    QFETCH(QString, direction);
    QFETCH(int, reached);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_Z", "115"));
    QVERIFY(click("pushButton_STEP_Z"));
    const int mark = m_desk->mark();
    QVERIFY(click(button));
    QVERIFY(!m_desk->isEnabled(qPrintable(button)));
    QVERIFY(m_desk->isEnabled(qPrintable(other))); // the pressed button only
    QVERIFY(becomesEnabled(button));
    QVERIFY(m_desk->isEnabled(qPrintable(other)));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE DIR " + direction, "$Z#STAGE RUN" }));
    QCOMPARE(position(), QString::number(reached));
    QCOMPARE(trueZ(), reached);
}

void tst_zstep::stepSize_isTheOneLastSent()
{
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_Z", "40"));
    QVERIFY(click("pushButton_STEP_Z"));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_Z", "9999")); // typed and not sent
    QVERIFY(click("pushButton_MVP_Z"));
    QVERIFY(becomesEnabled("pushButton_MVP_Z"));
    QCOMPARE(position(), QString("32040"));
}

void tst_zstep::heldStepButton_movesOnce()
{
    for (const char* name : { "pushButton_MVN_Z", "pushButton_MVP_Z" }) {
        auto* button = m_desk->widget<QPushButton>(name);
        QVERIFY(button->autoRepeat());
        const int mark = m_desk->mark();
        QTest::mousePress(button, Qt::LeftButton);
        QVERIFY(m_desk->rig.waitForSent("$Z#STAGE RUN", mark));
        QVERIFY(becomesEnabled(name));
        // Still held, and several intervals of the repetition long.
        QTest::qWait(3 * button->autoRepeatInterval() + button->autoRepeatDelay());
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(m_desk->linesSince(mark).filter("RUN").size(), 1);
    }
}

void tst_zstep::secondClickWhileTheStageSteps_sendsNothing()
{
    QVERIFY(m_desk->rig.fault("late", "$Z#STAGE RUN", 1, 200));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_MVN_Z"));
    QTest::mouseClick(m_desk->widget("pushButton_MVN_Z"), Qt::LeftButton);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE DIR MINUS", "$Z#STAGE RUN" }));
    QVERIFY(becomesEnabled("pushButton_MVN_Z"));
}

void tst_zstep::lostReplyOfAStep_leavesTheButtonUntilTheNextStep()
{
    QVERIFY(m_desk->rig.fault("lose", "$Z#STAGE RUN"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_MVN_Z"));
    QCOMPARE(m_desk->linesSince(mark).last(), QString("$Z#STAGE RUN"));
    QVERIFY(!m_desk->isEnabled("pushButton_MVN_Z"));
    QVERIFY(click("pushButton_MVP_Z"));
    QVERIFY(becomesEnabled("pushButton_MVN_Z"));
    QVERIFY(m_desk->isEnabled("pushButton_MVP_Z"));
}

void tst_zstep::heldBottomOrTop_runsUntilReleased_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("sign");
    QTest::newRow("bottom") << "pushButton_RON_Z"
                            << "$Z#STAGE BOTTOM" << -1;
    QTest::newRow("top") << "pushButton_ROP_Z"
                         << "$Z#STAGE TOP" << +1;
}

void tst_zstep::heldBottomOrTop_runsUntilReleased()
{
    QFETCH(QString, button);
    QFETCH(QString, line);
    QFETCH(int, sign);
    QVERIFY(m_desk->rig.set("quick", false));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_SPEED_Z", "100"));
    QVERIFY(click("pushButton_SPEED_Z"));
    auto* widget = m_desk->window().findChild<QPushButton*>(button);
    const int mark = m_desk->mark();
    QTest::mousePress(widget, Qt::LeftButton);
    // While it is held the stage runs, further than any step.
    QVERIFY(patience::waitFor([&] { return sign * (trueZ() - 32000) > 1000; }));
    QVERIFY(m_desk->rig.state().value("zMoving").toBool());
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line }));
    QTest::mouseRelease(widget, Qt::LeftButton);
    QVERIFY(patience::waitFor([this] { return position() == QString::number(trueZ()); }));
    QVERIFY(!m_desk->rig.state().value("zMoving").toBool());
    QVERIFY(sign * (position().toInt() - 32000) > 1000);
    QVERIFY(position().toInt() > 0 && position().toInt() < 65000);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line, "$Z#STAGE STOP", "$Z#STAGE POS" }));
}

void tst_zstep::stop_asksForThePosition()
{
    QVERIFY(m_desk->rig.set("z", 29999));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_STOP_Z"));
    QVERIFY(comesToShow("lineEdit_POSITION_Z", "29999"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE STOP", "$Z#STAGE POS" }));
}

WORKFLOW_MAIN(tst_zstep)
#include "tst_zstep.moc"
