// The three focus measures on a camera frame, warm, on one core.

#include "algorithms/alg_autoFocus.h"
#include "algorithms/focus_literal.h"
#include "bench/comparison.h"
#include "tests/algorithms/pictures.h"

#include <benchmark/benchmark.h>

using pictures::kFrameHeight;
using pictures::kFrameWidth;

int main(int argc, char** argv)
{
    const cv::Mat frame = pictures::cells(kFrameWidth, kFrameHeight, 1);
    const alg_autoFocus focus;
    const auto one = comparison::Cores::one;
    comparison::add({ "variance of the Laplacian", one, 10.0,
        [&] { benchmark::DoNotOptimize(focus_literal::varianceOfLaplacian(frame)); },
        [&] { benchmark::DoNotOptimize(focus.varianceOfLaplacian(frame)); } });
    comparison::add({ "mean squared Sobel gradient", one, 40.0,
        [&] { benchmark::DoNotOptimize(focus_literal::tenengrad(frame, 3)); },
        [&] { benchmark::DoNotOptimize(focus.tenengrad(frame, 3)); } });
    comparison::add({ "mean above twice the mean", one, 20.0,
        [&] { benchmark::DoNotOptimize(focus_literal::neonTRILLOM(frame, 2.0, kFrameWidth, kFrameHeight)); },
        [&] { benchmark::DoNotOptimize(focus.neonTRILLOM(frame, 2.0, kFrameWidth, kFrameHeight)); } });
    return comparison::run(argc, argv);
}
