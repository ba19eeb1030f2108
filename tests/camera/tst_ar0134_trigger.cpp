#include "camera/ar0134.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/platform/ScriptedBoard.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <memory>

using qr9::wire::Kind;
using Bytes = ScriptedBoard::Bytes;
using Shot = ScriptedBoard::Shot;

// One trigger at a time: errors 7 to 10, who is passed over, who is woken, and closing in the middle of it.
class tst_ar0134_trigger : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_board = std::make_unique<ScriptedBoard>();
        m_bench = std::make_unique<Ar0134Bench>();
    }
    void cleanup()
    {
        m_errors.reset();
        m_ready.reset();
        m_camera.reset();
        m_bench.reset();
        m_board.reset();
    }

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
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&eventsRun] { eventsRun = true; });
        timer.start(50);
        m_camera->closeCamera();
        QVERIFY(eventsRun);
        QVERIFY(worker->wait(5000));
        QVERIFY(errors().isEmpty());
        const auto requests = m_board->requests();
        QVERIFY(requests.back().kind == Kind::Close);
        QCOMPARE(m_board->count(Kind::Close), 1);
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
    void open()
    {
        m_camera = std::make_unique<AR0134>(m_bench->file());
        QCOMPARE(m_camera->state(), int(AR0134::STATE_OPEN));
        m_errors = std::make_unique<QSignalSpy>(m_camera.get(), &AR0134::signal_cameraError);
        m_ready = std::make_unique<QSignalSpy>(m_camera.get(), &AR0134::sig_imgReady);
    }

    std::unique_ptr<QThread> triggerOnAnotherThread()
    {
        std::unique_ptr<QThread> worker(QThread::create([this] { m_camera->slot_executeSoftwareTrigger(); }));
        worker->start();
        return worker;
    }

    static void expect(const char* line) { QTest::ignoreMessage(QtCriticalMsg, line); }

    QVector<int> errors() const
    {
        QVector<int> numbers;
        for (const QList<QVariant>& arguments : *m_errors) {
            numbers.append(static_cast<int>(arguments.first().value<AR0134::cameraError>()));
        }
        return numbers;
    }

    std::unique_ptr<ScriptedBoard> m_board;
    std::unique_ptr<Ar0134Bench> m_bench;
    std::unique_ptr<AR0134> m_camera;
    std::unique_ptr<QSignalSpy> m_errors;
    std::unique_ptr<QSignalSpy> m_ready;
};

QTEST_GUILESS_MAIN(tst_ar0134_trigger)
#include "tst_ar0134_trigger.moc"
