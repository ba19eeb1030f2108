#include "tests/simulator/CameraTest.h"
#include "tests/simulator/SerialLine.h"
#include "tests/simulator/pictures.h"

#include <QTest>

#include <cmath>

using namespace qr9;
using wire::Error;
using wire::Kind;

namespace {

constexpr int kWidth = 1280;
constexpr int kRows = 964;

} // namespace

// The AR0134 sensor on its board: registers of 16 bits that act on the picture.
class tst_ArduCamSensor : public CameraTest {
    Q_OBJECT

private:
    int write(int address, int value) { return m_client->code(Kind::WriteRegister, "", value, address); }
    int read(int address)
    {
        return static_cast<int>(m_client->request(Kind::ReadRegister, "", 0.0, address).head.value);
    }
    double settings(const QString& key) { return cameraState(key).toDouble(-1000.0); }

protected slots:
    void init() override
    {
        start({ "--seed", "3", "--quick", "--camera", "arducam" });
        QCOMPARE(m_client->open(wire::kClassArduCam).size(), std::size_t(1));
        SerialLine port(m_instrument->boardPort());
        port.ask("$A#LED BRT1 7 6");
        port.ask("$X#STAGE ABS 30931");
        const double focus
            = m_instrument->ask({ { "cmd", "bestFocus" }, { "x", 30931 } }).value("bf").toDouble();
        port.ask("$Z#STAGE ABS " + QByteArray::number(static_cast<int>(focus)));
        QCOMPARE(write(0x301E, 0), 0);
        QCOMPARE(write(0x3012, 1426), 0); // 35 ms
    }

private slots:
    void board_isFoundWithItsSerialAndIsUsb3()
    {
        const auto other = newClient();
        const auto reply = other->request(Kind::Devices, wire::kClassArduCam);
        QCOMPARE(reply.head.code, 1);
        const auto* device = reinterpret_cast<const wire::Device*>(reply.payload.constData());
        QCOMPARE(QString(device->model), QString("AR0134"));
        QCOMPARE(QString(device->serial).size(), 12);
        QCOMPARE(other->code(Kind::Devices, wire::kClassPylon), 0);
        QCOMPARE(m_client->request(Kind::GetFeature, "UsbType").head.value, 3.0);
    }

    void frame_hasTwoRowsMoreAboveAndBelow()
    {
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        const auto frame = m_client->nextEvent();
        QCOMPARE(frame->head.width, kWidth);
        QCOMPARE(frame->head.height, kRows);
        QCOMPARE(frame->payload.size(), kWidth * kRows);
    }

    void frame_isThePictureOfTheOtherCameraBetweenTheExtraRows()
    {
        const QByteArray here = m_client->picture().mid(2 * kWidth, 960 * kWidth);
        RunningInstrument other({ "--seed", "3", "--quick" });
        SerialLine port(other.boardPort());
        port.ask("$A#LED BRT1 7 6");
        port.ask("$X#STAGE ABS 30931");
        other.set("z", m_instrument->state("z"));
        WireClient basler(other.file("camera.sock"));
        QVERIFY(basler.openBasler(1426 * 24.539));
        const QByteArray there = basler.picture();
        QVERIFY(difference(here, there) < 1.1 * difference(there, basler.picture()));
    }

    void register_keepsWhatWasWritten()
    {
        QCOMPARE(write(0x3056, 0x1234), 0);
        QCOMPARE(read(0x3056), 0x1234);
        QCOMPARE(read(0x3058), 0);
    }

    void addressThatIsNoRegister_isNotAcknowledged()
    {
        QCOMPARE(write(0x2FFF, 1), static_cast<int>(Error::Bus));
        QCOMPARE(m_client->code(Kind::ReadRegister, "", 0.0, 0x4000), static_cast<int>(Error::Bus));
    }

    void exposureRegister_countsLines_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("us");
        QTest::newRow("0") << 0 << 0;
        QTest::newRow("1") << 1 << 25;
        QTest::newRow("815") << 815 << 19999;
        QTest::newRow("65535") << 65535 << 1608163;
    }
    void exposureRegister_countsLines()
    {
        QFETCH(int, lines);
        QFETCH(int, us);
        QCOMPARE(write(0x3012, lines), 0);
        QCOMPARE(settings("exposureUs"), static_cast<double>(us));
    }

    void exposure_actsOnThePicture()
    {
        QCOMPARE(write(0x3012, 400), 0);
        const double once = mean(m_client->picture());
        QCOMPARE(write(0x3012, 800), 0);
        QVERIFY(mean(m_client->picture()) > 1.8 * once);
    }

    void gain_isStageTimesDigitalGain_data()
    {
        QTest::addColumn<int>("analogue");
        QTest::addColumn<int>("digital");
        QTest::addColumn<double>("factor");
        QTest::newRow("unity") << 0x00 << 32 << 1.0;
        QTest::newRow("digital 2") << 0x00 << 64 << 2.0;
        QTest::newRow("stage 2") << 0x10 << 32 << 2.0;
        QTest::newRow("stage 4") << 0x20 << 32 << 4.0;
        QTest::newRow("stage 8, digital 255") << 0x30 << 255 << 63.75;
        QTest::newRow("other bits do nothing") << 0xFFCF << 32 << 1.0;
    }
    void gain_isStageTimesDigitalGain()
    {
        QFETCH(int, analogue);
        QFETCH(int, digital);
        QFETCH(double, factor);
        QCOMPARE(write(0x30B0, analogue), 0);
        QCOMPARE(write(0x305E, digital), 0);
        QVERIFY(std::abs(settings("gainDb") - 20.0 * std::log10(factor)) < 1e-9);
    }

    void gain_actsOnThePicture()
    {
        QCOMPARE(write(0x3012, 700), 0);
        const double once = mean(m_client->picture());
        QCOMPARE(write(0x30B0, 0x10), 0);
        const double twice = mean(m_client->picture());
        QVERIFY(twice > 1.8 * once);
        QCOMPARE(write(0x30B0, 0), 0);
        QCOMPARE(write(0x305E, 64), 0);
        QVERIFY(std::abs(mean(m_client->picture()) - twice) < 1.0);
        QCOMPARE(write(0x305E, 0), 0);
        QVERIFY(mean(m_client->picture()) < 10.0);
    }

    void pedestal_liftsThePicture()
    {
        const double before = mean(m_client->picture());
        QCOMPARE(write(0x301E, 160), 0); // of twelve bits
        const double lift = mean(m_client->picture()) - before;
        QVERIFY2(std::abs(lift - 10.0) < 0.5, qPrintable(QString::number(lift)));
    }

    void mirrorBits_turnThePicture()
    {
        const QByteArray straight = m_client->picture();
        const double noise = difference(straight, m_client->picture());
        QCOMPARE(write(0x3040, 1 << 14), 0);
        const QByteArray mirrored = m_client->picture();
        QCOMPARE(write(0x3040, 1 << 15), 0);
        const QByteArray flipped = m_client->picture();
        QVERIFY(difference(straight, mirrored) > 3.0 * noise);
        QVERIFY(difference(columnsReversed(straight, kWidth), mirrored) < 1.1 * noise);
        QVERIFY(difference(straight, flipped) > 3.0 * noise);
        QVERIFY(difference(rowsReversed(straight, kWidth), flipped) < 1.1 * noise);
    }

    void restartBit_readsBackZero()
    {
        QCOMPARE(write(0x301A, 0x19DA), 0);
        QCOMPARE(read(0x301A), 0x19D8);
    }

    void resetBit_bringsThePowerOnValuesBack()
    {
        QCOMPARE(write(0x3056, 0x1234), 0);
        QCOMPARE(write(0x3040, 0xC000), 0);
        QCOMPARE(write(0x301A, 0x00D9), 0);
        QCOMPARE(read(0x3056), 0);
        QCOMPARE(read(0x3040), 0);
        QCOMPARE(read(0x305E), 0x20);
        QCOMPARE(read(0x301A) & 1, 0);
    }

    void continuousMode_ignoresTheSoftwareTrigger()
    {
        QCOMPARE(m_client->code(Kind::SetFeature, "Mode", 2.0), 0);
        QCOMPARE(m_client->code(Kind::Trigger), 1);
        QCOMPARE(m_client->code(Kind::SetFeature, "Mode", 1.0), 0);
        QCOMPARE(m_client->picture().size(), kWidth * kRows);
        QCOMPARE(m_client->code(Kind::SetFeature, "Mode", 3.0), static_cast<int>(Error::OutOfRange));
    }

    void boardConfig_isTakenWithItsBytes()
    {
        const auto reply
            = m_client->request(Kind::SetFeature, "BoardConfig", 65536.0, 0x90, QByteArray("\x04\x00", 2));
        QCOMPARE(reply.head.code, 0);
        QCOMPARE(read(0x305E), 0x20);
    }

    void closedWhileATriggerIsUnderWay_canBeOpenedAgain()
    {
        m_instrument->holdClock();
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QCOMPARE(m_client->code(Kind::Close), 0);
        m_instrument->advance(1000);
        QVERIFY(m_client->isQuiet());
        QCOMPARE(m_client->open(wire::kClassArduCam).size(), std::size_t(1));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(1000);
        QCOMPARE(m_client->nextEvent()->payload.size(), kWidth * kRows);
    }
};

QTEST_GUILESS_MAIN(tst_ArduCamSensor)
#include "tst_arducam_sensor.moc"
