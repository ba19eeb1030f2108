#include "algorithms/shift_search.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <future>
#include <optional>
#include <system_error>
#include <thread>

namespace {

/// Two, as there are two channels: each thread takes a whole spectrum of memory.
constexpr unsigned mostThreads = 2;

/// One correlation that has to be computed.
struct Measurement {
    const ShiftChannel* channel;
    std::size_t index; // of the threshold
    PhaseShift* result;
};

/// Number of pixels above each threshold.
std::vector<std::size_t> pixelsAbove(const ShiftChannel& channel)
{
    std::array<std::size_t, 256> histogram {};
    for (int row = 0; row < channel.image.rows; ++row) {
        const unsigned char* pixels = channel.image.ptr<unsigned char>(row);
        for (int x = 0; x < channel.image.cols; ++x)
            ++histogram[pixels[x]];
    }
    std::vector<std::size_t> counts;
    for (const int threshold : channel.thresholds) {
        std::size_t count = 0;
        for (int grey = std::max(threshold + 1, 0); grey < 256; ++grey)
            count += histogram[static_cast<std::size_t>(grey)];
        counts.push_back(count);
    }
    return counts;
}

/// Takes measurements until none is left.
void work(const PhaseCorrelation& correlation, const std::vector<Measurement>& measurements,
    std::atomic<std::size_t>& next)
{
    PhaseCorrelation::Workspace workspace;
    for (std::size_t i = next++; i < measurements.size(); i = next++) {
        const Measurement& measurement = measurements[i];
        *measurement.result = correlation.correlate(
            measurement.channel->image, measurement.channel->thresholds[measurement.index], workspace);
    }
}

/// A second thread for the work, or none where the machine has one core or refuses another thread.
std::optional<std::future<void>> startHelper(const PhaseCorrelation& correlation,
    const std::vector<Measurement>& measurements, std::atomic<std::size_t>& next)
{
    if (std::min(std::thread::hardware_concurrency(), mostThreads) < 2 || measurements.size() < 2)
        return std::nullopt;
    try {
        return std::async(std::launch::async,
            [&correlation, &measurements, &next] { work(correlation, measurements, next); });
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

} // namespace

std::array<ShiftResults, 2> measureShifts(
    const cv::Mat& reference, const std::array<ShiftChannel, 2>& channels)
{
    std::array<ShiftResults, 2> results;
    std::array<std::vector<std::size_t>, 2> counts;
    std::vector<Measurement> measurements;
    for (std::size_t c = 0; c < channels.size(); ++c) {
        const ShiftChannel& channel = channels[c];
        results[c].resize(channel.thresholds.size());
        counts[c] = pixelsAbove(channel);
        for (std::size_t i = 0; i < channel.thresholds.size(); ++i) {
            // The pixels above a higher threshold are among those above a lower one: as many are the same.
            if (i == 0 || counts[c][i] != counts[c][i - 1])
                measurements.push_back({ &channel, i, &results[c][i] });
        }
    }

    const PhaseCorrelation correlation(reference);
    std::atomic<std::size_t> next { 0 };
    std::optional<std::future<void>> helper = startHelper(correlation, measurements, next);
    work(correlation, measurements, next);
    if (helper)
        helper->get();

    for (std::size_t c = 0; c < channels.size(); ++c) {
        for (std::size_t i = 1; i < results[c].size(); ++i) {
            if (counts[c][i] == counts[c][i - 1])
                results[c][i] = results[c][i - 1];
        }
    }
    return results;
}
