#include "tests/views/LiveView.h"
#include "tests/views/pointer.h"

#include <QTest>

namespace {

/// Counts what is painted.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace

/// Wheel and drag. What is on show is read from the painted widget: a frame pixel tells its column by its
/// grey value in one frame, and its row in another.
class tst_CameraViewInput : public QObject {
    Q_OBJECT

private slots:
    void wheel_stepsThroughTheZooms_data() { pointer::addZoomSteps(); }
    void wheel_stepsThroughTheZooms()
    {
        QFETCH(int, from);
        QFETCH(QPoint, angle);
        LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(from);
        pointer::turn(*live.view, angle);
        QTEST(zoomOf(live), "to");
    }

    void wheel_inFitModeChangesNothing()
    {
        LiveView live;
        const QImage before = picture::of(*live.view);
        pointer::turn(*live.view, { 0, 120 });
        QCOMPARE(picture::of(*live.view), before);
        live.view->setFitMode(false);
        QCOMPARE(zoomOf(live), 1);
    }

    void wheel_thereAndBackEndsAt1()
    {
        LiveView live;
        live.view->setFitMode(false);
        for (const int delta : { 120, 120, -120, -120 })
            pointer::turn(*live.view, { 0, delta });
        QCOMPARE(zoomOf(live), 1);
    }

    void scaleBelow1_isNotTaken()
    {
        LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(2.0);
        live.view->setScale(0.5);
        QCOMPARE(zoomOf(live), 2);
    }

    void zoomingOut_limitsTheOffsets()
    {
        LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(4.0);
        pointer::drag(*live.view, { 0, 0 }, { -5000, -5000 });
        QCOMPARE(offsetOf(live), QPoint(1145, 858));
        pointer::turn(*live.view, { 0, -120 });
        QCOMPARE(offsetOf(live), QPoint(1010, 757));
        pointer::turn(*live.view, { 0, -120 });
        QCOMPARE(offsetOf(live), QPoint(740, 555));
    }

    void unchangedScale_stillLimitsTheOffsets()
    {
        LiveView live;
        live.view->setFitMode(false);
        pointer::drag(*live.view, { 0, 0 }, { -740, -555 });
        live.view->resize(640, 480);
        pointer::turn(*live.view, { 0, -120 });
        QCOMPARE(zoomOf(live), 1);
        QCOMPARE(offsetOf(live), QPoint(640, 480));
    }

    void dragAtZoom1_staysWithinTheFrame_data()
    {
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<QPoint>("offset");
        // From an offset of (300, 200); the picture follows the hand.
        QTest::newRow("left and up") << QPointF(100, 100) << QPoint(400, 300);
        QTest::newRow("right and down") << QPointF(230, 220) << QPoint(270, 180);
        QTest::newRow("to the left limit") << QPointF(500, 200) << QPoint(0, 200);
        QTest::newRow("beyond the left limit") << QPointF(501, 200) << QPoint(0, 200);
        QTest::newRow("to the top limit") << QPointF(200, 400) << QPoint(300, 0);
        QTest::newRow("beyond the top limit") << QPointF(200, 401) << QPoint(300, 0);
        QTest::newRow("to the right limit") << QPointF(-240, 200) << QPoint(740, 200);
        QTest::newRow("beyond the right limit") << QPointF(-241, 200) << QPoint(740, 200);
        QTest::newRow("to the bottom limit") << QPointF(200, -155) << QPoint(300, 555);
        QTest::newRow("beyond the bottom limit") << QPointF(200, -156) << QPoint(300, 555);
        QTest::newRow("halves are rounded up") << QPointF(199.5, 198.5) << QPoint(300, 201);
        QTest::newRow("less than halves are rounded down") << QPointF(199.4, 200.4) << QPoint(301, 200);
        QTest::newRow("halves below zero are rounded up, too") << QPointF(-0.5, -1.5) << QPoint(500, 401);
    }
    void dragAtZoom1_staysWithinTheFrame()
    {
        QFETCH(QPointF, to);
        LiveView live;
        live.view->setFitMode(false);
        pointer::drag(*live.view, { 300, 200 }, { 0, 0 });
        pointer::drag(*live.view, { 200, 200 }, to);
        QTEST(offsetOf(live), "offset");
    }

    void dragInSteps_addsUp()
    {
        LiveView live;
        live.view->setFitMode(false);
        pointer::mouse(*live.view, QEvent::MouseButtonPress, { 300, 300 });
        for (const int x : { 290, 280, 250 })
            pointer::mouse(*live.view, QEvent::MouseMove, QPointF(x, 300));
        QCOMPARE(offsetOf(live), QPoint(50, 0));
    }

    /// The reserve that a drag beyond the limit would leave is not kept.
    void dragBeyondTheLimit_turnsBackAtOnce()
    {
        LiveView live;
        live.view->setFitMode(false);
        pointer::mouse(*live.view, QEvent::MouseButtonPress, { 100, 100 });
        pointer::mouse(*live.view, QEvent::MouseMove, { 400, 100 });
        pointer::mouse(*live.view, QEvent::MouseMove, { 390, 100 });
        QCOMPARE(offsetOf(live), QPoint(10, 0));
    }

    void dragWhenZoomed_movesByFramePixels()
    {
        LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(4.0);
        pointer::drag(*live.view, { 100, 100 }, { 60, 70 });
        QCOMPARE(offsetOf(live), QPoint(40, 30));
    }

    void widgetLargerThanTheFrame_staysAtTheTopLeft()
    {
        LiveView live;
        live.view->resize(1400, 1000);
        live.view->setFitMode(false);
        pointer::drag(*live.view, { 300, 300 }, { 0, 0 });
        QCOMPARE(offsetOf(live), QPoint(0, 0));
    }

    void dragInFitMode_showsWhenFitModeEnds()
    {
        LiveView live;
        const QImage before = picture::of(*live.view);
        pointer::drag(*live.view, { 300, 300 }, { 200, 250 });
        QCOMPARE(picture::of(*live.view), before);
        live.view->setFitMode(false);
        QCOMPARE(offsetOf(live), QPoint(100, 50));
    }

    void fitMode_forgetsZoomAndOffsetsForGood()
    {
        LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(4.0);
        pointer::drag(*live.view, { 300, 300 }, { 200, 250 });
        live.view->setFitMode(true);
        live.view->setFitMode(false);
        QCOMPARE(zoomOf(live), 1);
        QCOMPARE(offsetOf(live), QPoint(0, 0));
        const QImage image = picture::of(*live.view);
        QCOMPARE(image.pixel(43, 29), qRgb(255, 255, 0)); // the overview is that of 1:1 again
    }

    void largeWidget_hasNoOverview_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("shown");
        QTest::newRow("one short of both") << QSize(1279, 959) << true;
        QTest::newRow("as wide as the frame") << QSize(1280, 959) << false;
        QTest::newRow("as high as the frame") << QSize(1279, 960) << false;
    }
    void largeWidget_hasNoOverview()
    {
        QFETCH(QSize, size);
        QFETCH(bool, shown);
        LiveView live;
        live.view->resize(size);
        live.view->initialize();
        live.view->setFitMode(false);
        QCOMPARE(picture::of(*live.view).pixel(100, 10) == qRgb(255, 255, 0), shown);
    }

    void drag_leavesThePaintingToTheNextFrame()
    {
        LiveView live;
        live.view->setFitMode(false);
        live.view->show();
        QWidget witness;
        witness.show();
        QVERIFY(QTest::qWaitForWindowExposed(live.view.get()));
        QVERIFY(QTest::qWaitForWindowExposed(&witness));
        PaintCounter seen(witness);
        // Nothing is left over from the showing.
        witness.update();
        QTRY_VERIFY(seen.paints > 0);

        PaintCounter painted(*live.view);
        pointer::drag(*live.view, { 300, 300 }, { 200, 250 });
        live.view->setPseudoColorTable(1);
        const int before = seen.paints;
        witness.update();
        QTRY_VERIFY(seen.paints > before);
        QCOMPARE(painted.paints, 0);

        live.view->slot_update();
        QTRY_COMPARE(painted.paints, 1);
        pointer::turn(*live.view, { 0, 120 });
        QTRY_COMPARE(painted.paints, 2);
        live.view->setCrossLine(false);
        QTRY_COMPARE(painted.paints, 3);
        live.view->setFitMode(true);
        QTRY_COMPARE(painted.paints, 4);
        pointer::turn(*live.view, { 0, 120 });
        QTRY_COMPARE(painted.paints, 5);
    }

private:
    /// Grey values of the painted middle row (clear of the overview) when a frame pixel has the value
    /// `code(column, row)`.
    template <typename Code> static QImage paintedWith(LiveView& live, Code code)
    {
        std::vector<unsigned char> coded;
        coded.reserve(FrameDelivery::kBytes);
        for (int y = 0; y < 960; ++y)
            for (int x = 0; x < 1280; ++x)
                coded.push_back(static_cast<unsigned char>(code(x, y)));
        std::swap(LiveView::source().frame, coded);
        QImage image = picture::of(*live.view);
        std::swap(LiveView::source().frame, coded);
        return image;
    }

    /// The frame pixel that stands at the widget's pixel (200, 200).
    static QPoint pixelOnShow(LiveView& live)
    {
        const auto at = [&live](auto code) { return qGray(paintedWith(live, code).pixel(200, 200)); };
        return { at([](int x, int) { return x / 256; }) * 256 + at([](int x, int) { return x % 256; }),
            at([](int, int y) { return y / 256; }) * 256 + at([](int, int y) { return y % 256; }) };
    }

    static int zoomOf(LiveView& live)
    {
        const QImage image = paintedWith(live, [](int x, int) { return x % 2 * 255; });
        int width = 1;
        int x = 200;
        while (image.pixel(x, 200) == image.pixel(x - 1, 200))
            ++x;
        while (image.pixel(x + width, 200) == image.pixel(x, 200))
            ++width;
        return width;
    }

    static QPoint offsetOf(LiveView& live)
    {
        const int zoom = zoomOf(live);
        return pixelOnShow(live) - QPoint(200 / zoom, 200 / zoom);
    }
};

QTEST_MAIN(tst_CameraViewInput)
#include "tst_cameraview_input.moc"
