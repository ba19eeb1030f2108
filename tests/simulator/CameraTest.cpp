#include "tests/simulator/CameraTest.h"

#include "tests/simulator/SerialLine.h"

#include <QTest>

void CameraTest::init()
{
    start({ "--seed", "2", "--quick" });
}

void CameraTest::cleanup()
{
    m_client.reset();
    m_instrument.reset();
}

void CameraTest::start(const QStringList& options)
{
    m_client.reset();
    m_instrument = std::make_unique<RunningInstrument>(options);
    QVERIFY(m_instrument->isReady());
    m_client = newClient();
}

std::unique_ptr<WireClient> CameraTest::newClient() const
{
    return std::make_unique<WireClient>(m_instrument->file("camera.sock"));
}

QJsonValue CameraTest::cameraState(const QString& key)
{
    return m_instrument->state("camera").toObject().value(key);
}

void CameraTest::lightBrightField()
{
    SerialLine port(m_instrument->boardPort());
    port.ask("$A#LED BRT1 7 6");
    port.ask("$X#STAGE ABS 30931");
    port.ask("$Z#STAGE ABS 31774");
}
