#include "simulator/Axis.h"

#include <QTest>

#include <limits>

using namespace qr9::sim;
using std::chrono::milliseconds;

// One motor of the stage, from -1000 to 5000 steps, 10 steps/s for each unit of the speed.
class tst_Axis : public QObject {
    Q_OBJECT

private:
    static constexpr AxisMechanics kMechanics { -1000, 5000, 300, 10 };

private slots:
    void axis_standsWhereThePowerFoundIt()
    {
        const Axis axis(kMechanics);
        QCOMPARE(axis.position(Time(0)), 300);
        QVERIFY(!axis.isMoving(Time(0)));
    }

    void move_takesItsStepsAtTheSpeed()
    {
        Axis axis(kMechanics); // 1000 steps/s
        const Time start = milliseconds(50);
        QCOMPARE(axis.moveTo(1300, start).count(), 1000000);
        QCOMPARE(axis.position(start), 300);
        QCOMPARE(axis.position(start + milliseconds(250)), 550);
        QVERIFY(axis.isMoving(start + milliseconds(999)));
        QCOMPARE(axis.position(start + milliseconds(1000)), 1300);
        QVERIFY(!axis.isMoving(start + milliseconds(1000)));
    }

    void moveDown_isAsLongAsMoveUp()
    {
        Axis axis(kMechanics);
        QCOMPARE(axis.moveTo(-200, Time(0)).count(), 500000);
        QCOMPARE(axis.position(milliseconds(250)), 50);
    }

    void newMove_beginsWhereTheAxisIs()
    {
        Axis axis(kMechanics);
        axis.moveTo(1300, Time(0));
        QCOMPARE(axis.moveTo(300, milliseconds(500)).count(), 500000);
        QCOMPARE(axis.position(milliseconds(500)), 800);
        QCOMPARE(axis.position(milliseconds(1000)), 300);
    }

    void stop_keepsTheAxisWhereItIs()
    {
        Axis axis(kMechanics);
        axis.moveTo(1300, Time(0));
        axis.stop(milliseconds(400));
        QCOMPARE(axis.position(milliseconds(400)), 700);
        QCOMPARE(axis.position(milliseconds(5000)), 700);
    }

    void endSwitches_limitEveryMotion()
    {
        Axis axis(kMechanics);
        axis.moveTo(99999, Time(0));
        QCOMPARE(axis.position(milliseconds(60000)), 5000);
        QVERIFY(axis.setStep(std::numeric_limits<int>::max()));
        axis.setPlus(false);
        axis.run(milliseconds(60000));
        QCOMPARE(axis.position(milliseconds(120000)), -1000);
        axis.place(77777, milliseconds(120000));
        QCOMPARE(axis.position(milliseconds(120000)), 5000);
    }

    void homing_goesToZeroInItsLimit()
    {
        Axis axis(kMechanics);
        axis.place(5000, Time(0));
        QCOMPARE(axis.home(Time(0)).count(), 400000);
        QCOMPARE(axis.position(milliseconds(400)), 0);
        axis.place(100, milliseconds(400));
        QCOMPARE(axis.home(milliseconds(400)).count(), 100000);
    }

    void speedAndHaste_multiply()
    {
        Axis axis(kMechanics);
        QVERIFY(axis.setSpeed(200));
        QCOMPARE(axis.moveTo(1300, Time(0)).count(), 500000);
        axis.setHaste(5.0);
        axis.place(300, Time(0));
        QCOMPARE(axis.moveTo(1300, Time(0)).count(), 100000);
    }

    void unusableSpeedOrStep_isRefused()
    {
        Axis axis(kMechanics);
        QVERIFY(!axis.setSpeed(0));
        QVERIFY(!axis.setSpeed(-3));
        QVERIFY(!axis.setSpeed(10001));
        QCOMPARE(axis.speed(), 100);
        QVERIFY(axis.setStep(115));
        QVERIFY(!axis.setStep(-1));
        QCOMPARE(axis.step(), 115);
    }

    void quickAxis_arrivesAtOnce()
    {
        Axis axis(kMechanics);
        axis.setQuick(true);
        QCOMPARE(axis.moveTo(1300, Time(0)).count(), 0);
        QCOMPARE(axis.position(Time(0)), 1300);
    }
};

QTEST_GUILESS_MAIN(tst_Axis)
#include "tst_axis.moc"
