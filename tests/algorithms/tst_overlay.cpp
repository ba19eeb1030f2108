#include "algorithms/overlay.h"
#include "algorithms/overlay_literal.h"

#include "tests/algorithms/pictures.h"

#include <QtTest>

#include <array>
#include <limits>

using namespace pictures;

namespace {

/// A pixel of the result, in the order in which the view shows it.
struct Colour {
    int red;
    int green;
    int blue;

    bool operator==(const Colour& other) const
    {
        return red == other.red && green == other.green && blue == other.blue;
    }
};

char* toString(const Colour& colour)
{
    return QTest::toString(QStringLiteral("(%1, %2, %3)").arg(colour.red).arg(colour.green).arg(colour.blue));
}

Colour colourAt(const cv::Mat& overlay, int x, int y)
{
    const auto& pixel = overlay.at<cv::Vec3b>(y, x);
    return { pixel[0], pixel[1], pixel[2] };
}

bool hasSameBits(const cv::Mat& bf, const cv::Mat& gfp, const cv::Mat& rfp, OverlayShift shiftGFP,
    OverlayShift shiftRFP, bool shifted = true)
{
    const cv::Mat overlay = composeOverlay(bf, gfp, rfp, shiftGFP, shiftRFP, shifted);
    const cv::Mat expected = overlay_literal::compose(bf, gfp, rfp, shiftGFP, shiftRFP, shifted);
    return overlay.type() == expected.type() && overlay.size() == expected.size()
        && cv::norm(overlay, expected, cv::NORM_INF) == 0.0;
}

} // namespace

/// The overlay: its colours by hand, and its bits against the library's calls.
class tst_overlay : public QObject {
    Q_OBJECT

private slots:
    void emptyRFPAndNoShift_tintsWhatIsDarkerThan100();
    void brightestRFP_winsUnlessBrightFieldIsBrightestToo();
    void fractionalShift_spreadsOnePixelOverTwo();
    void shiftOfTen_movesRightAndLeavesTheEdgeGrey();
    void shiftDown_movesDownAndLeavesTheEdgeGrey();
    void negativeShifts_moveLeftAndUp();
    void raise_saturates();
    void unshifted_takesTheChannelsAsTheyAre();
    void channels_areMovedApart();
    void result_isNewContinuousAndLeavesItsSources();
    void missingPictures_giveTheGroundInGrey();
    void differentSizes_endInTheLibrarysException();
    void bits_cameraFrames();
    void bits_everySmallSize();
    void bits_everyFractionOfAPixel();
    void bits_shiftsBeyondThePicture();
    void bits_shiftsThatAreNoNumbers();
    void bits_partsOfLargerMatrices();
};

void tst_overlay::emptyRFPAndNoShift_tintsWhatIsDarkerThan100()
{
    cv::Mat bf = uniform(kFrameWidth, kFrameHeight, 170);
    bf.at<uchar>(10, 20) = 99;
    bf.at<uchar>(10, 21) = 100;
    bf.at<uchar>(10, 22) = 101;
    bf.at<uchar>(10, 23) = 0;
    const cv::Mat nothing = uniform(kFrameWidth, kFrameHeight, 0);
    // GFP does not raise the green part where bright field is at least 100; below, both do.
    const cv::Mat overlay = composeOverlay(bf, nothing, nothing, {}, {}, true);
    QCOMPARE(colourAt(overlay, 20, 10), (Colour { 100, 100, 99 }));
    QCOMPARE(colourAt(overlay, 21, 10), (Colour { 100, 100, 100 }));
    QCOMPARE(colourAt(overlay, 22, 10), (Colour { 101, 101, 101 }));
    QCOMPARE(colourAt(overlay, 23, 10), (Colour { 100, 100, 0 }));
    QCOMPARE(colourAt(overlay, 0, 0), (Colour { 170, 170, 170 }));
}

void tst_overlay::brightestRFP_winsUnlessBrightFieldIsBrightestToo()
{
    cv::Mat bf = uniform(40, 30, 254);
    bf.at<uchar>(5, 7) = 255;
    const cv::Mat overlay = composeOverlay(bf, uniform(40, 30, 0), uniform(40, 30, 255), {}, {}, true);
    QCOMPARE(colourAt(overlay, 6, 5), (Colour { 255, 254, 254 }));
    QCOMPARE(colourAt(overlay, 7, 5), (Colour { 255, 255, 255 }));
}

void tst_overlay::fractionalShift_spreadsOnePixelOverTwo()
{
    // 155 is raised to 255, its black neighbours to 100: half of each is 177.5, shown as 178.
    const cv::Mat gfp = singlePixel(40, 30, { 10, 8 }, 155);
    const cv::Mat overlay
        = composeOverlay(uniform(40, 30, 0), gfp, uniform(40, 30, 0), { 1.5F, 0.0F }, {}, true);
    QCOMPARE(colourAt(overlay, 10, 8).green, 100);
    QCOMPARE(colourAt(overlay, 11, 8).green, 178);
    QCOMPARE(colourAt(overlay, 12, 8).green, 178);
    QCOMPARE(colourAt(overlay, 13, 8).green, 100);
}

void tst_overlay::shiftOfTen_movesRightAndLeavesTheEdgeGrey()
{
    const cv::Mat gfp = singlePixel(40, 30, { 10, 8 }, 150);
    const cv::Mat overlay
        = composeOverlay(uniform(40, 30, 20), gfp, uniform(40, 30, 0), { 10.0F, 0.0F }, {}, true);
    QCOMPARE(colourAt(overlay, 20, 8), (Colour { 100, 250, 20 }));
    for (int x = 0; x < 10; ++x)
        QCOMPARE(colourAt(overlay, x, 8), (Colour { 100, 20, 20 }));
    QCOMPARE(colourAt(overlay, 10, 8), (Colour { 100, 100, 20 }));
}

void tst_overlay::shiftDown_movesDownAndLeavesTheEdgeGrey()
{
    const cv::Mat rfp = singlePixel(40, 30, { 10, 8 }, 150);
    const cv::Mat overlay
        = composeOverlay(uniform(40, 30, 20), uniform(40, 30, 0), rfp, {}, { 0.0F, 3.0F }, true);
    QCOMPARE(colourAt(overlay, 10, 11), (Colour { 250, 100, 20 }));
    for (int y = 0; y < 3; ++y)
        QCOMPARE(colourAt(overlay, 10, y), (Colour { 20, 100, 20 }));
    QCOMPARE(colourAt(overlay, 10, 3), (Colour { 100, 100, 20 }));
}

void tst_overlay::negativeShifts_moveLeftAndUp()
{
    const cv::Mat gfp = singlePixel(40, 30, { 10, 8 }, 150);
    const cv::Mat overlay
        = composeOverlay(uniform(40, 30, 20), gfp, uniform(40, 30, 0), { -4.0F, -5.0F }, {}, true);
    QCOMPARE(colourAt(overlay, 6, 3), (Colour { 100, 250, 20 }));
    QCOMPARE(colourAt(overlay, 36, 3), (Colour { 100, 20, 20 }));
    QCOMPARE(colourAt(overlay, 6, 25), (Colour { 100, 20, 20 }));
}

void tst_overlay::raise_saturates()
{
    const cv::Mat overlay
        = composeOverlay(uniform(4, 3, 0), uniform(4, 3, 156), uniform(4, 3, 154), {}, {}, true);
    QCOMPARE(colourAt(overlay, 1, 1), (Colour { 254, 255, 0 }));
}

void tst_overlay::unshifted_takesTheChannelsAsTheyAre()
{
    const cv::Mat gfp = singlePixel(40, 30, { 10, 8 }, 150);
    const cv::Mat rfp = uniform(40, 30, 60);
    const cv::Mat overlay
        = composeOverlay(uniform(40, 30, 50), gfp, rfp, { 7.0F, 7.0F }, { -3.5F, 9.0F }, false);
    QCOMPARE(colourAt(overlay, 10, 8), (Colour { 60, 150, 50 }));
    QCOMPARE(colourAt(overlay, 0, 0), (Colour { 60, 50, 50 }));
    QCOMPARE(colourAt(overlay, 39, 29), (Colour { 60, 50, 50 }));
}

void tst_overlay::channels_areMovedApart()
{
    const cv::Mat spot = singlePixel(40, 30, { 20, 15 }, 100);
    const cv::Mat overlay
        = composeOverlay(uniform(40, 30, 150), spot, spot, { 2.0F, -3.0F }, { -5.0F, 6.0F }, true);
    QCOMPARE(colourAt(overlay, 22, 12), (Colour { 150, 200, 150 }));
    QCOMPARE(colourAt(overlay, 15, 21), (Colour { 200, 150, 150 }));
    QCOMPARE(colourAt(overlay, 20, 15), (Colour { 150, 150, 150 }));
}

void tst_overlay::result_isNewContinuousAndLeavesItsSources()
{
    const cv::Mat bf = random(64, 48, 1);
    const cv::Mat gfp = random(64, 48, 2);
    const cv::Mat rfp = random(64, 48, 3);
    const std::array before { bf.clone(), gfp.clone(), rfp.clone() };
    cv::Mat overlay = composeOverlay(bf, gfp, rfp, { 1.25F, 2.0F }, { 0.5F, -1.0F }, true);
    QVERIFY(overlay.isContinuous());
    QCOMPARE(overlay.type(), CV_8UC3);
    QCOMPARE(overlay.size(), bf.size());
    overlay.setTo(0);
    QCOMPARE(cv::norm(bf, before[0], cv::NORM_INF), 0.0);
    QCOMPARE(cv::norm(gfp, before[1], cv::NORM_INF), 0.0);
    QCOMPARE(cv::norm(rfp, before[2], cv::NORM_INF), 0.0);
}

void tst_overlay::missingPictures_giveTheGroundInGrey()
{
    const cv::Mat black = composeOverlay(cv::Mat(), cv::Mat(), cv::Mat(), {}, {}, true);
    QCOMPARE(black.size(), cv::Size(kFrameWidth, kFrameHeight));
    QCOMPARE(black.type(), CV_8UC3);
    QCOMPARE(cv::norm(black, cv::NORM_INF), 0.0);

    const cv::Mat bf = uniform(kFrameWidth, kFrameHeight, 77);
    for (const cv::Mat& overlay : { composeOverlay(bf, cv::Mat(), cv::Mat(), {}, {}, true),
             composeOverlay(bf, bf, cv::Mat(), {}, {}, true),
             composeOverlay(bf, cv::Mat(), bf, {}, {}, false) }) {
        QCOMPARE(overlay.size(), bf.size());
        QCOMPARE(colourAt(overlay, 640, 480), (Colour { 77, 77, 77 }));
    }
    QCOMPARE(cv::norm(composeOverlay(cv::Mat(), bf, bf, {}, {}, true), cv::NORM_INF), 0.0);
}

void tst_overlay::differentSizes_endInTheLibrarysException()
{
    const cv::Mat large = uniform(40, 30, 10);
    const cv::Mat small = uniform(39, 30, 10);
    QVERIFY_EXCEPTION_THROWN(composeOverlay(large, small, large, {}, {}, true), cv::Exception);
    QVERIFY_EXCEPTION_THROWN(composeOverlay(large, large, small, {}, {}, true), cv::Exception);
}

void tst_overlay::bits_cameraFrames()
{
    const cv::Mat field = cells(kFrameWidth, kFrameHeight, 4);
    const cv::Mat ground = 255 - field;
    QVERIFY(hasSameBits(ground, moved(field, 3, -2), moved(field, -7, 5), { -3.0F, 2.0F }, { 7.25F, -5.5F }));
    QVERIFY(hasSameBits(random(kFrameWidth, kFrameHeight, 5), random(kFrameWidth, kFrameHeight, 6),
        random(kFrameWidth, kFrameHeight, 7), { 0.03F, -11.97F }, { 12.0F, 0.0F }));
    QVERIFY(hasSameBits(ground, field, field, { 1.0F, 1.0F }, { 1.0F, 1.0F }, false));
}

void tst_overlay::bits_everySmallSize()
{
    for (int height = 1; height <= 9; ++height) {
        for (int width = 1; width <= 40; ++width) {
            const std::uint64_t seed
                = 50U * static_cast<std::uint64_t>(width) + static_cast<unsigned>(height);
            QVERIFY2(hasSameBits(random(width, height, seed) / 2, random(width, height, seed + 1),
                         random(width, height, seed + 2), { 1.3F, -0.6F }, { -2.7F, 3.1F }),
                QByteArray::number(width) + " x " + QByteArray::number(height));
        }
    }
}

void tst_overlay::bits_everyFractionOfAPixel()
{
    const cv::Mat bf = random(61, 23, 8) / 3;
    const cv::Mat gfp = random(61, 23, 9);
    const cv::Mat rfp = random(61, 23, 10);
    // Steps of a quarter of the finest fraction, so that every tie of the rounding occurs.
    for (int step = -4200; step <= 4200; step += 3) {
        const float shift = static_cast<float>(step) / 4096.0F;
        QVERIFY2(hasSameBits(bf, gfp, rfp, { shift, 0.5F - shift }, { 3.0F + shift, shift }),
            QByteArray::number(step));
    }
    for (const float shift : { 1e-30F, -1e-30F, 0.1F, 0.7F, 9.99F, -12.34F, 0.01F })
        QVERIFY(hasSameBits(bf, gfp, rfp, { shift, -shift }, { -shift, shift }));
}

void tst_overlay::bits_shiftsBeyondThePicture()
{
    const cv::Mat bf = random(50, 20, 11) / 3;
    const cv::Mat gfp = random(50, 20, 12);
    for (const float far : { 19.0F, 19.5F, 20.0F, 20.5F, 48.5F, 49.0F, 49.5F, 50.0F, 50.5F, 51.0F, 52.0F,
             1000.0F, 4096.0F, 4096.5F, 40000.0F, 1e7F, 3e9F }) {
        for (const OverlayShift& shift : { OverlayShift(far, 0), OverlayShift(-far, 0.5F),
                 OverlayShift(0, far), OverlayShift(1.5F, -far), OverlayShift(far, -far) })
            QVERIFY2(hasSameBits(bf, gfp, gfp, shift, {}),
                QByteArray::number(shift.x) + ", " + QByteArray::number(shift.y));
    }
}

void tst_overlay::bits_shiftsThatAreNoNumbers()
{
    const cv::Mat bf = random(50, 20, 13);
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    for (const float odd : { std::numeric_limits<float>::quiet_NaN(), kInfinite, -kInfinite }) {
        QVERIFY(hasSameBits(bf, bf, bf, { odd, 0.0F }, {}));
        QVERIFY(hasSameBits(bf, bf, bf, {}, { 2.0F, odd }));
    }
}

void tst_overlay::bits_partsOfLargerMatrices()
{
    const cv::Mat large = random(120, 90, 14);
    QVERIFY(hasSameBits(large(cv::Rect(10, 10, 70, 50)), large(cv::Rect(20, 30, 70, 50)),
        large(cv::Rect(0, 0, 70, 50)), { 2.5F, 1.25F }, { -3.0F, -4.5F }));
}

QTEST_APPLESS_MAIN(tst_overlay)
#include "tst_overlay.moc"
