#include "tests/support/LargeAllocations.h"
#include "tests/views/LiveView.h"

#include <QTest>

/// What a live frame costs in memory.
class tst_CameraViewMemory : public QObject {
    Q_OBJECT

private slots:
    void frames_areCopiedOnceEachAndAlwaysToTheSamePlace()
    {
        const LiveView live;
        picture::of(*live.view);
        const unsigned char* place = LiveView::source().target;
        const int before = LiveView::source().pushes;
        for (int i = 0; i < 50; ++i) {
            live.view->setFitMode(i % 2 == 0);
            live.view->setPseudoColorTable(i % 7);
            picture::of(*live.view);
            QCOMPARE(static_cast<const void*>(LiveView::source().target), static_cast<const void*>(place));
        }
        QCOMPARE(LiveView::source().pushes, before + 50);
    }

    void frame_allocatesNothingOfItsSize()
    {
        if (!LargeAllocations::areCounted())
            QSKIP("a sanitizer has the allocator");
        const LiveView live;
        QImage image(540, 405, QImage::Format_RGB32);
        const auto paint = [&] { live.view->render(&image, QPoint(), QRegion(), QWidget::DrawChildren); };
        for (const bool fit : { true, false }) {
            live.view->setFitMode(fit);
            paint();
            const LargeAllocations large;
            for (int i = 0; i < 20; ++i)
                paint();
            QCOMPARE(large.count(), 0);
        }

        // The count would have seen a copy of the frame.
        const LargeAllocations large;
        const QImage copy = QImage(1280, 960, QImage::Format_Indexed8).copy();
        QVERIFY(!copy.isNull());
        QVERIFY(large.count() >= 2);
    }
};

QTEST_MAIN(tst_CameraViewMemory)
#include "tst_cameraview_memory.moc"
