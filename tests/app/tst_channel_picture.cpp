#include "app/channel_picture.h"

#include <QtTest>

/// The tints of the saved pictures.
class tst_channel_picture : public QObject {
    Q_OBJECT

private slots:
    void frame_isInThePlanesOfItsChannel_data();
    void frame_isInThePlanesOfItsChannel();
    void frameOfTheCaller_staysAsItIs();
};

namespace {

/// Every grey value, in rows that differ.
cv::Mat everyGreyValue()
{
    cv::Mat frame(3, 256, CV_8UC1);
    for (int row = 0; row < frame.rows; ++row)
        for (int column = 0; column < frame.cols; ++column)
            frame.at<uchar>(row, column) = static_cast<uchar>(column + 85 * row);
    return frame;
}

} // namespace

void tst_channel_picture::frame_isInThePlanesOfItsChannel_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<bool>("red");
    QTest::addColumn<bool>("green");
    QTest::addColumn<bool>("blue");
    QTest::newRow("bright field") << 0 << true << true << true;
    QTest::newRow("GFP") << 1 << false << true << false;
    QTest::newRow("RFP") << 2 << true << false << false;
    QTest::newRow("no channel") << 3 << true << true << true;
    QTest::newRow("no channel, below") << -1 << true << true << true;
}

void tst_channel_picture::frame_isInThePlanesOfItsChannel()
{
    QFETCH(int, channel);
    QFETCH(bool, red);
    QFETCH(bool, green);
    QFETCH(bool, blue);
    const cv::Mat frame = everyGreyValue();
    const cv::Mat picture = channelPicture(frame, static_cast<ILLUMINATION_type>(channel));
    QCOMPARE(picture.type(), CV_8UC3);
    QCOMPARE(picture.rows, frame.rows);
    QCOMPARE(picture.cols, frame.cols);
    for (int row = 0; row < frame.rows; ++row) {
        for (int column = 0; column < frame.cols; ++column) {
            const uchar grey = frame.at<uchar>(row, column);
            const auto& pixel = picture.at<cv::Vec3b>(row, column);
            QCOMPARE(pixel[0], red ? grey : uchar(0));
            QCOMPARE(pixel[1], green ? grey : uchar(0));
            QCOMPARE(pixel[2], blue ? grey : uchar(0));
        }
    }
}

void tst_channel_picture::frameOfTheCaller_staysAsItIs()
{
    const cv::Mat frame = everyGreyValue();
    cv::Mat picture = channelPicture(frame, ILLUMINATION_BF);
    picture.setTo(cv::Scalar::all(7));
    QCOMPARE(cv::norm(frame, everyGreyValue(), cv::NORM_INF), 0.0);
}

QTEST_APPLESS_MAIN(tst_channel_picture)

#include "tst_channel_picture.moc"
