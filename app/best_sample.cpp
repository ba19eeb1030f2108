#include "app/best_sample.h"

#include <QDebug>

std::size_t bestSample(const FocusSamples& samples, std::size_t fallbackIndex, const char* label)
{
    std::size_t best = fallbackIndex;
    double bestValue = -1.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto& [position, value] = samples[i];
        qDebug() << label << i << position << value << bestValue;
        if (value > bestValue) {
            bestValue = value;
            best = i;
        }
    }
    return bestValue < 0.0 ? fallbackIndex : best;
}
