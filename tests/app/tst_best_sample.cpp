#include "app/best_sample.h"

#include "app/autofocus_steps.h"
#include "tests/support/LogCapture.h"

#include <QtTest>

/// Which frame of a scan wins.
class tst_best_sample : public QObject {
    Q_OBJECT

private slots:
    void largestValue_wins();
    void equalValues_firstOneWins();
    void allZero_firstOneWins();
    void noMeasurement_takesTheFallback();
    void valueBelowZero_winsTheWalkAndTheFallbackStillApplies();
    void fallbackOfEachStep_isThis();
    void walk_isLoggedWithTheBestSoFar();
};

namespace {

FocusSamples samplesOf(const std::vector<double>& values)
{
    FocusSamples samples;
    for (const double value : values)
        samples.emplace_back(static_cast<int>(samples.size()) * 10, value);
    return samples;
}

} // namespace

void tst_best_sample::largestValue_wins()
{
    QCOMPARE(bestSample(samplesOf({ 1.0, 3.0, 2.0 }), 0, "[1]"), std::size_t(1));
}

void tst_best_sample::equalValues_firstOneWins()
{
    QCOMPARE(bestSample(samplesOf({ 1.0, 3.0, 3.0, 2.0 }), 0, "[1]"), std::size_t(1));
}

void tst_best_sample::allZero_firstOneWins()
{
    QCOMPARE(bestSample(samplesOf(std::vector<double>(15, 0.0)), 10, "[1]"), std::size_t(0));
}

void tst_best_sample::noMeasurement_takesTheFallback()
{
    QCOMPARE(bestSample(samplesOf(std::vector<double>(15, -1.0)), 10, "[1]"), std::size_t(10));
}

void tst_best_sample::valueBelowZero_winsTheWalkAndTheFallbackStillApplies()
{
    const LogCapture log;
    QCOMPARE(bestSample(samplesOf({ -1.0, -0.5, -1.0, -1.0, -1.0, -1.0, -1.0 }), 5, "[2]"), std::size_t(5));
    QCOMPARE(log.lines().last(), QString("[2] 6 60 -1 -0.5"));
}

void tst_best_sample::fallbackOfEachStep_isThis()
{
    QCOMPARE(kAutofocusSteps[0].fallbackIndex, 10);
    QCOMPARE(kAutofocusSteps[1].fallbackIndex, 5);
    QCOMPARE(kAutofocusSteps[2].fallbackIndex, 2);
}

void tst_best_sample::walk_isLoggedWithTheBestSoFar()
{
    const LogCapture log;
    bestSample(samplesOf({ 1.5, 0.5, 2.5 }), 0, "[1]");
    QCOMPARE(log.lines(), QStringList({ "[1] 0 0 1.5 -1", "[1] 1 10 0.5 1.5", "[1] 2 20 2.5 1.5" }));
}

QTEST_APPLESS_MAIN(tst_best_sample)
#include "tst_best_sample.moc"
