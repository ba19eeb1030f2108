#include "tst_optics_samples.h"

#include <QtTest>

using namespace qr9::optics;
using namespace qr9::optics::samples;

namespace {

OpticalState onTarget(const UnitConstants& unit, int xSteps)
{
    OpticalState state = inFocus(unit, Channel::BrightField, xSteps);
    state.slide = Slide::Target;
    return state;
}

/// What the instrument's mark finder sees in the window of 40 by 40 pixels round a click.
std::vector<std::vector<cv::Point>> contoursNear(const cv::Mat& frame, cv::Point click)
{
    cv::Mat binary;
    cv::Mat filtered;
    cv::threshold(frame, binary, 95.0, 255.0, cv::THRESH_BINARY_INV);
    cv::medianBlur(binary, binary, 3);
    cv::bilateralFilter(binary, filtered, 5, 95.0, 95.0, cv::BORDER_DEFAULT);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(filtered(cv::Rect(click.x - 20, click.y - 20, 40, 40)), contours, cv::RETR_EXTERNAL,
        cv::CHAIN_APPROX_SIMPLE);
    return contours;
}

/// The found centre, cut to whole pixels as the instrument does.
cv::Point centreOf(const std::vector<cv::Point>& contour, cv::Point click)
{
    cv::Point2f centre;
    float radius = 0.0F;
    cv::minEnclosingCircle(contour, centre, radius);
    return { click.x - 20 + static_cast<int>(centre.x), click.y - 20 + static_cast<int>(centre.y) };
}

const TargetMark* markOneMillimetreFrom(const TargetMark& mark, const std::vector<TargetMark>& marks)
{
    for (const TargetMark& other : marks) {
        if (other.row == mark.row && other.column == mark.column + 2) {
            return &other;
        }
    }
    return nullptr;
}

} // namespace

/// The target slide, by which the magnification is measured.
class tst_optics_target : public QObject {
    Q_OBJECT
private slots:
    void marks_areAtTheTrueSpacing_data()
    {
        QTest::addColumn<double>("magnification");
        QTest::newRow("3.90") << 3.90;
        QTest::newRow("4.00") << 4.00;
        QTest::newRow("4.10") << 4.10;
    }

    void marks_areAtTheTrueSpacing()
    {
        QFETCH(double, magnification);
        UnitConstants unit;
        unit.magnification = magnification;
        const auto marks = targetMarks(unit, onTarget(unit, kNominalA1));
        int pairs = 0;
        for (const TargetMark& mark : marks) {
            for (const TargetMark& other : marks) {
                if (other.row == mark.row && other.column == mark.column + 1) {
                    // 0.5 mm on pixels of 3.75 um
                    QVERIFY(std::abs(other.centre.x - mark.centre.x - 500.0 * magnification / 3.75) < 1e-6);
                    QCOMPARE(other.centre.y, mark.centre.y);
                    ++pairs;
                }
            }
        }
        QVERIFY(pairs >= 5);
    }

    void twoMarksOneMillimetreApart_areInViewEverywhere()
    {
        for (const double magnification : { 3.90, 4.10 }) {
            UnitConstants unit;
            unit.magnification = magnification;
            for (int x = 0; x < 40000; x += 7) {
                const auto marks = targetMarks(unit, onTarget(unit, x));
                const bool found = std::any_of(marks.begin(), marks.end(),
                    [&](const TargetMark& mark) { return markOneMillimetreFrom(mark, marks) != nullptr; });
                QVERIFY2(found, qPrintable(QString::number(x)));
            }
        }
    }

    void eachMark_isTheOnlyContourNearIt_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<int>("x");
        QTest::addColumn<bool>("mirrored");
        for (int seed = 1; seed <= 8; ++seed) {
            QTest::addRow("unit %d", seed) << seed << kNominalA1 - 311 * seed << (seed % 2 == 0);
        }
        QTest::addRow("at X home") << 6 << 0 << true;
    }

    void eachMark_isTheOnlyContourNearIt()
    {
        QFETCH(int, seed);
        QFETCH(int, x);
        QFETCH(bool, mirrored);
        const UnitConstants unit = unitFromSeed(static_cast<std::uint32_t>(seed));
        OpticalState state = onTarget(unit, x);
        state.mirrorX = mirrored;
        state.mirrorY = mirrored;
        const cv::Mat frame = frameOf(unit, state);
        const auto marks = targetMarks(unit, state);
        QVERIFY(marks.size() >= 8);
        for (const TargetMark& mark : marks) {
            for (const cv::Point beside : { cv::Point(0, 0), cv::Point(4, -4), cv::Point(-4, 3) }) {
                const cv::Point click = cv::Point(mark.centre) + beside;
                const auto contours = contoursNear(frame, click);
                QCOMPARE(contours.size(), 1U);
                const cv::Point found = centreOf(contours.front(), click);
                // Cutting to whole pixels takes away up to one.
                QVERIFY(std::abs(found.x + 0.5 - mark.centre.x) <= 1.0);
                QVERIFY(std::abs(found.y + 0.5 - mark.centre.y) <= 1.0);
            }
        }
    }

    void dirt_keepsAwayFromTheMarks()
    {
        for (std::uint32_t seed = 1; seed <= 4; ++seed) {
            const UnitConstants unit = withoutNoise(unitFromSeed(seed));
            const OpticalState state = onTarget(unit, kNominalA1);
            const cv::Mat frame = frameOf(unit, state);
            for (const TargetMark& mark : targetMarks(unit, state)) {
                cv::Mat around(frame.size(), CV_8UC1, cv::Scalar(0));
                cv::circle(around, mark.centre, 35, 255, cv::FILLED);
                cv::circle(around, mark.centre, static_cast<int>(mark.radius) + 5, 0, cv::FILLED);
                double darkest = 0.0;
                double brightest = 0.0;
                cv::minMaxLoc(frame, &darkest, &brightest, nullptr, nullptr, around);
                // Even light but for its slow fall; dirt would be darker by a fifth or more.
                QVERIFY(darkest > 0.9 * brightest);
            }
        }
    }

    void measuredMagnification_isThatOfTheUnit()
    {
        for (std::uint32_t seed = 1; seed <= 20; ++seed) {
            const UnitConstants unit = unitFromSeed(seed);
            // 115 steps beside the focus, where the autofocus leaves the stage
            OpticalState state = onTarget(unit, kNominalA1 - 97 * static_cast<int>(seed));
            state.zSteps -= 115;
            const cv::Mat frame = frameOf(unit, state, seed);
            const auto marks = targetMarks(unit, state);
            int measured = 0;
            for (const TargetMark& mark : marks) {
                const TargetMark* other = markOneMillimetreFrom(mark, marks);
                if (other == nullptr) {
                    continue;
                }
                const cv::Point one = centreOf(contoursNear(frame, mark.centre).front(), mark.centre);
                const cv::Point two = centreOf(contoursNear(frame, other->centre).front(), other->centre);
                const double pixels = std::hypot(two.x - one.x, two.y - one.y);
                // 1.0 mm by the nominal factor of four, rounded to 0.1 mm as the instrument does
                QCOMPARE(std::round(pixels * 3.75 / 4.0 / 1000.0 * 10.0) / 10.0, 1.0);
                const double magnification = std::round(pixels * 3.75 / 1000.0 * 100.0) / 100.0;
                QVERIFY2(std::abs(magnification - unit.magnification) < 0.01001,
                    qPrintable(QString("seed %1: %2").arg(seed).arg(magnification)));
                ++measured;
            }
            QVERIFY(measured >= 1);
        }
    }

    void light_isUneven()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        const cv::Mat frame = frameOf(unit, onTarget(unit, kNominalA1));
        const double left = meanGrey(frame(cv::Rect(0, 0, 100, kFrameHeight)));
        const double right = meanGrey(frame(cv::Rect(kFrameWidth - 100, 0, 100, kFrameHeight)));
        QVERIFY(std::abs(left - right) > 10.0);
    }

    void target_doesNotGlow()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = inFocus(unit, Channel::Gfp, kNominalA1);
        state.slide = Slide::Target;
        double brightest = 0.0;
        cv::minMaxLoc(frameOf(unit, state), nullptr, &brightest);
        QVERIFY(brightest < 15.0);
    }
};

QTEST_APPLESS_MAIN(tst_optics_target)
#include "tst_optics_target.moc"
