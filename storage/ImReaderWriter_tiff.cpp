#include "storage/ImReaderWriter.h"

#include <tiffio.h>

#include <string>

namespace general {

namespace {

/// Far above every image of the instrument; keeps a damaged header from asking for all of the memory.
constexpr std::uint64_t kLargestImageBytes = std::uint64_t { 256 } * 1024 * 1024;

struct TiffCloser {
    void operator()(TIFF* handle) const { TIFFClose(handle); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

/// How many samples are held for a pixel of so many bits; 0 for depths that are not read.
unsigned samplesHeldPerPixel(unsigned bitsPerPixel)
{
    switch (bitsPerPixel) {
    case 8:
    case 16:
        return 1;
    case 24:
    case 48:
        return 3;
    case 32:
    case 64:
        return 4;
    default:
        return 0;
    }
}

} // namespace

int ImReaderWriter::_read_tiff(std::string& path)
{
    const TiffFile file(TIFFOpen(path.c_str(), "r"));
    if (!file) {
        return 0;
    }
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bitsPerSample = 0;
    std::uint16_t samplesPerPixel = 1;
    std::uint16_t compression = 0;
    std::uint16_t photometric = 0;
    TIFFGetField(file.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(file.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetField(file.get(), TIFFTAG_BITSPERSAMPLE, &bitsPerSample);
    TIFFGetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, &samplesPerPixel);
    TIFFGetField(file.get(), TIFFTAG_COMPRESSION, &compression);
    TIFFGetField(file.get(), TIFFTAG_PHOTOMETRIC, &photometric);

    const std::uint32_t bitsPerPixel = std::uint32_t { bitsPerSample } * samplesPerPixel;
    const std::uint64_t samples = std::uint64_t { width } * height * samplesHeldPerPixel(bitsPerPixel);
    const bool wide = bitsPerSample == 16 || bitsPerPixel == 16;
    const std::uint64_t bytes = samples * (wide ? sizeof(std::uint16_t) : sizeof(std::uint8_t));
    if (bytes == 0 || bytes > kLargestImageBytes) {
        return 0;
    }
    // Rows of 16-bit samples are as far apart as the tags say, all others as the file has them.
    const std::uint64_t lineBytes = static_cast<std::uint64_t>(TIFFScanlineSize(file.get()));
    const std::uint64_t stride
        = bitsPerSample == 16 ? std::uint64_t { samplesPerPixel } * width * sizeof(std::uint16_t) : lineBytes;
    if (lineBytes == 0 || stride * (height - 1) + lineBytes > bytes) {
        return 0;
    }

    m_width = width;
    m_height = height;
    m_bits_per_sample = bitsPerSample;
    m_samples_per_pixel = samplesPerPixel;
    m_photometric = photometric;
    m_compression = compression;
    m_bits_per_pixel = static_cast<std::uint16_t>(bitsPerPixel);
    m_sample_count = static_cast<std::uint32_t>(samples);
    if (!allocate()) {
        m_sample_count = 0;
        return 0;
    }
    auto* rows = wide ? reinterpret_cast<std::uint8_t*>(m_data16.get()) : m_data8.get();
    for (std::uint32_t row = 0; row < height; ++row) {
        if (TIFFReadScanline(file.get(), rows + stride * row, row) != 1) {
            return 0;
        }
    }
    return 1;
}

bool ImReaderWriter::_write_tiff(std::string& path)
{
    std::string noDescription;
    return _write_tiff(path, noDescription);
}

bool ImReaderWriter::_write_tiff(std::string& path, std::string& description)
{
    const bool asWide = m_bits_per_pixel == 16 || m_bits_per_pixel == 48 || m_bits_per_pixel == 64;
    void* samples = asWide ? static_cast<void*>(m_data16.get()) : m_data8.get();
    if (asWide != isWide() || samples == nullptr) {
        return false;
    }
    TIFF* const file = TIFFOpen(path.c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    // An unknown compression would be taken, and the strip left out without an error.
    bool good = TIFFIsCODECConfigured(m_compression) == 1
        && TIFFSetField(file, TIFFTAG_IMAGEWIDTH, m_width) == 1
        && TIFFSetField(file, TIFFTAG_IMAGELENGTH, m_height) == 1
        && TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, m_bits_per_sample) == 1
        && TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, m_samples_per_pixel) == 1
        && TIFFSetField(file, TIFFTAG_COMPRESSION, m_compression) == 1
        && TIFFSetField(file, TIFFTAG_PHOTOMETRIC, m_photometric) == 1
        && TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1;
    if (good && !description.empty()) {
        good = TIFFSetField(file, TIFFTAG_IMAGEDESCRIPTION, description.c_str()) == 1;
    }

    tmsize_t bytes = m_sample_count;
    if (asWide) {
        bytes *= 2;
        for (std::uint32_t index = 0; index < m_sample_count; ++index) {
            const unsigned sample = m_data16[index];
            m_data16[index] = static_cast<std::uint16_t>((sample << 4) | (sample >> 12));
        }
    }
    // Without a rows-per-strip tag the whole image is one strip. The flush tells of a full or pulled stick,
    // which the closing would hide.
    good = good && TIFFWriteEncodedStrip(file, 0, samples, bytes) == bytes && TIFFFlush(file) == 1;
    TIFFClose(file);
    return good;
}

} // namespace general
