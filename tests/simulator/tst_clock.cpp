#include "simulator/Clock.h"

#include <QTest>

#include <vector>

using namespace qr9::sim;
using std::chrono::milliseconds;

class tst_Clock : public QObject {
    Q_OBJECT

private slots:
    void events_runInTheOrderOfTheirTimes()
    {
        Clock clock;
        clock.hold();
        std::vector<int> order;
        clock.callAfter(milliseconds(20), [&] { order.push_back(2); });
        clock.callAfter(milliseconds(10), [&] { order.push_back(1); });
        clock.callAfter(milliseconds(20), [&] { order.push_back(3); });
        clock.advance(milliseconds(19));
        QCOMPARE(order, std::vector<int>({ 1 }));
        clock.advance(milliseconds(1));
        QCOMPARE(order, std::vector<int>({ 1, 2, 3 }));
    }

    void event_seesItsOwnTime()
    {
        Clock clock;
        clock.hold();
        const Time start = clock.now();
        Time seen(0);
        Time chained(0);
        clock.callAfter(milliseconds(10), [&] {
            seen = clock.now();
            clock.callAfter(milliseconds(5), [&] { chained = clock.now(); });
        });
        clock.advance(milliseconds(100));
        QCOMPARE((seen - start).count(), 10000);
        QCOMPARE((chained - start).count(), 15000);
        QCOMPARE((clock.now() - start).count(), 100000);
    }

    void cancelledEvent_neverRuns()
    {
        Clock clock;
        clock.hold();
        int runs = 0;
        const Clock::Ticket ticket = clock.callAfter(milliseconds(1), [&] { ++runs; });
        clock.callAfter(milliseconds(2), [&] { ++runs; });
        clock.cancel(ticket);
        clock.advance(milliseconds(10));
        QCOMPARE(runs, 1);
        clock.cancel(ticket); // long gone
    }

    void eventOfNoDelay_doesNotRunInsideTheCall()
    {
        Clock clock;
        bool ran = false;
        clock.callAfter(Time(0), [&] { ran = true; });
        QVERIFY(!ran);
        QTRY_VERIFY(ran);
    }

    void runningClock_runsEventsFromTheEventLoop()
    {
        Clock clock;
        Time seen(0);
        const Time start = clock.now();
        clock.callAfter(milliseconds(20), [&] { seen = clock.now(); });
        QTRY_VERIFY(seen > Time(0));
        QVERIFY(seen - start >= milliseconds(20));
    }

    void heldClock_goesOnFromWhereItStood()
    {
        Clock clock;
        clock.hold();
        const Time held = clock.now();
        bool ran = false;
        clock.callAfter(milliseconds(1), [&] { ran = true; });
        QTest::qWait(20);
        QVERIFY(!ran);
        QCOMPARE(clock.now().count(), held.count());
        clock.release();
        QTRY_VERIFY(ran);
    }

    void advance_isForAHeldClockAlone()
    {
        Clock clock;
        bool ran = false;
        clock.callAfter(std::chrono::hours(1), [&] { ran = true; });
        clock.advance(std::chrono::hours(2));
        QVERIFY(!ran);
    }
};

QTEST_GUILESS_MAIN(tst_Clock)
#include "tst_clock.moc"
