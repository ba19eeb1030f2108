// The intensity measurement of a frame of cells: the plain library calls, and what the product does instead.

#include "camera/intensity.h"
#include "tests/camera/cell_pictures.h"
#include "tests/camera/literal_intensity.h"

#include <opencv2/core.hpp>

#include <benchmark/benchmark.h>

namespace {

constexpr int kOffset = 15;

cv::Mat pictureFor(const benchmark::State& state)
{
    cv::setNumThreads(1);
    return pictures::squares(static_cast<int>(state.range(0)), 18, 180, 30);
}

void objectLiteral(benchmark::State& state)
{
    const cv::Mat picture = pictureFor(state);
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(literal::intensityPerObject(picture, kOffset));
}

void objectBuilt(benchmark::State& state)
{
    const cv::Mat picture = pictureFor(state);
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(intensity::perObject(picture, intensity::findObjects(picture, kOffset)));
}

void backgroundLiteral(benchmark::State& state)
{
    const cv::Mat picture = pictureFor(state);
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(literal::intensityBackground(picture, kOffset));
}

void backgroundBuilt(benchmark::State& state)
{
    const cv::Mat picture = pictureFor(state);
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(intensity::background(picture, intensity::findObjects(picture, kOffset)));
}

/// Everything that a press of the button measures.
void wholeLiteral(benchmark::State& state)
{
    const cv::Mat picture = pictureFor(state);
    for ([[maybe_unused]] const auto _ : state) {
        benchmark::DoNotOptimize(literal::intensityPerObject(picture, kOffset));
        benchmark::DoNotOptimize(literal::intensityBackground(picture, kOffset));
    }
}

void wholeBuilt(benchmark::State& state)
{
    const cv::Mat picture = pictureFor(state);
    for ([[maybe_unused]] const auto _ : state) {
        const intensity::Objects objects = intensity::findObjects(picture, kOffset);
        benchmark::DoNotOptimize(intensity::perObject(picture, objects));
        benchmark::DoNotOptimize(intensity::background(picture, objects));
    }
}

} // namespace

BENCHMARK(objectLiteral)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(objectBuilt)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(backgroundLiteral)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(backgroundBuilt)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeLiteral)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeBuilt)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);
