#include "storage/ImReaderWriter.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include <csignal>
#include <sys/resource.h>

using general::ImReaderWriter;

namespace {

constexpr unsigned short lzw = 5;
constexpr unsigned short uncompressed = 1;
constexpr unsigned short grey = 1;
constexpr unsigned short rgb = 2;
constexpr int rawSamples = 1280 * 1024;

QByteArray pattern(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (int index = 0; index < size; ++index) {
        bytes[index] = static_cast<char>((index * 7 + index / 251) % 256);
    }
    return bytes;
}

struct TiffCloser {
    void operator()(TIFF* handle) const { TIFFClose(handle); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

template <typename Value> Value tagOf(const TiffFile& file, std::uint32_t tag)
{
    Value value {};
    return TIFFGetField(file.get(), tag, &value) == 1 ? value : Value {};
}

// A file of 16-bit (or other) samples as another program would make it.
void makeTiff(const std::string& path, unsigned width, unsigned height, unsigned short bits,
    unsigned short samples, const QByteArray& rows, unsigned short photometric = grey,
    unsigned short planar = PLANARCONFIG_CONTIG)
{
    const TiffFile file(TIFFOpen(path.c_str(), "w"));
    QVERIFY(file);
    TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(file.get(), TIFFTAG_COMPRESSION, lzw);
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

QByteArray samples16(const std::vector<std::uint16_t>& samples)
{
    return QByteArray(reinterpret_cast<const char*>(samples.data()), static_cast<int>(samples.size() * 2));
}

QByteArray contentsOf(const std::string& path)
{
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

// What a program of other makers says on standard output, or nothing where it is not installed.
QByteArray outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

} // namespace

class tst_ImReaderWriter : public QObject {
    Q_OBJECT

private slots:
    void imageType_data();
    void imageType();

    void newObject_holdsNoPixels();
    void load_copiesThePixels();
    void loadOfTwoSamples_goesToThe16BitBuffer();
    void loadOfOtherDepths_isRefused_data();
    void loadOfOtherDepths_isRefused();
    void loadOfMorePixelsThanCanBeCounted_isRefused();

    void greyTiff_hasItsTagsOneStripAndPixels();
    void rgbTiff_hasItsTagsOneStripAndPixels();
    void tiffOfOddWidth_hasItsPixels();
    void twoSampleTiff_isRotatedByFourBits();
    void description_isStoredWhenThereIsOne();
    void writtenTiff_isReadByOtherPrograms_data();
    void writtenTiff_isReadByOtherPrograms();
    void upperCaseExtension_stillWritesATiff();
    void writtenTiff_isReadBack_data();
    void writtenTiff_isReadBack();
    void tiffInUnknownCompression_fails();

    void readTiff16_isHeldIn16Bits();
    void readTiff16WrittenTwice_isRotatedTwice();
    void readTiff48_isWrittenRotated();
    void readTiff_ofOtherShapes_data();
    void readTiff_ofOtherShapes();
    void readOfDamagedTiff_fails_data();
    void readOfDamagedTiff_fails();
    void readOfTiffWithHugeSize_fails();
    void failedRead_keepsTheImageHeldBefore();

    void writeRaster_hasThePixels_data();
    void writeRaster_hasThePixels();
    void writeJpeg_isClose();
    void writeRasterOfOtherDepths_savesNothing();
    void readOfRasterTypes_fails();

    void writeRaw8_isTheBareSamples();
    void writeRaw16_isTheBareSamples();
    void writeRawOf48Bits_failsWithoutACrash();
    void readRaw_isKnownByItsSize_data();
    void readRaw_isKnownByItsSize();
    void readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived_data();
    void readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived();
    void readRawThenRaster_takesTheRawGeometry();

    void writeWithoutPixels_failsAndLeavesTheFile();
    void writeIntoMissingFolder_fails_data();
    void writeIntoMissingFolder_fails();
    void writeToFullStick_fails_data();
    void writeToFullStick_fails();
    void readOfMissingFile_fails();
    void largerImageAfterSmaller_replacesTheBuffer();

private:
    std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }
    static bool load(ImReaderWriter& image, QByteArray pixels, unsigned width, unsigned height,
        unsigned short samples, unsigned short photometric = grey, unsigned short compression = lzw);
    static bool write(ImReaderWriter& image, std::string file, std::string description = {});
    static int read(ImReaderWriter& image, std::string file) { return image.read(file); }

    QTemporaryDir m_folder;
};

bool tst_ImReaderWriter::load(ImReaderWriter& image, QByteArray pixels, unsigned width, unsigned height,
    unsigned short samples, unsigned short photometric, unsigned short compression)
{
    image.load(pixels.data(), width, height, 8, samples, compression, photometric);
    return image.data(samples == 2 ? 16 : 8) != nullptr;
}

bool tst_ImReaderWriter::write(ImReaderWriter& image, std::string file, std::string description)
{
    return image.write(file, description);
}

void tst_ImReaderWriter::imageType_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("type");
    QTest::newRow("tif") << "/media/x.tif" << 0;
    QTest::newRow("jpg") << "x.jpg" << 1;
    QTest::newRow("png") << "x.png" << 2;
    QTest::newRow("bmp") << "x.bmp" << 3;
    QTest::newRow("raw") << "x.raw" << 4;
    QTest::newRow("tiff by its first three") << "x.tiff" << 0;
    QTest::newRow("jpge by its first three") << "x.jpge" << 1;
    QTest::newRow("jpeg is none") << "x.jpeg" << 0;
    QTest::newRow("upper case is none") << "x.PNG" << 0;
    QTest::newRow("other") << "x.gif" << 0;
    QTest::newRow("last dot counts") << "x.png.jpg" << 1;
    QTest::newRow("dot at the end") << "x.png." << 0;
    QTest::newRow("short extension") << "x.pn" << 0;
    QTest::newRow("no dot, by its first three letters") << "png_picture" << 2;
    QTest::newRow("no dot, none") << "/media/png" << 0;
    QTest::newRow("dot in a folder") << "/media/a.raw/x" << 4;
    QTest::newRow("empty") << "" << 0;
}

void tst_ImReaderWriter::imageType()
{
    QFETCH(QString, path);
    QFETCH(int, type);
    ImReaderWriter image;
    std::string narrow = path.toStdString();
    std::wstring wide = path.toStdWString();
    QCOMPARE(image._getImageType(narrow), type);
    QCOMPARE(image._getImageType(wide), type);
}

void tst_ImReaderWriter::newObject_holdsNoPixels()
{
    ImReaderWriter image;
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(image.data(16), nullptr);
}

void tst_ImReaderWriter::load_copiesThePixels()
{
    QByteArray pixels = pattern(4 * 3 * 3);
    const QByteArray original = pixels;
    ImReaderWriter image;
    image.load(pixels.data(), 4, 3, 8, 3, lzw, rgb);
    pixels.fill('\0');
    QVERIFY(image.data(8) != pixels.data());
    QCOMPARE(QByteArray(static_cast<char*>(image.data(8)), 36), original);
    QCOMPARE(image.data(16), nullptr);
}

void tst_ImReaderWriter::loadOfTwoSamples_goesToThe16BitBuffer()
{
    const QByteArray pixels = pattern(4 * 3 * 2);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 4, 3, 2));
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 24), pixels);
}

void tst_ImReaderWriter::loadOfOtherDepths_isRefused_data()
{
    QTest::addColumn<unsigned short>("bits");
    QTest::addColumn<unsigned short>("samples");
    QTest::newRow("16 bits") << static_cast<unsigned short>(16) << static_cast<unsigned short>(1);
    QTest::newRow("12 bits") << static_cast<unsigned short>(12) << static_cast<unsigned short>(1);
    QTest::newRow("no bits") << static_cast<unsigned short>(0) << static_cast<unsigned short>(1);
    QTest::newRow("no samples") << static_cast<unsigned short>(8) << static_cast<unsigned short>(0);
    QTest::newRow("four samples") << static_cast<unsigned short>(8) << static_cast<unsigned short>(4);
}

void tst_ImReaderWriter::loadOfOtherDepths_isRefused()
{
    QFETCH(unsigned short, bits);
    QFETCH(unsigned short, samples);
    QByteArray pixels = pattern(1000);
    ImReaderWriter image;
    image.load(pixels.data(), 4, 3, bits, samples, lzw, grey);
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(image.data(16), nullptr);
    QVERIFY(!write(image, path("refused.tif")));
}

void tst_ImReaderWriter::loadOfMorePixelsThanCanBeCounted_isRefused()
{
    QByteArray pixels = pattern(10);
    ImReaderWriter image;
    image.load(pixels.data(), 65536, 65536, 8, 1, lzw, grey);
    QCOMPARE(image.data(8), nullptr);
}

void tst_ImReaderWriter::greyTiff_hasItsTagsOneStripAndPixels()
{
    const QByteArray pixels = pattern(1280 * 960);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 1280, 960, 1));
    QVERIFY(write(image, path("grey.tif")));

    const TiffFile file(TIFFOpen(path("grey.tif").c_str(), "r"));
    QVERIFY(file);
    QCOMPARE(tagOf<std::uint32_t>(file, TIFFTAG_IMAGEWIDTH), 1280U);
    QCOMPARE(tagOf<std::uint32_t>(file, TIFFTAG_IMAGELENGTH), 960U);
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE), std::uint16_t { 8 });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL), std::uint16_t { 1 });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_COMPRESSION), std::uint16_t { COMPRESSION_LZW });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_PHOTOMETRIC), std::uint16_t { PHOTOMETRIC_MINISBLACK });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_PLANARCONFIG), std::uint16_t { PLANARCONFIG_CONTIG });
    QCOMPARE(tagOf<char*>(file, TIFFTAG_IMAGEDESCRIPTION), nullptr);
    QCOMPARE(TIFFNumberOfStrips(file.get()), 1U);
    QByteArray found(pixels.size(), '\0');
    QCOMPARE(TIFFReadEncodedStrip(file.get(), 0, found.data(), found.size()), tmsize_t { pixels.size() });
    QVERIFY(found == pixels);
}

void tst_ImReaderWriter::rgbTiff_hasItsTagsOneStripAndPixels()
{
    const QByteArray pixels = pattern(1280 * 960 * 3);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 1280, 960, 3, rgb));
    QVERIFY(write(image, path("rgb.tif")));

    const TiffFile file(TIFFOpen(path("rgb.tif").c_str(), "r"));
    QVERIFY(file);
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE), std::uint16_t { 8 });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL), std::uint16_t { 3 });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_COMPRESSION), std::uint16_t { COMPRESSION_LZW });
    QCOMPARE(tagOf<std::uint16_t>(file, TIFFTAG_PHOTOMETRIC), std::uint16_t { PHOTOMETRIC_RGB });
    QCOMPARE(TIFFNumberOfStrips(file.get()), 1U);
    QByteArray found(pixels.size(), '\0');
    QCOMPARE(TIFFReadEncodedStrip(file.get(), 0, found.data(), found.size()), tmsize_t { pixels.size() });
    QVERIFY(found == pixels);
}

void tst_ImReaderWriter::tiffOfOddWidth_hasItsPixels()
{
    const QByteArray pixels = pattern(13 * 7 * 3);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 13, 7, 3, rgb, uncompressed));
    QVERIFY(write(image, path("odd.tif")));
    const TiffFile file(TIFFOpen(path("odd.tif").c_str(), "r"));
    QVERIFY(file);
    QByteArray found(pixels.size(), '\0');
    QCOMPARE(TIFFReadEncodedStrip(file.get(), 0, found.data(), found.size()), tmsize_t { pixels.size() });
    QCOMPARE(found, pixels);
}

void tst_ImReaderWriter::twoSampleTiff_isRotatedByFourBits()
{
    const QByteArray pixels = samples16({ 0x0ABC, 0xF001 });
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 2, 1, 2));
    QVERIFY(write(image, path("two.tif")));
    const TiffFile file(TIFFOpen(path("two.tif").c_str(), "r"));
    QVERIFY(file);
    QByteArray found(4, '\0');
    QCOMPARE(TIFFReadEncodedStrip(file.get(), 0, found.data(), 4), tmsize_t { 4 });
    QCOMPARE(found, samples16({ 0xABC0, 0x001F }));
}

void tst_ImReaderWriter::description_isStoredWhenThereIsOne()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(write(image, path("described.tif"), "focus 3, \xC2\xB5m"));
    const TiffFile file(TIFFOpen(path("described.tif").c_str(), "r"));
    QVERIFY(file);
    QCOMPARE(tagOf<char*>(file, TIFFTAG_IMAGEDESCRIPTION), "focus 3, \xC2\xB5m");
}

void tst_ImReaderWriter::writtenTiff_isReadByOtherPrograms_data()
{
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<QByteArray>("colours");
    QTest::addColumn<QString>("rawFormat");
    QTest::newRow("grey") << static_cast<unsigned short>(1) << QByteArray("min-is-black") << "gray:-";
    QTest::newRow("RGB") << static_cast<unsigned short>(3) << QByteArray("RGB color") << "rgb:-";
}

void tst_ImReaderWriter::writtenTiff_isReadByOtherPrograms()
{
    QFETCH(unsigned short, samples);
    QFETCH(QByteArray, colours);
    QFETCH(QString, rawFormat);
    if (QStandardPaths::findExecutable("tiffinfo").isEmpty()
        || QStandardPaths::findExecutable("convert").isEmpty()) {
        QSKIP("tiffinfo and ImageMagick are not installed");
    }
    const QByteArray pixels = pattern(321 * 123 * samples);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 321, 123, samples, samples == 1 ? grey : rgb));
    QVERIFY(write(image, path("image.tif")));

    const QString name = m_folder.filePath("image.tif");
    const QByteArray tags = outputOf("tiffinfo", { "-s", name });
    QVERIFY2(tags.contains("Image Width: 321 Image Length: 123"), tags);
    QVERIFY2(tags.contains("Bits/Sample: 8"), tags);
    QVERIFY2(tags.contains("Compression Scheme: LZW"), tags);
    QVERIFY2(tags.contains("Photometric Interpretation: " + colours), tags);
    QVERIFY2(tags.contains("Samples/Pixel: " + QByteArray::number(samples)), tags);
    QVERIFY2(tags.contains("Planar Configuration: single image plane"), tags);
    QVERIFY2(tags.contains("1 Strips:"), tags);
    QVERIFY(outputOf("convert", { name, "-depth", "8", rawFormat }) == pixels);
}

void tst_ImReaderWriter::upperCaseExtension_stillWritesATiff()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(write(image, path("image.TIF")));
    const TiffFile file(TIFFOpen(path("image.TIF").c_str(), "r"));
    QVERIFY(file);
}

void tst_ImReaderWriter::writtenTiff_isReadBack_data()
{
    QTest::addColumn<unsigned>("width");
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<unsigned short>("compression");
    QTest::newRow("grey LZW") << 1280U << static_cast<unsigned short>(1) << lzw;
    QTest::newRow("RGB LZW") << 1280U << static_cast<unsigned short>(3) << lzw;
    QTest::newRow("odd grey plain") << 17U << static_cast<unsigned short>(1) << uncompressed;
    QTest::newRow("one column RGB") << 1U << static_cast<unsigned short>(3) << lzw;
}

void tst_ImReaderWriter::writtenTiff_isReadBack()
{
    QFETCH(unsigned, width);
    QFETCH(unsigned short, samples);
    QFETCH(unsigned short, compression);
    const QByteArray pixels = pattern(static_cast<int>(width) * 11 * samples);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, width, 11, samples, samples == 1 ? grey : rgb, compression));
    QVERIFY(write(image, path("back.tif")));
    ImReaderWriter copy;
    QCOMPARE(read(copy, path("back.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(copy.data(8)), pixels.size()), pixels);
}

void tst_ImReaderWriter::tiffInUnknownCompression_fails()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1, grey, 4711));
    QVERIFY(!write(image, path("unknown.tif")));
}

void tst_ImReaderWriter::readTiff16_isHeldIn16Bits()
{
    const QByteArray rows = samples16({ 0x0001, 0x0FFF, 0x8000, 0x1234, 0xABCD, 0x0000 });
    makeTiff(path("deep.tif"), 3, 2, 16, 1, rows);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 12), rows);
}

void tst_ImReaderWriter::readTiff16WrittenTwice_isRotatedTwice()
{
    makeTiff(path("deep.tif"), 2, 1, 16, 1, samples16({ 0x0ABC, 0xF123 }));
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);

    QVERIFY(write(image, path("once.tif")));
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 4), samples16({ 0xABC0, 0x123F }));
    QVERIFY(write(image, path("twice.tif")));
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 4), samples16({ 0xBC0A, 0x23F1 }));

    ImReaderWriter copy;
    QCOMPARE(read(copy, path("once.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(copy.data(16)), 4), samples16({ 0xABC0, 0x123F }));
    QCOMPARE(read(copy, path("twice.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(copy.data(16)), 4), samples16({ 0xBC0A, 0x23F1 }));
}

void tst_ImReaderWriter::readTiff48_isWrittenRotated()
{
    makeTiff(path("deep.tif"), 1, 1, 16, 3, samples16({ 0x0111, 0x0222, 0x0333 }), rgb);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(write(image, path("rotated.tif")));
    QCOMPARE(read(image, path("rotated.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 6), samples16({ 0x1110, 0x2220, 0x3330 }));
}

void tst_ImReaderWriter::readTiff_ofOtherShapes_data()
{
    QTest::addColumn<unsigned short>("bits");
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<unsigned short>("planar");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("wide");
    const auto row
        = [](const char* name, unsigned short bits, unsigned short samples, unsigned short planar, int result,
              bool wide) { QTest::newRow(name) << bits << samples << planar << result << wide; };
    row("2 x 8 bits", 8, 2, PLANARCONFIG_CONTIG, 1, true);
    row("4 x 8 bits", 8, 4, PLANARCONFIG_CONTIG, 1, false);
    row("2 x 16 bits", 16, 2, PLANARCONFIG_CONTIG, 1, true);
    row("4 x 16 bits", 16, 4, PLANARCONFIG_CONTIG, 1, true);
    row("one float", 32, 1, PLANARCONFIG_CONTIG, 1, false);
    row("one double", 64, 1, PLANARCONFIG_CONTIG, 0, false);
    row("1 bit", 1, 1, PLANARCONFIG_CONTIG, 0, false);
    row("12 bits", 12, 1, PLANARCONFIG_CONTIG, 0, false);
    row("two of 4 bits", 4, 2, PLANARCONFIG_CONTIG, 1, false);
    row("6 x 8 bits", 8, 6, PLANARCONFIG_CONTIG, 0, false);
    row("8 x 8 bits", 8, 8, PLANARCONFIG_CONTIG, 0, false);
    row("5 x 16 bits", 16, 5, PLANARCONFIG_CONTIG, 0, false);
    row("3 planes of 8 bits", 8, 3, PLANARCONFIG_SEPARATE, 1, false);
    row("3 planes of 16 bits", 16, 3, PLANARCONFIG_SEPARATE, 1, true);
}

// Whatever is read, nothing is overrun when it is written again.
void tst_ImReaderWriter::readTiff_ofOtherShapes()
{
    QFETCH(unsigned short, bits);
    QFETCH(unsigned short, samples);
    QFETCH(unsigned short, planar);
    QFETCH(int, result);
    QFETCH(bool, wide);
    const QByteArray rows = pattern(5 * 4 * 16);
    makeTiff(path("shape.tif"), 5, 4, bits, samples, rows, samples == 3 ? rgb : grey, planar);
    ImReaderWriter image;
    QCOMPARE(read(image, path("shape.tif")), result);
    if (result == 1) {
        void* pixels = image.data(wide ? 16 : 8);
        QVERIFY(pixels != nullptr);
        QCOMPARE(QByteArray(static_cast<char*>(pixels), 5), rows.left(5));
        QCOMPARE(image.data(wide ? 8 : 16), nullptr);
    }
    for (const char* name : { "again.tif", "again.png", "again.jpg", "again.bmp", "again.raw" }) {
        write(image, path(name));
    }
}

void tst_ImReaderWriter::readOfDamagedTiff_fails_data()
{
    QTest::addColumn<int>("bytesKept");
    QTest::newRow("empty") << 0;
    QTest::newRow("header alone") << 8;
    QTest::newRow("without its tags") << 1000;
}

void tst_ImReaderWriter::readOfDamagedTiff_fails()
{
    QFETCH(int, bytesKept);
    ImReaderWriter image;
    QVERIFY(load(image, pattern(100 * 100), 100, 100, 1));
    QVERIFY(write(image, path("damaged.tif")));
    QVERIFY(QFile::resize(m_folder.filePath("damaged.tif"), bytesKept));
    ImReaderWriter copy;
    QCOMPARE(read(copy, path("damaged.tif")), 0);
}

void tst_ImReaderWriter::readOfTiffWithHugeSize_fails()
{
    makeTiff(path("huge.tif"), 100000, 2, 8, 1, pattern(1000));
    {
        const TiffFile file(TIFFOpen(path("huge.tif").c_str(), "r+"));
        QVERIFY(file);
        TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, 0xFFFFFFFFU);
        QCOMPARE(TIFFRewriteDirectory(file.get()), 1);
    }
    ImReaderWriter image;
    QCOMPARE(read(image, path("huge.tif")), 0);
    QCOMPARE(image.data(8), nullptr);
}

void tst_ImReaderWriter::failedRead_keepsTheImageHeldBefore()
{
    const QByteArray pixels = pattern(12);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 4, 3, 1));
    QCOMPARE(read(image, path("missing.tif")), 0);
    QVERIFY(write(image, path("still.tif")));
    QCOMPARE(read(image, path("still.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(8)), 12), pixels);
}

void tst_ImReaderWriter::writeRaster_hasThePixels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<unsigned>("width");
    QTest::addColumn<unsigned short>("samples");
    for (const char* name : { "x.png", "x.bmp" }) {
        for (const unsigned width : { 1U, 13U, 64U }) {
            QTest::addRow("%s grey %u wide", name, width) << name << width << static_cast<unsigned short>(1);
            QTest::addRow("%s colour %u wide", name, width)
                << name << width << static_cast<unsigned short>(3);
        }
    }
}

void tst_ImReaderWriter::writeRaster_hasThePixels()
{
    QFETCH(QString, name);
    QFETCH(unsigned, width);
    QFETCH(unsigned short, samples);
    const QByteArray pixels = pattern(static_cast<int>(width) * 7 * samples);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, width, 7, samples));
    QVERIFY(write(image, path(name)));

    const QImage found(m_folder.filePath(name));
    QCOMPARE(found.size(), QSize(static_cast<int>(width), 7));
    const auto* sample = reinterpret_cast<const unsigned char*>(pixels.constData());
    for (int y = 0; y < found.height(); ++y) {
        for (int x = 0; x < found.width(); ++x, sample += samples) {
            const QRgb expected = samples == 1 ? qRgb(sample[0], sample[0], sample[0])
                                               : qRgb(sample[0], sample[1], sample[2]);
            QCOMPARE(found.pixel(x, y), expected);
        }
    }
}

void tst_ImReaderWriter::writeJpeg_isClose()
{
    ImReaderWriter image;
    QVERIFY(load(image, QByteArray(32 * 16 * 3, static_cast<char>(120)), 32, 16, 3));
    QVERIFY(write(image, path("x.jpg")));
    QCOMPARE(contentsOf(path("x.jpg")).left(2), QByteArray("\xFF\xD8"));
    const QImage found(m_folder.filePath("x.jpg"));
    QCOMPARE(found.size(), QSize(32, 16));
    QVERIFY(std::abs(qRed(found.pixel(5, 5)) - 120) <= 2);
}

void tst_ImReaderWriter::writeRasterOfOtherDepths_savesNothing()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(24), 4, 3, 2));
    for (const char* name : { "deep.png", "deep.bmp", "deep.jpg" }) {
        QVERIFY(!write(image, path(name)));
        QVERIFY(!QFile::exists(m_folder.filePath(name)));
    }
}

void tst_ImReaderWriter::readOfRasterTypes_fails()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    for (const char* name : { "y.png", "y.bmp", "y.jpg" }) {
        QVERIFY(write(image, path(name)));
        QCOMPARE(read(image, path(name)), 0);
    }
}

void tst_ImReaderWriter::writeRaw8_isTheBareSamples()
{
    const QByteArray pixels = pattern(13 * 7 * 3);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 13, 7, 3));
    QVERIFY(write(image, path("x.raw")));
    QCOMPARE(contentsOf(path("x.raw")), pixels);
}

void tst_ImReaderWriter::writeRaw16_isTheBareSamples()
{
    const QByteArray rows = samples16({ 0x0001, 0x0FFF, 0x8000, 0x1234, 0xABCD, 0x0000 });
    makeTiff(path("deep.tif"), 3, 2, 16, 1, rows);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(write(image, path("deep.raw")));
    QCOMPARE(contentsOf(path("deep.raw")), rows);
}

void tst_ImReaderWriter::writeRawOf48Bits_failsWithoutACrash()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(2), 2, 1, 1)); // a byte buffer that is too small for what follows
    makeTiff(path("deep.tif"), 30, 20, 16, 3, pattern(3600), rgb);
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(!write(image, path("deep.raw")));
    makeTiff(path("deeper.tif"), 30, 20, 16, 4, pattern(4800));
    QCOMPARE(read(image, path("deeper.tif")), 1);
    QVERIFY(!write(image, path("deeper.raw")));
}

void tst_ImReaderWriter::readRaw_isKnownByItsSize_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("bits");
    QTest::newRow("8 bits") << rawSamples << 8;
    QTest::newRow("16 bits") << 2 * rawSamples << 16;
}

void tst_ImReaderWriter::readRaw_isKnownByItsSize()
{
    QFETCH(int, bytes);
    QFETCH(int, bits);
    const QByteArray samples = pattern(bytes);
    QFile file(m_folder.filePath("x.raw"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(samples), bytes);
    file.close();
    ImReaderWriter image;
    QCOMPARE(read(image, path("x.raw")), 1);
    QVERIFY(image.data(bits) != nullptr);
    QVERIFY(QByteArray(static_cast<char*>(image.data(bits)), bytes) == samples);
    QCOMPARE(image.data(bits == 8 ? 16 : 8), nullptr);
}

void tst_ImReaderWriter::readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<bool>("after16Bits");
    QTest::addColumn<int>("result");
    QTest::newRow("empty") << 0 << false << 0;
    QTest::newRow("one byte short") << rawSamples - 1 << false << 0;
    QTest::newRow("one byte more") << rawSamples + 1 << false << 1;
    QTest::newRow("16 bits, one byte short") << 2 * rawSamples - 1 << true << 0;
    QTest::newRow("16 bits, one byte more") << 2 * rawSamples + 1 << true << 1;
    QTest::newRow("16 bits, half") << rawSamples + 2 << true << 0;
}

void tst_ImReaderWriter::readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived()
{
    QFETCH(int, bytes);
    QFETCH(bool, after16Bits);
    QFETCH(int, result);
    const QByteArray samples = pattern(bytes);
    QFile file(m_folder.filePath("other.raw"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(samples), bytes);
    file.close();
    ImReaderWriter image;
    if (after16Bits) {
        makeTiff(path("deep.tif"), 1, 1, 16, 1, samples16({ 1 }));
        QCOMPARE(read(image, path("deep.tif")), 1);
    }
    QCOMPARE(read(image, path("other.raw")), result);
    const int held = qMin(bytes, rawSamples * (after16Bits ? 2 : 1));
    QVERIFY(QByteArray(static_cast<char*>(image.data(after16Bits ? 16 : 8)), held) == samples.left(held));
}

void tst_ImReaderWriter::readRawThenRaster_takesTheRawGeometry()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(4000 * 400), 4000, 400, 1)); // larger than a raw image
    const QByteArray samples = pattern(rawSamples);
    QFile file(m_folder.filePath("x.raw"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(samples), rawSamples);
    file.close();
    QCOMPARE(read(image, path("x.raw")), 1);
    QVERIFY(write(image, path("raw.png")));
    QCOMPARE(QImage(m_folder.filePath("raw.png")).size(), QSize(1280, 1024));
}

void tst_ImReaderWriter::writeWithoutPixels_failsAndLeavesTheFile()
{
    for (const char* name : { "kept.tif", "kept.png", "kept.jpg", "kept.bmp", "kept.raw" }) {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("kept");
        file.close();
        ImReaderWriter image;
        QVERIFY(!write(image, path(name)));
        QCOMPARE(contentsOf(path(name)), QByteArray("kept"));
    }
}

void tst_ImReaderWriter::writeIntoMissingFolder_fails_data()
{
    QTest::addColumn<QString>("extension");
    for (const char* extension : { "tif", "jpg", "png", "bmp", "raw" }) {
        QTest::newRow(extension) << extension;
    }
}

void tst_ImReaderWriter::writeIntoMissingFolder_fails()
{
    QFETCH(QString, extension);
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(!write(image, path("missing/x." + extension)));
}

void tst_ImReaderWriter::writeToFullStick_fails_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("room");
    for (const char* extension : { "tif", "jpg", "png", "bmp", "raw" }) {
        QTest::addRow("%s cut in its pixels", extension) << QString("full.") + extension << 20000;
    }
    QTest::newRow("tif cut in its tags") << "full.tif" << 60000 + 20;
    QTest::newRow("raw short of one byte") << "full.raw" << 60000 - 1;
}

void tst_ImReaderWriter::writeToFullStick_fails()
{
    QFETCH(QString, name);
    QFETCH(int, room);
    QByteArray noise(300 * 200, '\0'); // does not compress
    std::mt19937 random(1);
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
    ImReaderWriter image;
    QVERIFY(load(image, noise, 300, 200, 1, grey, uncompressed));
    rlimit before {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full { static_cast<rlim_t>(room), before.rlim_max };
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    const bool written = write(image, path(name));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    QVERIFY(!written);
}

void tst_ImReaderWriter::readOfMissingFile_fails()
{
    ImReaderWriter image;
    QCOMPARE(read(image, path("missing.tif")), 0);
    QCOMPARE(read(image, path("missing.raw")), 0);
    QCOMPARE(read(image, path("")), 0);
}

void tst_ImReaderWriter::largerImageAfterSmaller_replacesTheBuffer()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(6), 3, 2, 1));
    const QByteArray pixels = pattern(300 * 200 * 3);
    QVERIFY(load(image, pixels, 300, 200, 3, rgb));
    QVERIFY(write(image, path("large.tif")));
    QCOMPARE(read(image, path("large.tif")), 1);
    QVERIFY(QByteArray(static_cast<char*>(image.data(8)), pixels.size()) == pixels);
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter)

#include "tst_ImReaderWriter.moc"
