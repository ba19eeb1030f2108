#include "tests/camera/Ar0134Tests.h"
#include "tests/camera/ThreadState.h"

#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>

using qr9::wire::Kind;
using Bytes = ScriptedBoard::Bytes;
using Shot = ScriptedBoard::Shot;

// One trigger at a time: errors 7 to 10, who is passed over, who is woken, and closing in the middle of it.
class tst_ar0134_trigger : public DriverTest {
    Q_OBJECT

private slots:
    void failedTrigger_isError7()
    {
        open();
        m_board->script({ { Shot::Refused, 0xFF26, {} } });
        expect("void AR0134::slot_executeSoftwareTrigger() Software Trigger failed");
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(errors(), QVector<int> { 7 });
        QVERIFY(m_ready->isEmpty());
    }

    void lostFrame_isError8()
    {
        open();
        m_board->script({ { Shot::Lost, 0, {} } });
        expect("void AR0134::slot_executeSoftwareTrigger() Frame is not ready error");
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(errors(), QVector<int> { 8 });
        QVERIFY(m_ready->isEmpty());
    }

    void frameThatCannotBeFetched_isError9_data()
    {
        QTest::addColumn<uint>("code");
        QTest::newRow("USB timeout") << 65318U;
        QTest::newRow("data length") << 65316U;
    }
    void frameThatCannotBeFetched_isError9()
    {
        QFETCH(uint, code);
        open();
        m_board->script({ { Shot::Broken, code, {} } });
        expect("void AR0134::getSingleFrame() Get Frame Error");
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(errors(), QVector<int> { 9 });
        QVERIFY(m_ready->isEmpty());
    }

    void frameThatCannotBeConverted_isError10()
    {
        m_bench->setPicture(1280, 964, 8, "3");
        open();
        m_board->setPicture([](int) { return Bytes(1000, 0x55); });
        expect("void AR0134::getSingleFrame() Convert image failed, No image data \n");
        const int before = AR0134::totalFrames();
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(errors(), QVector<int> { 10 });
        QVERIFY(m_ready->isEmpty());
        QCOMPARE(AR0134::totalFrames(), before);
    }

    void afterAFailedTrigger_theNextOneWorks()
    {
        open();
        m_board->script({ { Shot::Refused, 0xFF26, {} }, { Shot::Broken, 65318, {} } });
        for (int i = 0; i < 3; ++i) {
            m_camera->slot_executeSoftwareTrigger();
        }
        QCOMPARE(errors(), (QVector<int> { 7, 9 }));
        QCOMPARE(m_ready->count(), 1);
    }

    void triggerWhileOneIsUnderWay_isPassedOver()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(300));
        const auto worker = triggerOnAnotherThread();
        QTRY_COMPARE(m_board->count(Kind::Trigger), 1);
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(m_board->count(Kind::Trigger), 1);
        QVERIFY(worker->wait(5000));
        QTRY_COMPARE(m_ready->count(), 1);
    }

    void closeWhileATriggerIsUnderWay_waitsForItsEnd()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(300));
        const auto worker = triggerOnAnotherThread();
        QTRY_COMPARE(m_board->count(Kind::Trigger), 1);
        bool eventsRun = false;
        QTimer::singleShot(50, this, [&eventsRun] { eventsRun = true; });
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [this, &loop] {
            m_camera->closeCamera();
            loop.quit();
        });
        loop.exec();
        QVERIFY(eventsRun); // the window lives on meanwhile
        QVERIFY(worker->wait(5000));
        verifyClosedBehindTheFrame();
    }

    void closeBehindTheEndOfTheEventLoop_runsNoEvents()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(300));
        const auto worker = triggerOnAnotherThread();
        QTRY_COMPARE(m_board->count(Kind::Trigger), 1);
        bool eventsRun = false;
        QTimer::singleShot(0, this, [&eventsRun] { eventsRun = true; });
        m_camera->closeCamera();
        QVERIFY(!eventsRun); // they would find a window that is half gone
        QVERIFY(worker->wait(5000));
        verifyClosedBehindTheFrame();
    }

    void triggerQueuedBeforeTheClose_doesNotReachTheLibrary()
    {
        open();
        m_camera->slot_setLiveViewState(true); // queues the first trigger
        m_camera->closeCamera();
        QCoreApplication::processEvents();
        QCOMPARE(m_board->count(Kind::Trigger), 0);
        QVERIFY(errors().isEmpty());
        QCOMPARE(m_camera->state(), int(AR0134::STATE_CLOSED));
    }

    void waiterWithoutTrigger_givesUpAfterThreeSeconds()
    {
        open();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!m_camera->waitForFrameReady());
        QVERIFY(timer.elapsed() >= 2900);
        QVERIFY(timer.elapsed() < 10000);
    }

    void waiter_isNotWokenByATriggerThatFailed()
    {
        open();
        m_board->script({ { Shot::Refused, 0xFF26, {} } });
        std::atomic<bool> givenUp { false };
        const pid_t waiter = threadNumber();
        const std::unique_ptr<QThread> worker(QThread::create([&] {
            waitUntilAsleep(waiter, givenUp);
            m_camera->slot_executeSoftwareTrigger();
        }));
        worker->start();
        const bool woken = m_camera->waitForFrameReady();
        givenUp = true;
        QVERIFY(worker->wait(5000));
        QVERIFY(!woken);
        QTRY_COMPARE(errors(), QVector<int> { 7 });
    }

    void waiter_isWokenByAFrameThatFailed()
    {
        open();
        m_board->script({ { Shot::Broken, 65318, std::chrono::milliseconds(200) } });
        const auto worker = triggerOnAnotherThread();
        QVERIFY(m_camera->waitForFrameReady());
        QVERIFY(worker->wait(5000));
        QTRY_COMPARE(errors(), QVector<int> { 9 });
    }

private:
    void verifyClosedBehindTheFrame()
    {
        QVERIFY(errors().isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(m_ready->count(), 1);
        QVERIFY(m_board->requests().back().kind == Kind::Close);
        QCOMPARE(m_board->count(Kind::Close), 1);
    }

    std::unique_ptr<QThread> triggerOnAnotherThread()
    {
        std::unique_ptr<QThread> worker(QThread::create([this] { m_camera->slot_executeSoftwareTrigger(); }));
        worker->start();
        return worker;
    }
};

QTEST_GUILESS_MAIN(tst_ar0134_trigger)
#include "tst_ar0134_trigger.moc"
