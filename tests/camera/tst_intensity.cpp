#include "camera/framedelivery.h"

#include "tests/camera/FakeSource.h"
#include "tests/camera/cell_pictures.h"
#include "tests/camera/literal_intensity.h"
#include "tests/support/LogCapture.h"

#include <opencv2/imgproc.hpp>

#include <QSignalSpy>
#include <QTest>

#include <cstdint>
#include <cstring>
#include <numeric>
#include <vector>

namespace {

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

bool sameBits(double left, double right)
{
    return bitsOf(left) == bitsOf(right);
}

/// A name and a number as the log has them.
QString logLine(const char* name, double value)
{
    return QString("%1 %2").arg(name).arg(value);
}

/// Draws a bright rectangle, and moves the cursor to where the next one goes.
void putRectangle(cv::Mat& picture, cv::Point& cursor, cv::Size size, int grey)
{
    picture(cv::Rect(cursor, size)).setTo(cv::Scalar(grey));
    cursor.x += 60;
}

} // namespace

/// The intensity measurement on drawn pictures with known answers, and bit by bit against the plain calls.
class tst_intensity : public QObject {
    Q_OBJECT

private slots:
    void objectCount_decidesWhetherThereIsAResult_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("object");
        QTest::newRow("nine") << 9 << 0.0;
        QTest::newRow("ten") << 10 << 180.0;
        QTest::newRow("a thousand") << 1000 << 180.0;
        QTest::newRow("a thousand and one") << 1001 << 0.0;
    }
    void objectCount_decidesWhetherThereIsAResult()
    {
        QFETCH(int, count);
        FakeSource source;
        cv::Mat picture = pictures::squares(count, 12, 180, 30);
        QTEST(source.IntensityPerObject(picture, 15), "object");
    }

    void background_isWhatLiesOutsideOfTheBlankedObjects()
    {
        FakeSource source;
        cv::Mat picture = pictures::ground(30);
        cv::Point cursor(20, 500);
        for (int i = 0; i < 10; ++i)
            putRectangle(picture, cursor, { 12, 12 }, 180);
        // A square of 12 px has lost its corners to the median: its circle goes through (0, 1) and (11, 10)
        // and has a radius of half of sqrt(121 + 81), 7.1; with the margin of 3 px, cut, that is 10.
        cv::Mat circle = pictures::ground(0);
        cv::circle(circle, { 100, 100 }, 10, cv::Scalar(1), cv::FILLED);
        const double blanked = 10.0 * cv::sum(circle)[0];
        QCOMPARE(source.IntensityBackground(picture, 15), 30.0 * (1228800.0 - blanked) / 1228800.0);
    }

    void background_withNineObjects_isZero()
    {
        FakeSource source;
        cv::Mat nine = pictures::squares(9, 12, 180, 30);
        cv::Mat ten = pictures::squares(10, 12, 180, 30);
        QCOMPARE(source.IntensityBackground(nine, 15), 0.0);
        QVERIFY(source.IntensityBackground(ten, 15) > 0.0);
    }

    void singleBrightPixels_areNoObjects()
    {
        FakeSource source;
        cv::Mat picture = pictures::squares(9, 12, 180, 30);
        for (int i = 0; i < 50; ++i)
            picture.at<uchar>(900, 20 + i * 20) = 255;
        QCOMPARE(source.IntensityPerObject(picture, 15), 0.0);
    }

    void objectsAtTheFramesEdge_count()
    {
        FakeSource source;
        cv::Mat picture = pictures::squares(9, 12, 180, 30);
        picture(cv::Rect(1268, 948, 12, 12)).setTo(cv::Scalar(180));
        QCOMPARE(source.IntensityPerObject(picture, 15), 180.0);
    }

    void holes_belongToTheirObject()
    {
        // The outline is filled: ground inside of a ring counts.
        FakeSource source;
        cv::Mat picture = pictures::ground(30);
        for (int i = 0; i < 10; ++i)
            cv::rectangle(picture, cv::Rect(20 + i * 100, 100, 20, 20), cv::Scalar(180), 4);
        const double result = source.IntensityPerObject(picture, 15);
        QVERIFY(result < 180.0);
        QVERIFY(sameBits(result, literal::intensityPerObject(picture, 15)));
    }

    void largeObjects_arePassedOver()
    {
        FakeSource source;
        cv::Mat picture = pictures::squares(12, 12, 180, 30);
        picture(cv::Rect(600, 600, 60, 60)).setTo(cv::Scalar(90));
        QCOMPARE(source.IntensityPerObject(picture, 15), 180.0);
    }

    void objectAtExactlyOneAndAQuarterOfTheMeanRadius_isLeftOut()
    {
        // Rectangles whose radii give such a mean: eleven of 17 by 7, seven of 22 by 11 and one of 21 by 16.
        // They are found from the lower right to the upper left, and the mean is summed up in that order.
        cv::Mat picture = pictures::ground(30);
        cv::Point cursor(20, 700);
        putRectangle(picture, cursor, { 21, 16 }, 190);
        cursor = { 20, 780 };
        for (int i = 0; i < 7; ++i)
            putRectangle(picture, cursor, { 22, 11 }, 200);
        cursor = { 20, 860 };
        for (int i = 0; i < 11; ++i)
            putRectangle(picture, cursor, { 17, 7 }, 200);

        cv::Mat work = picture - cv::Scalar(15);
        cv::medianBlur(work, work, 3);
        cv::threshold(work, work, 0, 255, cv::THRESH_OTSU);
        std::vector<std::vector<cv::Point>> contours;
        cv::findContours(work, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
        QCOMPARE(contours.size(), size_t(19));
        std::vector<float> radii;
        for (const auto& contour : contours) {
            cv::Point2f centre;
            radii.push_back(0.0F);
            cv::minEnclosingCircle(contour, centre, radii.back());
        }
        const float mean = std::accumulate(radii.begin(), radii.end(), 0.0F) / 19.0F;
        QVERIFY(1.25 * static_cast<double>(mean)
            == static_cast<double>(radii.back())); // the picture is the right one

        FakeSource source;
        QCOMPARE(source.IntensityPerObject(picture, 15), 200.0);
    }

    void offset_isTakenOffBeforeTheThreshold()
    {
        // Everything at or below the offset is one black: nothing stands out.
        FakeSource source;
        cv::Mat picture = pictures::squares(10, 12, 15, 5);
        QCOMPARE(source.IntensityPerObject(picture, 15), 0.0);
        QCOMPARE(source.IntensityPerObject(picture, 0), 15.0);
    }

    void builtAndLiteral_haveTheSameBits_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<unsigned>("seed");
        for (const int count : { 8, 12, 50, 300, 700, 1200, 2500 }) {
            for (unsigned seed = 1; seed <= 3; ++seed)
                QTest::addRow("%d cells, seed %u", count, seed) << count << seed;
        }
    }
    void builtAndLiteral_haveTheSameBits()
    {
        QFETCH(int, count);
        QFETCH(unsigned, seed);
        FakeSource source;
        cv::Mat picture = pictures::cells(count, seed);
        QVERIFY(sameBits(source.IntensityPerObject(picture, 15), literal::intensityPerObject(picture, 15)));
        QVERIFY(sameBits(source.IntensityBackground(picture, 15), literal::intensityBackground(picture, 15)));
    }

    void builtAndLiteral_haveTheSameBitsOnFlatAndRandomFrames()
    {
        FakeSource source;
        std::vector<cv::Mat> frames;
        for (const int grey : { 0, 14, 15, 16, 100, 255 })
            frames.push_back(pictures::ground(grey));
        cv::RNG random(7);
        cv::Mat noise(960, 1280, CV_8UC1);
        random.fill(noise, cv::RNG::UNIFORM, 0, 256);
        frames.push_back(noise);
        frames.push_back(pictures::squares(400, 12, 16, 15));
        for (cv::Mat& frame : frames) {
            QVERIFY(sameBits(source.IntensityPerObject(frame, 15), literal::intensityPerObject(frame, 15)));
            QVERIFY(sameBits(source.IntensityBackground(frame, 15), literal::intensityBackground(frame, 15)));
        }
    }

    void framesOfOtherShapes_giveWhatThePlainCallsGive()
    {
        FakeSource source;
        const cv::Mat whole = pictures::cells(600, 4);
        cv::Mat part = whole(cv::Rect(33, 21, 701, 511)); // odd size, not continuous
        QVERIFY(sameBits(source.IntensityPerObject(part, 15), literal::intensityPerObject(part, 15)));
        QVERIFY(sameBits(source.IntensityBackground(part, 15), literal::intensityBackground(part, 15)));
        cv::Mat colour(100, 100, CV_8UC3, cv::Scalar(1, 2, 3));
        QVERIFY_EXCEPTION_THROWN(literal::intensityPerObject(colour, 15), cv::Exception);
        QVERIFY_EXCEPTION_THROWN(source.IntensityPerObject(colour, 15), cv::Exception);
    }

    void measuring_leavesTheFrameAlone()
    {
        FakeSource source;
        cv::Mat picture = pictures::cells(300, 2);
        const cv::Mat before = picture.clone();
        source.IntensityPerObject(picture, 15);
        source.IntensityBackground(picture, 15);
        QCOMPARE(cv::norm(picture, before, cv::NORM_INF), 0.0);
    }

    void update_emitsAverageObjectAndBackground()
    {
        FakeSource source;
        source.current = pictures::cells(300, 9);
        QSignalSpy spy(&source, &FrameDelivery::sig_IntensityUpdate);
        LogCapture log;
        source.IntensityUpdate();
        QCOMPARE(spy.count(), 1);
        const QList<QVariant> values = spy.takeFirst();
        QCOMPARE(values[0].toDouble(), cv::sum(source.current)[0] / 1228800.0);
        QVERIFY(sameBits(values[1].toDouble(), literal::intensityPerObject(source.current, 15)));
        QVERIFY(sameBits(values[2].toDouble(), literal::intensityBackground(source.current, 15)));
        QCOMPARE(log.lines().filter("intensity_"),
            QStringList({ logLine("intensity_Ave:", values[0].toDouble()),
                logLine("intensity_Object:", values[1].toDouble()),
                logLine("intensity_Background:", values[2].toDouble()) }));
    }

    void update_withoutAFrameEver_emitsOnceWithAverageZero()
    {
        FakeSource source;
        QSignalSpy spy(&source, &FrameDelivery::sig_IntensityUpdate);
        source.IntensityUpdate();
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first(), (QList<QVariant> { 0.0, 0.0, 0.0 }));
    }

    void update_withoutANewFrame_measuresTheLastOneAgain()
    {
        FakeSource source;
        source.current = pictures::squares(10, 12, 180, 30);
        QSignalSpy spy(&source, &FrameDelivery::sig_IntensityUpdate);
        source.IntensityUpdate();
        source.current.release();
        source.IntensityUpdate();
        QCOMPARE(spy.count(), 2);
        QVERIFY(spy[0][0].toDouble() > 0.0);
        QCOMPARE(spy[1], spy[0]);
    }
};

QTEST_GUILESS_MAIN(tst_intensity)
#include "tst_intensity.moc"
