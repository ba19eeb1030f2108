#include "tests/views/TargetFrame.h"
#include "views/targetmark.h"

#include <QTest>

namespace {

targetmark::Contours contoursOf(TargetFrame& frame, const cv::Rect& window)
{
    return targetmark::darkContours(cv::Mat(frame.height(), frame.width(), CV_8UC1, frame.data()), window);
}

} // namespace

class tst_targetmark : public QObject {
    Q_OBJECT

private slots:
    /// Position, first pixel and number of pixels along one axis of 1280 or 960 pixels.
    void searchWindow_staysInsideTheFrame_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("left");
        QTest::addColumn<int>("width");
        QTest::newRow("middle") << 640 << 620 << 40;
        QTest::newRow("first pixel") << 0 << 0 << 20;
        QTest::newRow("19 from the first") << 19 << 0 << 39;
        QTest::newRow("20 from the first") << 20 << 0 << 40;
        QTest::newRow("21 from the first") << 21 << 1 << 40;
        QTest::newRow("20 from the last") << 1259 << 1239 << 40;
        QTest::newRow("19 from the last") << 1260 << 1240 << 40;
        QTest::newRow("18 from the last") << 1261 << 1241 << 39;
        QTest::newRow("last pixel") << 1279 << 1259 << 21;
        QTest::newRow("just outside, before") << -1 << 0 << 19;
        QTest::newRow("last one with a window, before") << -19 << 0 << 1;
        QTest::newRow("just outside, behind") << 1280 << 1260 << 20;
        QTest::newRow("last one with a window, behind") << 1299 << 1279 << 1;
    }
    void searchWindow_staysInsideTheFrame()
    {
        QFETCH(int, x);
        QFETCH(int, left);
        QFETCH(int, width);
        const cv::Rect across = targetmark::searchWindow({ x, 480 }, { 1280, 960 });
        QVERIFY(across == cv::Rect(left, 460, width, 40));
        const cv::Rect along = targetmark::searchWindow({ 480, x }, { 960, 1280 });
        QVERIFY(along == cv::Rect(460, left, 40, width));
    }

    void searchWindow_farOutsideIsEmpty_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::newRow("left") << -20 << 480;
        QTest::newRow("far left") << -5000 << 480;
        QTest::newRow("right") << 1300 << 480;
        QTest::newRow("above") << 640 << -20;
        QTest::newRow("below") << 640 << 980;
        QTest::newRow("both") << 9000 << -9000;
    }
    void searchWindow_farOutsideIsEmpty()
    {
        QFETCH(int, x);
        QFETCH(int, y);
        const cv::Rect window = targetmark::searchWindow({ x, y }, { 1280, 960 });
        QVERIFY(window.empty());
        TargetFrame frame(1280, 960);
        QVERIFY(contoursOf(frame.mark(0, 0, 1280), window).empty());
    }

    void searchWindow_ofATinyFrameIsTheFrame()
    {
        QVERIFY(targetmark::searchWindow({ 5, 5 }, { 10, 8 }) == cv::Rect(0, 0, 10, 8));
    }

    void greyUpTo95_isDark()
    {
        const cv::Rect window(620, 460, 40, 40);
        TargetFrame dark(1280, 960);
        QCOMPARE(contoursOf(dark.mark(635, 475, 10, 95), window).size(), std::size_t(1));
        TargetFrame bright(1280, 960);
        QCOMPARE(contoursOf(bright.mark(635, 475, 10, 96), window).size(), std::size_t(0));
    }

    void dirtOfFewPixels_isNoMark()
    {
        TargetFrame frame(1280, 960);
        frame.mark(635, 475, 10).mark(625, 465, 1).mark(650, 465, 2);
        QCOMPARE(contoursOf(frame, { 620, 460, 40, 40 }).size(), std::size_t(1));
    }

    void ring_isOneMark()
    {
        TargetFrame frame(1280, 960);
        frame.mark(630, 470, 20).mark(636, 476, 8, TargetFrame::kBright);
        QCOMPARE(contoursOf(frame, { 620, 460, 40, 40 }).size(), std::size_t(1));
    }

    /// The filter widens a mark by two pixels. On the whole frame it does so across the edge of the window,
    /// too.
    void markJustOutsideTheWindow_reachesIn()
    {
        TargetFrame frame(1280, 960);
        frame.mark(600, 470, 20); // last column 619
        QCOMPARE(contoursOf(frame, { 620, 460, 40, 40 }).size(), std::size_t(1));
        QCOMPARE(contoursOf(frame, { 621, 460, 40, 40 }).size(), std::size_t(1));
        QCOMPARE(contoursOf(frame, { 622, 460, 40, 40 }).size(), std::size_t(0));
    }

    void center_isTruncatedInTheFrame()
    {
        // The circle's centre is (7.5, 3) in the window.
        const std::vector<cv::Point> contour { { 0, 3 }, { 15, 3 } };
        QVERIFY(targetmark::center(contour, { 0, 0, 40, 40 }) == cv::Point(7, 3));
        QVERIFY(targetmark::center(contour, { 100, 200, 40, 40 }) == cv::Point(107, 203));
    }
};

QTEST_APPLESS_MAIN(tst_targetmark)
#include "tst_targetmark.moc"
