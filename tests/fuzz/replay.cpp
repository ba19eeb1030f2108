// Runs a fuzz target without a fuzzer: first on every seed of its corpus, then on a fixed number of damaged
// seeds, the same ones in every run. Usage: TARGET CORPUS COUNT, or TARGET FILE for one input alone.
#include "tests/fuzz/mutations.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

namespace fs = std::filesystem;

Input read(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    REQUIRE(file.is_open());
    return { std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>() };
}

std::vector<Input> seedsOf(const fs::path& corpus)
{
    std::vector<fs::path> paths { fs::directory_iterator(corpus), fs::directory_iterator() };
    // The order of a folder differs from machine to machine.
    std::sort(paths.begin(), paths.end());
    std::vector<Input> seeds;
    std::transform(paths.begin(), paths.end(), std::back_inserter(seeds), read);
    return seeds;
}

/// Runs inputs and keeps the one under way in a file, which a crash leaves behind.
class Runs {
public:
    explicit Runs(fs::path kept)
        : m_kept(std::move(kept))
    {
    }
    void run(const Input& input)
    {
        std::ofstream file(m_kept, std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(input.data()), static_cast<std::streamsize>(input.size()));
        file.close();
        LLVMFuzzerTestOneInput(input.data(), input.size());
        ++m_count;
    }
    std::size_t count() const { return m_count; }

private:
    fs::path m_kept;
    std::size_t m_count = 0;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && fs::is_regular_file(argv[1])) {
        const Input input = read(argv[1]);
        LLVMFuzzerTestOneInput(input.data(), input.size());
        return 0;
    }
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s CORPUS COUNT | FILE\n", argv[0]);
        return 2;
    }
    const std::vector<Input> seeds = seedsOf(argv[1]);
    REQUIRE(!seeds.empty());
    const std::string kept = fs::path(argv[0]).filename().string() + ".input";
    std::printf("Should it crash, the input is in %s.\n", fs::absolute(kept).c_str());
    std::fflush(stdout);

    Runs runs(kept);
    for (const Input& seed : seeds) {
        runs.run(seed);
    }
    Mutations mutations(seeds);
    for (std::size_t i = 0, count = std::stoul(argv[2]); i < count; ++i) {
        runs.run(mutations.damaged(seeds[i % seeds.size()]));
    }
    fs::remove(kept);
    std::printf("%zu inputs, %zu of them seeds.\n", runs.count(), seeds.size());
    return 0;
}
