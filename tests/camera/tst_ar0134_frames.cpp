#include "tests/camera/Ar0134Tests.h"

#include <QtTest>

using qr9::wire::Kind;
using Bytes = ScriptedBoard::Bytes;

namespace {

constexpr std::size_t kWidth = 1280;
constexpr std::size_t kRows = 964;

/// A picture whose rows tell where they come from: the two above, the 960 of the frame, the two below.
Bytes markedPicture(std::uint8_t above, std::uint8_t inside, std::uint8_t below)
{
    Bytes bytes(kWidth * kRows, inside);
    std::fill_n(bytes.begin(), 2 * kWidth, above);
    std::fill_n(bytes.end() - 2 * kWidth, 2 * kWidth, below);
    return bytes;
}

} // namespace

// The frame that a trigger brings, as the program gets it.
class tst_ar0134_frames : public DriverTest {
    Q_OBJECT

private slots:
    void beforeTheFirstFrame_thereIsNoPicture()
    {
        open();
        cv::Mat mat(3, 2, CV_8UC1, cv::Scalar(7));
        QVERIFY(!m_camera->getMatImg(mat));
        QCOMPARE(mat.rows, 3);
        QCOMPARE(cv::countNonZero(mat == 7), 6);
        QImage image = blackImage();
        QVERIFY(!m_camera->getQImg(image));
        QCOMPARE(m_camera->getIntensity(), -1.0);
    }

    void trigger_bringsOneFrame()
    {
        open();
        const int before = AR0134::totalFrames();
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(m_ready->count(), 1);
        QCOMPARE(AR0134::totalFrames(), before + 1);
        QCOMPARE(m_board->count(Kind::Trigger), 1);
        QVERIFY(m_errors->isEmpty());
        // Out of live mode none follows.
        QCoreApplication::processEvents();
        QCOMPARE(m_board->count(Kind::Trigger), 1);
    }

    void matImg_leavesOutTwoRowsAboveAndTwoBelow()
    {
        open();
        m_board->setPicture([](int) { return markedPicture(10, 20, 30); });
        m_camera->slot_executeSoftwareTrigger();
        cv::Mat mat;
        QVERIFY(m_camera->getMatImg(mat));
        QCOMPARE(mat.cols, 1280);
        QCOMPARE(mat.rows, 960);
        QCOMPARE(cv::countNonZero(mat == 20), 1280 * 960);
    }

    void matImg_fillsTheCallersBuffer()
    {
        open();
        std::vector<uchar> buffer(std::size_t(1280) * 960);
        cv::Mat header(960, 1280, CV_8UC1, buffer.data());
        m_camera->slot_executeSoftwareTrigger();
        QVERIFY(m_camera->getMatImg(header));
        QCOMPARE(header.data, buffer.data());
        QCOMPARE(int(buffer.front()), 100);
        QCOMPARE(int(buffer.back()), 100);
    }

    void qImg_hasTheSameRegion()
    {
        open();
        m_board->setPicture([](int) {
            Bytes bytes = markedPicture(10, 20, 30);
            bytes[2 * kWidth] = 21;
            bytes[962 * kWidth - 1] = 22;
            return bytes;
        });
        m_camera->slot_executeSoftwareTrigger();
        QImage image = blackImage();
        QVERIFY(m_camera->getQImg(image));
        QCOMPARE(int(image.constScanLine(0)[0]), 21);
        QCOMPARE(int(image.constScanLine(0)[1]), 20);
        QCOMPARE(int(image.constScanLine(959)[1279]), 22);
    }

    void qImgThatIsTooSmall_isFalse()
    {
        open();
        m_camera->slot_executeSoftwareTrigger();
        QImage small(1280, 959, QImage::Format_Indexed8);
        QVERIFY(!m_camera->getQImg(small));
    }

    void intensity_sumsTwoRowsMoreThanThePicture()
    {
        open();
        m_board->setPicture([](int) { return markedPicture(10, 1, 30); });
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(m_camera->getIntensity(), 1280.0 * 960.0 + 2.0 * 1280.0 * 30.0);
    }

    void frameSmallerThanTheRegion_isFalseAndNoException_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("picture");
        QTest::newRow("much smaller") << 640 << 480 << false;
        QTest::newRow("one column less") << 1279 << 964 << false;
        QTest::newRow("one row less") << 1280 << 961 << false;
        QTest::newRow("large enough for the picture alone") << 1280 << 962 << true;
    }
    void frameSmallerThanTheRegion_isFalseAndNoException()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, picture);
        m_bench->setPicture(width, height, 8, "4, 0");
        open();
        m_board->setPicture([width, height](int) {
            return Bytes(static_cast<std::size_t>(width * height), std::uint8_t(9));
        });
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(m_ready->count(), 1);
        cv::Mat mat;
        QCOMPARE(m_camera->getMatImg(mat), picture);
        QImage image = blackImage();
        QCOMPARE(m_camera->getQImg(image), picture);
        QCOMPARE(m_camera->getIntensity(), -1.0);
    }

    void pictureInColour_isNoImageOfGreyValues()
    {
        m_bench->setPicture(1280, 964, 16, "1");
        open();
        m_board->setPicture([](int) { return Bytes(2 * kWidth * kRows, 9); });
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(m_ready->count(), 1);
        QImage image = blackImage();
        QVERIFY(!m_camera->getQImg(image));
    }

    void twoBytePixelsOfTheFile_keepTheirTopEightBits()
    {
        m_bench->setPicture(1280, 964, 12, "4, 0");
        open();
        m_board->setPicture([](int) {
            Bytes bytes(2 * kWidth * kRows, 0xBC);
            for (std::size_t i = 1; i < bytes.size(); i += 2) {
                bytes[i] = 0x0A;
            }
            return bytes;
        });
        m_camera->slot_executeSoftwareTrigger();
        cv::Mat mat;
        QVERIFY(m_camera->getMatImg(mat));
        QCOMPARE(cv::countNonZero(mat == 0xAB), 1280 * 960);
    }

    void newestFrame_outlivesTheLibrarysBuffer()
    {
        open();
        // The second picture lacks a byte: it overwrites the library's buffer and is no frame.
        m_board->setPicture(
            [](int frame) { return Bytes(kWidth * kRows - (frame == 2 ? 1 : 0), frame == 2 ? 99 : 5); });
        m_camera->slot_executeSoftwareTrigger();
        m_camera->slot_executeSoftwareTrigger();
        QCOMPARE(errors(), QVector<int> { 9 });
        cv::Mat mat;
        QVERIFY(m_camera->getMatImg(mat));
        QCOMPARE(cv::countNonZero(mat == 5), 1280 * 960);
    }

private:
    static QImage blackImage()
    {
        QImage image(1280, 960, QImage::Format_Indexed8);
        image.fill(0);
        return image;
    }
};

QTEST_GUILESS_MAIN(tst_ar0134_frames)
#include "tst_ar0134_frames.moc"
