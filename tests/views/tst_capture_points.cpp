#include "tests/views/StillView.h"

#include <opencv2/imgproc.hpp>

#include <QSignalSpy>
#include <QTest>

namespace {

// The signals of one widget.
struct Spies {
    explicit Spies(CAPTURE_ImageWidget& widget)
        : point(&widget, &CAPTURE_ImageWidget::sig_measure_point)
        , error(&widget, &CAPTURE_ImageWidget::sig_measure_error)
    {
    }
    QSignalSpy point;
    QSignalSpy error;
};

constexpr QRgb RED = 0xffff0000;

// The picture after a search: the grey frame with crosses and labels at the points.
QImage pictureWith(const QImage& grey, const QVector<QPair<QPoint, const char*>>& points)
{
    QImage image = grey.convertToFormat(QImage::Format_RGB888);
    for (const auto& [point, label] : points) {
        picture::horizontal(image, point.x() - 15, point.x() + 15, point.y(), RED);
        picture::vertical(image, point.x(), point.y() - 15, point.y() + 15, RED);
        cv::Mat pixels(image.height(), image.width(), CV_8UC3, image.bits(),
            static_cast<std::size_t>(image.bytesPerLine()));
        cv::putText(pixels, label, cv::Point(point.x() + 8, point.y() - 8), cv::FONT_HERSHEY_SIMPLEX, 0.35,
            cv::Scalar(0, 255, 255), 1, 8);
    }
    return image;
}

QImage greyImage(const TargetFrame& frame)
{
    QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
    const int green = frame.bits() == 24 ? 1 : 0;
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x)
            image.setPixel(x, y, picture::grey(frame.at(x, y, green)));
    return image;
}

} // namespace

// The search for the mark near a click.
class tst_CapturePoints : public QObject {
    Q_OBJECT

private slots:
    void markNearTheClick_isFoundEverywhere_data()
    {
        QTest::addColumn<QPoint>("mark"); // top left of a mark of 8 by 8 pixels
        QTest::addColumn<QPoint>("click");
        QTest::newRow("middle") << QPoint(640, 480) << QPoint(650, 478);
        QTest::newRow("left edge") << QPoint(6, 480) << QPoint(3, 490);
        QTest::newRow("right edge") << QPoint(1266, 480) << QPoint(1279, 480);
        QTest::newRow("top edge") << QPoint(640, 6) << QPoint(640, 0);
        QTest::newRow("bottom edge") << QPoint(640, 946) << QPoint(650, 959);
        QTest::newRow("top left corner") << QPoint(6, 6) << QPoint(1, 2);
        QTest::newRow("top right corner") << QPoint(1266, 6) << QPoint(1275, 4);
        QTest::newRow("bottom left corner") << QPoint(6, 946) << QPoint(0, 958);
        QTest::newRow("bottom right corner") << QPoint(1266, 946) << QPoint(1278, 958);
        QTest::newRow("19 from the left") << QPoint(30, 480) << QPoint(19, 480);
        QTest::newRow("20 from the left") << QPoint(30, 480) << QPoint(20, 480);
        QTest::newRow("19 from the bottom") << QPoint(640, 925) << QPoint(640, 940);
    }
    void markNearTheClick_isFoundEverywhere()
    {
        QFETCH(QPoint, mark);
        QFETCH(QPoint, click);
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(mark.x(), mark.y(), 8));
        still.target(click.x(), click.y());
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.error.size(), 0);
        QCOMPARE(spies.point.size(), 1);
        // The true centre lies 3.5 pixels on, and is truncated.
        QCOMPARE(spies.point.front(), (QVariantList { 0, mark.x() + 3, mark.y() + 3 }));
    }

    void emptyWindow_reportsNoCircle()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(700, 480, 8));
        still.target(640, 480);
        const QImage before = still.painted();
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.point.size(), 0);
        QCOMPARE(spies.error.size(), 1);
        QCOMPARE(spies.error.front().front().value<TargetingError>(), TARGETING_NO_CIRCLE);
        QCOMPARE(still.painted(), before);
    }

    void twoMarksInTheWindow_reportTooMany()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(625, 470, 8).mark(645, 470, 8));
        still.target(640, 480);
        const QImage before = still.painted();
        const Spies spies(still.widget);
        still.widget.setPoint(1);
        QCOMPARE(spies.point.size(), 0);
        QCOMPARE(spies.error.size(), 1);
        QCOMPARE(spies.error.front().front().value<TargetingError>(), TARGETING_TOO_MANY_CIRCLES);
        QCOMPARE(still.painted(), before);
    }

    // A mark of 20 by 20 pixels from (640, 600) on; the window ends at column 648. The filters take the
    // corner pixels and add two pixels all around: the part inside has the corners (641, 598) and (648, 598),
    // (641, 621) and (648, 621), and all else inside the circle through them, whose centre is (644.5, 609.5).
    void markCutByTheWindow_givesTheCentreOfThePartInside()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 600, 20));
        still.target(629, 610);
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.point.size(), 1);
        QCOMPARE(spies.point.front(), (QVariantList { 0, 644, 609 }));
    }

    void colouredFrame_isSearchedInItsGreenPlane()
    {
        StillView still;
        TargetFrame frame(1280, 960, 3);
        frame.mark(640, 480, 8, TargetFrame::DARK, 1).mark(620, 480, 8, TargetFrame::DARK, 0);
        frame.mark(660, 480, 8, TargetFrame::DARK, 2);
        still.show(frame);
        still.target(640, 480);
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.point.size(), 1);
        QCOMPARE(spies.point.front(), (QVariantList { 0, 643, 483 }));
    }

    void searchPosition_takesNoNoticeOfTheZoom()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(200, 200, 8));
        still.widget.setScale(4.0);
        still.widget.setTargetingMode(true);
        // Under the hand stands frame pixel (51, 51), and yet (204, 204) is searched.
        still.mouse(QEvent::MouseButtonPress, { 204, 204 });
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.point.size(), 1);
        QCOMPARE(spies.point.front(), (QVariantList { 0, 203, 203 }));
    }

    void dragOutOfThePicture_findsNothingAndDoesNotCrash_data()
    {
        QTest::addColumn<QPointF>("to");
        for (const int x : { -3000, -30, 270, 1400, 5000 })
            for (const int y : { -3000, -30, 1100, 5000 })
                QTest::newRow(qPrintable(QString("%1,%2").arg(x).arg(y))) << QPointF(x, y);
    }
    void dragOutOfThePicture_findsNothingAndDoesNotCrash()
    {
        QFETCH(QPointF, to);
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(0, 0, 1280));
        still.widget.setTargetingMode(true);
        still.drag({ 100, 100 }, to);
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.point.size(), 0);
        QCOMPARE(spies.error.size(), 1);
        QCOMPARE(spies.error.front().front().value<TargetingError>(), TARGETING_NO_CIRCLE);
        QVERIFY(!still.painted().isNull());
    }

    void searchBeforeTheFirstFrame_findsNothing()
    {
        StillView still;
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.error.size(), 1);
        QCOMPARE(spies.error.front().front().value<TargetingError>(), TARGETING_NO_CIRCLE);
    }

    void sizeThatTheFrameDoesNotHave_findsNothing()
    {
        StillView still;
        TargetFrame frame(640, 480);
        still.show(frame);
        still.widget.setImageSize(1280, 960);
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.error.size(), 1);
    }

    void foundPoint_isDrawnAsCrossWithLabel()
    {
        StillView still;
        still.widget.resize(1280, 960);
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 480, 8));
        still.widget.setTargetingMode(true);
        still.mouse(QEvent::MouseButtonPress, { 645, 480 });
        still.widget.setPoint(1);
        still.widget.setTargetingMode(false);
        const QImage expected = pictureWith(greyImage(frame), { { QPoint(643, 483), "2" } });
        const QRect clearOfTheOverview(0, 80, 1280, 880);
        QCOMPARE(picture::difference(still.painted().copy(clearOfTheOverview),
                     expected.convertToFormat(QImage::Format_RGB32).copy(clearOfTheOverview)),
            QString());
    }

    void repeatedPoint_isDrawnAnewTogetherWithTheOther()
    {
        StillView still;
        still.widget.resize(1280, 960);
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 480, 8).mark(300, 700, 8).mark(900, 200, 8));
        const auto take = [&still](int x, int y, int index) {
            still.widget.setTargetingMode(true);
            still.mouse(QEvent::MouseButtonPress, QPointF(x, y));
            still.widget.setPoint(index);
        };
        take(640, 480, 0);
        take(300, 700, 1);
        take(900, 200, 0);
        still.widget.setTargetingMode(false);
        const QImage expected
            = pictureWith(greyImage(frame), { { QPoint(903, 203), "1" }, { QPoint(303, 703), "2" } });
        const QRect clearOfTheOverview(0, 80, 1280, 880);
        QCOMPARE(picture::difference(still.painted().copy(clearOfTheOverview),
                     expected.convertToFormat(QImage::Format_RGB32).copy(clearOfTheOverview)),
            QString());
    }

    void newFrame_doesNotForgetThePoints()
    {
        StillView still;
        still.widget.resize(1280, 960);
        TargetFrame first(1280, 960);
        still.show(first.mark(640, 480, 8));
        still.widget.setTargetingMode(true);
        still.mouse(QEvent::MouseButtonPress, { 640, 480 });
        still.widget.setPoint(0);
        TargetFrame second(1280, 960, 3);
        still.show(second.mark(300, 700, 8));
        still.mouse(QEvent::MouseButtonPress, { 300, 700 });
        still.widget.setPoint(1);
        still.widget.setTargetingMode(false);
        const QImage expected
            = pictureWith(greyImage(second), { { QPoint(643, 483), "1" }, { QPoint(303, 703), "2" } });
        const QRect clearOfTheOverview(0, 80, 1280, 880);
        QCOMPARE(picture::difference(still.painted().copy(clearOfTheOverview),
                     expected.convertToFormat(QImage::Format_RGB32).copy(clearOfTheOverview)),
            QString());
    }

    void crossAtTheCorner_isClipped()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(1270, 950, 8));
        still.target(1279, 959);
        const Spies spies(still.widget);
        still.widget.setPoint(0);
        QCOMPARE(spies.point.size(), 1);
        QCOMPARE(spies.point.front(), (QVariantList { 0, 1273, 953 }));
        still.widget.setTargetingMode(false);
        // The view stands at its last corner: (1273, 953) is at (533, 425).
        QCOMPARE(still.painted().pixel(533, 425), RED);
        QCOMPARE(still.painted().pixel(539, 425), RED);
    }
};

QTEST_MAIN(tst_CapturePoints)
#include "tst_capture_points.moc"
