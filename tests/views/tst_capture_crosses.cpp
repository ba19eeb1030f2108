#include "tests/views/StillView.h"

#include <opencv2/imgproc.hpp>

#include <QSignalSpy>
#include <QTest>

namespace {

constexpr QRgb kRed = 0xffff0000;

/// A still picture as large as its frame, so that all of it is painted.
struct WholeView : StillView {
    WholeView() { widget.resize(1280, 960); }

    /// Takes the mark near this pixel as a point.
    void take(int x, int y, int index)
    {
        targetAt(QPointF(x, y));
        widget.setPoint(index);
    }

    /// Where the painted picture differs first from the frame in grey with crosses and labels at these
    /// points, clear of the overview and of the square around the search position.
    QString differenceFrom(const TargetFrame& frame, const QVector<QPair<QPoint, const char*>>& points)
    {
        widget.setTargetingMode(false);
        const QRect clearOfTheOverview(0, 80, 1280, 880);
        const QImage expected = expectedPicture(frame, points).convertToFormat(QImage::Format_RGB32);
        return picture::difference(painted().copy(clearOfTheOverview), expected.copy(clearOfTheOverview));
    }

private:
    static QImage expectedPicture(const TargetFrame& frame, const QVector<QPair<QPoint, const char*>>& points)
    {
        QImage image(frame.width(), frame.height(), QImage::Format_RGB888);
        const int plane = frame.bits() == 24 ? 1 : 0;
        for (int y = 0; y < frame.height(); ++y)
            for (int x = 0; x < frame.width(); ++x)
                image.setPixel(x, y, picture::grey(frame.at(x, y, plane)));
        for (const auto& [point, label] : points) {
            picture::horizontal(image, point.x() - 15, point.x() + 15, point.y(), kRed);
            picture::vertical(image, point.x(), point.y() - 15, point.y() + 15, kRed);
            cv::Mat pixels(image.height(), image.width(), CV_8UC3, image.bits(),
                static_cast<std::size_t>(image.bytesPerLine()));
            cv::putText(pixels, label, cv::Point(point.x() + 8, point.y() - 8), cv::FONT_HERSHEY_SIMPLEX,
                0.35, cv::Scalar(0, 255, 255), 1, 8);
        }
        return image;
    }
};

} // namespace

/// The picture of the found points: a cross and a label at each.
class tst_CaptureCrosses : public QObject {
    Q_OBJECT

private slots:
    void foundPoint_isDrawnAsCrossWithLabel()
    {
        WholeView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 480, 8));
        still.take(645, 480, 1);
        QCOMPARE(still.differenceFrom(frame, { { QPoint(643, 483), "2" } }), QString());
    }

    void repeatedPoint_isDrawnAnewTogetherWithTheOther()
    {
        WholeView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 480, 8).mark(300, 700, 8).mark(900, 200, 8));
        still.take(640, 480, 0);
        still.take(300, 700, 1);
        still.take(900, 200, 0);
        QCOMPARE(
            still.differenceFrom(frame, { { QPoint(903, 203), "1" }, { QPoint(303, 703), "2" } }), QString());
    }

    void failedSearch_leavesTheCrosses()
    {
        WholeView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(640, 480, 8));
        still.take(640, 480, 0);
        still.take(300, 700, 0);
        QCOMPARE(still.differenceFrom(frame, { { QPoint(643, 483), "1" } }), QString());
    }

    void newFrame_takesTheCrossesAwayAndKeepsThePoints()
    {
        WholeView still;
        TargetFrame first(1280, 960);
        still.show(first.mark(640, 480, 8));
        still.take(640, 480, 0);
        TargetFrame second(1280, 960, 3);
        still.show(second.mark(300, 700, 8));
        QCOMPARE(still.differenceFrom(second, {}), QString());
        still.take(300, 700, 1);
        QCOMPARE(still.differenceFrom(second, { { QPoint(643, 483), "1" }, { QPoint(303, 703), "2" } }),
            QString());
        // The distance from (643, 483) to (303, 703).
        const QSignalSpy measured(&still.widget, &CAPTURE_ImageWidget::sig_measure_result);
        still.widget.measure2Point();
        QCOMPARE(measured.last().front().value<measure_info>().length_pixel,
            CAPTURE_ImageWidget::diameter({ 0, 0 }, { 340, 220 }));
    }

    void crossAtTheCorner_isClipped()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(1270, 950, 8));
        still.target(1279, 959);
        still.widget.setPoint(0);
        still.widget.setTargetingMode(false);
        // The view stands at its last corner: the point (1273, 953) is at (533, 425).
        QCOMPARE(still.painted().pixel(533, 425), kRed);
        QCOMPARE(still.painted().pixel(518, 425), kRed);
        QCOMPARE(still.painted().pixel(539, 425), kRed);
        QCOMPARE(still.painted().pixel(533, 431), kRed);
    }
};

QTEST_MAIN(tst_CaptureCrosses)
#include "tst_capture_crosses.moc"
