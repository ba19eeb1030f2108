// The intensity measurement of a frame of cells, as a press of its button makes it.

#include "bench/comparison.h"
#include "camera/intensity.h"
#include "tests/camera/cell_pictures.h"
#include "tests/camera/literal_intensity.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int kOffset = 15; // grey values

void measureLiterally(const cv::Mat& picture)
{
    benchmark::DoNotOptimize(literal::intensityPerObject(picture, kOffset));
    benchmark::DoNotOptimize(literal::intensityBackground(picture, kOffset));
}

void measureBuilt(const cv::Mat& picture)
{
    const intensity::Objects objects = intensity::findObjects(picture, kOffset);
    benchmark::DoNotOptimize(intensity::perObject(picture, objects));
    benchmark::DoNotOptimize(intensity::background(picture, objects));
}

} // namespace

int main(int argc, char** argv)
{
    for (const int count : { 300, 1000 }) {
        const cv::Mat picture = pictures::squares(count, 18, 180, 30);
        const std::string objects = ", " + std::to_string(count) + " objects";
        comparison::add({ "intensity of object" + objects, comparison::Cores::one, 30.0,
            [picture] { benchmark::DoNotOptimize(literal::intensityPerObject(picture, kOffset)); },
            [picture] {
                benchmark::DoNotOptimize(
                    intensity::perObject(picture, intensity::findObjects(picture, kOffset)));
            } });
        comparison::add({ "intensity of object and background" + objects, comparison::Cores::one, 30.0,
            [picture] { measureLiterally(picture); }, [picture] { measureBuilt(picture); } });
    }
    return comparison::run(argc, argv);
}
