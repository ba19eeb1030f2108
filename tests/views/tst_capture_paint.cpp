#include "tests/views/StillView.h"

#include <QTest>

namespace {

constexpr QRgb kGreen = 0xff00ff00;

/// The last corner of the overview of a frame of 1280 by 960 pixels.
constexpr QPoint kOverview(100, 75);

/// What the widget shows of picture::frame() of these sides, without the overview.
QImage enlarged(int scale, QPoint first, QSize sides = { 1280, 960 })
{
    return picture::enlarged(StillView::kSize, scale, first, sides);
}

/// The part of the overview that is on show, from its first to its last painted column and row.
QRect part(int left, int top, int right, int bottom)
{
    return { QPoint(left, top), QPoint(right, bottom) };
}

} // namespace

/// The whole painted widget, compared with what must stand there.
class tst_CapturePaint : public QObject {
    Q_OBJECT

private slots:
    void beforeTheFirstFrame_isBlackWithAnEmptyOverview()
    {
        StillView still;
        QImage expected = picture::plain(StillView::kSize, picture::grey(0));
        picture::outline(expected, 0, 0, 100, 80, picture::kYellow);
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void firstFrame_isShown1To1AndCopied()
    {
        StillView still;
        still.showFrame();
        QImage expected = enlarged(1, { 0, 0 });
        // 740 * 100 / 1280 = 57, 528 * 75 / 960 = 41: the last cells are 42 and 33, drawn one further
        picture::addOverview(expected, kOverview, part(0, 0, 43, 34));
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void zoomAndPlace_areShownWithTheirOverview_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QPoint>("first");
        QTest::addColumn<QRect>("shown");
        QTest::newRow("1") << 1 << QPoint(0, 0) << part(0, 0, 43, 34);
        // display 270 x 216: 1010 * 100 / 1280 = 78, 744 * 75 / 960 = 58
        QTest::newRow("2") << 2 << QPoint(0, 0) << part(0, 0, 22, 17);
        // display 135 x 108: 1145 * 100 / 1280 = 89, 852 * 75 / 960 = 66
        QTest::newRow("4") << 4 << QPoint(0, 0) << part(0, 0, 11, 9);
        QTest::newRow("1, last corner") << 1 << QPoint(740, 528) << part(57, 41, 100, 75);
        QTest::newRow("2, last corner") << 2 << QPoint(1010, 744) << part(78, 58, 100, 75);
        QTest::newRow("4, last corner") << 4 << QPoint(1145, 852) << part(89, 66, 100, 75);
    }
    void zoomAndPlace_areShownWithTheirOverview()
    {
        QFETCH(int, scale);
        QFETCH(QPoint, first);
        QFETCH(QRect, shown);
        StillView still;
        still.showFrame();
        still.widget.setScale(scale);
        still.drag({ 0, 0 }, -first);
        QImage expected = enlarged(scale, first);
        picture::addOverview(expected, kOverview, shown);
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void colouredFrame_isShownInItsColours()
    {
        StillView still;
        TargetFrame frame(1280, 960, 3);
        frame.mark(200, 200, 10, 11, 0).mark(200, 200, 10, 22, 1).mark(200, 200, 10, 33, 2);
        still.show(frame);
        QCOMPARE(still.painted().pixel(205, 205), qRgb(11, 22, 33));
        QCOMPARE(still.painted().pixel(210, 205), qRgb(170, 170, 170));
    }

    void anotherSize_isShownWithItsOverview_data()
    {
        QTest::addColumn<QSize>("sides");
        QTest::addColumn<QPoint>("last");
        QTest::addColumn<QRect>("shown");
        // 641 / 12.8 = 50.07, 483 / 12.8 = 37.7; 101 * 50 / 641 = 7, 51 * 37 / 483 = 3
        QTest::newRow("odd sides are not skewed") << QSize(641, 483) << QPoint(50, 37) << part(0, 0, 43, 34);
        // (320 - 540) * 25 / 320 = -17, (240 - 432) * 18 / 240 = -14
        QTest::newRow("smaller than the widget leaves the rest")
            << QSize(320, 240) << QPoint(25, 18) << part(0, 0, 42, 32);
    }
    void anotherSize_isShownWithItsOverview()
    {
        QFETCH(QSize, sides);
        QFETCH(QPoint, last);
        QFETCH(QRect, shown);
        StillView still;
        still.showFrame(sides.width(), sides.height());
        QImage expected = enlarged(1, { 0, 0 }, sides);
        picture::addOverview(expected, last, shown);
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void colouredFrameOfOddWidth_isNotSkewed()
    {
        StillView still;
        TargetFrame coloured(641, 483, 3);
        still.show(coloured.mark(300, 300, 2, 0));
        QCOMPARE(still.painted().pixel(300, 300), qRgb(0, 0, 0));
        QCOMPARE(still.painted().pixel(299, 300), qRgb(170, 170, 170));
    }

    /// Of two bytes a pixel the first half of the bytes is shown, a byte a pixel.
    void otherDepths_areShownAsGreyBytes()
    {
        StillView still;
        std::vector<unsigned char> bytes = picture::frame(1280, 2 * 960);
        still.widget.setImageData(bytes.data(), 1280, 960, 16);
        QImage expected = enlarged(1, { 0, 0 });
        picture::addOverview(expected, kOverview, part(0, 0, 43, 34));
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void anotherSizeAndBack_isShownWhole()
    {
        StillView still;
        still.showFrame();
        const QImage before = still.painted();
        still.showFrame(640, 480);
        QVERIFY(still.painted() != before);
        still.showFrame();
        QCOMPARE(still.differenceFrom(before), QString());
    }

    void anotherSize_keepsTheZoomAndGoesToTheTopLeft()
    {
        StillView still;
        still.showFrame();
        still.widget.setScale(2.0);
        still.drag({ 300, 300 }, { 100, 100 });
        still.showFrame(1920, 1440);
        QImage expected = enlarged(2, { 0, 0 }, { 1920, 1440 });
        // (1920 - 270) * 150 / 1920 = 128, (1440 - 216) * 112 / 1440 = 95
        picture::addOverview(expected, { 150, 112 }, part(0, 0, 22, 17));
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void frameOfTheSameSize_resetsTheZoomAndKeepsThePlace()
    {
        StillView still;
        still.showFrame();
        still.widget.setScale(2.0);
        still.drag({ 300, 300 }, { 100, 150 });
        still.showFrame();
        QImage expected = enlarged(1, { 200, 150 });
        // 200 * 100 / 1280 = 15, 150 * 75 / 960 = 11
        picture::addOverview(expected, kOverview, part(15, 11, 58, 45));
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void otherBits_resetTheZoom()
    {
        StillView still;
        still.showFrame();
        still.widget.setScale(4.0);
        TargetFrame coloured(1280, 960, 3);
        still.show(coloured.mark(200, 200, 2, 0));
        QCOMPARE(still.painted().pixel(200, 200), qRgb(0, 0, 0));
        QCOMPARE(still.painted().pixel(202, 200), qRgb(170, 170, 170));
        QCOMPARE(still.painted().pixel(43, 34), picture::kYellow);
    }

    void frameWithoutPixels_changesNothing()
    {
        StillView still;
        still.showFrame();
        const QImage before = still.painted();
        unsigned char byte = 0;
        still.widget.setImageData(nullptr, 1280, 960, 8);
        still.widget.setImageData(&byte, 0, 960, 8);
        still.widget.setImageData(&byte, 1280, -1, 8);
        still.widget.setImageData(&byte, 1, 1, 1);
        QCOMPARE(still.painted(), before);
    }

    void searchPosition_isShownAsAGreenSquareAtEachZoom_data()
    {
        QTest::addColumn<double>("scale");
        QTest::newRow("1") << 1.0;
        QTest::newRow("2") << 2.0;
        QTest::newRow("4") << 4.0;
    }
    void searchPosition_isShownAsAGreenSquareAtEachZoom()
    {
        QFETCH(double, scale);
        StillView still;
        still.showFrame();
        still.widget.setScale(scale);
        still.drag({ 300, 300 }, { 250, 260 });
        QImage expected = still.painted();
        still.targetAt({ 300, 200 });
        picture::outline(expected, 280, 180, 319, 219, kGreen);
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void searchPosition_staysWithTheFrame()
    {
        StillView still;
        still.showFrame();
        still.widget.setScale(4.0);
        still.drag({ 0, 0 }, { -5000, -5000 });
        still.targetAt({ 100, 150 });
        // The view goes from (1145, 852) to (1010, 744), and shows the position so much further on.
        still.widget.setScale(2.0);
        QImage expected = enlarged(2, { 1010, 744 });
        picture::addOverview(expected, kOverview, part(78, 58, 100, 75));
        picture::outline(expected, 235 - 20, 258 - 20, 235 + 19, 258 + 19, kGreen);
        QCOMPARE(still.differenceFrom(expected), QString());
    }

    void targetingMode_showsNoSquareBeforeTheFirstClick()
    {
        StillView still;
        still.showFrame();
        const QImage before = still.painted();
        // A click of before does not count.
        still.mouse(QEvent::MouseButtonPress, { 300, 200 });
        still.widget.setTargetingMode(true);
        QCOMPARE(still.painted(), before);
        still.mouse(QEvent::MouseButtonPress, { 300, 200 });
        QVERIFY(still.painted() != before);
        still.widget.setTargetingMode(true);
        QCOMPARE(still.painted(), before);
    }
};

QTEST_MAIN(tst_CapturePaint)
#include "tst_capture_paint.moc"
