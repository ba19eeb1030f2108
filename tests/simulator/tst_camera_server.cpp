#include "tests/simulator/RunningInstrument.h"
#include "tests/simulator/SerialLine.h"
#include "tests/simulator/WireClient.h"
#include "tests/simulator/pictures.h"

#include <QTest>

#include <cmath>
#include <memory>

using namespace qr9;
using wire::Error;
using wire::Kind;

namespace {

int errorCode(Error error)
{
    return static_cast<int>(error);
}

} // namespace

// The camera as a stand-in SDK meets it: records on a socket, pictures of the world.
class tst_CameraServer : public QObject {
    Q_OBJECT

private:
    static constexpr int kPixels = 1280 * 960;

    std::unique_ptr<RunningInstrument> m_instrument;
    std::unique_ptr<WireClient> m_client;

    void start(const QStringList& options)
    {
        m_client.reset();
        m_instrument = std::make_unique<RunningInstrument>(options);
        QVERIFY(m_instrument->isReady());
        m_client = newClient();
    }
    std::unique_ptr<WireClient> newClient()
    {
        return std::make_unique<WireClient>(m_instrument->file("camera.sock"));
    }
    void lightBrightField()
    {
        SerialLine port(m_instrument->boardPort());
        port.ask("$A#LED BRT1 7 6");
        port.ask("$X#STAGE ABS 30931");
        port.ask("$Z#STAGE ABS 31774");
    }
    bool isOpen() { return m_instrument->state("camera").toObject().value("open").toBool(); }
    bool isExposing() { return m_instrument->state("camera").toObject().value("exposing").toBool(); }

private slots:
    void init() { start({ "--seed", "2", "--quick" }); }
    void cleanup()
    {
        m_client.reset();
        m_instrument.reset();
    }

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

    void open_tellsEveryNodeWithItsLimits()
    {
        const auto features = m_client->open(wire::kClassPylon);
        QStringList names;
        for (const wire::Feature& feature : features) {
            names << feature.name;
        }
        QCOMPARE(names,
            QStringList({ "DeviceModelName", "Width", "Height", "ExposureTime", "Gain", "Gamma", "ReverseX",
                "ReverseY", "ExposureAuto", "GainAuto", "PixelFormat", "OverlapMode", "TriggerSelector",
                "TriggerMode", "TriggerSource" }));
        QCOMPARE(QString(features[0].text), QString("daA1280-54um"));
        QCOMPARE(features[1].min, 16.0);
        QCOMPARE(features[1].max, 1280.0);
        QCOMPARE(features[2].max, 960.0);
        QCOMPARE(features[3].min, 20.0);
        QCOMPARE(features[3].max, 1000000.0);
        QCOMPARE(features[4].min, 0.0);
        QVERIFY(features[4].max > 18.0);
        QVERIFY(static_cast<double>(static_cast<float>(features[4].max)) != features[4].max);
    }

    void onlyTheAcFamily_hasTheCentringNodes_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("centring");
        QTest::newRow("ac") << "acA1280-60um" << true;
        QTest::newRow("pu") << "puA1280-54um" << false;
        QTest::newRow("da") << "daA1280-54um" << false;
        QTest::newRow("unknown") << "xyz" << false;
    }
    void onlyTheAcFamily_hasTheCentringNodes()
    {
        QFETCH(QString, model);
        QFETCH(bool, centring);
        start({ "--seed", "2", "--camera-model", model });
        m_client->open(wire::kClassPylon);
        QCOMPARE(QString(m_client->request(Kind::GetFeature, "DeviceModelName").head.name), model);
        QCOMPARE(
            m_client->code(Kind::SetFeature, "CenterX", 1.0), centring ? 0 : errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::GetFeature, "CenterY"), centring ? 0 : errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::SetFeature, "OverlapMode", 1.0), 0);
    }

    void feature_keepsWhatWasSet()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 12345.5), 0);
        QCOMPARE(m_client->request(Kind::GetFeature, "ExposureTime").head.value, 12345.5);
    }

    void features_outliveTheConnection()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "Gain", 3.5), 0);
        m_client = newClient();
        for (const wire::Feature& feature : m_client->open(wire::kClassPylon)) {
            if (QString(feature.name) == "Gain") {
                QCOMPARE(feature.value, 3.5);
            }
        }
        QCOMPARE(m_client->request(Kind::GetFeature, "Gain").head.value, 3.5);
    }

    void valueOutOfRange_isRefusedAndTheOldOneStays_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("value");
        QTest::newRow("exposure above") << "ExposureTime" << 1000000.5;
        QTest::newRow("exposure below") << "ExposureTime" << 19.9;
        QTest::newRow("gain rounded to float") << "Gain" << static_cast<double>(23.79F);
        QTest::newRow("gain below") << "Gain" << -0.1;
        QTest::newRow("width of no whole pixel") << "Width" << 100.5;
        QTest::newRow("flag of 2") << "ReverseX" << 2.0;
        QTest::newRow("no number") << "Gain" << qQNaN();
    }
    void valueOutOfRange_isRefusedAndTheOldOneStays()
    {
        QFETCH(QString, name);
        QFETCH(double, value);
        const QByteArray node = name.toLatin1();
        m_client->open(wire::kClassPylon);
        const double before = m_client->request(Kind::GetFeature, node).head.value;
        const auto reply = m_client->request(Kind::SetFeature, node, value);
        QCOMPARE(reply.head.code, errorCode(Error::OutOfRange));
        QVERIFY(QString(reply.head.name).contains("out of range"));
        QCOMPARE(m_client->request(Kind::GetFeature, node).head.value, before);
    }

    void unknownFeature_isRefused()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "Sharpness", 1.0), errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::GetFeature, "Sharpness"), errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::SetFeature, "DeviceModelName", 1.0), errorCode(Error::Refused));
    }

    void sizeAndFormat_areLockedWhileTheStreamRuns()
    {
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::SetFeature, "Width", 640.0), errorCode(Error::Refused));
        QCOMPARE(m_client->code(Kind::SetFeature, "PixelFormat", 3.0), errorCode(Error::Refused));
        QCOMPARE(m_client->code(Kind::SetFeature, "ReverseX", 1.0), 0);
        QCOMPARE(m_client->code(Kind::StopStream), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "Width", 640.0), 0);
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

    void trigger_bringsOneFrameNumberedFromOne()
    {
        QVERIFY(m_client->openBasler());
        for (quint64 number = 1; number <= 3; ++number) {
            QCOMPARE(m_client->code(Kind::Trigger), 0);
            const auto frame = m_client->nextEvent();
            QVERIFY(frame.has_value());
            QCOMPARE(frame->head.kind, Kind::FrameEvent);
            QCOMPARE(frame->head.code, 0);
            QCOMPARE(static_cast<quint64>(frame->head.ticket), number);
            QCOMPARE(frame->head.width, 1280);
            QCOMPARE(frame->head.height, 960);
            QCOMPARE(frame->head.bytesPerPixel, 1);
            QCOMPARE(frame->payload.size(), kPixels);
        }
        QVERIFY(m_client->isQuiet());
    }

    void triggerWhileOneIsUnderWay_isIgnored()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QCOMPARE(m_client->code(Kind::Trigger), 1);
        m_instrument->advance(10);
        QVERIFY(m_client->nextEvent().has_value());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QCOMPARE(m_instrument->state("camera").toObject().value("exposures").toInt(), 2);
    }

    void triggerOfACameraThatDoesNotWaitForIt_isIgnored()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::Trigger), 1); // no stream
        QCOMPARE(m_client->code(Kind::SetFeature, "TriggerMode", 1.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "TriggerSource", 1.0), 0);
        QCOMPARE(m_client->code(Kind::StartStream), 0);
        QCOMPARE(m_client->code(Kind::Trigger), 1); // waits for a wire
        QVERIFY(!isExposing());
    }

    void freelyRunningCamera_sendsFrameAfterFrame()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 1000.0), 0);
        QCOMPARE(m_client->code(Kind::StartStream), 0);
        for (int frame = 0; frame < 3; ++frame) {
            QCOMPARE(m_client->nextEvent()->payload.size(), kPixels);
        }
        QCOMPARE(m_client->code(Kind::StopStream), 0);
        QVERIFY(!isExposing());
    }

    void frame_comesWhenExposureAndReadoutAreOver()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler(50000.0));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(50.9);
        QVERIFY(isExposing());
        QVERIFY(m_client->isQuiet());
        m_instrument->advance(0.1);
        QCOMPARE(m_client->nextEvent()->payload.size(), kPixels);
    }

    void frame_showsTheWorldAtTheMiddleOfTheExposure()
    {
        lightBrightField();
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler(50000.0));
        SerialLine port(m_instrument->boardPort());

        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(24.9);
        port.ask("$A#LED OFF1"); // dark just before the middle
        m_instrument->advance(0.1);
        port.ask("$A#LED BRT1 7 6");
        m_instrument->advance(50);
        QVERIFY(mean(m_client->nextEvent()->payload) < 20.0);

        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(25);
        port.ask("$A#LED OFF1"); // dark from the middle on
        m_instrument->advance(50);
        QVERIFY(mean(m_client->nextEvent()->payload) > 100.0);
    }

    void picture_followsExposureAndGain()
    {
        lightBrightField();
        QVERIFY(m_client->openBasler(10000.0));
        const double once = mean(m_client->picture());
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 20000.0), 0);
        const double twice = mean(m_client->picture());
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 10000.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "Gain", 6.0206), 0);
        const double gained = mean(m_client->picture());
        QVERIFY2(std::abs(gained - twice) < 1.0, qPrintable(QString("%1 %2").arg(gained).arg(twice)));
        QVERIFY(twice > 1.8 * once);
    }

    void reverse_turnsThePicture()
    {
        lightBrightField();
        QVERIFY(m_client->openBasler(35000.0));
        const QByteArray straight = m_client->picture();
        const double noise = difference(straight, m_client->picture());
        QCOMPARE(m_client->code(Kind::SetFeature, "ReverseX", 1.0), 0);
        const QByteArray reversedX = m_client->picture();
        QCOMPARE(m_client->code(Kind::SetFeature, "ReverseX", 0.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "ReverseY", 1.0), 0);
        const QByteArray reversedY = m_client->picture();
        QVERIFY(difference(straight, reversedX) > 3.0 * noise);
        QVERIFY(difference(straight, reversedY) > 3.0 * noise);
        QVERIFY(difference(columnsReversed(straight, 1280), reversedX) < 1.1 * noise);
        QVERIFY(difference(rowsReversed(straight, 1280), reversedY) < 1.1 * noise);
    }

    void smallerPicture_isCutFromTheSensor()
    {
        lightBrightField();
        QVERIFY(m_client->openBasler(35000.0));
        const QByteArray whole = m_client->picture();
        const double noise = difference(whole, m_client->picture());
        m_client->code(Kind::StopStream);
        QCOMPARE(m_client->code(Kind::SetFeature, "Width", 640.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "Height", 100.0), 0);
        QCOMPARE(m_client->code(Kind::StartStream), 0);
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        const auto frame = m_client->nextEvent();
        QCOMPARE(frame->head.width, 640);
        QCOMPARE(frame->head.height, 100);
        QByteArray corner;
        for (int row = 0; row < 100; ++row) {
            corner += whole.mid(row * 1280, 640);
        }
        QVERIFY(difference(corner, frame->payload) < 1.1 * noise);
    }

    void twelveBits_comeLowByteFirst()
    {
        lightBrightField();
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "PixelFormat", 3.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 35000.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "TriggerMode", 1.0), 0);
        QCOMPARE(m_client->code(Kind::StartStream), 0);
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        const auto frame = m_client->nextEvent();
        QCOMPARE(frame->head.bytesPerPixel, 2);
        QCOMPARE(frame->payload.size(), 2 * kPixels);
        const int grey
            = static_cast<uchar>(frame->payload.at(0)) + 256 * static_cast<uchar>(frame->payload.at(1));
        QVERIFY2(grey > 16 * 100 && grey < 16 * 230, qPrintable(QString::number(grey)));
    }

    void stopStream_isTheLastWordOfAFrameUnderWay()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QCOMPARE(m_client->code(Kind::StopStream), 0);
        m_instrument->advance(1000);
        QVERIFY(m_client->isQuiet());
    }

    void pictureOfAnAbortedExposure_isNotTakenForTheNext()
    {
        lightBrightField();
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler(50000.0));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(25); // the picture is being made
        QCOMPARE(m_client->code(Kind::StopStream), 0);
        SerialLine(m_instrument->boardPort()).ask("$A#LED OFF1");
        QCOMPARE(m_client->code(Kind::StartStream), 0);
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(51);
        QVERIFY(mean(m_client->nextEvent()->payload) < 20.0);
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
        QTRY_VERIFY_WITH_TIMEOUT(
            m_instrument->state("camera").toObject().value("exposures").toInt() > 60, kPatienceMs);
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
