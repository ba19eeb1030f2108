#include "bench/shift_rounds.h"

#include "algorithms/alg_pixelShift.h"
#include "algorithms/pixelShift_literal.h"
#include "tests/algorithms/pictures.h"

#include <benchmark/benchmark.h>

#include <array>

namespace {

constexpr std::array kThresholds { 15, 20, 25, 30, 35, 40, 45 };

} // namespace

ShiftField::ShiftField()
{
    const cv::Mat field = pictures::cells(pictures::kFrameWidth, pictures::kFrameHeight, 1);
    reference = pictures::binary(field, 40);
    gf = pictures::moved(field, 3.25, -7.5);
    rf = pictures::moved(field, -11.0, 4.0);
}

void searchLiterally(ShiftField& field)
{
    std::array<PhaseShift, 2> best;
    for (const int threshold : kThresholds) {
        const auto measured
            = pixelShift_literal::measure(field.reference, field.gf, field.rf, threshold, threshold);
        for (std::size_t channel = 0; channel < best.size(); ++channel) {
            if (measured[channel].response > best[channel].response)
                best[channel] = measured[channel];
        }
    }
    benchmark::DoNotOptimize(best);
}

void searchBuilt(ShiftField& field)
{
    std::array<float, 4> shift {};
    std::array<float, 2> reliability {};
    alg_pixelShift().phaseCorrelatePixelShift_adaptive(
        field.reference, field.gf, field.rf, shift.data(), reliability.data());
    benchmark::DoNotOptimize(shift);
}
