#include "ImageFiles.h"
#include "tests/support/program_output.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using general::ImReaderWriter;

/// TIFF files, checked by the library itself and by programs of other makers.
class tst_ImReaderWriter_tiff : public QObject {
    Q_OBJECT

private slots:
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

private:
    std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }

    QTemporaryDir m_folder;
};

void tst_ImReaderWriter_tiff::greyTiff_hasItsTagsOneStripAndPixels()
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

void tst_ImReaderWriter_tiff::rgbTiff_hasItsTagsOneStripAndPixels()
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

void tst_ImReaderWriter_tiff::tiffOfOddWidth_hasItsPixels()
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

void tst_ImReaderWriter_tiff::twoSampleTiff_isRotatedByFourBits()
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

void tst_ImReaderWriter_tiff::description_isStoredWhenThereIsOne()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(write(image, path("described.tif"), "focus 3, \xC2\xB5m"));
    const TiffFile file(TIFFOpen(path("described.tif").c_str(), "r"));
    QVERIFY(file);
    QCOMPARE(QByteArray(tagOf<char*>(file, TIFFTAG_IMAGEDESCRIPTION)), QByteArray("focus 3, \xC2\xB5m"));
}

void tst_ImReaderWriter_tiff::writtenTiff_isReadByOtherPrograms_data()
{
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<QByteArray>("colours");
    QTest::addColumn<QString>("rawFormat");
    QTest::newRow("grey") << static_cast<unsigned short>(1) << QByteArray("min-is-black") << "gray:-";
    QTest::newRow("RGB") << static_cast<unsigned short>(3) << QByteArray("RGB color") << "rgb:-";
}

void tst_ImReaderWriter_tiff::writtenTiff_isReadByOtherPrograms()
{
    QFETCH(unsigned short, samples);
    QFETCH(QByteArray, colours);
    QFETCH(QString, rawFormat);
    if (QStandardPaths::findExecutable("tiffinfo").isEmpty()
        || QStandardPaths::findExecutable("convert").isEmpty()) {
        QFAIL("tiffinfo or ImageMagick is missing: scripts/setup installs them");
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

void tst_ImReaderWriter_tiff::upperCaseExtension_stillWritesATiff()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(write(image, path("image.TIF")));
    const TiffFile file(TIFFOpen(path("image.TIF").c_str(), "r"));
    QVERIFY(file);
}

void tst_ImReaderWriter_tiff::writtenTiff_isReadBack_data()
{
    QTest::addColumn<unsigned>("width");
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<unsigned short>("compression");
    QTest::newRow("grey LZW") << 1280U << static_cast<unsigned short>(1) << lzw;
    QTest::newRow("RGB LZW") << 1280U << static_cast<unsigned short>(3) << lzw;
    QTest::newRow("odd grey plain") << 17U << static_cast<unsigned short>(1) << uncompressed;
    QTest::newRow("one column RGB") << 1U << static_cast<unsigned short>(3) << lzw;
}

void tst_ImReaderWriter_tiff::writtenTiff_isReadBack()
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

void tst_ImReaderWriter_tiff::tiffInUnknownCompression_fails()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1, grey, 4711));
    QVERIFY(!write(image, path("unknown.tif")));
}

void tst_ImReaderWriter_tiff::readTiff16_isHeldIn16Bits()
{
    const QByteArray rows = samples16({ 0x0001, 0x0FFF, 0x8000, 0x1234, 0xABCD, 0x0000 });
    makeTiff(path("deep.tif"), 3, 2, 16, 1, rows);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 12), rows);
}

void tst_ImReaderWriter_tiff::readTiff16WrittenTwice_isRotatedTwice()
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

void tst_ImReaderWriter_tiff::readTiff48_isWrittenRotated()
{
    makeTiff(path("deep.tif"), 1, 1, 16, 3, samples16({ 0x0111, 0x0222, 0x0333 }), rgb);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(write(image, path("rotated.tif")));
    QCOMPARE(read(image, path("rotated.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 6), samples16({ 0x1110, 0x2220, 0x3330 }));
}

void tst_ImReaderWriter_tiff::readTiff_ofOtherShapes_data()
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

/// Whatever is read, nothing is overrun when it is written again.
void tst_ImReaderWriter_tiff::readTiff_ofOtherShapes()
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

void tst_ImReaderWriter_tiff::readOfDamagedTiff_fails_data()
{
    QTest::addColumn<int>("bytesKept");
    QTest::newRow("empty") << 0;
    QTest::newRow("header alone") << 8;
    QTest::newRow("without its tags") << 1000;
}

void tst_ImReaderWriter_tiff::readOfDamagedTiff_fails()
{
    QFETCH(int, bytesKept);
    ImReaderWriter image;
    QVERIFY(load(image, pattern(100 * 100), 100, 100, 1));
    QVERIFY(write(image, path("damaged.tif")));
    QVERIFY(QFile::resize(m_folder.filePath("damaged.tif"), bytesKept));
    ImReaderWriter copy;
    QCOMPARE(read(copy, path("damaged.tif")), 0);
}

void tst_ImReaderWriter_tiff::readOfTiffWithHugeSize_fails()
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

void tst_ImReaderWriter_tiff::failedRead_keepsTheImageHeldBefore()
{
    const QByteArray pixels = pattern(12);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 4, 3, 1));
    QCOMPARE(read(image, path("missing.tif")), 0);
    QVERIFY(write(image, path("still.tif")));
    QCOMPARE(read(image, path("still.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(8)), 12), pixels);
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter_tiff)

#include "tst_ImReaderWriter_tiff.moc"
