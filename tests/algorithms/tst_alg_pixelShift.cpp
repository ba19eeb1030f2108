#include "algorithms/alg_pixelShift.h"

#include "tests/algorithms/pictures.h"
#include "tests/support/LogCapture.h"

#include <opencv2/imgproc.hpp>

#include <QtTest>

#include <array>
#include <cmath>

using namespace pictures;

namespace {

const QString measurementLine = QStringLiteral("void alg_pixelShift::phaseCorrelatePixelShift("
                                               "cv::Mat&, cv::Mat&, cv::Mat&, int, int, float*, float*)");
const QString adaptiveSignature = QStringLiteral("void alg_pixelShift::phaseCorrelatePixelShift_adaptive("
                                                 "cv::Mat&, cv::Mat&, cv::Mat&, float*, float*)");

/// What a caller sees of one call.
struct Outcome {
    std::array<float, 4> shift { 91.0F, 92.0F, 93.0F, 94.0F }; // the caller's values before
    std::array<float, 2> reliability { 95.0F, 96.0F };
    QStringList log;

    /// The best thresholds, as logged: "GF RF".
    QString thresholds() const
    {
        const QString marker = QStringLiteral("Calculated threshold values for GF, RF ");
        for (const QString& line : log) {
            if (line.contains(marker))
                return line.section(marker, 1);
        }
        return {};
    }
};

Outcome searchAdaptively(cv::Mat reference, cv::Mat gf, cv::Mat rf)
{
    Outcome outcome;
    const LogCapture log;
    alg_pixelShift().phaseCorrelatePixelShift_adaptive(
        reference, gf, rf, outcome.shift.data(), outcome.reliability.data());
    outcome.log = log.lines();
    return outcome;
}

/// Two-level cells, as the caller prepares the bright-field picture.
cv::Mat brightField()
{
    return binary(cells(320, 240, 5), 60);
}

/// A channel that is exactly `reference` when thresholded at `level`, and has specks besides at any lower
/// one.
cv::Mat channelBestAt(const cv::Mat& reference, int level)
{
    cv::Mat channel = reference.clone();
    cv::Mat specks = random(reference.cols, reference.rows, 77);
    channel.setTo(level, (specks < 40) & (reference == 0));
    return channel;
}

bool isNear(float measured, double expected)
{
    return std::abs(measured - expected) < 0.05;
}

} // namespace

/// The measurement of the shift between channels, and the search for the threshold to measure it at.
class tst_alg_pixelShift : public QObject {
    Q_OBJECT

private slots:
    void newObject_knowsTheFrameSize();
    void identicalImages_shiftIsZeroAtTheHighestResponse();
    void movedCopies_giveTheirMovesInOrder();
    void shiftHasTheSignOfTheLibrary();
    void fractionalMove_isFoundToAFractionOfAPixel();
    void channelUpToGrey15_leavesTheCallersValues();
    void channelUpToGrey15_doesNotDisturbTheOther();
    void equalResponses_lowerThresholdWins();
    void channelsSettleOnDifferentThresholds_data();
    void channelsSettleOnDifferentThresholds();
    void thresholdsAbove45_areNotTried();
    void oneMeasurement_usesAThresholdForEachChannel();
    void oneMeasurement_logsItsSignature();
    void adaptiveSearch_logsSevenMeasurementsAndThreeResults();
    void differentSizes_endInTheLibrarysException();
};

void tst_alg_pixelShift::newObject_knowsTheFrameSize()
{
    const alg_pixelShift shift;
    QCOMPARE(shift.m_width, 1280);
    QCOMPARE(shift.m_height, 960);
}

void tst_alg_pixelShift::identicalImages_shiftIsZeroAtTheHighestResponse()
{
    const cv::Mat reference = brightField();
    const Outcome outcome
        = searchAdaptively(reference, channelBestAt(reference, 30), channelBestAt(reference, 40));
    for (const float shift : outcome.shift)
        QVERIFY2(isNear(shift, 0.0), QByteArray::number(shift));
    for (const float reliability : outcome.reliability)
        QVERIFY2(reliability > 0.9F, QByteArray::number(reliability));
    QCOMPARE(outcome.thresholds(), QStringLiteral("30 40"));
}

void tst_alg_pixelShift::movedCopies_giveTheirMovesInOrder()
{
    const cv::Mat reference = brightField();
    const Outcome outcome = searchAdaptively(reference, moved(reference, 5, -3), moved(reference, -7, 11));
    QVERIFY(isNear(outcome.shift[0], 5));
    QVERIFY(isNear(outcome.shift[1], -3));
    QVERIFY(isNear(outcome.shift[2], -7));
    QVERIFY(isNear(outcome.shift[3], 11));
}

void tst_alg_pixelShift::shiftHasTheSignOfTheLibrary()
{
    const cv::Mat reference = brightField();
    const cv::Mat channel = moved(reference, 4, 9);
    cv::Mat reference32;
    cv::Mat channel32;
    reference.convertTo(reference32, CV_32F);
    channel.convertTo(channel32, CV_32F);
    double response = 0.0;
    const cv::Point2d expected = cv::phaseCorrelate(reference32, channel32, cv::noArray(), &response);

    const Outcome outcome = searchAdaptively(reference, channel, channel);
    QVERIFY(sameBits(outcome.shift[0], static_cast<float>(expected.x)));
    QVERIFY(sameBits(outcome.shift[1], static_cast<float>(expected.y)));
    QVERIFY(sameBits(outcome.reliability[1], static_cast<float>(response)));
}

void tst_alg_pixelShift::fractionalMove_isFoundToAFractionOfAPixel()
{
    const cv::Mat picture = cells(640, 480, 6);
    const Outcome outcome
        = searchAdaptively(binary(picture, 30), moved(picture, 2.5, 0.5), moved(picture, -1.5, 6.25));
    QVERIFY2(std::abs(outcome.shift[0] - 2.5) < 0.3, QByteArray::number(outcome.shift[0]));
    QVERIFY2(std::abs(outcome.shift[1] - 0.5) < 0.3, QByteArray::number(outcome.shift[1]));
    QVERIFY2(std::abs(outcome.shift[2] + 1.5) < 0.3, QByteArray::number(outcome.shift[2]));
    QVERIFY2(std::abs(outcome.shift[3] - 6.25) < 0.3, QByteArray::number(outcome.shift[3]));
}

void tst_alg_pixelShift::channelUpToGrey15_leavesTheCallersValues()
{
    const cv::Mat dim = uniform(320, 240, 15);
    const Outcome outcome = searchAdaptively(brightField(), dim, dim);
    const Outcome before;
    QCOMPARE(outcome.shift, before.shift);
    QCOMPARE(outcome.reliability, before.reliability);
    QCOMPARE(outcome.thresholds(), QStringLiteral("0 0"));
}

void tst_alg_pixelShift::channelUpToGrey15_doesNotDisturbTheOther()
{
    const cv::Mat reference = brightField();
    const Outcome outcome = searchAdaptively(reference, uniform(320, 240, 15), moved(reference, 2, 6));
    QCOMPARE(outcome.shift[0], 91.0F);
    QCOMPARE(outcome.shift[1], 92.0F);
    QCOMPARE(outcome.reliability[0], 95.0F);
    QVERIFY(isNear(outcome.shift[2], 2));
    QVERIFY(isNear(outcome.shift[3], 6));
}

void tst_alg_pixelShift::equalResponses_lowerThresholdWins()
{
    const cv::Mat reference = brightField();
    // One grey level above every threshold: each round sees the same two-level image.
    QCOMPARE(searchAdaptively(reference, moved(reference, 1, 1), reference / 3).thresholds(),
        QStringLiteral("15 15"));
    // Levels between 20 and 25: equal from the second round on.
    QCOMPARE(searchAdaptively(reference, channelBestAt(reference, 20), reference).thresholds(),
        QStringLiteral("20 15"));
}

void tst_alg_pixelShift::channelsSettleOnDifferentThresholds_data()
{
    QTest::addColumn<int>("levelGF");
    QTest::addColumn<int>("levelRF");
    QTest::addColumn<QString>("thresholds");
    QTest::newRow("first and last") << 15 << 45 << "15 45";
    QTest::newRow("last and first") << 45 << 15 << "45 15";
    QTest::newRow("between thresholds") << 16 << 36 << "20 40";
    QTest::newRow("neighbours") << 30 << 35 << "30 35";
}

void tst_alg_pixelShift::channelsSettleOnDifferentThresholds()
{
    QFETCH(int, levelGF);
    QFETCH(int, levelRF);
    QFETCH(QString, thresholds);
    const cv::Mat reference = brightField();
    const Outcome outcome
        = searchAdaptively(reference, channelBestAt(reference, levelGF), channelBestAt(reference, levelRF));
    QCOMPARE(outcome.thresholds(), thresholds);
}

void tst_alg_pixelShift::thresholdsAbove45_areNotTried()
{
    // Both would be perfect at 50; up to 45 their specks are in the way.
    const cv::Mat reference = brightField();
    const cv::Mat channel = channelBestAt(reference, 50);
    const Outcome outcome = searchAdaptively(reference, channel, channel);
    QCOMPARE(outcome.thresholds(), QStringLiteral("15 15"));
    QVERIFY2(outcome.reliability[0] < 0.9F, QByteArray::number(outcome.reliability[0]));
}

void tst_alg_pixelShift::oneMeasurement_usesAThresholdForEachChannel()
{
    cv::Mat reference = brightField();
    cv::Mat gf = channelBestAt(moved(reference, 3, 4), 100);
    cv::Mat rf = channelBestAt(moved(reference, -5, 6), 20);
    Outcome outcome;
    alg_pixelShift().phaseCorrelatePixelShift(
        reference, gf, rf, 100, 20, outcome.shift.data(), outcome.reliability.data());
    QVERIFY(isNear(outcome.shift[0], 3));
    QVERIFY(isNear(outcome.shift[1], 4));
    QVERIFY(isNear(outcome.shift[2], -5));
    QVERIFY(isNear(outcome.shift[3], 6));

    Outcome exchanged;
    alg_pixelShift().phaseCorrelatePixelShift(
        reference, gf, rf, 20, 100, exchanged.shift.data(), exchanged.reliability.data());
    QVERIFY(exchanged.reliability[0] < outcome.reliability[0]);
}

void tst_alg_pixelShift::oneMeasurement_logsItsSignature()
{
    cv::Mat reference = brightField();
    Outcome outcome;
    const LogCapture log;
    alg_pixelShift().phaseCorrelatePixelShift(
        reference, reference, reference, 15, 15, outcome.shift.data(), outcome.reliability.data());
    QCOMPARE(log.lines(), QStringList { measurementLine });
}

void tst_alg_pixelShift::adaptiveSearch_logsSevenMeasurementsAndThreeResults()
{
    const cv::Mat dim = uniform(320, 240, 3);
    const Outcome outcome = searchAdaptively(brightField(), dim, dim);
    QStringList expected;
    for (int round = 0; round < 7; ++round)
        expected += measurementLine;
    expected += adaptiveSignature + QStringLiteral(" Calculated threshold values for GF, RF 0 0");
    expected += adaptiveSignature
        + QStringLiteral(" Calculated pixel shift: shift_GF_X shift_GF_Y shift_RF_X, shift_RF_Y 91 92 93 94");
    expected
        += adaptiveSignature + QStringLiteral(" Reliability of shift calculation for GF and RF shifts 95 96");
    QCOMPARE(outcome.log, expected);
}

void tst_alg_pixelShift::differentSizes_endInTheLibrarysException()
{
    cv::Mat reference = brightField();
    cv::Mat same = reference.clone();
    cv::Mat narrower = uniform(319, 240, 50);
    Outcome outcome;
    const LogCapture log;
    QVERIFY_EXCEPTION_THROWN(alg_pixelShift().phaseCorrelatePixelShift_adaptive(
                                 reference, same, narrower, outcome.shift.data(), outcome.reliability.data()),
        cv::Exception);
    QVERIFY_EXCEPTION_THROWN(alg_pixelShift().phaseCorrelatePixelShift(reference, narrower, same, 15, 15,
                                 outcome.shift.data(), outcome.reliability.data()),
        cv::Exception);
    QCOMPARE(outcome.shift, Outcome().shift);
    QCOMPARE(outcome.reliability, Outcome().reliability);
}

QTEST_APPLESS_MAIN(tst_alg_pixelShift)
#include "tst_alg_pixelShift.moc"
