#include "tests/camera/Ar0134Tests.h"
#include "tests/support/LogCapture.h"

#include <QtTest>

#include <cmath>

using Requests = std::vector<ScriptedBoard::Request>;

// Exposure, gain, mirrors and pedestal, register by register, and errors 1 to 6: each is told once, with its
// number and its line in the critical log.
class tst_ar0134_registers : public DriverTest {
    Q_OBJECT

protected slots:
    void init() override
    {
        DriverTest::init();
        open();
        m_board->forgetRequests();
    }

private slots:
    void exposure_isCountedInLines_data()
    {
        QTest::addColumn<uint>("exposure");
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("readBack");
        QTest::newRow("20000 us") << 20000U << 815 << 19999;
        QTest::newRow("24 us") << 24U << 1 << 24;
        QTest::newRow("25 us") << 25U << 1 << 24;
        QTest::newRow("12 us") << 12U << 0 << 0; // 0.489 + 0.5
        QTest::newRow("13 us") << 13U << 1 << 24; // 0.530 + 0.5
        QTest::newRow("0 us") << 0U << 0 << 0;
        QTest::newRow("1 s") << 1000000U << 40751 << 999988;
        QTest::newRow("longer than the register") << 2000000U << 0xFFFF << 1608163;
    }
    void exposure_isCountedInLines()
    {
        QFETCH(uint, exposure);
        QFETCH(int, lines);
        QFETCH(int, readBack);
        m_camera->slot_setExposure(exposure);
        QVERIFY(m_board->requests()
            == Requests { ScriptedBoard::write(0x3012, static_cast<std::uint16_t>(lines)) });
        QCOMPARE(m_camera->getExposure(), readBack);
    }

    void gain_isSplitIntoStages_data()
    {
        QTest::addColumn<double>("gain");
        QTest::addColumn<int>("analog"); // of 0x30B0, which held 0xFFFF
        QTest::addColumn<int>("digital"); // of 0x305E
        QTest::addColumn<double>("factor"); // read back
        QTest::newRow("0 dB") << 0.0 << 0xFFCF << 32 << 1.0;
        QTest::newRow("1 dB") << 1.0 << 0xFFCF << 40 << 1.25;
        QTest::newRow("2 dB") << 2.0 << 0xFFCF << 51 << 1.59375;
        QTest::newRow("3 dB") << 3.0 << 0xFFDF << 32 << 2.0; // 63.85 rounds to 64, whole part 2
        QTest::newRow("3.01 dB") << 3.01 << 0xFFDF << 32 << 2.0;
        QTest::newRow("6 dB") << 6.0 << 0xFFDF << 63 << 3.9375; // 127, whole part 3
        QTest::newRow("9 dB") << 9.0 << 0xFFEF << 63 << 7.875; // 254, whole part 7
        QTest::newRow("9.03 dB") << 9.03 << 0xFFFF << 32 << 8.0; // 256, whole part 8
        QTest::newRow("15 dB") << 15.0 << 0xFFFF << 126 << 31.5; // 1012
        QTest::newRow("18 dB") << 18.0 << 0xFFFF << 252 << 63.0; // 2019
        QTest::newRow("beyond the sensor") << 27.0 << 0xFFFF << 255 << 63.75;
        QTest::newRow("far beyond the sensor") << 500.0 << 0xFFFF << 255 << 63.75;
    }
    void gain_isSplitIntoStages()
    {
        QFETCH(double, gain);
        QFETCH(int, analog);
        QFETCH(int, digital);
        QFETCH(double, factor);
        m_board->setRegister(0x30B0, 0xFFFF);
        m_camera->slot_setGain(gain);
        const Requests expected { ScriptedBoard::read(0x30B0),
            ScriptedBoard::write(0x30B0, static_cast<std::uint16_t>(analog)),
            ScriptedBoard::write(0x305E, static_cast<std::uint16_t>(digital)) };
        QVERIFY(m_board->requests() == expected);
        QVERIFY(std::abs(m_camera->getGain() - 10.0 * std::log10(factor)) < 1e-9);
    }

    void gainReadBack_takesNothingButTheStageFromTheAnalogRegister()
    {
        m_board->setRegister(0x305E, 48);
        m_board->setRegister(0x30B0, 0xFFEF);
        QVERIFY(std::abs(m_camera->getGain() - 10.0 * std::log10(6.0)) < 1e-9);
    }

    void reverse_isWrittenToBits14And15_data()
    {
        QTest::addColumn<bool>("x");
        QTest::addColumn<bool>("y");
        QTest::addColumn<int>("bits");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("none") << false << false << 0 << QByteArray("false false");
        QTest::newRow("x") << true << false << 0x4000 << QByteArray("true false");
        QTest::newRow("y") << false << true << 0x8000 << QByteArray("false true");
        QTest::newRow("both") << true << true << 0xC000 << QByteArray("true true");
    }
    void reverse_isWrittenToBits14And15()
    {
        QFETCH(bool, x);
        QFETCH(bool, y);
        QFETCH(int, bits);
        QFETCH(QByteArray, line);
        m_board->setRegister(0x3040, 0x0FFF);
        QTest::ignoreMessage(QtDebugMsg, "void AR0134::setReverse(bool, bool) reverse x , y " + line);
        m_camera->setReverse(x, y);
        QVERIFY(m_board->requests()
            == Requests { ScriptedBoard::write(0x3040, static_cast<std::uint16_t>(bits)) });
    }

    void pedestal_isWritten()
    {
        m_camera->setPedestal(168);
        QVERIFY(m_board->requests() == Requests { ScriptedBoard::write(0x301E, 168) });
    }

    void pedestal_isLoggedOnAClosedCameraToo_data()
    {
        QTest::addColumn<bool>("closed");
        QTest::newRow("open") << false;
        QTest::newRow("closed") << true;
    }
    void pedestal_isLoggedOnAClosedCameraToo()
    {
        QFETCH(bool, closed);
        if (closed)
            m_camera->closeCamera();
        m_board->forgetRequests();
        const LogCapture log;
        m_camera->setPedestal(42);
        QCOMPARE(log.lines(), QStringList { "void AR0134::setPedestal(uint16_t) 42" });
        QCOMPARE(m_board->requests().empty(), closed);
        QVERIFY(errors().isEmpty());
    }

    void exposureNotRead_isError1()
    {
        m_board->failReads(0x3012, 0xFF0B);
        expect("int AR0134::getExposure() Reading a camera registry error");
        QCOMPARE(m_camera->getExposure(), -1);
        QCOMPARE(errors(), QVector<int> { 1 });
    }

    void exposureNotWritten_isError2WithBothNumbers()
    {
        m_board->failWrites(0x3012, 0xFF0B);
        expect("void AR0134::slot_setExposure(unsigned int) Writing a camera registry error 20000 815");
        m_camera->slot_setExposure(20000);
        QCOMPARE(errors(), QVector<int> { 2 });
        QCOMPARE(m_camera->state(), int(AR0134::STATE_OPEN));
    }

    void gainNotReadWhileSetting_isError3AndWritesNothing()
    {
        m_board->failReads(0x30B0, 0xFF0B);
        expect("void AR0134::slot_setGain(double) Reading a camera registry error");
        m_camera->slot_setGain(3.0);
        QCOMPARE(errors(), QVector<int> { 3 });
        QVERIFY(m_board->requests() == Requests { ScriptedBoard::read(0x30B0) });
    }

    void gainNotRead_isError3_data()
    {
        QTest::addColumn<uint>("address");
        QTest::newRow("digital") << 0x305EU;
        QTest::newRow("analogue") << 0x30B0U;
    }
    void gainNotRead_isError3()
    {
        QFETCH(uint, address);
        m_board->failReads(address, 0xFF0B);
        expect("double AR0134::getGain() Reading a camera registry error");
        QCOMPARE(m_camera->getGain(), -1.0);
        QCOMPARE(errors(), QVector<int> { 3 });
    }

    void gainNotWritten_isError4_data() { gainNotRead_isError3_data(); }
    void gainNotWritten_isError4()
    {
        QFETCH(uint, address);
        m_board->failWrites(address, 0xFF0B);
        expect("void AR0134::slot_setGain(double) Writing a camera registry error");
        m_camera->slot_setGain(3.0);
        QCOMPARE(errors(), QVector<int> { 4 });
    }

    void mirrorNotWritten_isError5()
    {
        m_board->failWrites(0x3040, 0xFF0B);
        expect("void AR0134::setReverse(bool, bool) Writing a camera registry error");
        m_camera->setReverse(true, false);
        QCOMPARE(errors(), QVector<int> { 5 });
    }

    void negativeGain_isError6AndReachesNoRegister_data()
    {
        QTest::addColumn<double>("gain");
        QTest::newRow("-0.1 dB") << -0.1;
        QTest::newRow("-18 dB") << -18.0;
        QTest::newRow("no number") << std::nan("");
    }
    void negativeGain_isError6AndReachesNoRegister()
    {
        QFETCH(double, gain);
        expect("void AR0134::slot_setGain(double) Gain input value < 0");
        m_camera->slot_setGain(gain);
        QCOMPARE(errors(), QVector<int> { 6 });
        QVERIFY(m_board->requests().empty());
    }
};

QTEST_GUILESS_MAIN(tst_ar0134_registers)
#include "tst_ar0134_registers.moc"
