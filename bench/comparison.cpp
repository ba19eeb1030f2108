#include "bench/comparison.h"

#include "bench/cores.h"
#include "bench/table.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace comparison {

namespace {

constexpr int kRepetitions = 11;
constexpr double kSecondsPerRepetition = 0.05;

std::vector<Operation>& operations()
{
    static std::vector<Operation> all;
    return all;
}

std::string literalName(const Operation& operation)
{
    return operation.name + ", literal";
}

std::string builtName(const Operation& operation)
{
    return operation.name + ", built";
}

/// Keeps the time of every repetition; prints nothing.
class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                m_times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        }
    }

    /// Milliseconds, or 0 if the benchmark did not run.
    double median(const std::string& name) const
    {
        const auto found = m_times.find(name);
        if (found == m_times.end())
            return 0.0;
        std::vector<double> times = found->second;
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

private:
    std::map<std::string, std::vector<double>> m_times;
};

/// One of the two versions of an operation, as a benchmark.
class Version : public benchmark::Fixture {
public:
    Version(const std::string& name, Cores cores, std::function<void()> work)
        : m_cores(cores)
        , m_work(std::move(work))
    {
        SetName(name.c_str());
        Unit(benchmark::kMillisecond);
        UseRealTime();
        MinTime(kSecondsPerRepetition);
        Repetitions(kRepetitions);
    }

private:
    void BenchmarkCase(benchmark::State& state) override
    {
        std::optional<OneCoreOnly> oneCore;
        if (m_cores == Cores::one)
            oneCore.emplace();
        m_work(); // warm caches and memory
        for ([[maybe_unused]] const auto _ : state)
            m_work();
    }

    Cores m_cores;
    std::function<void()> m_work;
};

void registerVersion(const std::string& name, Cores cores, const std::function<void()>& work)
{
    // The register owns what it is given.
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
    benchmark::internal::RegisterBenchmarkInternal(new Version(name, cores, work));
}

} // namespace

void add(Operation operation)
{
    operations().push_back(std::move(operation));
}

int run(int argc, char** argv)
{
    // Repetitions of all versions are shuffled, so that a busy moment of the machine hits both of a pair.
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, interleaved.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;

    std::vector<Operation> measured;
    for (const Operation& operation : operations()) {
        if (operation.cores == Cores::all && coresAtHand() < 2) {
            std::printf("%s: not measured, there is only one core\n", operation.name.c_str());
            continue;
        }
        registerVersion(literalName(operation), operation.cores, operation.literal);
        registerVersion(builtName(operation), operation.cores, operation.built);
        measured.push_back(operation);
    }

    Collector times;
    benchmark::RunSpecifiedBenchmarks(&times);

    std::vector<TableRow> rows;
    rows.reserve(measured.size());
    for (const Operation& operation : measured) {
        const double literal = times.median(literalName(operation));
        const double built = times.median(builtName(operation));
        if (literal > 0.0 && built > 0.0) // else a filter left it out
            rows.push_back({ operation.name, literal, built, operation.wantedRatio });
    }
    return printTable(rows, "ms") ? 0 : 1;
}

} // namespace comparison
