#include "camera/ar0134.h"
#include "camera/ar0134_framedelivery.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/camera/ThreadState.h"
#include "tests/platform/ScriptedBoard.h"

#include <QtTest>

#include <algorithm>
#include <atomic>

using qr9::wire::Kind;

namespace {

constexpr int kFrames = 1000;
constexpr std::size_t kPixels = std::size_t(1280) * 964;

} // namespace

// A long run of the live loop, with everybody who touches a frame at the same time.
class tst_ar0134_live : public QObject {
    Q_OBJECT

private slots:
    void thousandFrames_eachWakeTheOneWhoWaits()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        const pid_t waiter = threadNumber();
        std::atomic<int> waits { 0 };
        std::atomic<bool> givenUp { false };
        // A frame comes only when the waiter sleeps for it, so that a wake-up that is lost is told apart from
        // a waiter who was late.
        board.setPicture([&](int frame) {
            while (waits < frame && !givenUp) {
                QThread::usleep(50);
            }
            waitUntilAsleep(waiter, givenUp);
            return ScriptedBoard::Bytes(kPixels, 100);
        });
        AR0134 camera(bench.file());
        QThread thread;
        camera.moveToThread(&thread);
        thread.start();
        QMetaObject::invokeMethod(&camera, "slot_setLiveViewState", Q_ARG(bool, true));
        int woken = 0;
        do {
            ++waits;
        } while (camera.waitForFrameReady() && ++woken < kFrames);
        givenUp = true;
        camera.closeCamera();
        thread.quit();
        thread.wait();
        QCOMPARE(woken, kFrames);
    }

    void thousandFrames_areNeverTornNorStandStill()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        // Each picture is of one grey value, so that a frame that was copied while it changed shows.
        board.setPicture(
            [](int frame) { return ScriptedBoard::Bytes(kPixels, static_cast<std::uint8_t>(frame)); });
        board.setDelay(std::chrono::milliseconds(1));
        const int before = AR0134::totalFrames();
        Ar0134FrameDelivery source;
        QVERIFY(source.isRunning());
        QVERIFY(source.start());
        QTRY_VERIFY(source.getAutoTriggeringMode());

        cv::Mat mat(960, 1280, CV_8UC1);
        QImage image(1280, 960, QImage::Format_Indexed8);
        const int first = AR0134::totalFrames();
        qint64 longest = 0;
        int copied = 0;
        while (AR0134::totalFrames() - first < kFrames) {
            QElapsedTimer timer;
            timer.start();
            source.waitForNextFrameReady();
            longest = std::max(longest, timer.elapsed());
            QCoreApplication::processEvents();
            if (source.pushMatImage(mat)) {
                ++copied;
                QCOMPARE(cv::countNonZero(mat != mat.at<uchar>(0, 0)), 0);
                QVERIFY(source.pushQImage(image));
                QCOMPARE(image.constScanLine(0)[0], image.constScanLine(959)[1279]);
            }
            source.setCurrentGain(copied % 2 == 0 ? 3.0F : 6.0F);
        }
        // Who waits while the loop stands, stands until the limit of 3 s.
        QVERIFY2(longest < 2500, qPrintable(QString::number(longest)));
        QVERIFY(copied > 0);
        source.stop();
        QTRY_VERIFY(!source.getAutoTriggeringMode());
        // Every trigger has brought its frame.
        QTRY_COMPARE(AR0134::totalFrames() - before, board.count(Kind::Trigger));
    }
};

QTEST_GUILESS_MAIN(tst_ar0134_live)
#include "tst_ar0134_live.moc"
