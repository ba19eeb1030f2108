#include "algorithms/alg_autoFocus.h"

#include "tests/algorithms/pictures.h"

#include <QtTest>

#include <type_traits>
#include <vector>

using namespace pictures;

namespace {

const cv::Mat fourGreys = (cv::Mat_<uchar>(2, 2) << 1, 2, 3, 4); // mean 2.5

double measure(alg_autoFocus& focus, unsigned int mode, const cv::Mat& packed)
{
    return focus.get_focusValue(static_cast<ALG_focus>(mode), packed.data, packed.cols, packed.rows);
}

} // namespace

/// What the three measures are, on pictures whose values can be worked out by hand.
class tst_alg_autoFocus : public QObject {
    Q_OBJECT

private slots:
    void selectors_haveTheirNumbers();
    void newObject_hasNoSamples();
    void measures_leaveSamplesAndBufferAlone();
    void unknownSelector_isExactlyMinusOne_data();
    void unknownSelector_isExactlyMinusOne();
    void selector_runsItsMeasure_data();
    void selector_runsItsMeasure();
    void uniformFrame_isZeroByEveryMeasure_data();
    void uniformFrame_isZeroByEveryMeasure();
    void oneBrightPixel_neonIsItsShareOfTheFrame();
    void neon_takesOffTwiceTheMean();
    void neon_tiesGoToEven();
    void neon_negativeMultiple_saturatesAt255();
    void neon_smallerWidthAndHeight_keepRemainingPixels();
    void neon_largerWidthAndHeight_stayInsideTheMatrix();
    void laplacian_ofOnePixel();
    void laplacian_mirrorsWithoutRepeatingTheEdge();
    void tenengrad_ofARamp();
    void sharperPicture_measuresMore();
};

void tst_alg_autoFocus::selectors_haveTheirNumbers()
{
    QCOMPARE(static_cast<unsigned int>(ALG_FOCUS_NEON_TRILLOM), 0U);
    QCOMPARE(static_cast<unsigned int>(ALG_FOCUS_LAPLACIAN), 1U);
    QCOMPARE(static_cast<unsigned int>(ALG_FOCUS_TENENGRAD), 2U);
    QVERIFY(std::is_unsigned_v<std::underlying_type_t<ALG_focus>>);
}

void tst_alg_autoFocus::newObject_hasNoSamples()
{
    const alg_autoFocus focus;
    QVERIFY(focus.m_samples.empty());
}

void tst_alg_autoFocus::measures_leaveSamplesAndBufferAlone()
{
    alg_autoFocus focus;
    focus.m_samples.emplace_back(4600, 12.5);
    const cv::Mat frame = random(64, 48, 1);
    const cv::Mat before = frame.clone();
    for (unsigned int mode = 0; mode < 4; ++mode)
        measure(focus, mode, frame);
    QCOMPARE(focus.m_samples.size(), std::size_t { 1 });
    QCOMPARE(focus.m_samples.front().first, 4600);
    QCOMPARE(focus.m_samples.front().second, 12.5);
    QCOMPARE(cv::norm(frame, before, cv::NORM_INF), 0.0);
}

void tst_alg_autoFocus::unknownSelector_isExactlyMinusOne_data()
{
    QTest::addColumn<unsigned int>("mode");
    QTest::newRow("3") << 3U;
    QTest::newRow("4") << 4U;
    QTest::newRow("256") << 256U;
    QTest::newRow("-1 as unsigned") << 0xFFFFFFFFU;
}

void tst_alg_autoFocus::unknownSelector_isExactlyMinusOne()
{
    QFETCH(unsigned int, mode);
    alg_autoFocus focus;
    QVERIFY(sameBits(measure(focus, mode, random(32, 24, 2)), -1.0));
}

void tst_alg_autoFocus::selector_runsItsMeasure_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("camera frame") << kFrameWidth << kFrameHeight;
    QTest::newRow("odd size") << 37 << 21;
}

void tst_alg_autoFocus::selector_runsItsMeasure()
{
    QFETCH(int, width);
    QFETCH(int, height);
    alg_autoFocus focus;
    const cv::Mat frame = cells(width, height, 3);
    QVERIFY(sameBits(measure(focus, 0, frame), focus.neonTRILLOM(frame, 2.0, width, height)));
    QVERIFY(sameBits(measure(focus, 1, frame), focus.varianceOfLaplacian(frame)));
    QVERIFY(sameBits(measure(focus, 2, frame), focus.tenengrad(frame, 3)));
}

void tst_alg_autoFocus::uniformFrame_isZeroByEveryMeasure_data()
{
    QTest::addColumn<int>("grey");
    for (const int grey : { 0, 1, 2, 127, 128, 254, 255 })
        QTest::newRow(QByteArray::number(grey)) << grey;
}

void tst_alg_autoFocus::uniformFrame_isZeroByEveryMeasure()
{
    QFETCH(int, grey);
    alg_autoFocus focus;
    const cv::Mat frame = uniform(kFrameWidth, kFrameHeight, grey);
    QCOMPARE(measure(focus, 0, frame), 0.0);
    QCOMPARE(measure(focus, 1, frame), 0.0);
    QCOMPARE(measure(focus, 2, frame), 0.0);
}

void tst_alg_autoFocus::oneBrightPixel_neonIsItsShareOfTheFrame()
{
    alg_autoFocus focus;
    const double value = measure(focus, 0, singlePixel(kFrameWidth, kFrameHeight, cv::Point(700, 500), 255));
    QVERIFY(value > 0.0);
    QVERIFY(value < 0.001);
    QCOMPARE(value, 255.0 / (kFrameWidth * kFrameHeight));
}

void tst_alg_autoFocus::neon_takesOffTwiceTheMean()
{
    // Mean 15, twice the mean 30: only 80 rises above it, by 50.
    const cv::Mat frame = (cv::Mat_<uchar>(2, 4) << 0, 5, 10, 80, 0, 10, 10, 5);
    QCOMPARE(alg_autoFocus().neonTRILLOM(frame, 2.0, 4, 2), 50.0 / 8.0);
}

void tst_alg_autoFocus::neon_tiesGoToEven()
{
    // 2.5 taken off: -1.5 and -0.5 give 0, 0.5 goes down to 0, 1.5 up to 2.
    QCOMPARE(alg_autoFocus().neonTRILLOM(fourGreys, 1.0, 2, 2), 2.0 / 4.0);
    // 7.5 taken off a row of 0, 5, 10 and 15: 2.5 goes down to 2, 7.5 up to 8.
    const cv::Mat row = (cv::Mat_<uchar>(1, 4) << 0, 5, 10, 15);
    QCOMPARE(alg_autoFocus().neonTRILLOM(row, 1.0, 4, 1), 10.0 / 4.0);
}

void tst_alg_autoFocus::neon_negativeMultiple_saturatesAt255()
{
    // Mean 100 added: 0 gives 100, 200 is held at 255.
    const cv::Mat frame = (cv::Mat_<uchar>(1, 2) << 0, 200);
    QCOMPARE(alg_autoFocus().neonTRILLOM(frame, -1.0, 2, 1), (100.0 + 255.0) / 2.0);
}

void tst_alg_autoFocus::neon_smallerWidthAndHeight_keepRemainingPixels()
{
    // Only the top left pixel loses 2.5: it becomes 0; 2, 3 and 4 stay as copied.
    QCOMPARE(alg_autoFocus().neonTRILLOM(fourGreys, 1.0, 1, 1), 9.0 / 4.0);
    // The first column: 1 becomes 0, 3 becomes 0 (0.5 to even).
    QCOMPARE(alg_autoFocus().neonTRILLOM(fourGreys, 1.0, 1, 2), 6.0 / 4.0);
    // Nothing at all is walked over.
    QCOMPARE(alg_autoFocus().neonTRILLOM(fourGreys, 1.0, 0, 0), 2.5);
}

void tst_alg_autoFocus::neon_largerWidthAndHeight_stayInsideTheMatrix()
{
    QCOMPARE(alg_autoFocus().neonTRILLOM(fourGreys, 1.0, 500, 700), 2.0 / 4.0);
}

void tst_alg_autoFocus::laplacian_ofOnePixel()
{
    // In a frame of 5 x 5 the centre gives -4c and its four neighbours c each: sum 0, squares 20 c^2.
    const double value = alg_autoFocus().varianceOfLaplacian(singlePixel(5, 5, cv::Point(2, 2), 10));
    QCOMPARE(value, 20.0 * 10 * 10 / 25);
}

void tst_alg_autoFocus::laplacian_mirrorsWithoutRepeatingTheEdge()
{
    // In 3 x 3 the neighbours lie on the border and see the centre on both sides: -4c once, 2c four times.
    const double value = alg_autoFocus().varianceOfLaplacian(singlePixel(3, 3, cv::Point(1, 1), 9));
    QCOMPARE(value, (32.0 / 9 - 16.0 / 81) * 9 * 9);
}

void tst_alg_autoFocus::tenengrad_ofARamp()
{
    // 10 grey values a column: 4 x 2 x 10 inside, 0 in the mirrored first and last column.
    cv::Mat ramp(7, 5, CV_8UC1);
    for (int x = 0; x < ramp.cols; ++x)
        ramp.col(x).setTo(10 * x);
    QCOMPARE(alg_autoFocus().tenengrad(ramp, 3), 80.0 * 80 * 3 / 5);
    QCOMPARE(alg_autoFocus().tenengrad(ramp.t(), 3), 80.0 * 80 * 3 / 5);
}

void tst_alg_autoFocus::sharperPicture_measuresMore()
{
    alg_autoFocus focus;
    const cv::Mat sharp = checkerboard(320, 240, 20);
    const cv::Mat blurred = moved(sharp, 0.5, 0.5);
    QVERIFY(measure(focus, 1, sharp) > measure(focus, 1, blurred));
    QVERIFY(measure(focus, 2, sharp) > measure(focus, 2, blurred));
}

QTEST_APPLESS_MAIN(tst_alg_autoFocus)
#include "tst_alg_autoFocus.moc"
