#include "ImageFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using general::ImReaderWriter;

/// TIFF files that are read: those written before, those of other makers, damaged ones.
class tst_ImReaderWriter_tiff_read : public QObject {
    Q_OBJECT

private slots:
    void writtenTiff_isReadBack_data();
    void writtenTiff_isReadBack();
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

void tst_ImReaderWriter_tiff_read::writtenTiff_isReadBack_data()
{
    QTest::addColumn<unsigned>("width");
    QTest::addColumn<unsigned short>("samples");
    QTest::addColumn<unsigned short>("compression");
    QTest::newRow("grey LZW") << 1280U << static_cast<unsigned short>(1) << kLzw;
    QTest::newRow("RGB LZW") << 1280U << static_cast<unsigned short>(3) << kLzw;
    QTest::newRow("odd grey plain") << 17U << static_cast<unsigned short>(1) << kUncompressed;
    QTest::newRow("one column RGB") << 1U << static_cast<unsigned short>(3) << kLzw;
}

void tst_ImReaderWriter_tiff_read::writtenTiff_isReadBack()
{
    QFETCH(unsigned, width);
    QFETCH(unsigned short, samples);
    QFETCH(unsigned short, compression);
    const QByteArray pixels = pattern(static_cast<int>(width) * 11 * samples);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, width, 11, samples, samples == 1 ? kGrey : kRgb, compression));
    QVERIFY(write(image, path("back.tif")));
    ImReaderWriter copy;
    QCOMPARE(read(copy, path("back.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(copy.data(8)), pixels.size()), pixels);
}

void tst_ImReaderWriter_tiff_read::readTiff16_isHeldIn16Bits()
{
    const QByteArray rows = samples16({ 0x0001, 0x0FFF, 0x8000, 0x1234, 0xABCD, 0x0000 });
    makeTiff(path("deep.tif"), 3, 2, 16, 1, rows);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 12), rows);
}

void tst_ImReaderWriter_tiff_read::readTiff16WrittenTwice_isRotatedTwice()
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

void tst_ImReaderWriter_tiff_read::readTiff48_isWrittenRotated()
{
    makeTiff(path("deep.tif"), 1, 1, 16, 3, samples16({ 0x0111, 0x0222, 0x0333 }), kRgb);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(write(image, path("rotated.tif")));
    QCOMPARE(read(image, path("rotated.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 6), samples16({ 0x1110, 0x2220, 0x3330 }));
}

void tst_ImReaderWriter_tiff_read::readTiff_ofOtherShapes_data()
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
void tst_ImReaderWriter_tiff_read::readTiff_ofOtherShapes()
{
    QFETCH(unsigned short, bits);
    QFETCH(unsigned short, samples);
    QFETCH(unsigned short, planar);
    QFETCH(int, result);
    QFETCH(bool, wide);
    const QByteArray rows = pattern(5 * 4 * 16);
    makeTiff(path("shape.tif"), 5, 4, bits, samples, rows, samples == 3 ? kRgb : kGrey, planar);
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

void tst_ImReaderWriter_tiff_read::readOfDamagedTiff_fails_data()
{
    QTest::addColumn<int>("bytesKept");
    QTest::newRow("empty") << 0;
    QTest::newRow("header alone") << 8;
    QTest::newRow("without its tags") << 1000;
}

void tst_ImReaderWriter_tiff_read::readOfDamagedTiff_fails()
{
    QFETCH(int, bytesKept);
    ImReaderWriter image;
    QVERIFY(load(image, pattern(100 * 100), 100, 100, 1));
    QVERIFY(write(image, path("damaged.tif")));
    QVERIFY(QFile::resize(m_folder.filePath("damaged.tif"), bytesKept));
    ImReaderWriter copy;
    QCOMPARE(read(copy, path("damaged.tif")), 0);
}

void tst_ImReaderWriter_tiff_read::readOfTiffWithHugeSize_fails()
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

void tst_ImReaderWriter_tiff_read::failedRead_keepsTheImageHeldBefore()
{
    const QByteArray pixels = pattern(12);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 4, 3, 1));
    QCOMPARE(read(image, path("missing.tif")), 0);
    QVERIFY(write(image, path("still.tif")));
    QCOMPARE(read(image, path("still.tif")), 1);
    QCOMPARE(QByteArray(static_cast<char*>(image.data(8)), 12), pixels);
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter_tiff_read)

#include "tst_ImReaderWriter_tiff_read.moc"
