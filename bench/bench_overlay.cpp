// The colour picture by which an operator judges a shift, made at every click of an arrow button.

#include "algorithms/overlay.h"
#include "algorithms/overlay_literal.h"
#include "bench/comparison.h"
#include "tests/algorithms/pictures.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    const cv::Mat field = pictures::cells(pictures::kFrameWidth, pictures::kFrameHeight, 1);
    const cv::Mat ground = 182 - field;
    const cv::Mat gfp = pictures::moved(field, 3.25, -7.5);
    const cv::Mat rfp = pictures::moved(field, -11.0, 4.0);
    const OverlayShift shiftGFP(-3.25F, 7.5F);
    const OverlayShift shiftRFP(11.0F, -4.0F);
    comparison::add({ "channel overlay", comparison::Cores::one, 2.5,
        [&] {
            benchmark::DoNotOptimize(
                overlay_literal::compose(ground, gfp, rfp, shiftGFP, shiftRFP, true).data);
        },
        [&] { benchmark::DoNotOptimize(composeOverlay(ground, gfp, rfp, shiftGFP, shiftRFP, true).data); } });
    return comparison::run(argc, argv);
}
