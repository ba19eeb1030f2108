#include "tests/views/StillView.h"

#include <QTest>

namespace {

/// What a widget tells of its searches.
class Told {
public:
    explicit Told(CAPTURE_ImageWidget& widget)
    {
        QObject::connect(
            &widget, &CAPTURE_ImageWidget::sig_measure_point, &m_receiver, [this](int index, int x, int y) {
                m_texts << QString("point %1 at %2,%3").arg(index).arg(x).arg(y);
            });
        QObject::connect(&widget, &CAPTURE_ImageWidget::sig_measure_error, &m_receiver,
            [this](TargetingError error) { m_texts << QString("error %1").arg(error); });
    }

    /// All that has been told, in order.
    QStringList texts() const { return m_texts; }

private:
    QObject m_receiver;
    QStringList m_texts;
};

const QStringList NO_CIRCLE = { "error 0" };
const QStringList TOO_MANY_CIRCLES = { "error 1" };

/// What a search for this point tells.
QStringList search(StillView& still, int index = 0)
{
    const Told told(still.widget);
    still.widget.setPoint(index);
    return told.texts();
}

/// What it tells when a mark has been found whose circle has its centre in this pixel.
QStringList found(int x, int y, int index = 0)
{
    return { QString("point %1 at %2,%3").arg(index).arg(x).arg(y) };
}

/// A still picture with nothing but darkness in it: any window of a search would find one contour.
TargetFrame darkFrame(int width = 1280, int height = 960)
{
    return TargetFrame(width, height).mark(0, 0, 1280);
}

} // namespace

/// The search for the mark near a click.
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
        // The true centre lies 3.5 pixels on, and is truncated.
        QCOMPARE(search(still), found(mark.x() + 3, mark.y() + 3));
    }

    void emptyWindow_reportsNoCircle()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(700, 480, 8));
        still.target(640, 480);
        const QImage before = still.painted();
        QCOMPARE(search(still), NO_CIRCLE);
        QCOMPARE(still.painted(), before);
    }

    void twoMarksInTheWindow_reportTooMany()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(625, 470, 8).mark(645, 470, 8));
        still.target(640, 480);
        const QImage before = still.painted();
        QCOMPARE(search(still, 1), TOO_MANY_CIRCLES);
        QCOMPARE(still.painted(), before);
    }

    /// A mark of 20 by 20 pixels from (640, 600) on; the window ends at column 648. The filters take the
    /// corner pixels and add two pixels all around: the part inside has the corners (641, 598) and (648,
    /// 598), (641, 621) and (648, 621), and all else inside the circle through them, whose centre is (644.5,
    /// 609.5).
    void markCutByTheWindow_givesTheCentreOfThePartInside()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 600, 20));
        still.target(629, 610);
        QCOMPARE(search(still), found(644, 609));
    }

    void colouredFrame_isSearchedInItsGreenPlane()
    {
        StillView still;
        TargetFrame frame(1280, 960, 3);
        frame.mark(640, 480, 8, TargetFrame::kDark, 1).mark(620, 480, 8, TargetFrame::kDark, 0);
        frame.mark(660, 480, 8, TargetFrame::kDark, 2);
        still.show(frame);
        still.target(640, 480);
        QCOMPARE(search(still), found(643, 483));
    }

    /// There is no plane to search in; the search takes place all the same.
    void otherDepths_tellOneThing()
    {
        StillView still;
        TargetFrame frame(2 * 1280, 960);
        still.widget.setImageData(frame.data(), 1280, 960, 16);
        still.target(640, 480);
        QCOMPARE(search(still).size(), 1);
    }

    void anotherSizeAndBack_areSearchedAsTheyAre()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(200, 200, 8));
        TargetFrame small(320, 240);
        still.show(small.mark(300, 220, 8));
        still.targetAt({ 303, 223 });
        QCOMPARE(search(still), found(303, 223));
        still.show(frame);
        still.targetAt({ 203, 203 });
        QCOMPARE(search(still), found(203, 203));
    }

    void searchPosition_takesNoNoticeOfTheZoom()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(200, 200, 8));
        still.widget.setScale(4.0);
        // Under the hand stands frame pixel (51, 51), and yet (204, 204) is searched.
        still.targetAt({ 204, 204 });
        QCOMPARE(search(still), found(203, 203));
    }

    void dragOutOfThePicture_findsNothing_data()
    {
        QTest::addColumn<QPointF>("to");
        for (const int x : { -3000, -30, 270, 1400, 5000 })
            for (const int y : { -3000, -30, 1100, 5000 })
                QTest::newRow(qPrintable(QString("%1,%2").arg(x).arg(y))) << QPointF(x, y);
    }
    void dragOutOfThePicture_findsNothing()
    {
        QFETCH(QPointF, to);
        StillView still;
        TargetFrame frame = darkFrame();
        still.show(frame);
        still.widget.setTargetingMode(true);
        still.drag({ 100, 100 }, to);
        QCOMPARE(search(still), NO_CIRCLE);
        QVERIFY(!still.painted().isNull());
    }

    void clickBesideASmallPicture_findsNothing()
    {
        StillView still;
        TargetFrame frame = darkFrame(320, 240);
        still.show(frame);
        still.targetAt({ 500, 400 });
        QCOMPARE(search(still), NO_CIRCLE);
    }

    /// Zoomed in on the last corner the whole widget shows the picture, but what is searched lies behind it.
    void clickIntoTheZoomedCorner_findsNothing()
    {
        StillView still;
        TargetFrame frame = darkFrame();
        still.show(frame);
        still.widget.setScale(4.0);
        still.drag({ 0, 0 }, { -5000, -5000 });
        still.targetAt({ 300, 300 });
        QCOMPARE(search(still), NO_CIRCLE);
    }

    void searchBeforeTheFirstFrame_findsNothing()
    {
        StillView still;
        QCOMPARE(search(still), NO_CIRCLE);
    }

    void sizeThatTheFrameDoesNotHave_findsNothing()
    {
        StillView still;
        TargetFrame frame = darkFrame(640, 480);
        still.show(frame);
        still.widget.setImageSize(1280, 960);
        QCOMPARE(search(still), NO_CIRCLE);
    }
};

QTEST_MAIN(tst_CapturePoints)
#include "tst_capture_points.moc"
