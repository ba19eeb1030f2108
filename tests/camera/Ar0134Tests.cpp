#include "tests/camera/Ar0134Tests.h"

#include <QtTest>

void BoardTest::init()
{
    m_board = std::make_unique<ScriptedBoard>();
    m_bench = std::make_unique<Ar0134Bench>();
}

void BoardTest::cleanup()
{
    m_bench.reset();
    m_board.reset();
}

void DriverTest::cleanup()
{
    m_errors.reset();
    m_ready.reset();
    m_camera.reset();
    BoardTest::cleanup();
}

void DriverTest::open()
{
    m_camera = std::make_unique<AR0134>(m_bench->file());
    QCOMPARE(m_camera->state(), int(AR0134::STATE_OPEN));
    m_errors = std::make_unique<QSignalSpy>(m_camera.get(), &AR0134::signal_cameraError);
    m_ready = std::make_unique<QSignalSpy>(m_camera.get(), &AR0134::sig_imgReady);
}

void DriverTest::expect(const char* line)
{
    QTest::ignoreMessage(QtCriticalMsg, line);
}

QVector<int> DriverTest::errors() const
{
    QVector<int> numbers;
    for (const QList<QVariant>& arguments : *m_errors) {
        numbers.append(static_cast<int>(arguments.first().value<AR0134::cameraError>()));
    }
    return numbers;
}

void SourceTest::cleanup()
{
    m_source.reset();
    BoardTest::cleanup();
}

void SourceTest::open()
{
    m_source = std::make_unique<Ar0134FrameDelivery>();
    QVERIFY(m_source->isRunning());
}
