#include "tests/camera/BaslerTests.h"
#include "tests/camera/SourceBench.h"
#include "tests/support/LogCapture.h"

#include <QTest>

using Picture = ScriptedCamera::Picture;

namespace {

/// A picture with another grey value in each row, and a bright first pixel.
Picture rampPicture()
{
    Picture picture { 1280, 960, 1, ScriptedCamera::Bytes(ScriptedCamera::kFrameBytes) };
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels[i] = static_cast<std::uint8_t>(i / 1280 % 200);
    picture.pixels[0] = 255;
    return picture;
}

} // namespace

/// The frame source on a Basler camera: copies of the current frame, and its intensity.
class tst_baslerframedelivery_frame : public BaslerTests {
    Q_OBJECT

private slots:
    void beforeTheFirstFrame_thereIsNone()
    {
        SourceBench bench;
        cv::Mat matrix(3, 4, CV_8UC1, cv::Scalar(7));
        QImage image(1280, 960, QImage::Format_Indexed8);
        image.fill(9);
        QVERIFY(!bench.source->pushMatImage(matrix));
        QVERIFY(matrix.rows == 3 && matrix.cols == 4);
        QCOMPARE(cv::sum(matrix)[0], 84.0);
        QVERIFY(!bench.source->pushQImage(image));
        QCOMPARE(static_cast<int>(image.constBits()[1228799]), 9);
        QCOMPARE(bench.source->getIntensity(), -1.0);
    }

    void pushMatImage_copiesIntoTheCallersBuffer()
    {
        SourceBench bench;
        bench.server.setPicture([](int) { return rampPicture(); });
        QVERIFY(bench.grab());
        std::vector<uchar> buffer(1228800, 0);
        cv::Mat header(960, 1280, CV_8UC1, buffer.data());
        QVERIFY(bench.source->pushMatImage(header));
        QCOMPARE(header.data, buffer.data());
        QVERIFY(buffer == rampPicture().pixels);
    }

    void pushMatImage_otherSizeOrType_isReallocated()
    {
        SourceBench bench;
        QVERIFY(bench.grab());
        std::vector<uchar> buffer(1228800, 0);
        cv::Mat header(480, 1280, CV_8UC1, buffer.data());
        QVERIFY(bench.source->pushMatImage(header));
        QVERIFY(header.data != buffer.data());
        QVERIFY(header.rows == 960 && header.cols == 1280 && header.type() == CV_8UC1);
        QCOMPARE(static_cast<int>(buffer[0]), 0);
    }

    void pushQImage_fillsTheBits()
    {
        SourceBench bench;
        bench.server.setPicture([](int) { return rampPicture(); });
        QVERIFY(bench.grab());
        QImage image(1280, 960, QImage::Format_Indexed8);
        LogCapture log;
        QVERIFY(bench.source->pushQImage(image));
        QVERIFY(log.lines().isEmpty());
        const std::vector<uchar> bytes(image.constBits(), image.constBits() + 1228800);
        QVERIFY(bytes == rampPicture().pixels);
    }

    void getIntensity_isTheMean()
    {
        SourceBench bench;
        bench.server.setPicture([](int) { return rampPicture(); });
        QVERIFY(bench.grab());
        double sum = 0.0;
        for (const std::uint8_t pixel : rampPicture().pixels)
            sum += pixel;
        QCOMPARE(bench.source->getIntensity(), sum / 1228800.0);
    }

    void frameTooSmallForAConsumer_isNoFrame()
    {
        // A camera of an unknown family keeps its own size, and consumers copy 1228800 bytes whatever comes.
        SourceBench bench;
        QVERIFY(bench.grab());
        bench.server.setPicture([](int) { return Picture { 640, 480, 1, ScriptedCamera::Bytes(307200) }; });
        LogCapture log;
        QVERIFY(bench.grab());
        cv::Mat matrix;
        QVERIFY(!bench.source->pushMatImage(matrix));
        QCOMPARE(bench.source->getIntensity(), -1.0);
        QVERIFY(log.contains("frame is too small: 640 480"));
    }
};

QTEST_GUILESS_MAIN(tst_baslerframedelivery_frame)
#include "tst_baslerframedelivery_frame.moc"
