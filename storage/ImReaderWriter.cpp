#include "storage/ImReaderWriter.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace general {

namespace {

struct TypeName {
    const char* extension;
    IMAGE_type type;
};

constexpr std::array<TypeName, 5> kTypeNames { {
    { "tif", IMAGE_TIF },
    { "jpg", IMAGE_JPG },
    { "png", IMAGE_PNG },
    { "bmp", IMAGE_BMP },
    { "raw", IMAGE_RAW },
} };

/// The one geometry of raw files.
constexpr std::uint32_t kRawWidth = 1280;
constexpr std::uint32_t kRawHeight = 1024;
constexpr std::uint32_t kRawSamples = kRawWidth * kRawHeight;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

template <typename Text> int typeOfPath(const Text& path)
{
    const std::size_t dot = path.rfind(static_cast<typename Text::value_type>('.'));
    const Text extension = path.substr(dot == Text::npos ? 0 : dot + 1, 3);
    for (const TypeName& name : kTypeNames) {
        if (extension == Text(name.extension, name.extension + std::strlen(name.extension))) {
            return name.type;
        }
    }
    return IMAGE_TIF;
}

} // namespace

int ImReaderWriter::_getImageType(std::string& path)
{
    return typeOfPath(path);
}

int ImReaderWriter::_getImageType(std::wstring& path)
{
    return typeOfPath(path);
}

bool ImReaderWriter::isWide() const
{
    return m_bits_per_sample == 16 || m_bits_per_pixel == 16;
}

bool ImReaderWriter::allocate()
{
    if (isWide()) {
        m_data16.reset(new (std::nothrow) std::uint16_t[m_sample_count] {});
        return m_data16 != nullptr;
    }
    m_data8.reset(new (std::nothrow) std::uint8_t[m_sample_count] {});
    return m_data8 != nullptr;
}

void ImReaderWriter::load(void* data, unsigned width, unsigned height, unsigned short bitsPerSample,
    unsigned short samplesPerPixel, unsigned short compression, unsigned short photometric)
{
    if (data == nullptr || bitsPerSample != 8 || samplesPerPixel < 1 || samplesPerPixel > 3) {
        return;
    }
    // Two samples of 8 bits are held as one of 16.
    const std::uint64_t samples = std::uint64_t { width } * height * (samplesPerPixel == 3 ? 3U : 1U);
    if (samples > std::numeric_limits<std::uint32_t>::max()) {
        return;
    }

    m_width = width;
    m_height = height;
    m_bits_per_sample = bitsPerSample;
    m_samples_per_pixel = samplesPerPixel;
    m_photometric = photometric;
    m_compression = compression;
    m_bits_per_pixel = static_cast<std::uint16_t>(bitsPerSample * samplesPerPixel);
    m_sample_count = static_cast<std::uint32_t>(samples);
    if (!allocate()) {
        m_sample_count = 0;
        return;
    }
    if (isWide()) {
        std::memcpy(m_data16.get(), data, m_sample_count * sizeof(std::uint16_t));
    } else {
        std::memcpy(m_data8.get(), data, m_sample_count);
    }
}

void* ImReaderWriter::data(int bits)
{
    if (bits == 16) {
        return m_data16.get();
    }
    return m_data8.get();
}

int ImReaderWriter::read(std::string& path)
{
    switch (_getImageType(path)) {
    case IMAGE_JPG:
        return _read_jpeg(path);
    case IMAGE_PNG:
        return _read_png(path);
    case IMAGE_BMP:
        return _read_bmp(path);
    case IMAGE_RAW:
        return _read_raw(path);
    default:
        return _read_tiff(path);
    }
}

bool ImReaderWriter::write(std::string& path, std::string& description)
{
    switch (_getImageType(path)) {
    case IMAGE_JPG:
        return _write_jpeg(path);
    case IMAGE_PNG:
        return _write_png(path);
    case IMAGE_BMP:
        return _write_bmp(path);
    case IMAGE_RAW:
        return _write_raw(path);
    default:
        return description.empty() ? _write_tiff(path) : _write_tiff(path, description);
    }
}

int ImReaderWriter::_read_raw(std::string& path)
{
    const File file(std::fopen(path.c_str(), "r"));
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) {
        return 0;
    }
    const long size = std::ftell(file.get());
    std::rewind(file.get());

    if (size == long { kRawSamples }) {
        m_bits_per_sample = 8;
    } else if (size == 2 * long { kRawSamples }) {
        m_bits_per_sample = 16;
    }
    m_width = kRawWidth;
    m_height = kRawHeight;
    m_samples_per_pixel = 1;
    m_bits_per_pixel = m_bits_per_sample;
    m_sample_count = kRawSamples;
    if (!allocate()) {
        m_sample_count = 0;
        return 0;
    }
    const std::size_t arrived = isWide()
        ? std::fread(m_data16.get(), sizeof(std::uint16_t), m_sample_count, file.get())
        : std::fread(m_data8.get(), sizeof(std::uint8_t), m_sample_count, file.get());
    return arrived == m_sample_count ? 1 : 0;
}

bool ImReaderWriter::_write_raw(std::string& path)
{
    const bool asWide = m_bits_per_pixel == 16;
    const void* samples = asWide ? static_cast<const void*>(m_data16.get()) : m_data8.get();
    if (asWide != isWide() || samples == nullptr) {
        return false;
    }
    File file(std::fopen(path.c_str(), "w"));
    if (!file) {
        return false;
    }
    const std::size_t sampleSize = asWide ? sizeof(std::uint16_t) : sizeof(std::uint8_t);
    const std::size_t written = std::fwrite(samples, sampleSize, m_sample_count, file.get());
    // A full stick shows only when the stream is emptied.
    return std::fclose(file.release()) == 0 && written == m_sample_count;
}

} // namespace general
