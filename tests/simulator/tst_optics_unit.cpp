#include "tst_optics_samples.h"

#include <QtTest>

#include <cstring>
#include <limits>

using namespace qr9::optics;

using Constant = double UnitConstants::*;
Q_DECLARE_METATYPE(Constant)

/// The constants that a seed stands for.
class tst_optics_unit : public QObject {
    Q_OBJECT
private slots:
    void sameSeed_isTheSameUnit()
    {
        const UnitConstants one = unitFromSeed(17);
        const UnitConstants two = unitFromSeed(17);
        QCOMPARE(one.seed, 17U);
        QCOMPARE(one.bestFocusA1, two.bestFocusA1);
        QCOMPARE(one.rfpShiftY, two.rfpShiftY);
        QCOMPARE(one.shotNoise, two.shotNoise);
    }

    void neighbouringSeeds_areDifferentUnits()
    {
        int alike = 0;
        for (std::uint32_t seed = 0; seed < 100; ++seed) {
            alike += unitFromSeed(seed).bestFocusA1 == unitFromSeed(seed + 1).bestFocusA1 ? 1 : 0;
        }
        QVERIFY(alike <= 2);
    }

    void constants_spreadOverTheirRange_data()
    {
        QTest::addColumn<Constant>("constant");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        // Focus within reach of the coarse walk, magnification and shifts as units have them, LEDs within 10
        // %.
        QTest::newRow("focus") << &UnitConstants::bestFocusA1 << 30000.0 << 34000.0;
        QTest::newRow("fluorescence") << &UnitConstants::fluorescenceFocusOffset << 315.0 << 375.0;
        QTest::newRow("magnification") << &UnitConstants::magnification << 3.90 << 4.10;
        QTest::newRow("GFP x") << &UnitConstants::gfpShiftX << -12.0 << 12.0;
        QTest::newRow("GFP y") << &UnitConstants::gfpShiftY << -12.0 << 12.0;
        QTest::newRow("RFP x") << &UnitConstants::rfpShiftX << -12.0 << 12.0;
        QTest::newRow("RFP y") << &UnitConstants::rfpShiftY << -12.0 << 12.0;
        QTest::newRow("LED 1") << &UnitConstants::ledResponseBrightField1 << 0.9 << 1.1;
        QTest::newRow("LED GFP") << &UnitConstants::ledResponseGfp << 0.9 << 1.1;
        QTest::newRow("LED RFP") << &UnitConstants::ledResponseRfp << 0.9 << 1.1;
    }

    void constants_spreadOverTheirRange()
    {
        QFETCH(Constant, constant);
        QFETCH(double, low);
        QFETCH(double, high);
        double least = std::numeric_limits<double>::max();
        double most = std::numeric_limits<double>::lowest();
        for (std::uint32_t seed = 0; seed < 1000; ++seed) {
            const double value = unitFromSeed(seed).*constant;
            least = std::min(least, value);
            most = std::max(most, value);
        }
        QVERIFY(least >= low);
        QVERIFY(most <= high);
        QVERIFY(most - least > 0.95 * (high - low));
    }

    void focus_isWithinReachOfTheCoarseWalkOnTheWholeStage()
    {
        for (std::uint32_t seed = 0; seed < 1000; ++seed) {
            const UnitConstants unit = unitFromSeed(seed);
            for (int x = 0; x <= 38291; x += 500) {
                QVERIFY2(std::abs(bestFocus(unit, Channel::BrightField, x) - 32000.0) <= 3220.0,
                    qPrintable(QString("seed %1, X %2").arg(seed).arg(x)));
            }
        }
    }

    void focus_isThatOfA1AtA1()
    {
        const UnitConstants unit = unitFromSeed(3);
        const int a1 = static_cast<int>(unit.markX) + 18931;
        QCOMPARE(bestFocus(unit, Channel::BrightField, a1), unit.bestFocusA1);
        QCOMPARE(bestFocus(unit, Channel::Gfp, a1), unit.bestFocusA1 + unit.fluorescenceFocusOffset);
        QCOMPARE(bestFocus(unit, Channel::Rfp, a1), unit.bestFocusA1 + unit.fluorescenceFocusOffset);
    }

    void focus_fallsTowardsB1ByTheSlope()
    {
        UnitConstants unit;
        unit.slope = -10.0;
        // B1 lies 20799 steps below A1, which are 39 mm.
        const double atA1 = bestFocus(unit, Channel::BrightField, 30931);
        const double atB1 = bestFocus(unit, Channel::BrightField, 30931 - 20799);
        QVERIFY(std::abs((atB1 - atA1) - -390.0) < 0.1);
    }

    void seededUnits_arePossible()
    {
        for (std::uint32_t seed = 0; seed < 100; ++seed) {
            QCOMPARE(impossibleConstant(unitFromSeed(seed)), nullptr);
        }
        QCOMPARE(impossibleConstant(UnitConstants()), nullptr);
    }

    void impossibleConstant_isNamed_data()
    {
        QTest::addColumn<Constant>("constant");
        QTest::addColumn<double>("value");
        QTest::newRow("magnification") << &UnitConstants::magnification << 0.0;
        QTest::newRow("bestFocusA1") << &UnitConstants::bestFocusA1
                                     << std::numeric_limits<double>::infinity();
        QTest::newRow("slope") << &UnitConstants::slope << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("gfpShiftX") << &UnitConstants::gfpShiftX << 1000.0;
        QTest::newRow("readNoise") << &UnitConstants::readNoise << -1.0;
    }

    void impossibleConstant_isNamed()
    {
        QFETCH(Constant, constant);
        QFETCH(double, value);
        UnitConstants unit;
        unit.*constant = value;
        QCOMPARE(QString(impossibleConstant(unit)), QString(QTest::currentDataTag()));
    }
};

QTEST_APPLESS_MAIN(tst_optics_unit)
#include "tst_optics_unit.moc"
