#include "simulator/camera/Picture.h"

#include <opencv2/core.hpp>

#include <QTest>

using namespace qr9::sim;

// What a camera makes of what its sensor saw.
class tst_Picture : public QObject {
    Q_OBJECT

private:
    // A sensor of 960 rows of 1280 whose pixel at (x, y) has the grey value (x + 3 y) modulo 251.
    static cv::Mat sensor()
    {
        cv::Mat image(960, 1280, CV_8UC1);
        for (int y = 0; y < image.rows; ++y) {
            for (int x = 0; x < image.cols; ++x) {
                image.at<uchar>(y, x) = grey(x, y);
            }
        }
        return image;
    }
    static uchar grey(int x, int y) { return static_cast<uchar>((x + 3 * y) % 251); }
    static uchar at(const Picture& picture, int x, int y)
    {
        return static_cast<uchar>(picture.bytes.at(y * picture.width + x));
    }

private slots:
    void wholePicture_isTheSensors()
    {
        const Picture picture = develop(sensor(), {});
        QCOMPARE(picture.width, 1280);
        QCOMPARE(picture.height, 960);
        QCOMPARE(picture.bytes, QByteArray(reinterpret_cast<const char*>(sensor().data), 1280 * 960));
    }

    void smallPicture_beginsAtTheCornerOrInTheMiddle()
    {
        CaptureSettings settings;
        settings.width = 100;
        settings.height = 60;
        QCOMPARE(at(develop(sensor(), settings), 99, 59), grey(99, 59));
        settings.bCentreX = true;
        QCOMPARE(at(develop(sensor(), settings), 0, 0), grey(590, 0));
        settings.bCentreY = true;
        QCOMPARE(at(develop(sensor(), settings), 99, 59), grey(689, 509));
    }

    void margins_repeatTheOuterRows()
    {
        CaptureSettings settings;
        settings.marginRows = 2;
        const Picture picture = develop(sensor(), settings);
        QCOMPARE(picture.height, 964);
        QCOMPARE(at(picture, 7, 0), grey(7, 0));
        QCOMPARE(at(picture, 7, 2), grey(7, 0));
        QCOMPARE(at(picture, 7, 961), grey(7, 959));
        QCOMPARE(at(picture, 7, 963), grey(7, 959));
    }

    void twoBytes_holdTwelveBitsLowByteFirst()
    {
        CaptureSettings settings;
        settings.bytesPerPixel = 2;
        const Picture picture = develop(sensor(), settings);
        QCOMPARE(picture.bytes.size(), 2 * 1280 * 960);
        const int x = 200;
        const int value = static_cast<uchar>(picture.bytes.at(2 * x))
            + 256 * static_cast<uchar>(picture.bytes.at(2 * x + 1));
        QCOMPARE(value, 16 * grey(x, 0));
    }

    void gammaOfOneHalf_liftsTheMiddle()
    {
        CaptureSettings settings;
        settings.gamma = 0.5;
        const Picture picture = develop(sensor(), settings);
        QCOMPARE(static_cast<int>(at(picture, 0, 0)), 0);
        QCOMPARE(static_cast<int>(at(picture, 64, 0)), 128); // 255 x sqrt(64 / 255) = 127.7
        QCOMPARE(static_cast<int>(at(picture, 250, 0)), 252);
    }

    void pedestal_isAddedAndSaturates()
    {
        CaptureSettings settings;
        settings.pedestal = 10.5;
        const Picture picture = develop(sensor(), settings);
        QCOMPARE(static_cast<int>(at(picture, 100, 0)), 110);
        QCOMPARE(static_cast<int>(at(picture, 250, 0)), 255);
    }
};

QTEST_GUILESS_MAIN(tst_Picture)
#include "tst_picture.moc"
