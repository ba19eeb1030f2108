#include "tests/simulator/BoardBench.h"

/// Motions that take their time, with the clock held so that only advance() lets them end: when the board
/// answers, and in which order.
class tst_BoardMotion : public BoardBench {
    Q_OBJECT

private slots:
    void init()
    {
        start({ "--seed", "2" });
        m_instrument->holdClock();
    }
    void cleanup() { stop(); }

    void reply_comesWhenTheAxisHasArrived()
    {
        m_instrument->set("z", 1000);
        sendAndReach("$Z#STAGE ABS 11000", 1); // 10000 steps at 20000 steps/s
        m_instrument->advance(499);
        QCOMPARE(answers(), QStringList());
        QCOMPARE(state("z"), 10980);
        QCOMPARE(m_instrument->state("zMoving").toBool(), true);
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE ABS 11000\r\n"));
        QCOMPARE(m_instrument->state("zMoving").toBool(), false);
    }

    void moveOfZeroSteps_isAnsweredAtOnce()
    {
        m_instrument->set("z", 1000);
        QCOMPARE(m_port->ask("$Z#STAGE ABS 1000"), QByteArray("$OK#Z#STAGE ABS 1000\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE STEP 0"), QByteArray("$OK#Z#STAGE STEP 0\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#1000\r\n"));
    }

    void commandsForOneAxis_waitInOrder()
    {
        m_instrument->set("z", 0);
        sendAndReach("$Z#STAGE ABS 2000\n$Z#STAGE STEP 100\n$Z#STAGE RUN\n$Z#STAGE POS", 4);
        QCOMPARE(answers(), QStringList());
        m_instrument->advance(100);
        QCOMPARE(answers(), QStringList({ "< $OK#Z#STAGE ABS 2000", "< $OK#Z#STAGE STEP 100" }));
        m_instrument->advance(5);
        QCOMPARE(answers().mid(2), QStringList({ "< $OK#Z#STAGE RUN#2100", "< $OK#Z#STAGE POS#2100" }));
    }

    void otherUnits_areAnsweredMeanwhile()
    {
        sendAndReach("$X#STAGE EJECT\n$A#FILTER GO 2", 2);
        QCOMPARE(m_port->ask("$Z#STAGE POS"), QByteArray("$OK#Z#STAGE POS#5000\r\n"));
        QCOMPARE(m_port->ask("$A#LED BRT2 300"), QByteArray("$OK#A#LED BRT2 300\r\n"));
        m_instrument->advance(100);
        QCOMPARE(m_port->receive(), QByteArray("$OK#A#FILTER GO 2\r\n"));
        m_instrument->advance(5000);
        QCOMPARE(m_port->receive(), QByteArray("$OK#X#STAGE EJECT\r\n"));
    }

    void topRun_lastsUntilStop_andBothAreAnswered()
    {
        m_instrument->set("z", 1000);
        sendAndReach("$Z#STAGE TOP\n$Z#STAGE POS", 2);
        m_instrument->advance(250);
        QCOMPARE(answers(), QStringList());
        sendAndReach("$Z#STAGE STOP", 3);
        QCOMPARE(
            answers(), QStringList({ "< $OK#Z#STAGE TOP", "< $OK#Z#STAGE STOP", "< $OK#Z#STAGE POS#6000" }));
        m_instrument->advance(1000);
        QCOMPARE(state("z"), 6000);
    }

    void bottomRun_endsAtTheEndSwitch()
    {
        m_instrument->set("z", 2000);
        sendAndReach("$Z#STAGE BOTTOM", 1);
        m_instrument->advance(99);
        QCOMPARE(answers(), QStringList());
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE BOTTOM\r\n"));
        QCOMPARE(state("z"), 0);
    }

    void stopOfAMove_answersItWithThePositionReached()
    {
        m_instrument->set("z", 0);
        sendAndReach("$Z#STAGE ABS 20000", 1);
        m_instrument->advance(500);
        sendAndReach("$Z#STAGE STOP", 2);
        QCOMPARE(answers(), QStringList({ "< $OK#Z#STAGE ABS 10000", "< $OK#Z#STAGE STOP" }));
    }

    void speed_changesHowLongAMoveTakes()
    {
        m_instrument->set("z", 0);
        m_port->ask("$Z#STAGE SPEED 50");
        sendAndReach("$Z#STAGE ABS 10000", 2);
        m_instrument->advance(999);
        QCOMPARE(answers().size(), 1);
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE ABS 10000\r\n"));
    }

    void homing_takesLessThanHalfASecondFromAnywhere()
    {
        m_instrument->set("x", 80000);
        sendAndReach("$X#STAGE ORIGIN", 1);
        m_instrument->advance(500);
        QCOMPARE(m_port->receive(), QByteArray("$OK#X#STAGE ORIGIN\r\n"));
        QCOMPARE(state("x"), 0);
    }

    void filterWheel_letsNothingThroughWhileItTurns()
    {
        QCOMPARE(state("filter"), 1);
        sendAndReach("$A#FILTER GO 3", 1);
        QCOMPARE(state("filter"), 0);
        m_instrument->advance(200);
        QCOMPARE(m_port->receive(), QByteArray("$OK#A#FILTER GO 3\r\n"));
        QCOMPARE(state("filter"), 3);
    }
};

QTEST_GUILESS_MAIN(tst_BoardMotion)
#include "tst_board_motion.moc"
