// A raw file. It is known by its length, which is far above that of an input: the first byte of the input
// chooses one of the lengths that matter, the rest is how the file begins.
#include "storage/ImReaderWriter.h"
#include "tests/fuzz/ScratchFolder.h"
#include "tests/fuzz/require.h"

#include <array>

namespace {

constexpr std::uintmax_t kSamples = std::uintmax_t { 1280 } * 1024;
constexpr std::array<std::uintmax_t, 8> kLengths {
    0,
    1,
    kSamples - 1,
    kSamples,
    kSamples + 1,
    2 * kSamples - 1,
    2 * kSamples,
    2 * kSamples + 1,
};

/// How many bytes of such a file are samples: it is taken for 8 bits each, and for 16 at twice the length
/// alone.
std::uintmax_t sampleBytes(std::uintmax_t length)
{
    return length == 2 * kSamples ? 2 * kSamples : kSamples;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static ScratchFolder scratch;
    if (size == 0)
        return 0;
    const std::uintmax_t length = kLengths[bytes[0] % kLengths.size()];
    std::string path = scratch.put("image.raw", bytes + 1, size - 1, length);

    general::ImReaderWriter image;
    REQUIRE(image.read(path) == (length >= kSamples ? 1 : 0));
    REQUIRE((image.data(16) != nullptr) == (length == 2 * kSamples));
    REQUIRE((image.data(8) != nullptr) == (length != 2 * kSamples));

    // What has not arrived is black.
    std::string again = scratch.path("again.raw");
    std::string noDescription;
    REQUIRE(image.write(again, noDescription));
    std::string expected = scratch.read("image.raw");
    expected.resize(sampleBytes(length), '\0');
    REQUIRE(scratch.read("again.raw") == expected);
    return 0;
}
