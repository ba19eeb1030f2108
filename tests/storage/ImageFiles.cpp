#include "ImageFiles.h"

#include <QFile>
#include <QString>
#include <QTest>

QByteArray pattern(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (int index = 0; index < size; ++index) {
        bytes[index] = static_cast<char>((index * 7 + index / 251) % 256);
    }
    return bytes;
}

QByteArray samples16(const std::vector<std::uint16_t>& samples)
{
    return QByteArray(reinterpret_cast<const char*>(samples.data()), static_cast<int>(samples.size() * 2));
}

QByteArray contentsOf(const std::string& path)
{
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

bool load(general::ImReaderWriter& image, QByteArray pixels, unsigned width, unsigned height,
    unsigned short samples, unsigned short photometric, unsigned short compression)
{
    image.load(pixels.data(), width, height, 8, samples, compression, photometric);
    return image.data(samples == 2 ? 16 : 8) != nullptr;
}

bool write(general::ImReaderWriter& image, std::string file, std::string description)
{
    return image.write(file, description);
}

int read(general::ImReaderWriter& image, std::string file)
{
    return image.read(file);
}

void makeTiff(const std::string& path, unsigned width, unsigned height, unsigned short bits,
    unsigned short samples, const QByteArray& rows, unsigned short photometric, unsigned short planar)
{
    const TiffFile file(TIFFOpen(path.c_str(), "w"));
    QVERIFY(file);
    TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(file.get(), TIFFTAG_COMPRESSION, kLzw);
    TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(file.get(), TIFFTAG_PLANARCONFIG, planar);
    TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, 2);
    const int rowBytes = static_cast<int>(TIFFScanlineSize(file.get()));
    const unsigned short planes = planar == PLANARCONFIG_SEPARATE ? samples : 1;
    for (unsigned short plane = 0; plane < planes; ++plane) {
        for (unsigned row = 0; row < height; ++row) {
            QByteArray line
                = rows.mid(static_cast<int>(row) * rowBytes, rowBytes).leftJustified(rowBytes, '\0');
            QCOMPARE(TIFFWriteScanline(file.get(), line.data(), row, plane), 1);
        }
    }
}
