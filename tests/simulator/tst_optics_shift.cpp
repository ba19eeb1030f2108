#include "tst_optics_samples.h"

#include <QtTest>

using namespace qr9::optics;
using namespace qr9::optics::samples;

namespace {

/// The shift of one fluorescence frame against the dark objects of bright field, with the threshold of the
/// highest response.
cv::Point2d bestShift(const cv::Mat& darkObjectsOfBrightField, const cv::Mat& fluorescence)
{
    cv::Point2d best;
    double highest = 0.0;
    for (int threshold = 15; threshold <= 45; threshold += 5) {
        cv::Mat binary;
        double response = 0.0;
        cv::threshold(fluorescence, binary, threshold, 255.0, cv::THRESH_BINARY);
        const cv::Point2d shift = shiftBetween(darkObjectsOfBrightField, binary, &response);
        if (response > highest) {
            highest = response;
            best = shift;
        }
    }
    return best;
}

/// The heights of a calibration: bright field one fine step below the best position of the fine grid,
/// fluorescence three steps above that, at half the exposure.
struct Heights {
    int brightField;
    int fluorescence;
};

Heights heightsAt(const UnitConstants& unit, int xSteps)
{
    const double focus = bestFocus(unit, Channel::BrightField, xSteps);
    const int onGrid = 32000 + 115 * static_cast<int>(std::lround((focus - 32000.0) / 115.0));
    return { onGrid - 115, onGrid - 115 + 345 };
}

} // namespace

/// Fluorescence is moved against bright field by the unit's shift.
class tst_optics_shift : public QObject {
    Q_OBJECT
private slots:
    void fluorescence_isMovedByTheUnitsShift_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::newRow("none") << 0.0 << 0.0;
        QTest::newRow("whole") << 12.0 << -7.0;
        QTest::newRow("halves") << -0.5 << 3.5;
        QTest::newRow("quarters") << 4.25 << -11.75;
    }

    void fluorescence_isMovedByTheUnitsShift()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        UnitConstants unit;
        unit.gfpShiftX = x;
        unit.gfpShiftY = y;
        unit.rfpShiftX = -y;
        unit.rfpShiftY = x;
        const cv::Mat cells = darkObjects(frameOf(unit, inFocus(unit, Channel::BrightField, kNominalA1)));
        const cv::Point2d gfp = bestShift(cells, frameOf(unit, inFocus(unit, Channel::Gfp, kNominalA1)));
        const cv::Point2d rfp = bestShift(cells, frameOf(unit, inFocus(unit, Channel::Rfp, kNominalA1)));
        QVERIFY(cv::norm(gfp - cv::Point2d(x, y)) < 0.25);
        QVERIFY(cv::norm(rfp - cv::Point2d(-y, x)) < 0.25);
    }

    void mirroredFrame_mirrorsTheShift()
    {
        UnitConstants unit;
        unit.gfpShiftX = 5.3;
        unit.gfpShiftY = -3.6;
        OpticalState brightField = inFocus(unit, Channel::BrightField, kNominalA1);
        OpticalState gfp = inFocus(unit, Channel::Gfp, kNominalA1);
        brightField.mirrorX = gfp.mirrorX = true;
        const cv::Point2d found = bestShift(darkObjects(frameOf(unit, brightField)), frameOf(unit, gfp));
        QVERIFY(cv::norm(found - cv::Point2d(-5.3, -3.6)) < 0.25);
        QCOMPARE(pixelShift(unit, Channel::Gfp, gfp), cv::Point2d(-5.3, -3.6));
        QCOMPARE(pixelShift(unit, Channel::BrightField, gfp), cv::Point2d(0.0, 0.0));
    }

    void averageOfTwelveFields_isWithinAQuarterPixel_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<int>("firstX");
        QTest::addColumn<int>("pitch");
        QTest::addRow("unit 9, channel A") << 9 << kNominalA1 << -kFieldPitch;
        QTest::addRow("unit 14, channel B") << 14 << kNominalA1 - 20799 << kFieldPitch;
    }

    void averageOfTwelveFields_isWithinAQuarterPixel()
    {
        QFETCH(int, seed);
        QFETCH(int, firstX);
        QFETCH(int, pitch);
        const UnitConstants unit = unitFromSeed(static_cast<std::uint32_t>(seed));
        Renderer renderer(unit);
        std::uint64_t frameNumber = 0;
        cv::Mat frame;
        cv::Point2d gfp;
        cv::Point2d rfp;
        for (int field = 0; field < 12; ++field) {
            const int x = firstX + field * pitch;
            const Heights heights = heightsAt(unit, x);
            OpticalState state = inFocus(unit, Channel::BrightField, x);
            state.zSteps = heights.brightField;
            renderer.render(state, ++frameNumber, frame);
            const cv::Mat cells = darkObjects(frame);
            for (const Channel channel : { Channel::Gfp, Channel::Rfp }) {
                state = inFocus(unit, channel, x);
                state.zSteps = heights.fluorescence;
                state.exposureMs /= 2;
                renderer.render(state, ++frameNumber, frame);
                (channel == Channel::Gfp ? gfp : rfp) += bestShift(cells, frame) / 12.0;
            }
        }
        QVERIFY(std::abs(gfp.x - unit.gfpShiftX) < 0.25);
        QVERIFY(std::abs(gfp.y - unit.gfpShiftY) < 0.25);
        QVERIFY(std::abs(rfp.x - unit.rfpShiftX) < 0.25);
        QVERIFY(std::abs(rfp.y - unit.rfpShiftY) < 0.25);
    }
};

QTEST_APPLESS_MAIN(tst_optics_shift)
#include "tst_optics_shift.moc"
