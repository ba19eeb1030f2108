#include "tests/views/picture.h"
#include "views/Navigation.h"

#include <QTest>

class tst_Navigation : public QObject {
    Q_OBJECT

private slots:
    void untouched_hasEmptyRectangles()
    {
        const Navigation navigation;
        QCOMPARE(navigation.frameRect(), QRect(QPoint(0, 0), QPoint(-1, -1)));
        QCOMPARE(navigation.viewRect(), QRect(QPoint(0, 0), QPoint(-1, -1)));
    }

    void navigationSize_keepsTheTopLeftCorner()
    {
        Navigation navigation;
        navigation.setNavigationSize(100, 67);
        QCOMPARE(navigation.frameRect(), QRect(0, 0, 100, 67));
    }

    /// Worked out by hand: left = x W / 1280, right = left + W - ((1280 - display) W / 1280) - 1, each
    /// division truncated; the same with 960 for the rows.
    void position_isScaledWithTruncatingDivisions_data()
    {
        QTest::addColumn<QSize>("overview");
        QTest::addColumn<QSize>("display");
        QTest::addColumn<QPoint>("position");
        QTest::addColumn<QRect>("view");
        const auto row = [](const char* name, QSize overview, QSize display, QPoint position, QPoint topLeft,
                             QPoint bottomRight) {
            QTest::newRow(name) << overview << display << position << QRect(topLeft, bottomRight);
        };
        const QSize live(100, 67);
        // 740 * 100 / 1280 = 57, 555 * 67 / 960 = 38
        row("1:1 at the top left", live, { 540, 405 }, { 0, 0 }, { 0, 0 }, { 42, 28 });
        row("1:1 at the bottom right", live, { 540, 405 }, { 740, 555 }, { 57, 38 }, { 99, 66 });
        row("1:1 between", live, { 540, 405 }, { 100, 100 }, { 7, 6 }, { 49, 34 });
        // 1010 * 100 / 1280 = 78, (960 - 202) * 67 / 960 = 52
        row("twice at the top left", live, { 270, 202 }, { 0, 0 }, { 0, 0 }, { 21, 14 });
        row("twice at the bottom right", live, { 270, 202 }, { 1010, 757 }, { 78, 52 }, { 99, 66 });
        // 1145 * 100 / 1280 = 89, (960 - 101) * 67 / 960 = 59
        row("four times at the top left", live, { 135, 101 }, { 0, 0 }, { 0, 0 }, { 10, 7 });
        row("four times, one step in", live, { 135, 101 }, { 13, 15 }, { 1, 1 }, { 11, 8 });
        // 740 * 100 / 1280 = 57, 528 * 75 / 960 = 41
        row("still picture at the top left", { 100, 75 }, { 540, 432 }, { 0, 0 }, { 0, 0 }, { 42, 33 });
        row("window larger than the frame", live, { 2560, 1920 }, { 0, 0 }, { 0, 0 }, { 199, 133 });
    }
    void position_isScaledWithTruncatingDivisions()
    {
        QFETCH(QSize, overview);
        QFETCH(QSize, display);
        QFETCH(QPoint, position);
        Navigation navigation;
        navigation.setNavigationSize(overview.width(), overview.height());
        navigation.setDisplaySize(display.width(), display.height());
        navigation.setImageSize(1280, 960);
        navigation.setNavigationPosition(position.x(), position.y());
        QTEST(navigation.viewRect(), "view");
        QCOMPARE(navigation.frameRect(), QRect(QPoint(), overview));
    }

    void frameWithoutPixels_leavesTheRectangle()
    {
        Navigation navigation;
        navigation.setNavigationSize(100, 67);
        navigation.setImageSize(0, 960);
        navigation.setNavigationPosition(10, 10);
        navigation.setImageSize(1280, 0);
        navigation.setNavigationPosition(10, 10);
        QCOMPARE(navigation.viewRect(), QRect());
    }

    void drawing_outlinesBothRectanglesInTheColour()
    {
        Navigation navigation;
        navigation.setNavigationColor(255, 255, 0);
        navigation.setNavigationSize(100, 67);
        navigation.setDisplaySize(270, 202);
        navigation.setImageSize(1280, 960);
        navigation.setNavigationPosition(640, 480);

        QImage image(120, 80, QImage::Format_RGB32);
        image.fill(Qt::black);
        {
            QPainter painter(&image);
            navigation.draw(painter);
        }
        QImage expected(120, 80, QImage::Format_RGB32);
        expected.fill(Qt::black);
        // A drawn rectangle ends one pixel right of and below its last column and row.
        picture::outline(expected, 0, 0, 100, 67, qRgb(255, 255, 0));
        // 640 * 100 / 1280 = 50, 480 * 67 / 960 = 33; 50 + 21 = 71, 33 + 14 = 47
        picture::outline(expected, 50, 33, 72, 48, qRgb(255, 255, 0));
        QCOMPARE(picture::difference(image, expected), QString());
    }
};

QTEST_MAIN(tst_Navigation)
#include "tst_navigation.moc"
