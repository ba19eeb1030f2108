// A TIFF file. The input is the file.
#include "storage/ImReaderWriter.h"
#include "tests/fuzz/ScratchFolder.h"
#include "tests/fuzz/require.h"

#include <tiffio.h>

#include <filesystem>

namespace {

/// Writes the image as each of the types, so that every sample of it is touched.
void writeAgain(const ScratchFolder& scratch, general::ImReaderWriter& image)
{
    std::string description = "read again";
    for (const char* name : { "again.raw", "again.png", "again.bmp", "again.jpg", "again.tif" }) {
        std::string path = scratch.path(name);
        std::filesystem::remove(path);
        if (image.write(path, description))
            REQUIRE(std::filesystem::file_size(path) > 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static ScratchFolder scratch;
    // Every damaged file is complained of.
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);

    std::string path = scratch.put("image.tif", bytes, size);
    general::ImReaderWriter image;
    const int good = image.read(path);
    REQUIRE(good == 0 || good == 1);
    if (good == 1) {
        REQUIRE(image.data(8) != nullptr || image.data(16) != nullptr);
        writeAgain(scratch, image);
    }
    return 0;
}
