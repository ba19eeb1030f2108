#include "tst_optics_samples.h"

#include <QtTest>

#include <limits>

using namespace qr9::optics;
using namespace qr9::optics::samples;

namespace {

double middleGrey(const cv::Mat& frame)
{
    return meanGrey(frame(cv::Rect(kFrameWidth / 2 - 50, kFrameHeight / 2 - 50, 100, 100)));
}

} // namespace

/// Grey = black level + LED level x exposure x gain x scene, saturating; mirrors.
class tst_optics_light : public QObject {
    Q_OBJECT
private slots:
    void frame_isGreyAndOfTheCamerasSize()
    {
        const UnitConstants unit = unitFromSeed(1);
        const cv::Mat frame = frameOf(unit, inFocus(unit, Channel::BrightField, kNominalA1));
        QCOMPARE(frame.type(), CV_8UC1);
        QCOMPARE(frame.rows, 960);
        QCOMPARE(frame.cols, 1280);
        QVERIFY(frame.isContinuous());
    }

    void brightField_isNear170AtTheDefaults()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        const double grey = middleGrey(frameOf(unit, emptyInBrightField(unit)));
        QVERIFY2(std::abs(grey - 170.0) < 5.0, qPrintable(QString::number(grey)));
    }

    void stainedCells_areWellBetweenDarkAndSaturatedAtTheDefaults_data()
    {
        QTest::addColumn<int>("channel");
        QTest::newRow("GFP") << 1;
        QTest::newRow("RFP") << 2;
    }

    void stainedCells_areWellBetweenDarkAndSaturatedAtTheDefaults()
    {
        QFETCH(int, channel);
        const UnitConstants unit = withoutNoise(UnitConstants());
        const cv::Mat frame = frameOf(unit, inFocus(unit, static_cast<Channel>(channel), kNominalA1));
        cv::Mat cells;
        cv::threshold(frame, cells, 60.0, 255.0, cv::THRESH_BINARY);
        int among = 0;
        const auto contours = contoursOf(cells);
        for (const auto& contour : contours) {
            const cv::Rect box = cv::boundingRect(contour);
            double brightest = 0.0;
            cv::minMaxLoc(frame(box), nullptr, &brightest);
            among += brightest >= 110.0 && brightest <= 205.0 ? 1 : 0;
        }
        QVERIFY(contours.size() > 40);
        // Only cells that lie on each other are brighter.
        QVERIFY(among > 0.95 * static_cast<double>(contours.size()));
        QVERIFY(meanGrey(frame) < 15.0);
    }

    void halvedFluorescenceExposure_staysAboveTheThresholds()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = inFocus(unit, Channel::Gfp, kNominalA1);
        cv::Mat full;
        cv::Mat halved;
        cv::threshold(frameOf(unit, state), full, 100.0, 255.0, cv::THRESH_BINARY);
        state.exposureMs /= 2;
        cv::threshold(frameOf(unit, state), halved, 45.0, 255.0, cv::THRESH_BINARY);
        QCOMPARE(contoursOf(halved).size() >= contoursOf(full).size(), true);
    }

    void signalAboveBlack_isProportional_data()
    {
        QTest::addColumn<double>("ledFactor");
        QTest::addColumn<double>("exposureFactor");
        QTest::addColumn<double>("gainDb");
        QTest::addColumn<double>("expected");
        QTest::newRow("doubled exposure") << 1.0 << 2.0 << 0.0 << 2.0;
        QTest::newRow("doubled LED levels") << 2.0 << 1.0 << 0.0 << 2.0;
        QTest::newRow("gain of 6 dB") << 1.0 << 1.0 << 6.0206 << 2.0;
        QTest::newRow("half the exposure, 20 dB") << 1.0 << 0.5 << 20.0 << 5.0;
        QTest::newRow("no exposure") << 1.0 << 0.0 << 0.0 << 0.0;
        QTest::newRow("no light") << 0.0 << 1.0 << 0.0 << 0.0;
    }

    void signalAboveBlack_isProportional()
    {
        QFETCH(double, ledFactor);
        QFETCH(double, exposureFactor);
        QFETCH(double, gainDb);
        QFETCH(double, expected);
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = emptyInBrightField(unit);
        state.leds = { 4, 4, 0, 0 };
        state.exposureMs = 10.0;
        const double before = middleGrey(frameOf(unit, state)) - unit.blackLevel;
        state.leds = { static_cast<int>(4 * ledFactor), static_cast<int>(4 * ledFactor), 0, 0 };
        state.exposureMs *= exposureFactor;
        state.gainDb = gainDb;
        const double after = middleGrey(frameOf(unit, state)) - unit.blackLevel;
        QVERIFY(before > 20.0);
        // Both are whole grey values: each is up to half a one off.
        QVERIFY2(std::abs(after - before * expected) <= 0.5 + 0.5 * expected,
            qPrintable(QString::number(after / before)));
    }

    void bothBrightFieldLeds_add()
    {
        UnitConstants unit = withoutNoise(UnitConstants());
        unit.ledResponseBrightField2 = 0.9;
        OpticalState state = emptyInBrightField(unit);
        state.leds = { 7, 0, 0, 0 };
        const double first = middleGrey(frameOf(unit, state)) - unit.blackLevel;
        state.leds = { 0, 7, 0, 0 };
        const double second = middleGrey(frameOf(unit, state)) - unit.blackLevel;
        state.leds = { 7, 7, 0, 0 };
        const double both = middleGrey(frameOf(unit, state)) - unit.blackLevel;
        QVERIFY(std::abs(both - (first + second)) <= 1.5);
        QVERIFY(std::abs(second / first - 0.9) < 0.02);
    }

    void tooMuchLight_saturatesAt255()
    {
        const UnitConstants unit = unitFromSeed(4);
        OpticalState state = emptyInBrightField(unit);
        state.leds = { 1000, 1000, 0, 0 };
        state.exposureMs = 1000.0;
        state.gainDb = 18.0;
        const cv::Mat frame = frameOf(unit, state);
        double darkest = 0.0;
        cv::minMaxLoc(frame, &darkest);
        QCOMPARE(darkest, 255.0);
    }

    void light_isSeenOnlyThroughItsOwnFilter_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<int>("litChannel");
        for (const int filter : { 0, 1, 2, 3, 4, -1, 1000000 }) {
            for (const int channel : { 0, 1, 2 }) {
                QTest::addRow("filter %d, channel %d", filter, channel) << filter << channel;
            }
        }
    }

    void light_isSeenOnlyThroughItsOwnFilter()
    {
        QFETCH(int, filter);
        QFETCH(int, litChannel);
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = inFocus(unit, static_cast<Channel>(litChannel), kNominalA1);
        state.filter = filter;
        const double grey = meanGrey(frameOf(unit, state));
        if (filter == litChannel + 1) {
            QVERIFY(grey > unit.blackLevel + 1.0);
        } else {
            QCOMPARE(grey, unit.blackLevel);
        }
    }

    void oddNumbers_areHeldWithinWhatACameraCanDo_data()
    {
        QTest::addColumn<double>("exposureMs");
        QTest::addColumn<double>("gainDb");
        const double infinity = std::numeric_limits<double>::infinity();
        const double notANumber = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("negative exposure") << -5.0 << 0.0;
        QTest::newRow("exposure is no number") << notANumber << 0.0;
        QTest::newRow("gain is no number") << 0.0 << notANumber;
        QTest::newRow("no light, endless gain") << 0.0 << infinity;
        QTest::newRow("least gain") << 0.0 << -infinity;
    }

    void oddNumbers_areHeldWithinWhatACameraCanDo()
    {
        QFETCH(double, exposureMs);
        QFETCH(double, gainDb);
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = emptyInBrightField(unit);
        state.exposureMs = exposureMs;
        state.gainDb = gainDb;
        QCOMPARE(meanGrey(frameOf(unit, state)), unit.blackLevel);
    }

    void endlessExposure_saturates()
    {
        const UnitConstants unit = unitFromSeed(4);
        OpticalState state = emptyInBrightField(unit);
        state.exposureMs = std::numeric_limits<double>::infinity();
        QCOMPARE(meanGrey(frameOf(unit, state)), 255.0);
    }

    void light_fallsOffALittleTowardsTheCorners()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        const cv::Mat frame = frameOf(unit, emptyInBrightField(unit));
        const double middle = middleGrey(frame);
        const double corner = meanGrey(frame(cv::Rect(0, 0, 20, 20)));
        QVERIFY(corner < middle - 5.0);
        QVERIFY(corner > 140.0);
    }

    void mirrors_turnThePictureOver()
    {
        const UnitConstants unit = withoutNoise(unitFromSeed(5));
        OpticalState state = inFocus(unit, Channel::BrightField, kNominalA1);
        const cv::Mat plain = frameOf(unit, state);
        for (const int which : { 1, 2, 3 }) {
            state.mirrorX = (which & 1) != 0;
            state.mirrorY = (which & 2) != 0;
            cv::Mat turned;
            cv::flip(frameOf(unit, state), turned, which == 3 ? -1 : which == 1 ? 1 : 0);
            QCOMPARE(cv::norm(plain, turned, cv::NORM_INF), 0.0);
        }
    }
};

QTEST_APPLESS_MAIN(tst_optics_light)
#include "tst_optics_light.moc"
