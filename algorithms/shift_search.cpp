#include "algorithms/shift_search.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

namespace {

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

/// Whether the two-level image of a threshold is that of the threshold before: the pixels above a higher one
/// are among those above a lower one, so that as many are the same.
bool isRepeated(const std::vector<std::size_t>& counts, std::size_t index)
{
    return index > 0 && counts[index] == counts[index - 1];
}

/// Measurements that the calling thread and a worker thread share: each takes the next that is left.
class SharedWork {
public:
    SharedWork(const cv::Mat& reference, std::vector<Measurement> measurements)
        : m_correlation(reference)
        , m_measurements(std::move(measurements))
    {
    }

    /// Returns when all is measured.
    void run()
    {
        // All large memory is taken on this thread: one that ends leaves some of its own with the allocator.
        PhaseCorrelation::Workspace ownSpace = m_correlation.makeWorkspace();
        PhaseCorrelation::Workspace workersSpace;
        std::future<void> worker;
        if (std::thread::hardware_concurrency() >= 2 && m_measurements.size() >= 2) {
            workersSpace = m_correlation.makeWorkspace();
            worker = startWorker(workersSpace);
        }
        takeUntilNoneIsLeft(ownSpace);
        if (worker.valid())
            worker.get();
    }

private:
    /// A second thread, as there are two channels; nothing where the system refuses one.
    std::future<void> startWorker(PhaseCorrelation::Workspace& workspace)
    {
        try {
            return std::async(std::launch::async, [this, &workspace] { takeUntilNoneIsLeft(workspace); });
        } catch (const std::system_error&) {
            return {};
        }
    }

    void takeUntilNoneIsLeft(PhaseCorrelation::Workspace& workspace)
    {
        for (std::size_t i = m_next++; i < m_measurements.size(); i = m_next++) {
            const Measurement& measurement = m_measurements[i];
            *measurement.result = m_correlation.correlate(
                measurement.channel->image, measurement.channel->thresholds[measurement.index], workspace);
        }
    }

    const PhaseCorrelation m_correlation;
    const std::vector<Measurement> m_measurements;
    std::atomic<std::size_t> m_next { 0 };
};

} // namespace

std::array<ShiftResults, 2> measureShifts(
    const cv::Mat& reference, const std::array<ShiftChannel, 2>& channels)
{
    std::array<ShiftResults, 2> results;
    std::array<std::vector<std::size_t>, 2> counts;
    std::vector<Measurement> measurements;
    for (std::size_t c = 0; c < channels.size(); ++c) {
        results[c].resize(channels[c].thresholds.size());
        counts[c] = pixelsAbove(channels[c]);
        for (std::size_t i = 0; i < counts[c].size(); ++i) {
            if (!isRepeated(counts[c], i))
                measurements.push_back({ &channels[c], i, &results[c][i] });
        }
    }

    SharedWork(reference, std::move(measurements)).run();

    for (std::size_t c = 0; c < channels.size(); ++c) {
        for (std::size_t i = 0; i < counts[c].size(); ++i) {
            if (isRepeated(counts[c], i))
                results[c][i] = results[c][i - 1];
        }
    }
    return results;
}
