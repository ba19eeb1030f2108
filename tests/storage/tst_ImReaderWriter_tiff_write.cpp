#include "ImageFiles.h"
#include "tests/support/program_output.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using general::ImReaderWriter;

/// TIFF files that are written, checked by the library itself and by programs of other makers.
class tst_ImReaderWriter_tiff_write : public QObject {
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
    void tiffInUnknownCompression_fails();

private:
    std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }

    QTemporaryDir m_folder;
};

void tst_ImReaderWriter_tiff_write::greyTiff_hasItsTagsOneStripAndPixels()
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

void tst_ImReaderWriter_tiff_write::rgbTiff_hasItsTagsOneStripAndPixels()
{
    const QByteArray pixels = pattern(1280 * 960 * 3);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 1280, 960, 3, kRgb));
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

void tst_ImReaderWriter_tiff_write::tiffOfOddWidth_hasItsPixels()
{
    const QByteArray pixels = pattern(13 * 7 * 3);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 13, 7, 3, kRgb, kUncompressed));
    QVERIFY(write(image, path("odd.tif")));
    const TiffFile file(TIFFOpen(path("odd.tif").c_str(), "r"));
    QVERIFY(file);
    QByteArray found(pixels.size(), '\0');
    QCOMPARE(TIFFReadEncodedStrip(file.get(), 0, found.data(), found.size()), tmsize_t { pixels.size() });
    QCOMPARE(found, pixels);
}

void tst_ImReaderWriter_tiff_write::twoSampleTiff_isRotatedByFourBits()
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

void tst_ImReaderWriter_tiff_write::description_isStoredWhenThereIsOne()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(write(image, path("described.tif"), "focus 3, \xC2\xB5m"));
    const TiffFile file(TIFFOpen(path("described.tif").c_str(), "r"));
    QVERIFY(file);
    QCOMPARE(QByteArray(tagOf<char*>(file, TIFFTAG_IMAGEDESCRIPTION)), QByteArray("focus 3, \xC2\xB5m"));
}

void tst_ImReaderWriter_tiff_write::writtenTiff_isReadByOtherPrograms_data()
{
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<QByteArray>("colours");
    QTest::addColumn<QString>("rawFormat");
    QTest::newRow("grey") << static_cast<unsigned short>(1) << QByteArray("min-is-black") << "gray:-";
    QTest::newRow("RGB") << static_cast<unsigned short>(3) << QByteArray("RGB color") << "rgb:-";
}

void tst_ImReaderWriter_tiff_write::writtenTiff_isReadByOtherPrograms()
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
    QVERIFY(load(image, pixels, 321, 123, samples, samples == 1 ? kGrey : kRgb));
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

void tst_ImReaderWriter_tiff_write::upperCaseExtension_stillWritesATiff()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    QVERIFY(write(image, path("image.TIF")));
    const TiffFile file(TIFFOpen(path("image.TIF").c_str(), "r"));
    QVERIFY(file);
}

void tst_ImReaderWriter_tiff_write::tiffInUnknownCompression_fails()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1, kGrey, 4711));
    QVERIFY(!write(image, path("unknown.tif")));
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter_tiff_write)

#include "tst_ImReaderWriter_tiff_write.moc"
