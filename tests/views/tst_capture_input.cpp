#include "tests/support/LogCapture.h"
#include "tests/views/StillView.h"

#include <QTest>

namespace {

constexpr QRgb kGreen = 0xff00ff00;

/// Whether the widget shows picture::frame() from this pixel on, clear of the overview.
bool shows(StillView& still, int scale, int offsetX, int offsetY)
{
    const QImage image = still.painted();
    for (int y = 120; y < 432; ++y)
        for (int x = 0; x < 540; ++x)
            if (image.pixel(x, y) != picture::grey(picture::greyAt(offsetX + x / scale, offsetY + y / scale)))
                return false;
    return true;
}

} // namespace

/// Wheel, drag and search position.
class tst_CaptureInput : public QObject {
    Q_OBJECT

private slots:
    void wheel_stepsThroughTheZooms_data() { pointer::addZoomSteps(); }
    void wheel_stepsThroughTheZooms()
    {
        QFETCH(int, from);
        QFETCH(QPoint, angle);
        QFETCH(int, to);
        StillView still;
        still.showFrame();
        still.widget.setScale(from);
        still.turn(angle);
        QVERIFY(shows(still, to, 0, 0));
    }

    void scaleBelow1_isNotTaken()
    {
        StillView still;
        still.showFrame();
        still.widget.setScale(2.0);
        still.widget.setScale(0.5);
        QVERIFY(shows(still, 2, 0, 0));
    }

    void drag_followsTheHand()
    {
        StillView still;
        still.showFrame();
        still.mouse(QEvent::MouseButtonPress, { 300, 300 });
        // The first move counts from the press, the next from the one before.
        still.mouse(QEvent::MouseMove, { 200, 250 });
        QVERIFY(shows(still, 1, 100, 50));
        still.mouse(QEvent::MouseMove, { 190, 255 });
        QVERIFY(shows(still, 1, 110, 45));
    }

    void drag_countsFromEachPressAnew()
    {
        StillView still;
        still.showFrame();
        still.drag({ 300, 300 }, { 250, 250 });
        still.drag({ 10, 10 }, { 5, 5 });
        QVERIFY(shows(still, 1, 55, 55));
    }

    void drag_staysWithinTheFrame_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QPoint>("last");
        QTest::newRow("1") << 1 << QPoint(740, 528);
        QTest::newRow("2") << 2 << QPoint(1010, 744);
        QTest::newRow("4") << 4 << QPoint(1145, 852);
    }
    void drag_staysWithinTheFrame()
    {
        QFETCH(int, scale);
        QFETCH(QPoint, last);
        StillView still;
        still.showFrame();
        still.widget.setScale(scale);
        still.drag({ 300, 300 }, QPoint(300, 300) - last);
        QVERIFY(shows(still, scale, last.x(), last.y()));
        still.drag({ 300, 300 }, { 299, 299 });
        QVERIFY(shows(still, scale, last.x(), last.y()));
        still.drag({ 300, 300 }, { 5000, 5000 });
        QVERIFY(shows(still, scale, 0, 0));
    }

    void zoomingOut_limitsTheView()
    {
        StillView still;
        still.showFrame();
        still.widget.setScale(4.0);
        still.drag({ 0, 0 }, { -5000, -5000 });
        still.turn({ 0, -120 });
        QVERIFY(shows(still, 2, 1010, 744));
        still.turn({ 0, -120 });
        QVERIFY(shows(still, 1, 740, 528));
    }

    void places_areRoundedToWholePixels()
    {
        StillView still;
        still.showFrame();
        still.drag({ 300.5, 300.4 }, { 200.5, 200.4 });
        QVERIFY(shows(still, 1, 100, 100));
        still.drag({ 300.5, 300 }, { 300.4, 300 });
        QVERIFY(shows(still, 1, 101, 100));
    }

    /// Beyond the edge of the widget, too.
    void halves_areRoundedAwayFromZero()
    {
        StillView still;
        still.showFrame();
        still.drag({ 0, 0 }, { -0.5, -10.5 });
        QVERIFY(shows(still, 1, 1, 11));
        still.drag({ -2.5, 0 }, { -4.4, 0 });
        QVERIFY(shows(still, 1, 2, 11));
    }

    void moveWithoutPress_isIgnored()
    {
        StillView still;
        still.showFrame();
        still.mouse(QEvent::MouseMove, { 10, 10 });
        QVERIFY(shows(still, 1, 0, 0));
        still.drag({ 300, 300 }, { 250, 250 });
        still.mouse(QEvent::MouseMove, { 10, 10 });
        QVERIFY(shows(still, 1, 50, 50));
    }

    void dragInTargetingMode_movesTheSearchPositionOnly()
    {
        StillView still;
        still.showFrame();
        still.drag({ 300, 300 }, { 200, 250 });
        still.widget.setTargetingMode(true);
        still.drag({ 100, 250 }, { 300, 300 });
        const QImage image = still.painted();
        QCOMPARE(image.pixel(280, 280), kGreen);
        QCOMPARE(image.pixel(319, 319), kGreen);
        QVERIFY(image.pixel(80, 230) != kGreen);
        still.widget.setTargetingMode(false);
        QVERIFY(shows(still, 1, 100, 50));
    }

    void deactivatedWindow_isLogged()
    {
        StillView still;
        const LogCapture log;
        QEvent deactivate(QEvent::WindowDeactivate);
        QApplication::sendEvent(&still.widget, &deactivate);
        QCOMPARE(log.lines(), QStringList { "QEvent::WindowDeactivate" });
    }
};

QTEST_MAIN(tst_CaptureInput)
#include "tst_capture_input.moc"
