#include "tests/views/StillView.h"

#include <QTest>

namespace {

constexpr QRgb YELLOW = 0xffffff00;
constexpr QRgb GREEN = 0xff00ff00;

// A part of picture::frame() of these sides, enlarged, as the widget shows it; beyond it nothing is painted.
QImage enlarged(int scale, int offsetX, int offsetY, int width = 1280, int height = 960)
{
    QImage image(540, 432, QImage::Format_RGB32);
    image.fill(picture::UNPAINTED);
    for (int y = 0; y < 432; ++y)
        for (int x = 0; x < 540; ++x) {
            const int column = offsetX + x / scale;
            const int row = offsetY + y / scale;
            if (column < width && row < height)
                image.setPixel(x, y, picture::grey(picture::greyAt(column, row)));
        }
    return image;
}

void showFrame(StillView& still, int width = 1280, int height = 960)
{
    std::vector<unsigned char> frame = picture::frame(width, height);
    still.widget.setImageData(frame.data(), width, height, 8);
}

} // namespace

// The whole painted widget, compared with what must stand there.
class tst_CapturePaint : public QObject {
    Q_OBJECT

private slots:
    void beforeTheFirstFrame_isBlackWithAnEmptyOverview()
    {
        StillView still;
        QImage expected(540, 432, QImage::Format_RGB32);
        expected.fill(Qt::black);
        picture::outline(expected, 0, 0, 100, 80, YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void firstFrame_isShown1To1AndCopied()
    {
        StillView still;
        showFrame(still); // the caller's bytes are gone after it
        QImage expected = enlarged(1, 0, 0);
        picture::outline(expected, 0, 0, 100, 75, YELLOW);
        // 740 * 100 / 1280 = 57, 528 * 75 / 960 = 41: the last cells are 42 and 33, drawn one further
        picture::outline(expected, 0, 0, 43, 34, YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void zoom_showsEachPixelSoManyTimes_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QPoint>("overview"); // last painted column and row of the window
        QTest::newRow("1") << 1 << QPoint(43, 34);
        // display 270 x 216: 1010 * 100 / 1280 = 78, 744 * 75 / 960 = 58
        QTest::newRow("2") << 2 << QPoint(22, 17);
        // display 135 x 108: 1145 * 100 / 1280 = 89, 852 * 75 / 960 = 66
        QTest::newRow("4") << 4 << QPoint(11, 9);
    }
    void zoom_showsEachPixelSoManyTimes()
    {
        QFETCH(int, scale);
        QFETCH(QPoint, overview);
        StillView still;
        showFrame(still);
        still.widget.setScale(scale);
        QImage expected = enlarged(scale, 0, 0);
        picture::outline(expected, 0, 0, 100, 75, YELLOW);
        picture::outline(expected, 0, 0, overview.x(), overview.y(), YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void lastCornerOfTheFrame_isShownAtEachZoom_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QPoint>("offset");
        QTest::addColumn<QRect>("overview"); // left, top and the last painted column and row
        QTest::newRow("1") << 1 << QPoint(740, 528) << QRect(QPoint(57, 41), QPoint(100, 75));
        QTest::newRow("2") << 2 << QPoint(1010, 744) << QRect(QPoint(78, 58), QPoint(100, 75));
        QTest::newRow("4") << 4 << QPoint(1145, 852) << QRect(QPoint(89, 66), QPoint(100, 75));
    }
    void lastCornerOfTheFrame_isShownAtEachZoom()
    {
        QFETCH(int, scale);
        QFETCH(QPoint, offset);
        QFETCH(QRect, overview);
        StillView still;
        showFrame(still);
        still.widget.setScale(scale);
        still.drag({ 0, 0 }, { -5000, -5000 });
        QImage expected = enlarged(scale, offset.x(), offset.y());
        picture::outline(expected, 0, 0, 100, 75, YELLOW);
        picture::outline(
            expected, overview.left(), overview.top(), overview.right(), overview.bottom(), YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
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

    void frameOfOddWidth_isNotSkewed()
    {
        StillView still;
        showFrame(still, 641, 483);
        QImage expected = enlarged(1, 0, 0, 641, 483);
        // 641 / 12.8 = 50.07, 483 / 12.8 = 37.7
        picture::outline(expected, 0, 0, 50, 37, YELLOW);
        // 101 * 50 / 641 = 7, 51 * 37 / 483 = 3
        picture::outline(expected, 0, 0, 43, 34, YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());

        TargetFrame coloured(641, 483, 3);
        still.show(coloured.mark(300, 300, 2, 0));
        QCOMPARE(still.painted().pixel(300, 300), qRgb(0, 0, 0));
        QCOMPARE(still.painted().pixel(299, 300), qRgb(170, 170, 170));
    }

    void frameSmallerThanTheWidget_leavesTheRest()
    {
        StillView still;
        showFrame(still, 320, 240);
        QImage expected = enlarged(1, 0, 0, 320, 240);
        picture::outline(expected, 0, 0, 25, 18, YELLOW);
        // (320 - 540) * 25 / 320 = -17, (240 - 432) * 18 / 240 = -14
        picture::outline(expected, 0, 0, 42, 32, YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void anotherSizeAndBack_isShownWhole()
    {
        StillView still;
        showFrame(still);
        const QImage before = still.painted();
        showFrame(still, 640, 480);
        QVERIFY(still.painted() != before);
        showFrame(still);
        QCOMPARE(picture::difference(still.painted(), before), QString());
    }

    void anotherSize_keepsTheZoomAndGoesToTheTopLeft()
    {
        StillView still;
        showFrame(still);
        still.widget.setScale(2.0);
        still.drag({ 300, 300 }, { 100, 100 });
        showFrame(still, 1920, 1440);
        QImage expected = enlarged(2, 0, 0, 1920, 1440);
        picture::outline(expected, 0, 0, 150, 112, YELLOW);
        // (1920 - 270) * 150 / 1920 = 128, (1440 - 216) * 112 / 1440 = 95
        picture::outline(expected, 0, 0, 22, 17, YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void frameOfTheSameSize_resetsTheZoomAndKeepsThePlace()
    {
        StillView still;
        showFrame(still);
        still.widget.setScale(2.0);
        still.drag({ 300, 300 }, { 100, 150 });
        showFrame(still);
        QImage expected = enlarged(1, 200, 150);
        picture::outline(expected, 0, 0, 100, 75, YELLOW);
        // 200 * 100 / 1280 = 15, 150 * 75 / 960 = 11
        picture::outline(expected, 15, 11, 58, 45, YELLOW);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void otherBits_resetTheZoom()
    {
        StillView still;
        showFrame(still);
        still.widget.setScale(4.0);
        TargetFrame coloured(1280, 960, 3);
        still.show(coloured.mark(200, 200, 2, 0));
        QCOMPARE(still.painted().pixel(200, 200), qRgb(0, 0, 0));
        QCOMPARE(still.painted().pixel(202, 200), qRgb(170, 170, 170));
        QCOMPARE(still.painted().pixel(43, 34), YELLOW);
    }

    void frameWithoutPixels_changesNothing()
    {
        StillView still;
        showFrame(still);
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
        showFrame(still);
        still.widget.setScale(scale);
        still.drag({ 300, 300 }, { 250, 260 });
        QImage expected = still.painted();
        still.widget.setTargetingMode(true);
        still.mouse(QEvent::MouseButtonPress, { 300, 200 });
        picture::outline(expected, 280, 180, 319, 219, GREEN);
        QCOMPARE(picture::difference(still.painted(), expected), QString());
    }

    void searchPosition_staysWithTheFrame()
    {
        StillView still;
        showFrame(still);
        still.widget.setTargetingMode(true);
        still.mouse(QEvent::MouseButtonPress, { 300, 200 });
        still.mouse(QEvent::MouseButtonRelease, { 300, 200 });
        still.widget.setTargetingMode(false);
        still.drag({ 300, 300 }, { 290, 280 });
        QVERIFY(still.painted().pixel(280, 180) != GREEN);
        // A frame of the same size leaves the place; targeting mode would forget the position.
        still.widget.setTargetingMode(true);
        QVERIFY(still.painted().pixel(270, 160) != GREEN);
    }

    void targetingMode_showsNoSquareBeforeTheFirstClick()
    {
        StillView still;
        showFrame(still);
        const QImage before = still.painted();
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
