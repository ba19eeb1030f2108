#include "tst_optics_samples.h"

#include <QtTest>

#include <algorithm>

using namespace qr9::optics;
using namespace qr9::optics::samples;

namespace {

/// X of a field, relative to the tray's mark of a unit.
int fieldAt(const UnitConstants& unit, int fromMark)
{
    return static_cast<int>(std::lround(unit.markX)) + fromMark;
}

std::size_t stainedCells(const UnitConstants& unit, Slide slide, Channel channel, int xSteps)
{
    OpticalState state = inFocus(unit, channel, xSteps);
    state.slide = slide;
    cv::Mat cells;
    cv::threshold(frameOf(unit, state), cells, 45.0, 255.0, cv::THRESH_BINARY);
    return contoursOf(cells).size();
}

std::size_t darkCells(const UnitConstants& unit, Slide slide, int xSteps)
{
    OpticalState state = inFocus(unit, Channel::BrightField, xSteps);
    state.slide = slide;
    return contoursOf(darkObjects(frameOf(unit, state))).size();
}

} // namespace

/// What lies on the slides, and where the stage shows it.
class tst_optics_scene : public QObject {
    Q_OBJECT
private slots:
    void cells_areDarkAndRoundOnABackgroundNear170()
    {
        const UnitConstants unit = unitFromSeed(1);
        const cv::Mat frame = frameOf(unit, inFocus(unit, Channel::BrightField, kNominalA1));
        int round = 0;
        int ofSize = 0;
        const auto contours = contoursOf(darkObjects(frame));
        for (const auto& contour : contours) {
            cv::Point2f centre;
            float radius = 0.0F;
            cv::minEnclosingCircle(contour, centre, radius);
            const double filled
                = (cv::contourArea(contour) + cv::arcLength(contour, true) / 2) / (CV_PI * radius * radius);
            round += filled > 0.75 ? 1 : 0;
            ofSize += radius > 3.5F && radius < 9.5F ? 1 : 0;
        }
        // The rest is dust, and cells that touch.
        QVERIFY(contours.size() >= 150 && contours.size() <= 400);
        QVERIFY(round > 0.8 * static_cast<double>(contours.size()));
        QVERIFY(ofSize > 0.75 * static_cast<double>(contours.size()));
        cv::Mat sorted = frame.reshape(1, 1).clone();
        cv::sort(sorted, sorted, cv::SORT_ASCENDING);
        const int median = sorted.at<uchar>(0, sorted.cols / 2);
        QVERIFY2(median > 150 && median < 190, qPrintable(QString::number(median)));
    }

    void everySlideType_hasItsOwnCells()
    {
        const UnitConstants unit = unitFromSeed(1);
        const int x = fieldAt(unit, 16580);
        std::vector<cv::Mat> frames;
        for (int slide = 0; slide <= static_cast<int>(Slide::PrismaMax); ++slide) {
            OpticalState state = inFocus(withoutNoise(unit), Channel::BrightField, x);
            state.slide = static_cast<Slide>(slide);
            frames.push_back(darkObjects(frameOf(withoutNoise(unit), state)));
            QVERIFY(contoursOf(frames.back()).size() > 25);
            for (std::size_t other = 0; other + 1 < frames.size(); ++other) {
                QVERIFY(cv::norm(frames[other], frames.back(), cv::NORM_INF) > 0.0);
            }
        }
    }

    /// The intensity of objects is measured on 10 to 1000 contours of Otsu's threshold.
    void objectsByOtsu_areBetween10And1000_data()
    {
        QTest::addColumn<int>("channel");
        QTest::newRow("GFP") << 1;
        QTest::newRow("RFP") << 2;
    }

    void objectsByOtsu_areBetween10And1000()
    {
        QFETCH(int, channel);
        const UnitConstants unit = unitFromSeed(2);
        for (int field = 0; field < 12; ++field) {
            cv::Mat work = frameOf(
                unit, inFocus(unit, static_cast<Channel>(channel), kNominalA1 - field * kFieldPitch));
            cv::subtract(work, cv::Scalar(15), work);
            cv::medianBlur(work, work, 3);
            cv::threshold(work, work, 0.0, 255.0, cv::THRESH_OTSU);
            const std::size_t count = contoursOf(work).size();
            QVERIFY2(count >= 10 && count <= 1000, qPrintable(QString::number(count)));
        }
    }

    void sameSubset_isNotStainedInBothChannels()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        cv::Mat cells = darkObjects(frameOf(unit, inFocus(unit, Channel::BrightField, kNominalA1)));
        cv::Mat gfp;
        cv::Mat rfp;
        cv::threshold(
            frameOf(unit, inFocus(unit, Channel::Gfp, kNominalA1)), gfp, 45.0, 255.0, cv::THRESH_BINARY);
        cv::threshold(
            frameOf(unit, inFocus(unit, Channel::Rfp, kNominalA1)), rfp, 45.0, 255.0, cv::THRESH_BINARY);
        const auto share = [](const cv::Mat& part, const cv::Mat& whole) {
            return static_cast<double>(cv::countNonZero(part & whole)) / cv::countNonZero(whole);
        };
        // Without a shift a stained cell lies on its dark picture; each subset is about half, and they
        // overlap.
        QVERIFY(share(gfp, cells) > 0.35 && share(gfp, cells) < 0.7);
        QVERIFY(share(rfp, cells) > 0.35 && share(rfp, cells) < 0.7);
        QVERIFY(share(rfp, gfp) > 0.3 && share(rfp, gfp) < 0.8);
        cv::Mat around;
        cv::dilate(cells, around, cv::Mat(), { -1, -1 }, 2);
        QCOMPARE(cv::countNonZero(gfp & ~around), 0);
    }

    void fieldsWithFewManyAndNoStainedCells_areThere()
    {
        const UnitConstants unit = unitFromSeed(3);
        const int a4 = fieldAt(unit, 18931 - 3 * kFieldPitch);
        const int a9 = fieldAt(unit, 18931 - 8 * kFieldPitch);
        const int thirdChamber = fieldAt(unit, 18505 - 2 * 12346 + 5 * kFieldPitch);
        const int eighthChamber = fieldAt(unit, 26291 - 7 * 4800 - 2 * kFieldPitch);
        QVERIFY(darkCells(unit, Slide::TwoChannel, a4) < 90);
        QVERIFY(stainedCells(unit, Slide::TwoChannel, Channel::Gfp, a4) >= 10);
        QVERIFY(darkCells(unit, Slide::TwoChannel, a9) > 400);
        QVERIFY(darkCells(unit, Slide::ThreeChannel, thirdChamber) > 100);
        QCOMPARE(stainedCells(unit, Slide::ThreeChannel, Channel::Gfp, thirdChamber), 0U);
        QCOMPARE(stainedCells(unit, Slide::ThreeChannel, Channel::Rfp, thirdChamber), 0U);
        QCOMPARE(stainedCells(unit, Slide::EightChannel, Channel::Rfp, eighthChamber), 0U);
    }

    void emptySlide_isEvenButForTheTraysMark()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = inFocus(unit, Channel::BrightField, 25000);
        state.slide = Slide::Empty;
        const cv::Mat frame = frameOf(unit, state);
        QVERIFY(varianceOfLaplacian(frame) < 0.5);
        state.xSteps = 12000;
        QCOMPARE(contoursOf(darkObjects(frameOf(unit, state))).size(), 1U);
    }

    void dust_showsInBrightFieldOnly()
    {
        // In the unstained chamber fluorescence shows nothing, and bright field more than the cells' round
        // shapes.
        const UnitConstants unit = withoutNoise(unitFromSeed(3));
        OpticalState state = inFocus(unit, Channel::Gfp, fieldAt(unit, 18505 - 2 * 12346 + 5 * kFieldPitch));
        state.slide = Slide::ThreeChannel;
        double darkest = 0.0;
        double brightest = 0.0;
        cv::minMaxLoc(frameOf(unit, state), &darkest, &brightest);
        QVERIFY(brightest - darkest <= 1.0);
        state = inFocus(unit, Channel::BrightField, state.xSteps);
        state.slide = Slide::ThreeChannel;
        int small = 0;
        for (const auto& contour : contoursOf(frameOf(unit, state) < 140)) {
            small += cv::contourArea(contour) < 20.0 ? 1 : 0;
        }
        QVERIFY(small >= 2);
    }

    void xSteps_moveTheScene_data()
    {
        QTest::addColumn<int>("steps");
        QTest::addColumn<double>("magnification");
        for (const double magnification : { 3.90, 4.00, 4.10 }) {
            for (const int steps : { 1, 13, 50, -50, 200, -250 }) {
                QTest::addRow("%d steps at %.2f", steps, magnification) << steps << magnification;
            }
        }
    }

    void xSteps_moveTheScene()
    {
        QFETCH(int, steps);
        QFETCH(double, magnification);
        UnitConstants unit;
        unit.magnification = magnification;
        const cv::Mat before = darkObjects(frameOf(unit, inFocus(unit, Channel::BrightField, 28000)));
        const cv::Mat after = darkObjects(frameOf(unit, inFocus(unit, Channel::BrightField, 28000 + steps)));
        const cv::Point2d moved = shiftBetween(before, after);
        // steps / 533.3 in mm, seen through the magnification on pixels of 3.75 um
        const double expected = steps / 533.3 * 1000.0 * magnification / 3.75;
        QVERIFY2(std::abs(moved.x - expected) < 0.25, qPrintable(QString::number(moved.x - expected)));
        QVERIFY(std::abs(moved.y) < 0.1);
        QCOMPARE(pixelsPerStep(unit) * steps, expected);
    }

    void traysMark_isInTheMiddleWhereTheUnitHasIt_data()
    {
        QTest::addColumn<int>("slide");
        for (int slide = 0; slide < kSlideCount; ++slide) {
            QTest::addRow("slide %d", slide) << slide;
        }
    }

    void traysMark_isInTheMiddleWhereTheUnitHasIt()
    {
        QFETCH(int, slide);
        const UnitConstants unit = unitFromSeed(9);
        OpticalState state = inFocus(unit, Channel::BrightField, static_cast<int>(unit.markX));
        state.slide = static_cast<Slide>(slide);
        const cv::Mat frame = frameOf(unit, state);
        // The largest dark object; a target mark may lie near it.
        const auto contours = contoursOf(darkObjects(frame));
        const auto mark = std::max_element(contours.begin(), contours.end(),
            [](const auto& one, const auto& two) { return one.size() < two.size(); });
        const cv::Rect box = cv::boundingRect(*mark);
        QVERIFY(std::abs(box.x + (box.width - 1) / 2.0 - 639.5) <= 1.0);
        QVERIFY(std::abs(box.y + (box.height - 1) / 2.0 - 479.5) <= 1.0);
        QCOMPARE(referenceMark(unit, state), cv::Point2d(639.5, 479.5));
    }

    void traysMark_tellsTheStagePositionToOneStep()
    {
        const UnitConstants unit = unitFromSeed(9);
        for (const int steps : { -100, -1, 1, 100 }) {
            OpticalState state = inFocus(unit, Channel::BrightField, static_cast<int>(unit.markX) + steps);
            state.slide = Slide::Empty;
            const cv::Rect box = cv::boundingRect(contoursOf(darkObjects(frameOf(unit, state))).front());
            const double seen = (box.x + (box.width - 1) / 2.0 - 639.5) / pixelsPerStep(unit);
            QVERIFY2(std::abs(seen - steps) < 0.5, qPrintable(QString::number(seen)));
            QVERIFY(std::abs(referenceMark(unit, state).x - (639.5 + steps * pixelsPerStep(unit))) < 1e-9);
        }
    }
};

QTEST_APPLESS_MAIN(tst_optics_scene)
#include "tst_optics_scene.moc"
