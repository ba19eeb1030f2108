// The file types that the image library of Qt writes: JPEG, PNG and BMP. None of them is read.
#include "storage/ImReaderWriter.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QString>
#include <QVector>

namespace general {

namespace {

constexpr int kGreyLevels = 256;

QVector<QRgb> greyTable()
{
    QVector<QRgb> table(kGreyLevels);
    for (int grey = 0; grey < kGreyLevels; ++grey) {
        table[grey] = qRgb(grey, grey, grey);
    }
    return table;
}

QImage::Format formatOf(int bitsPerPixel)
{
    switch (bitsPerPixel) {
    case 8:
        return QImage::Format_Indexed8;
    case 24:
        return QImage::Format_RGB888;
    case 32:
        return QImage::Format_RGB32;
    default:
        return QImage::Format_Invalid;
    }
}

} // namespace

/// Saves nothing and returns false for an image without pixels or of a depth that these types do not have.
bool ImReaderWriter::saveRaster(const std::string& path, const char* format) const
{
    const QImage::Format pixelFormat = formatOf(m_bits_per_pixel);
    const std::uint64_t stride = std::uint64_t { m_width } * m_bits_per_pixel / 8;
    if (pixelFormat == QImage::Format_Invalid || isWide() || !m_data8 || stride * m_height > m_sample_count) {
        return false;
    }
    // The rows of the buffer have no padding, but the writers take whole words of each row: hence the stride,
    // and a copy that has its rows padded.
    QImage image = QImage(m_data8.get(), static_cast<int>(m_width), static_cast<int>(m_height),
        static_cast<int>(stride), pixelFormat)
                       .copy();
    if (pixelFormat == QImage::Format_Indexed8) {
        image.setColorTable(greyTable());
    }
    // Encoded in memory, because the encoders do not always tell of a stick that runs full.
    QByteArray bytes;
    QBuffer encoded(&bytes);
    QFile file(QString::fromStdString(path));
    return encoded.open(QIODevice::WriteOnly) && image.save(&encoded, format)
        && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

int ImReaderWriter::_read_jpeg(std::string& /*path*/)
{
    return 0;
}

int ImReaderWriter::_read_png(std::string& /*path*/)
{
    return 0;
}

int ImReaderWriter::_read_bmp(std::string& /*path*/)
{
    return 0;
}

bool ImReaderWriter::_write_jpeg(std::string& path)
{
    return saveRaster(path, "JPG");
}

bool ImReaderWriter::_write_png(std::string& path)
{
    return saveRaster(path, "PNG");
}

bool ImReaderWriter::_write_bmp(std::string& path)
{
    return saveRaster(path, "BMP");
}

} // namespace general
