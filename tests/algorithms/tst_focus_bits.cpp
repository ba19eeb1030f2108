#include "algorithms/alg_autoFocus.h"
#include "algorithms/focus_literal.h"

#include "tests/algorithms/pictures.h"

#include <QtTest>

#include <array>
#include <cmath>
#include <limits>

Q_DECLARE_METATYPE(cv::Mat)

using namespace pictures;

namespace {

/// Multiples of the mean: the one in use, ones that make ties, and ones that saturate.
constexpr std::array kMultiples { 2.0, 0.0, 0.25, 0.5, 1.0, 1.5, 3.75, 250.0, 1e12, -0.5, -3.0 };

/// The first measure whose bits differ from the sequence of library calls, or nothing.
QByteArray differingMeasure(const cv::Mat& image)
{
    const alg_autoFocus focus;
    if (!sameBits(focus.varianceOfLaplacian(image), focus_literal::varianceOfLaplacian(image)))
        return "varianceOfLaplacian";
    if (!sameBits(focus.tenengrad(image, 3), focus_literal::tenengrad(image, 3)))
        return "tenengrad";
    for (const double alpha : kMultiples) {
        if (!sameBits(focus.neonTRILLOM(image, alpha, image.cols, image.rows),
                focus_literal::neonTRILLOM(image, alpha, image.cols, image.rows)))
            return "neonTRILLOM " + QByteArray::number(alpha);
    }
    return {};
}

void verifySameBits(const cv::Mat& image)
{
    QCOMPARE(differingMeasure(image), QByteArray());
}

} // namespace

/// The fast measures have the bits of the library's own results on every kind of frame.
class tst_focus_bits : public QObject {
    Q_OBJECT

private slots:
    void cameraFrames_data();
    void cameraFrames();
    void everySmallSize();
    void rowsLongerThanOneSum();
    void pictureBrighterThanOneSum();
    void singlePixelAnywhere();
    void everyMultipleThatMakesATie();
    void multipleThatIsNoNumber();
    void partOfALargerMatrix_seesThePixelsAround();
    void rowsOfALargerMatrix_seeTheRowsAround();
    void paddedRows();
    void otherTypes();
    void otherApertures();
    void smallerWidthAndHeight();
};

void tst_focus_bits::cameraFrames_data()
{
    QTest::addColumn<cv::Mat>("frame");
    QTest::newRow("random") << random(kFrameWidth, kFrameHeight, 1);
    QTest::newRow("black and white") << randomBlackAndWhite(kFrameWidth, kFrameHeight, 2);
    QTest::newRow("cells") << cells(kFrameWidth, kFrameHeight, 3);
    QTest::newRow("few pixels above twice the mean") << singlePixel(kFrameWidth, kFrameHeight, { 3, 4 }, 200);
    QTest::newRow("checkerboard of 1") << checkerboard(kFrameWidth, kFrameHeight, 1);
    QTest::newRow("checkerboard of 2") << checkerboard(kFrameWidth, kFrameHeight, 2);
    QTest::newRow("checkerboard of 7") << checkerboard(kFrameWidth, kFrameHeight, 7);
    for (int grey = 0; grey < 256; grey += 15)
        QTest::addRow("uniform %d", grey) << uniform(kFrameWidth, kFrameHeight, grey);
}

void tst_focus_bits::cameraFrames()
{
    QFETCH(cv::Mat, frame);
    verifySameBits(frame);
}

void tst_focus_bits::everySmallSize()
{
    for (int height = 1; height <= 10; ++height) {
        for (int width = 1; width <= 70; ++width) {
            const std::uint64_t seed
                = 100U * static_cast<unsigned int>(width) + static_cast<unsigned int>(height);
            for (const cv::Mat& image : { random(width, height, seed),
                     randomBlackAndWhite(width, height, seed), uniform(width, height, width + height),
                     checkerboard(width, height, 1), cv::Mat(random(width, height, seed) / 12),
                     singlePixel(width, height, { width / 2, height / 3 }, 200) }) {
                const QByteArray differing = differingMeasure(image);
                QVERIFY2(differing.isEmpty(),
                    differing + " at " + QByteArray::number(width) + " x " + QByteArray::number(height));
            }
        }
    }
}

void tst_focus_bits::rowsLongerThanOneSum()
{
    for (const int width : { 2047, 2048, 2049, 2050, 2051, 4100, 9001 }) {
        verifySameBits(checkerboard(width, 3, 1));
        verifySameBits(randomBlackAndWhite(width, 4, static_cast<std::uint64_t>(width)));
    }
    verifySameBits(uniform(3001, 1201, 255));
}

void tst_focus_bits::pictureBrighterThanOneSum()
{
    // All grey values together are more than 32 bits hold; they alone, and less every odd one.
    const cv::Mat white = uniform(4200, 4100, 255);
    for (const double alpha : { 0.0, 0.5 / 255.0 })
        QVERIFY(sameBits(alg_autoFocus().neonTRILLOM(white, alpha, white.cols, white.rows),
            focus_literal::neonTRILLOM(white, alpha, white.cols, white.rows)));
}

void tst_focus_bits::singlePixelAnywhere()
{
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 40; ++x)
            verifySameBits(singlePixel(40, 6, { x, y }, 255));
    }
    for (const cv::Point corner : { cv::Point(0, 0), cv::Point(kFrameWidth - 1, 0),
             cv::Point(0, kFrameHeight - 1), cv::Point(kFrameWidth - 1, kFrameHeight - 1) })
        verifySameBits(singlePixel(kFrameWidth, kFrameHeight, corner, 255));
}

void tst_focus_bits::everyMultipleThatMakesATie()
{
    // Mean 1 exactly, so that the multiple is what is taken off, and every grey value once.
    cv::Mat frame = uniform(256, 128, 0);
    for (int grey = 0; grey < 256; ++grey)
        frame.at<uchar>(0, grey) = static_cast<uchar>(grey);
    frame.row(1).colRange(0, 128).setTo(1);
    QCOMPARE(cv::mean(frame)[0], 1.0);

    for (int half = -3; half <= 2 * 256 + 3; ++half) {
        const double alpha = half / 2.0;
        for (const double nearby : { alpha, std::nextafter(alpha, -1e9), std::nextafter(alpha, 1e9) })
            QVERIFY2(sameBits(alg_autoFocus().neonTRILLOM(frame, nearby, 256, 128),
                         focus_literal::neonTRILLOM(frame, nearby, 256, 128)),
                QByteArray::number(nearby, 'g', 17));
    }
}

void tst_focus_bits::multipleThatIsNoNumber()
{
    const cv::Mat frame = random(33, 5, 7);
    for (const double alpha : { std::numeric_limits<double>::quiet_NaN(),
             std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity() })
        QVERIFY(sameBits(alg_autoFocus().neonTRILLOM(frame, alpha, 33, 5),
            focus_literal::neonTRILLOM(frame, alpha, 33, 5)));
}

void tst_focus_bits::partOfALargerMatrix_seesThePixelsAround()
{
    const cv::Mat large = random(100, 80, 8);
    for (const cv::Rect& part :
        { cv::Rect(0, 0, 50, 40), cv::Rect(10, 20, 64, 32), cv::Rect(99, 0, 1, 80), cv::Rect(0, 79, 100, 1) })
        verifySameBits(large(part));
    // The border is real: the same pixels alone measure differently.
    const cv::Mat part = large(cv::Rect(10, 20, 64, 32));
    QVERIFY(!sameBits(
        alg_autoFocus().varianceOfLaplacian(part), alg_autoFocus().varianceOfLaplacian(part.clone())));
}

void tst_focus_bits::rowsOfALargerMatrix_seeTheRowsAround()
{
    const cv::Mat rows = random(64, 80, 9).rowRange(20, 50);
    QVERIFY(rows.isContinuous());
    verifySameBits(rows);
    QVERIFY(!sameBits(alg_autoFocus().tenengrad(rows, 3), alg_autoFocus().tenengrad(rows.clone(), 3)));
}

void tst_focus_bits::paddedRows()
{
    std::array<uchar, 2400> memory {}; // 30 rows of 80
    cv::Mat padded(30, 64, CV_8UC1, memory.data(), 80);
    random(64, 30, 10).copyTo(padded);
    QVERIFY(!padded.isContinuous());
    verifySameBits(padded);
    QVERIFY(sameBits(
        alg_autoFocus().varianceOfLaplacian(padded), alg_autoFocus().varianceOfLaplacian(padded.clone())));
}

void tst_focus_bits::otherTypes()
{
    const alg_autoFocus focus;
    for (const int type : { CV_16UC1, CV_64FC1, CV_8UC3 }) {
        cv::Mat image(24, 40, type);
        cv::RNG(11).fill(image, cv::RNG::UNIFORM, 0, 256);
        QVERIFY(sameBits(focus.varianceOfLaplacian(image), focus_literal::varianceOfLaplacian(image)));
        QVERIFY(sameBits(focus.tenengrad(image, 3), focus_literal::tenengrad(image, 3)));
    }
    // The library has no filter from float to double.
    const cv::Mat floats(24, 40, CV_32FC1, cv::Scalar(1));
    QVERIFY_EXCEPTION_THROWN(focus.varianceOfLaplacian(floats), cv::Exception);
    QVERIFY_EXCEPTION_THROWN(focus.tenengrad(cv::Mat(), 3), cv::Exception);
}

void tst_focus_bits::otherApertures()
{
    const alg_autoFocus focus;
    const cv::Mat image = random(70, 50, 12);
    for (const int ksize : { -1, 1, 5, 7 })
        QVERIFY(sameBits(focus.tenengrad(image, ksize), focus_literal::tenengrad(image, ksize)));
    QVERIFY_EXCEPTION_THROWN(focus.tenengrad(image, 4), cv::Exception);
}

void tst_focus_bits::smallerWidthAndHeight()
{
    const alg_autoFocus focus;
    const cv::Mat image = random(70, 50, 13);
    for (const cv::Size& size : { cv::Size(69, 50), cv::Size(70, 49), cv::Size(1, 1), cv::Size(0, 0) })
        QVERIFY(sameBits(focus.neonTRILLOM(image, 0.75, size.width, size.height),
            focus_literal::neonTRILLOM(image, 0.75, size.width, size.height)));
}

QTEST_APPLESS_MAIN(tst_focus_bits)
#include "tst_focus_bits.moc"
