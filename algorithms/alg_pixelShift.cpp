#include "algorithms/alg_pixelShift.h"

#include "algorithms/pixelShift_literal.h"
#include "algorithms/shift_search.h"

#include <QDebug>

#include <array>
#include <cmath>
#include <vector>

namespace {

/// What phaseCorrelatePixelShift logs; each round of the adaptive search is one such measurement and leaves
/// the same line, although its work is shared with the other rounds.
constexpr const char* kMeasurementSignature
    = "void alg_pixelShift::phaseCorrelatePixelShift(cv::Mat&, cv::Mat&, cv::Mat&, int, int, float*, float*)";

/// Thresholds of the adaptive search; the first `kWalkedThresholds` are tried.
constexpr std::array<int, 10> kThresholdRow { 15, 20, 25, 30, 35, 40, 45, 50, 55, 60 };
constexpr std::size_t kWalkedThresholds = 7;

/// Results of all rounds, GF and RF.
using Rounds = std::array<ShiftResults, 2>;

bool isMeasuredFast(const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf)
{
    return PhaseCorrelation::accepts(reference, gf) && PhaseCorrelation::accepts(reference, rf);
}

/// The walked thresholds, each for both channels by library calls alone.
Rounds walkLiterally(const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf)
{
    Rounds rounds;
    for (std::size_t round = 0; round < kWalkedThresholds; ++round) {
        qDebug() << kMeasurementSignature;
        const int threshold = kThresholdRow[round];
        const auto measured = pixelShift_literal::measure(reference, gf, rf, threshold, threshold);
        rounds[0].push_back(measured[0]);
        rounds[1].push_back(measured[1]);
    }
    return rounds;
}

Rounds walkFast(const cv::Mat& reference, const cv::Mat& gf, const cv::Mat& rf)
{
    for (std::size_t round = 0; round < kWalkedThresholds; ++round)
        qDebug() << kMeasurementSignature;
    const std::vector<int> thresholds(kThresholdRow.begin(), kThresholdRow.begin() + kWalkedThresholds);
    return measureShifts(reference, { ShiftChannel { gf, thresholds }, ShiftChannel { rf, thresholds } });
}

void storeShift(const PhaseShift& measured, std::size_t channel, float* shift, float* reliability)
{
    shift[2 * channel] = static_cast<float>(measured.shift.x);
    shift[2 * channel + 1] = static_cast<float>(measured.shift.y);
    reliability[channel] = static_cast<float>(measured.response);
}

/// Stores the round of the highest response above 0, the first of equal ones, and returns its threshold, or
/// 0 if there is none. Responses are compared as they are handed out, as floats.
int storeBestRound(const ShiftResults& rounds, std::size_t channel, float* shift, float* reliability)
{
    float bestResponse = 0.0F;
    int bestThreshold = 0;
    for (std::size_t round = 0; round < rounds.size(); ++round) {
        const auto response = static_cast<float>(rounds[round].response);
        if (response > bestResponse) {
            bestResponse = response;
            bestThreshold = kThresholdRow[round];
            storeShift(rounds[round], channel, shift, reliability);
        }
    }
    return bestThreshold;
}

} // namespace

alg_pixelShift::alg_pixelShift()
    : m_width(1280)
    , m_height(960)
{
}

void alg_pixelShift::phaseCorrelatePixelShift(cv::Mat& reference, cv::Mat& gf, cv::Mat& rf, int thresholdGF,
    int thresholdRF, float* shift, float* reliability)
{
    qDebug() << Q_FUNC_INFO;

    std::array<PhaseShift, 2> measured;
    if (isMeasuredFast(reference, gf, rf)) {
        const Rounds rounds = measureShifts(
            reference, { ShiftChannel { gf, { thresholdGF } }, ShiftChannel { rf, { thresholdRF } } });
        measured = { rounds[0].front(), rounds[1].front() };
    } else {
        measured = pixelShift_literal::measure(reference, gf, rf, thresholdGF, thresholdRF);
    }
    storeShift(measured[0], 0, shift, reliability);
    storeShift(measured[1], 1, shift, reliability);
}

void alg_pixelShift::phaseCorrelatePixelShift_adaptive(
    cv::Mat& reference, cv::Mat& gf, cv::Mat& rf, float* shift, float* reliability)
{
    const Rounds rounds
        = isMeasuredFast(reference, gf, rf) ? walkFast(reference, gf, rf) : walkLiterally(reference, gf, rf);

    const int thresholdGF = storeBestRound(rounds[0], 0, shift, reliability);
    const int thresholdRF = storeBestRound(rounds[1], 1, shift, reliability);

    qDebug() << Q_FUNC_INFO << "Calculated threshold values for GF, RF" << thresholdGF << thresholdRF;
    qDebug() << Q_FUNC_INFO << "Calculated pixel shift: shift_GF_X shift_GF_Y shift_RF_X, shift_RF_Y"
             << shift[0] << shift[1] << shift[2] << shift[3];
    qDebug() << Q_FUNC_INFO << "Reliability of shift calculation for GF and RF shifts" << reliability[0]
             << reliability[1];
}

double alg_pixelShift::setFluorescenceThreshold(cv::Mat& image, int mode, int th_idx)
{
    float step = 1.0F;
    if (mode == 1)
        step = static_cast<float>(th_idx * 0.5);
    else if (mode == 2)
        step = static_cast<float>(th_idx * 0.25);

    cv::Scalar mean;
    cv::Scalar stddev;
    cv::meanStdDev(image, mean, stddev);
    const double threshold = std::round(mean[0] + (static_cast<double>(step) + 1.0) * stddev[0]);

    qDebug() << "setFluorescenceThreshold"
             << "mean, stddev, th_idx, step" << mean[0] << stddev[0] << th_idx << step << "threshold"
             << threshold;
    return threshold;
}
