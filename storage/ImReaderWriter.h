#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace general {

/// The type of an image file, told by its name.
enum IMAGE_type {
    IMAGE_TIF = 0, ///< "tif", and everything that is none of the others
    IMAGE_JPG = 1, ///< "jpg"
    IMAGE_PNG = 2, ///< "png"
    IMAGE_BMP = 3, ///< "bmp"
    IMAGE_RAW = 4, ///< "raw": bare samples of 1280 by 1024 pixels, 8 or 16 bits each, told by the file's size
};

/// TIFF codes of how an image is packed and what its samples mean, as far as the instrument uses them.
constexpr unsigned short kCompressionLzw = 5;
constexpr unsigned short kPhotometricMinIsBlack = 1; ///< grey
constexpr unsigned short kPhotometricRgb = 2;

/// One raster image in memory and its way to and from files. Rows follow each other without padding, the
/// samples of a pixel stand side by side.
///
/// Built for one file and destroyed after it; owns a copy of the pixels. Used by one thread at a time; every
/// call blocks for the file's length. Failures are told by the results alone.
///
/// Where the pixels are: images of 16 bits a sample, and those of 16 bits a pixel (two samples of 8), in the
/// 16-bit buffer, all others in the byte buffer. A write that asks the other buffer (32 bits a pixel made of
/// two samples of 16, raw files of 48 and 64) has no pixels to take and fails without touching the file.
class ImReaderWriter {
public:
    ImReaderWriter() = default;
    ImReaderWriter(const ImReaderWriter&) = delete;
    ImReaderWriter& operator=(const ImReaderWriter&) = delete;

    /// Copies width x height pixels of samplesPerPixel (1 to 3) samples of 8 bits; anything else is refused
    /// and the image held before stays. compression and photometric are TIFF codes, see above.
    void load(void* data, unsigned width, unsigned height, unsigned short bitsPerSample,
        unsigned short samplesPerPixel, unsigned short compression, unsigned short photometric);
    /// The 16-bit buffer for 16, otherwise the byte buffer; null where there is none. Stays owned by the
    /// object.
    void* data(int bits);

    /// Reads a TIFF or raw file and returns 1, or 0 when it cannot be read to its end. JPEG, PNG and BMP:
    /// always 0.
    int read(std::string& path);
    /// Writes the image by the type of the path (UTF-8) and returns whether it is wholly written. The
    /// description goes into TIFF files alone. Samples of 16-bit TIFF images are rotated left by 4 bits, here
    /// and in the file, so that 12 low bits of data fill the high bits; a second write rotates them again.
    bool write(std::string& path, std::string& description);

    /// The three characters behind the last "." decide, case-sensitively ("x.tiff" is a "tif"); without a "."
    /// the first three characters of the path.
    int _getImageType(std::string& path);
    int _getImageType(std::wstring& path);

private:
    int _read_tiff(std::string& path);
    int _read_jpeg(std::string& path);
    int _read_png(std::string& path);
    int _read_bmp(std::string& path);
    int _read_raw(std::string& path);
    bool _write_tiff(std::string& path);
    bool _write_tiff(std::string& path, std::string& description);
    bool _write_jpeg(std::string& path);
    bool _write_png(std::string& path);
    bool _write_bmp(std::string& path);
    bool _write_raw(std::string& path);

    bool isWide() const; ///< whether the image held now is in m_data16
    /// Replaces the buffer of the kind that the image wants by one of m_sample_count zero samples; false
    /// without memory.
    bool allocate();
    bool saveRaster(const std::string& path, const char* format) const;

    std::uint32_t m_width = 0; ///< px
    std::uint32_t m_height = 0; ///< px
    std::uint16_t m_bits_per_sample = 8;
    std::uint16_t m_samples_per_pixel = 1;
    std::uint16_t m_photometric = 1; ///< grey, black is 0
    std::uint16_t m_compression = 1; ///< none
    std::uint16_t m_bits_per_pixel = 8;
    std::uint32_t m_sample_count = 0;
    std::unique_ptr<std::uint16_t[]> m_data16;
    std::unique_ptr<std::uint8_t[]> m_data8;
};

} // namespace general
