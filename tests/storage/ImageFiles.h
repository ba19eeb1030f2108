#pragma once

#include "storage/ImReaderWriter.h"

#include <QByteArray>

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// What the tests of the image files share: images, files as other programs make them, and TIFF tags.

constexpr unsigned short kLzw = 5;
constexpr unsigned short kUncompressed = 1;
constexpr unsigned short kGrey = 1;
constexpr unsigned short kRgb = 2;

/// Bytes that differ from their neighbours in every direction.
QByteArray pattern(int size);
QByteArray samples16(const std::vector<std::uint16_t>& samples);
/// The bytes of the file, or "no file".
QByteArray contentsOf(const std::string& path);

/// The calls of the class, for texts and pixels that have no name of their own; load tells whether it took
/// the pixels.
bool load(general::ImReaderWriter& image, QByteArray pixels, unsigned width, unsigned height,
    unsigned short samples, unsigned short photometric = kGrey, unsigned short compression = kLzw);
bool write(general::ImReaderWriter& image, std::string file, std::string description = {});
int read(general::ImReaderWriter& image, std::string file);

struct TiffCloser {
    void operator()(TIFF* handle) const { TIFFClose(handle); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

/// The value of the tag, or nothing where the file does not have it.
template <typename Value> Value tagOf(const TiffFile& file, std::uint32_t tag)
{
    Value value {};
    return TIFFGetField(file.get(), tag, &value) == 1 ? value : Value {};
}

/// Makes a file with several strips from the rows, which are filled up with zeros.
void makeTiff(const std::string& path, unsigned width, unsigned height, unsigned short bits,
    unsigned short samples, const QByteArray& rows, unsigned short photometric = kGrey,
    unsigned short planar = PLANARCONFIG_CONTIG);
