#include "tests/views/LiveView.h"

#include <QTest>

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<bool> theCounting { false };
std::atomic<int> theLargeAllocations { 0 };

} // namespace

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QR9_COUNTS_ALLOCATIONS

namespace {

// A line of the widget is 2160 bytes; nothing that is made for a frame anew is smaller than some of them.
constexpr std::size_t LARGE = 16384;

void count(std::size_t bytes)
{
    if (theCounting && bytes >= LARGE)
        ++theLargeAllocations;
}

} // namespace

// The C library's own allocator under the names that everyone calls, with a count. A sanitizer has taken the
// place.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t number, std::size_t bytes);
void* __libc_realloc(void* memory, std::size_t bytes);

void* malloc(std::size_t bytes)
{
    count(bytes);
    return __libc_malloc(bytes);
}
void* calloc(std::size_t number, std::size_t bytes)
{
    count(number * bytes);
    return __libc_calloc(number, bytes);
}
void* realloc(void* memory, std::size_t bytes)
{
    count(bytes);
    return __libc_realloc(memory, bytes);
}
}
#endif

// What a live frame costs in memory.
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
#ifndef QR9_COUNTS_ALLOCATIONS
        QSKIP("a sanitizer has the allocator");
#endif
        const LiveView live;
        QImage image(540, 405, QImage::Format_RGB32);
        const auto paint = [&] { live.view->render(&image, QPoint(), QRegion(), QWidget::DrawChildren); };
        for (const bool fit : { true, false }) {
            live.view->setFitMode(fit);
            paint();
            theLargeAllocations = 0;
            theCounting = true;
            for (int i = 0; i < 20; ++i)
                paint();
            theCounting = false;
            QCOMPARE(theLargeAllocations.load(), 0);
        }

        // The count would have seen a copy of the frame.
        theCounting = true;
        const QImage copy = QImage(1280, 960, QImage::Format_Indexed8).copy();
        theCounting = false;
        QVERIFY(!copy.isNull());
        QVERIFY(theLargeAllocations >= 2);
    }
};

QTEST_MAIN(tst_CameraViewMemory)
#include "tst_cameraview_memory.moc"
