#include "tests/simulator/CameraTest.h"
#include "tests/simulator/SerialLine.h"
#include "tests/simulator/pictures.h"

#include <QTest>

#include <cmath>

using namespace qr9;
using wire::Kind;

// Triggers and the pictures of the world that they bring.
class tst_CameraPictures : public CameraTest {
    Q_OBJECT

private slots:
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
        QCOMPARE(cameraState("exposures").toInt(), 2);
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
};

QTEST_GUILESS_MAIN(tst_CameraPictures)
#include "tst_camera_pictures.moc"
