#include "tests/workflows/StepTest.h"

#include <QPushButton>

/// The focus axis by steps, by a held button, and to a stop.
class tst_zstep : public StepTest {
    Q_OBJECT

public:
    tst_zstep()
        : StepTest("TAB_STAGE", "Z", 32000, 115)
    {
    }

protected slots:
    void cleanup() override;

private slots:
    void stepSize_isTheOneLastSent();
    void heldStepButton_movesOnce();
    void heldBottomOrTop_runsUntilReleased_data();
    void heldBottomOrTop_runsUntilReleased();
    void stop_asksForThePosition();
};

void tst_zstep::cleanup()
{
    m_desk->rig.set("quick", true);
    PageTest::cleanup();
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
    QVERIFY(patience::waitFor([&] { return sign * (truePosition() - 32000) > 1000; }));
    QVERIFY(m_desk->rig.state().value("zMoving").toBool());
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line }));
    QTest::mouseRelease(widget, Qt::LeftButton);
    QVERIFY(patience::waitFor([this] { return position() == QString::number(truePosition()); }));
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
