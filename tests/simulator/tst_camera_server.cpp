#include "tests/simulator/CameraTest.h"
#include "tests/simulator/descriptors.h"

#include <QTest>

using namespace qr9;
using wire::Error;
using wire::Kind;

// The camera as a stand-in SDK meets it: who finds it, who may open it, and records on a socket.
class tst_CameraServer : public CameraTest {
    Q_OBJECT

private slots:
    void devices_listsTheCameraOfItsClassAlone()
    {
        const auto reply = m_client->request(Kind::Devices, wire::kClassPylon);
        QCOMPARE(reply.head.code, 1);
        QCOMPARE(reply.payload.size(), static_cast<int>(sizeof(wire::Device)));
        const auto* device = reinterpret_cast<const wire::Device*>(reply.payload.constData());
        QCOMPARE(QString(device->deviceClass), QString("BaslerUsb"));
        QCOMPARE(QString(device->model), QString("daA1280-54um"));
        QCOMPARE(QString(device->serial).size(), 12);
        QCOMPARE(m_client->code(Kind::Devices, wire::kClassArduCam), 0);
    }

    void unitWithoutCamera_hasNoDevices()
    {
        start({ "--seed", "2", "--camera", "none" });
        QCOMPARE(m_client->code(Kind::Devices, wire::kClassPylon), 0);
        QCOMPARE(m_client->code(Kind::Devices, wire::kClassArduCam), 0);
        QCOMPARE(m_client->code(Kind::Open, wire::kClassPylon), errorCode(Error::NoSuchDevice));
    }

    void requestsToACameraThatIsNotOpen_areRefused_data()
    {
        QTest::addColumn<int>("kind");
        for (const Kind kind : { Kind::Close, Kind::SetFeature, Kind::GetFeature, Kind::WriteRegister,
                 Kind::ReadRegister, Kind::StartStream, Kind::StopStream, Kind::Trigger }) {
            QTest::newRow(QByteArray::number(static_cast<int>(kind)).constData()) << static_cast<int>(kind);
        }
    }
    void requestsToACameraThatIsNotOpen_areRefused()
    {
        QFETCH(int, kind);
        QCOMPARE(m_client->code(static_cast<Kind>(kind), "Gain"), errorCode(Error::Refused));
    }

    void secondClient_mayLookButNotOpen()
    {
        QVERIFY(m_client->openBasler());
        const auto second = newClient();
        QCOMPARE(second->code(Kind::Devices, wire::kClassPylon), 1);
        QCOMPARE(second->code(Kind::Open, wire::kClassPylon), errorCode(Error::Refused));
        QCOMPARE(second->code(Kind::Trigger), errorCode(Error::Refused));
        QCOMPARE(m_client->picture().size(), kPixels);
        QVERIFY(second->isQuiet());
        QCOMPARE(m_client->code(Kind::Close), 0);
        QVERIFY(second->openBasler());
        QCOMPARE(second->picture().size(), kPixels);
    }

    void clientThatGoesInTheMiddleOfAFrame_leavesTheCameraToTheNext()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_client->close();
        QTRY_VERIFY_WITH_TIMEOUT(!isOpen(), kPatienceMs);
        m_instrument->advance(1000);
        m_client = newClient();
        m_instrument->ask({ { "cmd", "clock" }, { "action", "release" } });
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->picture().size(), kPixels);
    }

    void clientThatGoesWhileAFrameIsOnItsWay_leavesTheCameraToTheNext()
    {
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!isExposing(), kPatienceMs); // the frame fills the socket, nobody reads
        m_client->close();
        QTRY_VERIFY_WITH_TIMEOUT(!isOpen(), kPatienceMs);
        m_client = newClient();
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->picture().size(), kPixels);
    }

    void clientThatNeverReads_losesFramesAndNothingGrowsWithoutLimit()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 20.0), 0);
        QCOMPARE(m_client->code(Kind::StartStream), 0); // runs freely
        QTRY_VERIFY_WITH_TIMEOUT(cameraState("exposures").toInt() > 60, 2 * kPatienceMs);
        QCOMPARE(m_client->code(Kind::StopStream), 0);
        int frames = 0;
        while (m_client->nextEvent()) {
            if (++frames > 25) {
                break;
            }
            if (m_client->isQuiet()) {
                break;
            }
        }
        QVERIFY2(frames <= 25, qPrintable(QString::number(frames)));
    }

    void halfARequest_waitsForItsRest()
    {
        wire::Message message;
        message.kind = Kind::Devices;
        message.ticket = 77;
        qstrncpy(message.name, wire::kClassPylon, sizeof(message.name));
        const QByteArray bytes(reinterpret_cast<const char*>(&message), sizeof(message));
        QVERIFY(m_client->sendBytes(bytes.left(30)));
        QVERIFY(m_instrument->ask("state").value("ok").toBool());
        QVERIFY(m_client->isQuiet());
        QVERIFY(m_client->sendBytes(bytes.mid(30)));
        const auto reply = m_client->receive();
        QCOMPARE(static_cast<int>(reply->head.ticket), 77);
        QCOMPARE(reply->head.code, 1);
    }

    void twoRequestsInOneWrite_areAnsweredInOrder()
    {
        wire::Message message;
        message.kind = Kind::Devices;
        message.ticket = 1;
        QByteArray bytes(reinterpret_cast<const char*>(&message), sizeof(message));
        message.ticket = 2;
        bytes += QByteArray(reinterpret_cast<const char*>(&message), sizeof(message));
        QVERIFY(m_client->sendBytes(bytes));
        QCOMPARE(static_cast<int>(m_client->receive()->head.ticket), 1);
        QCOMPARE(static_cast<int>(m_client->receive()->head.ticket), 2);
    }

    void bytesThatAreNoMessage_endTheConnectionAlone()
    {
        QVERIFY(m_client->sendBytes(QByteArray(500, 'x')));
        QVERIFY(!m_client->receive().has_value());
        m_client = newClient();
        QCOMPARE(m_client->code(Kind::Devices, wire::kClassPylon), 1);
    }

    void payloadBeyondMeasure_endsTheConnection()
    {
        wire::Message message;
        message.kind = Kind::SetFeature;
        message.payloadBytes = 0x7fffffff;
        QVERIFY(m_client->sendBytes(QByteArray(reinterpret_cast<const char*>(&message), sizeof(message))));
        QVERIFY(!m_client->receive().has_value());
    }

    void unknownRequest_isRefused()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(static_cast<Kind>(999)), errorCode(Error::Refused));
    }
};

QTEST_GUILESS_MAIN(tst_CameraServer)
#include "tst_camera_server.moc"
