#include "algorithms/pixelShift_literal.h"
#include "algorithms/shift_search.h"

#include "tests/algorithms/pictures.h"
#include "tests/algorithms/shift_by_library.h"

#include <QLoggingCategory>
#include <QtTest>

#include <vector>

Q_DECLARE_METATYPE(cv::Mat)

using namespace pictures;
using namespace shift_by_library;

/// The shared and threaded search has the bits of the library's own phase correlations on every input.
class tst_shift_bits : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void cameraFrames_data();
    void cameraFrames();
    void smallSizes_data();
    void smallSizes();
    void blackAndWhiteImages_data();
    void blackAndWhiteImages();
    void fractionalMoves_data();
    void fractionalMoves();
    void everyThreshold();
    void greyReference();
    void periodicPicture_firstOfEqualPeaksCounts();
    void manyTinyPictures_firstOfEqualPeaksCounts();
    void repeatedBinaryImages();
    void repeatedBinaryImages_haveTheirResultsToo();
    void partsOfLargerMatrices();
    void singleRowOrColumn_actsAsTheLibrary();
    void emptyImages_endInTheLibrarysException();
    void inputsAreNotChanged();
};

/// Each of tens of thousands of measurements logs a line, which the tests of the measurement read.
void tst_shift_bits::initTestCase()
{
    QLoggingCategory::setFilterRules("default.debug=false");
}

void tst_shift_bits::cameraFrames_data()
{
    QTest::addColumn<cv::Mat>("reference");
    QTest::addColumn<cv::Mat>("gf");
    QTest::addColumn<cv::Mat>("rf");
    const cv::Mat field = cells(kFrameWidth, kFrameHeight, 1);
    QTest::newRow("cells, moved") << binary(field, 40) << moved(field, 3.25, -7.5) << moved(field, -11, 4);
    QTest::newRow("cells, other cells") << binary(field, 40) << cells(kFrameWidth, kFrameHeight, 2) << field;
    QTest::newRow("random") << binary(random(kFrameWidth, kFrameHeight, 3), 120)
                            << random(kFrameWidth, kFrameHeight, 4) << random(kFrameWidth, kFrameHeight, 5);
}

void tst_shift_bits::cameraFrames()
{
    QFETCH(cv::Mat, reference);
    QFETCH(cv::Mat, gf);
    QFETCH(cv::Mat, rf);
    QVERIFY(searchHasSameBits(reference, gf, rf));
}

void tst_shift_bits::smallSizes_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    // Sizes that the transform takes as they are and sizes that it pads, odd and even on either axis.
    for (const int width : { 2, 3, 4, 5, 6, 7, 9, 13, 15, 16, 17, 25, 31, 32, 45, 47, 64, 75, 125, 131 }) {
        for (const int height : { 2, 3, 4, 5, 7, 8, 11, 15, 27, 29, 48, 81, 97 })
            QTest::addRow("%d x %d", width, height) << width << height;
    }
}

void tst_shift_bits::smallSizes()
{
    QFETCH(int, width);
    QFETCH(int, height);
    const std::uint64_t seed = 1000U * static_cast<unsigned int>(width) + static_cast<unsigned int>(height);
    const cv::Mat picture = random(width, height, seed) / 4;
    QVERIFY(searchHasSameBits(binary(picture, 25), moved(picture, 1, 1), cells(width, height, seed)));
    QVERIFY(measurementHasSameBits(binary(picture, 25), picture, cells(width, height, seed), 31, 17));
}

void tst_shift_bits::blackAndWhiteImages_data()
{
    QTest::addColumn<int>("reference");
    QTest::addColumn<int>("gf");
    QTest::addColumn<int>("rf");
    for (const int reference : { 0, 255, -1 }) {
        for (const int gf : { 0, 255, -1 }) {
            for (const int rf : { 0, 255, -1 })
                QTest::addRow("%d, %d, %d", reference, gf, rf) << reference << gf << rf;
        }
    }
}

void tst_shift_bits::blackAndWhiteImages()
{
    QFETCH(int, reference);
    QFETCH(int, gf);
    QFETCH(int, rf);
    for (const cv::Size& size : { cv::Size(160, 120), cv::Size(45, 75), cv::Size(37, 53) }) {
        // -1 stands for a picture of cells.
        const auto picture = [&](int grey) {
            return grey < 0 ? binary(cells(size.width, size.height, 9), 40)
                            : uniform(size.width, size.height, grey);
        };
        QVERIFY(searchHasSameBits(picture(reference), picture(gf), picture(rf)));
        QVERIFY(measurementHasSameBits(picture(reference), picture(gf), picture(rf), 15, 45));
    }
}

void tst_shift_bits::fractionalMoves_data()
{
    QTest::addColumn<double>("right");
    QTest::addColumn<double>("down");
    for (const double right : { -12.0, -0.75, 0.0, 0.03125, 2.5 }) {
        for (const double down : { -3.33, 0.0, 0.5, 12.0 })
            QTest::addRow("%g, %g", right, down) << right << down;
    }
}

void tst_shift_bits::fractionalMoves()
{
    QFETCH(double, right);
    QFETCH(double, down);
    const cv::Mat picture = cells(300, 200, 10);
    QVERIFY(
        searchHasSameBits(binary(picture, 30), moved(picture, right, down), moved(picture, -down, right)));
}

void tst_shift_bits::everyThreshold()
{
    const cv::Mat picture = random(64, 48, 11);
    const cv::Mat reference = binary(picture, 128);
    for (const int threshold : { -300, -1, 0, 1, 127, 128, 253, 254, 255, 256, 1000 })
        QVERIFY2(measurementHasSameBits(reference, picture, moved(picture, 2, 3), threshold, 255 - threshold),
            QByteArray::number(threshold));
}

void tst_shift_bits::greyReference()
{
    const cv::Mat picture = cells(240, 180, 12);
    QVERIFY(searchHasSameBits(picture, moved(picture, 2, 1), moved(picture, -4, 3)));
}

void tst_shift_bits::periodicPicture_firstOfEqualPeaksCounts()
{
    for (const int side : { 1, 2, 4, 8 }) {
        const cv::Mat board = checkerboard(64, 32, side);
        QVERIFY(searchHasSameBits(board, board, moved(board, 1, 0)));
    }
    for (const cv::Size& size : { cv::Size(27, 45), cv::Size(45, 32), cv::Size(32, 45) }) {
        const cv::Mat board = checkerboard(size.width, size.height, 3);
        QVERIFY(searchHasSameBits(board, moved(board, 0, 1), board));
    }
}

void tst_shift_bits::manyTinyPictures_firstOfEqualPeaksCounts()
{
    // So small that many peaks are exactly equal, in every pair of quarters of the surface.
    for (const cv::Size& size : { cv::Size(4, 4), cv::Size(8, 4), cv::Size(4, 6), cv::Size(3, 4) }) {
        for (std::uint64_t seed = 0; seed < 500; ++seed) {
            const cv::Mat reference = randomBlackAndWhite(size.width, size.height, 3 * seed);
            const cv::Mat gf = randomBlackAndWhite(size.width, size.height, 3 * seed + 1);
            const cv::Mat rf = binary(random(size.width, size.height, 3 * seed + 2), 220);
            QVERIFY2(measurementHasSameBits(reference, gf, rf, 15, 15),
                QByteArray::number(static_cast<qulonglong>(seed)));
        }
    }
}

void tst_shift_bits::repeatedBinaryImages()
{
    // Grey levels that leave one, two or all of the seven binary images apart from each other.
    const cv::Mat shape = binary(cells(200, 150, 13), 40);
    for (const int level : { 10, 15, 16, 25, 26, 45, 46, 255 }) {
        cv::Mat twoLevels = shape.clone();
        twoLevels.setTo(level, random(200, 150, 14) < 20);
        QVERIFY(searchHasSameBits(shape, twoLevels, moved(twoLevels, 2, 2)));
    }
}

void tst_shift_bits::repeatedBinaryImages_haveTheirResultsToo()
{
    const cv::Mat reference = binary(cells(90, 80, 21), 40);
    const cv::Mat gf = moved(reference, 2, 3);
    const cv::Mat rf = random(90, 80, 22);
    const std::vector<int> thresholds { 15, 15, 20, 254, 255, 300 };
    const auto results
        = measureShifts(reference, { ShiftChannel { gf, thresholds }, ShiftChannel { rf, thresholds } });
    for (std::size_t i = 0; i < thresholds.size(); ++i) {
        const auto expected = pixelShift_literal::measure(reference, gf, rf, thresholds[i], thresholds[i]);
        for (std::size_t c = 0; c < expected.size(); ++c) {
            QVERIFY(sameBits(results[c][i].shift.x, expected[c].shift.x));
            QVERIFY(sameBits(results[c][i].shift.y, expected[c].shift.y));
            QVERIFY(sameBits(results[c][i].response, expected[c].response));
        }
    }
}

void tst_shift_bits::partsOfLargerMatrices()
{
    const cv::Mat large = cells(400, 300, 15);
    const cv::Rect part(33, 20, 201, 150);
    QVERIFY(searchHasSameBits(
        binary(large, 40)(part), large(part + cv::Point(3, 2)), large(part - cv::Point(5, 1))));
}

void tst_shift_bits::singleRowOrColumn_actsAsTheLibrary()
{
    const cv::Mat row = random(64, 1, 16);
    QVERIFY(searchHasSameBits(binary(row, 100), row, row));

    const cv::Mat column = random(1, 64, 17);
    QVERIFY_EXCEPTION_THROWN(searchByLibrary(column, { column, column }), cv::Exception);
    QVERIFY_EXCEPTION_THROWN(search(column, column, column), cv::Exception);

    const cv::Mat pixel = uniform(1, 1, 200);
    QVERIFY(searchHasSameBits(pixel, pixel, pixel));
}

void tst_shift_bits::emptyImages_endInTheLibrarysException()
{
    QVERIFY_EXCEPTION_THROWN(search(cv::Mat(), cv::Mat(), cv::Mat()), cv::Exception);
}

void tst_shift_bits::inputsAreNotChanged()
{
    const cv::Mat reference = binary(cells(120, 90, 18), 40);
    const cv::Mat gf = cells(120, 90, 19);
    const cv::Mat rf = cells(120, 90, 20);
    const cv::Mat referenceBefore = reference.clone();
    const cv::Mat gfBefore = gf.clone();
    const cv::Mat rfBefore = rf.clone();
    search(reference, gf, rf);
    QCOMPARE(cv::norm(reference, referenceBefore, cv::NORM_INF), 0.0);
    QCOMPARE(cv::norm(gf, gfBefore, cv::NORM_INF), 0.0);
    QCOMPARE(cv::norm(rf, rfBefore, cv::NORM_INF), 0.0);
}

QTEST_APPLESS_MAIN(tst_shift_bits)
#include "tst_shift_bits.moc"
