#include "tst_optics_samples.h"

#include <QtTest>

using namespace qr9::optics;
using namespace qr9::optics::samples;

/// Read noise and shot noise, frame by frame and pixel by pixel.
class tst_optics_noise : public QObject {
    Q_OBJECT
private slots:
    void readNoise_isThatOfTheUnit_data()
    {
        QTest::addColumn<double>("gainDb");
        QTest::newRow("0 dB") << 0.0;
        QTest::newRow("6 dB doubles it") << 6.0206;
    }

    void readNoise_isThatOfTheUnit()
    {
        QFETCH(double, gainDb);
        UnitConstants unit;
        unit.blackLevel = 20.0; // far from the lower end
        unit.readNoise = 1.0;
        OpticalState state = emptyInBrightField(unit);
        state.leds = {};
        state.gainDb = gainDb;
        cv::Scalar mean;
        cv::Scalar deviation;
        cv::meanStdDev(frameOf(unit, state), mean, deviation);
        // Rounding to whole grey values adds a variance of 1/12.
        const double factor = std::pow(10.0, gainDb / 20.0);
        QVERIFY(std::abs(mean[0] - 20.0) < 0.05);
        QVERIFY(std::abs(deviation[0] - std::sqrt(factor * factor + 1.0 / 12.0)) < 0.03);
    }

    void shotNoise_growsWithTheSignal()
    {
        UnitConstants unit;
        unit.readNoise = 0.6;
        unit.shotNoise = 0.02;
        const OpticalState state = emptyInBrightField(unit);
        const cv::Rect middle(kFrameWidth / 2 - 200, kFrameHeight / 2 - 200, 400, 400);
        cv::Mat one;
        cv::Mat two;
        frameOf(unit, state, 1)(middle).convertTo(one, CV_64F);
        frameOf(unit, state, 2)(middle).convertTo(two, CV_64F);
        const double signal = meanGrey(one) - unit.blackLevel;
        cv::Scalar mean;
        cv::Scalar deviation;
        cv::meanStdDev(one - two, mean, deviation);
        const double variance = deviation[0] * deviation[0] / 2.0;
        const double expected = 0.6 * 0.6 + 0.02 * signal + 1.0 / 12.0;
        QVERIFY2(
            std::abs(variance / expected - 1.0) < 0.05, qPrintable(QString::number(variance / expected)));
    }

    void frames_haveUnrelatedNoise()
    {
        UnitConstants unit;
        unit.blackLevel = 20.0;
        unit.readNoise = 3.0;
        OpticalState state = emptyInBrightField(unit);
        state.leds = {};
        cv::Mat one;
        cv::Mat two;
        frameOf(unit, state, 1).convertTo(one, CV_64F, 1.0, -20.0);
        frameOf(unit, state, 2).convertTo(two, CV_64F, 1.0, -20.0);
        QVERIFY(std::abs(cv::mean(one.mul(two))[0]) < 0.05 * 9.0);
        // Nor are neighbours in one frame related.
        const cv::Mat left = one.colRange(0, kFrameWidth - 1);
        const cv::Mat right = one.colRange(1, kFrameWidth);
        QVERIFY(std::abs(cv::mean(left.mul(right))[0]) < 0.05 * 9.0);
        const cv::Mat upper = one.rowRange(0, kFrameHeight - 1);
        const cv::Mat lower = one.rowRange(1, kFrameHeight);
        QVERIFY(std::abs(cv::mean(upper.mul(lower))[0]) < 0.05 * 9.0);
    }
};

QTEST_APPLESS_MAIN(tst_optics_noise)
#include "tst_optics_noise.moc"
