#pragma once

#include <functional>
#include <string>

/// Runs a literal and a built version of operations alternately and compares their medians.
namespace comparison {

/// What a measurement may use of the machine.
enum class Cores {
    one,
    all // those of the machine; wanted ratios for it hold for two or more
};

/// One operation, both ways.
struct Operation {
    std::string name;
    Cores cores = Cores::one;
    double wantedRatio = 1.0; ///< how many times faster the built version is to be
    std::function<void()> literal;
    std::function<void()> built;
};

/// Enters an operation, before run().
void add(Operation operation);

/// Measures everything entered and prints the table. Returns the process's exit code: 1 when a ratio falls
/// short. Takes the options of Google Benchmark.
int run(int argc, char** argv);

} // namespace comparison
