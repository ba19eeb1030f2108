#include "tests/views/LiveView.h"
#include "tests/views/pointer.h"

#include <QTest>

#include <cmath>

namespace {

constexpr QRgb kMagenta = 0xffff00ff;
constexpr QRgb kRed = 0xffff0000;
constexpr QSize kView(540, 405);
constexpr QPoint kOverview(100, 67); ///< last column and row of its outline

void addReticle(QImage& image)
{
    picture::horizontal(image, 0, 540, 202, kMagenta);
    picture::vertical(image, 270, 0, 405, kMagenta);
    for (int k = 1; k <= 20; ++k) {
        const bool isFifth = k == 5 || k == 10 || k == 15 || k == 20;
        for (const int y : { 202 - 10 * k, 202 + 10 * k })
            picture::horizontal(image, isFifth ? 240 : 255, isFifth ? 300 : 285, y, kRed);
    }
    for (int k = 1; k <= 26; ++k) {
        const bool isFifth = k == 5 || k == 10 || k == 15 || k == 20 || k == 25;
        for (const int x : { 270 - 10 * k, 270 + 10 * k })
            picture::vertical(image, x, isFifth ? 172 : 187, isFifth ? 232 : 217, kRed);
    }
}

/// The samples along one axis that may stand at a widget pixel in fit mode: the one below its centre, or one
/// of two where the centre falls on their common edge.
QVector<int> samples(int pixel, int widget, int image)
{
    const double place = (pixel + 0.5) * image / widget;
    const double nearestEdge = std::round(place);
    if (std::abs(place - nearestEdge) > 0.01)
        return { static_cast<int>(place) };
    return { static_cast<int>(nearestEdge) - 1, static_cast<int>(nearestEdge) };
}

} // namespace

/// The whole painted widget, compared with what must stand there.
class tst_CameraViewPaint : public QObject {
    Q_OBJECT

private slots:
    void fitMode_showsTheWholeFrame()
    {
        const LiveView live;
        const QImage image = picture::of(*live.view);
        for (int y = 0; y < 405; ++y) {
            const QVector<int> rows = samples(y, 405, 960);
            for (int x = 0; x < 540; ++x) {
                QVector<QRgb> allowed;
                for (const int row : rows)
                    for (const int column : samples(x, 540, 1280))
                        allowed.append(picture::grey(picture::greyAt(column, row)));
                if (!allowed.contains(image.pixel(x, y)))
                    QFAIL(qPrintable(QString("at %1,%2").arg(x).arg(y)));
            }
        }
    }

    void fitMode_showsNoOverview()
    {
        const LiveView live;
        LiveView::source().frame.assign(FrameDelivery::kBytes, 0);
        const QImage black = picture::plain(kView, picture::grey(0));
        QCOMPARE(picture::difference(picture::of(*live.view), black), QString());
    }

    void leavingFitMode_shows1To1FromTheTopLeft()
    {
        const LiveView live;
        live.view->setFitMode(false);
        QImage expected = picture::enlarged(kView, 1, { 0, 0 });
        picture::addOverview(expected, kOverview, { QPoint(0, 0), QPoint(43, 29) });
        QCOMPARE(picture::difference(picture::of(*live.view), expected), QString());
    }

    void zoom_showsEachPixelSoManyTimes_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QPoint>("last"); // painted column and row of the part on show
        QTest::newRow("2") << 2 << QPoint(22, 15);
        QTest::newRow("4") << 4 << QPoint(11, 8);
    }
    void zoom_showsEachPixelSoManyTimes()
    {
        QFETCH(int, scale);
        QFETCH(QPoint, last);
        const LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(scale);
        QImage expected = picture::enlarged(kView, scale, { 0, 0 });
        picture::addOverview(expected, kOverview, { QPoint(0, 0), last });
        QCOMPARE(picture::difference(picture::of(*live.view), expected), QString());
    }

    void lastCornerOfTheFrame_isShownAtEachZoom_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QPoint>("offset");
        QTest::addColumn<QRect>("overview"); // left, top and the last painted column and row
        QTest::newRow("1") << 1 << QPoint(740, 555) << QRect(QPoint(57, 38), QPoint(100, 67));
        // 960 - 405 / 2 = 757.5
        QTest::newRow("2") << 2 << QPoint(1010, 757) << QRect(QPoint(78, 52), QPoint(100, 67));
        // 960 - 405 / 4 = 858.75; 858 * 67 / 960 = 59; 59 + 67 - 59 - 1 = 66
        QTest::newRow("4") << 4 << QPoint(1145, 858) << QRect(QPoint(89, 59), QPoint(100, 67));
    }
    void lastCornerOfTheFrame_isShownAtEachZoom()
    {
        QFETCH(int, scale);
        QFETCH(QPoint, offset);
        QFETCH(QRect, overview);
        const LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(scale);
        pointer::drag(*live.view, { 0, 0 }, { -5000, -5000 });
        QImage expected = picture::enlarged(kView, scale, offset);
        picture::addOverview(expected, kOverview, overview);
        QCOMPARE(picture::difference(picture::of(*live.view), expected), QString());
    }

    void crossLine_isDrawnOverTheFittedFrame()
    {
        const LiveView live;
        LiveView::source().frame.assign(FrameDelivery::kBytes, 90);
        live.view->setCrossLine(true);
        QImage expected = picture::plain(kView, picture::grey(90));
        addReticle(expected);
        QCOMPARE(picture::difference(picture::of(*live.view), expected), QString());
        live.view->setCrossLine(false);
        expected.fill(picture::grey(90));
        QCOMPARE(picture::difference(picture::of(*live.view), expected), QString());
    }

    void crossLine_takesNoNoticeOfTheZoom()
    {
        const LiveView live;
        live.view->setFitMode(false);
        live.view->setScale(4.0);
        live.view->setCrossLine(true);
        QImage expected = picture::enlarged(kView, 4, { 0, 0 });
        picture::addOverview(expected, kOverview, { QPoint(0, 0), QPoint(11, 8) });
        addReticle(expected);
        QCOMPARE(picture::difference(picture::of(*live.view), expected), QString());
    }

    void sourceNotRunning_paintLeavesTheWidgetUnchanged()
    {
        const LiveView live;
        live.view->setCrossLine(true);
        live.view->setFitMode(false);
        LiveView::source().running = false;
        const QImage untouched = picture::plain(kView, picture::kUnpainted);
        QCOMPARE(picture::difference(picture::of(*live.view), untouched), QString());
        QCOMPARE(LiveView::source().pushes, 0);
    }

    void withoutANewFrame_theOldOneIsShown()
    {
        const LiveView live;
        const QImage before = picture::of(*live.view);
        LiveView::source().frame.clear();
        QCOMPARE(picture::difference(picture::of(*live.view), before), QString());
    }

    void beforeTheFirstFrame_theViewIsBlack()
    {
        const LiveView live;
        LiveView::source().frame.clear();
        const QImage black = picture::plain(kView, picture::grey(0));
        QCOMPARE(picture::difference(picture::of(*live.view), black), QString());
    }

    void colourTables_tintAllGreyValues_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("red");
        QTest::addColumn<bool>("green");
        QTest::addColumn<bool>("blue");
        QTest::newRow("grey") << 0 << true << true << true;
        QTest::newRow("red") << 1 << true << false << false;
        QTest::newRow("green") << 2 << false << true << false;
        QTest::newRow("blue") << 3 << false << false << true;
        QTest::newRow("yellow") << 4 << true << true << false;
        QTest::newRow("cyan") << 5 << false << true << true;
        QTest::newRow("magenta") << 6 << true << false << true;
    }
    void colourTables_tintAllGreyValues()
    {
        QFETCH(int, index);
        QFETCH(bool, red);
        QFETCH(bool, green);
        QFETCH(bool, blue);
        const LiveView live;
        live.view->setFitMode(false);
        // Row 100 is clear of the overview and shows 256 grey values from the left on.
        constexpr std::size_t kRow = 100;
        for (std::size_t v = 0; v < 256; ++v)
            LiveView::source().frame[kRow * 1280 + v] = static_cast<unsigned char>(v);
        live.view->setPseudoColorTable(index);
        QCOMPARE(live.view->pseudoColorTable(), index);
        const QImage image = picture::of(*live.view);
        for (int v = 0; v < 256; ++v)
            QCOMPARE(image.pixel(v, 100), qRgb(red ? v : 0, green ? v : 0, blue ? v : 0));
    }

    void tableOfTheConstructor_isInUseFromTheStart()
    {
        BaslerFrameDelivery::attached = true;
        CameraView view(nullptr, 2);
        view.resize(540, 405);
        FrameDelivery::m_pInstance->frame.assign(FrameDelivery::kBytes, 77);
        QCOMPARE(view.pseudoColorTable(), 2);
        QCOMPARE(picture::of(view).pixel(300, 200), qRgb(0, 77, 0));
    }
};

QTEST_MAIN(tst_CameraViewPaint)
#include "tst_cameraview_paint.moc"
