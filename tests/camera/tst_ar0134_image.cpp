#include "camera/ar0134_image.h"

#include <opencv2/imgcodecs.hpp>

#include <QtTest>

#include <vector>

using Bytes = std::vector<Uint8>;

namespace {

// The library's picture formats.
enum Format { Raw, Rgb, Yuv, Jpg, Mono, RawDual, MonoDual };

ArduCamOutData frameOf(
    Bytes& bytes, int format, Uint32 width, Uint32 height, Uint8 pixelBytes = 1, Uint8 bits = 8)
{
    ArduCamOutData frame {};
    frame.stImagePara.u32Width = width;
    frame.stImagePara.u32Height = height;
    frame.stImagePara.u8PixelBytes = pixelBytes;
    frame.stImagePara.u8PixelBits = bits;
    frame.stImagePara.u32Size = static_cast<Uint32>(bytes.size());
    frame.stImagePara.emImageFmtMode = static_cast<format_mode>(format);
    frame.pu8ImageData = bytes.data();
    return frame;
}

Bytes grays(const cv::Mat& mat)
{
    return mat.isContinuous() && mat.type() == CV_8UC1 ? Bytes(mat.datastart, mat.dataend) : Bytes();
}

} // namespace

// From the bytes of a board to a picture: the seven formats.
class tst_ar0134_image : public QObject {
    Q_OBJECT

private slots:
    void oneBytePixels_areTakenAsTheyAre_data() { rawAndMono(); }
    void oneBytePixels_areTakenAsTheyAre()
    {
        QFETCH(int, format);
        Bytes bytes { 0, 1, 2, 253, 254, 255 };
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, format, 3, 2), 0);
        QCOMPARE(mat.cols, 3);
        QCOMPARE(mat.rows, 2);
        QVERIFY(grays(mat) == bytes);
    }

    void picture_ownsItsPixels_data() { rawAndMono(); }
    void picture_ownsItsPixels()
    {
        QFETCH(int, format);
        Bytes bytes { 1, 2, 3, 4 };
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, format, 2, 2), 0);
        std::fill(bytes.begin(), bytes.end(), Uint8(9));
        QVERIFY(grays(mat) == (Bytes { 1, 2, 3, 4 }));
    }

    void twoBytePixels_comeLowByteFirstAndKeepTheirTopEightValidBits_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("gray");
        for (const int format : { Raw, Mono }) {
            const char* name = format == Raw ? "raw" : "mono";
            QTest::addRow("%s, 10 bits, all set", name) << format << 10 << 0x3FF << 255;
            QTest::addRow("%s, 10 bits", name) << format << 10 << 0x2A7 << 0xA9;
            QTest::addRow("%s, 12 bits", name) << format << 12 << 0xABC << 0xAB;
            QTest::addRow("%s, 12 bits, low ones alone", name) << format << 12 << 0x00F << 0;
            QTest::addRow("%s, 16 bits", name) << format << 16 << 0xCDEF << 0xCD;
            QTest::addRow("%s, 8 bits", name) << format << 8 << 0x7B << 0x7B;
        }
    }
    void twoBytePixels_comeLowByteFirstAndKeepTheirTopEightValidBits()
    {
        QFETCH(int, format);
        QFETCH(int, bits);
        QFETCH(int, value);
        QFETCH(int, gray);
        Bytes bytes { static_cast<Uint8>(value & 0xFF), static_cast<Uint8>(value >> 8), 0, 0 };
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, format, 2, 1, 2, static_cast<Uint8>(bits)), 0);
        QVERIFY(grays(mat) == (Bytes { static_cast<Uint8>(gray), 0 }));
    }

    void rgb565_hasRedOnTopAndBlueBelow()
    {
        Bytes bytes { 0x00, 0xF8, 0xE0, 0x07, 0x1F, 0x00, 0x00, 0x00 };
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, Rgb, 4, 1, 2, 16), 0);
        QCOMPARE(mat.type(), CV_8UC3);
        const auto& red = mat.at<cv::Vec3b>(0, 0);
        const auto& green = mat.at<cv::Vec3b>(0, 1);
        const auto& blue = mat.at<cv::Vec3b>(0, 2);
        QVERIFY(red[2] >= 248 && red[1] == 0 && red[0] == 0);
        QVERIFY(green[2] == 0 && green[1] >= 248 && green[0] == 0);
        QVERIFY(blue[2] == 0 && blue[1] == 0 && blue[0] >= 248);
        QVERIFY(mat.at<cv::Vec3b>(0, 3) == cv::Vec3b(0, 0, 0));
    }

    void yuv422_withoutColourIsGrey()
    {
        Bytes bytes { 235, 128, 16, 128 }; // white and black of the video range
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, Yuv, 2, 1, 2, 8), 0);
        QCOMPARE(mat.type(), CV_8UC3);
        QVERIFY(mat.at<cv::Vec3b>(0, 0) == cv::Vec3b(255, 255, 255));
        QVERIFY(mat.at<cv::Vec3b>(0, 1) == cv::Vec3b(0, 0, 0));
    }

    void yuv422OfOddWidth_givesNoPicture()
    {
        Bytes bytes(6, 128);
        QVERIFY(ar0134::toMat(frameOf(bytes, Yuv, 3, 1, 2, 8), 0).empty());
    }

    void jpg_isDecoded()
    {
        Bytes bytes;
        QVERIFY(cv::imencode(".jpg", cv::Mat(16, 24, CV_8UC1, cv::Scalar(77)), bytes));
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, Jpg, 24, 16), 0);
        QCOMPARE(mat.type(), CV_8UC1);
        QCOMPARE(mat.cols, 24);
        QCOMPARE(mat.rows, 16);
        QVERIFY(cv::norm(mat, cv::Mat(16, 24, CV_8UC1, cv::Scalar(77)), cv::NORM_INF) <= 1.0);
    }

    void brokenJpg_givesNoPicture()
    {
        Bytes bytes(100, 0x55);
        QVERIFY(ar0134::toMat(frameOf(bytes, Jpg, 24, 16), 0).empty());
    }

    void separationImage_putsTheSensorsSideBySide()
    {
        const Bytes bytes { 1, 101, 2, 102, 3, 103, 4, 104 };
        QVERIFY(ar0134::separationImage(bytes.data(), 4, 2, 1) == (Bytes { 1, 2, 101, 102, 3, 4, 103, 104 }));
    }

    void separationImageOfTwoBytePixels_keepsThemTogether()
    {
        const Bytes bytes { 1, 2, 101, 102, 3, 4, 103, 104 };
        QVERIFY(ar0134::separationImage(bytes.data(), 4, 1, 2) == (Bytes { 1, 2, 3, 4, 101, 102, 103, 104 }));
    }

    void monoOfTwoSensors_isGreyInThreeChannels_data()
    {
        QTest::addColumn<int>("pixelBytes");
        QTest::newRow("one byte") << 1;
        QTest::newRow("two bytes") << 2;
    }
    void monoOfTwoSensors_isGreyInThreeChannels()
    {
        QFETCH(int, pixelBytes);
        Bytes bytes { 10, 110, 20, 120 };
        if (pixelBytes == 2) {
            bytes = { 0, 10, 0, 110, 0, 20, 0, 120 };
        }
        const auto frame
            = frameOf(bytes, MonoDual, 4, 1, static_cast<Uint8>(pixelBytes), pixelBytes == 2 ? 16 : 8);
        const cv::Mat mat = ar0134::toMat(frame, 0);
        QCOMPARE(mat.type(), CV_8UC3);
        const Bytes expected { 10, 20, 110, 120 };
        for (int x = 0; x < 4; ++x) {
            const Uint8 gray = expected[static_cast<std::size_t>(x)];
            QVERIFY(mat.at<cv::Vec3b>(0, x) == cv::Vec3b(gray, gray, gray));
        }
    }

    void rawOfTwoSensors_isColouredByTheOrderOfTheFilter_data()
    {
        QTest::addColumn<int>("subFormat");
        QTest::addColumn<int>("redX"); // place of the red pixel in each square of two by two
        QTest::addColumn<int>("redY");
        QTest::newRow("RG") << 0 << 0 << 0;
        QTest::newRow("GR") << 1 << 1 << 0;
        QTest::newRow("GB") << 2 << 0 << 1;
        QTest::newRow("BG") << 3 << 1 << 1;
    }
    void rawOfTwoSensors_isColouredByTheOrderOfTheFilter()
    {
        QFETCH(int, subFormat);
        QFETCH(int, redX);
        QFETCH(int, redY);
        constexpr int kWidth = 16;
        constexpr int kHeight = 8;
        // Only the red pixels of both sensors are lit; the pixels of the two come in turn.
        Bytes bytes;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const int column = x / 2 + (x % 2) * kWidth / 2;
                const bool red = column % 2 == redX && y % 2 == redY;
                bytes.push_back(red ? 200 : 0);
            }
        }
        const cv::Mat mat = ar0134::toMat(frameOf(bytes, RawDual, kWidth, kHeight), subFormat);
        QCOMPARE(mat.type(), CV_8UC3);
        const cv::Scalar sum = cv::sum(mat(cv::Rect(2, 2, kWidth - 4, kHeight - 4)));
        QCOMPARE(sum[0], 0.0);
        QCOMPARE(sum[1], 0.0);
        QVERIFY(sum[2] > 0.0);
    }

    void bufferThatIsTooShort_givesNoPicture_data()
    {
        QTest::addColumn<int>("format");
        for (const int format : { Raw, Rgb, Yuv, Mono, RawDual, MonoDual }) {
            QTest::addRow("format %d", format) << format;
        }
    }
    void bufferThatIsTooShort_givesNoPicture()
    {
        QFETCH(int, format);
        Bytes bytes(4 * 2 * 2 - 1, 5);
        QVERIFY(ar0134::toMat(frameOf(bytes, format, 4, 2, 2, 12), 0).empty());
    }

    void noBuffer_givesNoPicture()
    {
        Bytes bytes(8, 5);
        ArduCamOutData frame = frameOf(bytes, Mono, 4, 2);
        frame.pu8ImageData = nullptr;
        QVERIFY(ar0134::toMat(frame, 0).empty());
    }

    void noSize_givesNoPicture()
    {
        Bytes bytes(8, 5);
        QVERIFY(ar0134::toMat(frameOf(bytes, Mono, 0, 2), 0).empty());
        QVERIFY(ar0134::toMat(frameOf(bytes, Mono, 0xFFFFFFFF, 0xFFFFFFFF), 0).empty());
    }

    void unknownFormat_givesNoPicture()
    {
        Bytes bytes(8, 5);
        ArduCamOutData frame = frameOf(bytes, 7, 4, 2);
        QVERIFY(ar0134::toMat(frame, 0).empty());
    }

private:
    static void rawAndMono()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("raw") << int(Raw);
        QTest::newRow("mono") << int(Mono);
    }
};

QTEST_APPLESS_MAIN(tst_ar0134_image)
#include "tst_ar0134_image.moc"
