#include "ImageFiles.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using general::ImReaderWriter;

/// The types that Qt writes: JPEG, PNG and BMP.
class tst_ImReaderWriter_raster : public QObject {
    Q_OBJECT

private slots:
    void writeRaster_hasThePixels_data();
    void writeRaster_hasThePixels();
    void writeRasterOf32Bits_takesWordsOfBlueGreenRed_data();
    void writeRasterOf32Bits_takesWordsOfBlueGreenRed();
    void writeJpeg_isClose();
    void writeRasterOfOtherDepths_savesNothing();
    void readOfRasterTypes_fails();

private:
    std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }

    QTemporaryDir m_folder;
};

void tst_ImReaderWriter_raster::writeRaster_hasThePixels_data()
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

void tst_ImReaderWriter_raster::writeRaster_hasThePixels()
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

void tst_ImReaderWriter_raster::writeRasterOf32Bits_takesWordsOfBlueGreenRed_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("png") << "words.png";
    QTest::newRow("bmp") << "words.bmp";
}

void tst_ImReaderWriter_raster::writeRasterOf32Bits_takesWordsOfBlueGreenRed()
{
    // Only a file that was read holds 32 bits a pixel: four samples of 8.
    QFETCH(QString, name);
    makeTiff(path("words.tif"), 2, 1, 8, 4, QByteArray("\x10\x20\x30\x40\xF1\xF2\xF3\x00", 8), kRgb);
    ImReaderWriter image;
    QCOMPARE(read(image, path("words.tif")), 1);
    QVERIFY(write(image, path(name)));
    const QImage found(m_folder.filePath(name));
    QCOMPARE(found.size(), QSize(2, 1));
    QCOMPARE(found.pixel(0, 0), qRgb(0x30, 0x20, 0x10));
    QCOMPARE(found.pixel(1, 0), qRgb(0xF3, 0xF2, 0xF1));
}

void tst_ImReaderWriter_raster::writeJpeg_isClose()
{
    ImReaderWriter image;
    QVERIFY(load(image, QByteArray(32 * 16 * 3, static_cast<char>(120)), 32, 16, 3));
    QVERIFY(write(image, path("x.jpg")));
    QCOMPARE(contentsOf(path("x.jpg")).left(2), QByteArray("\xFF\xD8"));
    const QImage found(m_folder.filePath("x.jpg"));
    QCOMPARE(found.size(), QSize(32, 16));
    QVERIFY(std::abs(qRed(found.pixel(5, 5)) - 120) <= 2);
}

void tst_ImReaderWriter_raster::writeRasterOfOtherDepths_savesNothing()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(24), 4, 3, 2));
    for (const char* name : { "deep.png", "deep.bmp", "deep.jpg" }) {
        QVERIFY(!write(image, path(name)));
        QVERIFY(!QFile::exists(m_folder.filePath(name)));
    }
}

void tst_ImReaderWriter_raster::readOfRasterTypes_fails()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(12), 4, 3, 1));
    for (const char* name : { "y.png", "y.bmp", "y.jpg" }) {
        QVERIFY(write(image, path(name)));
        QCOMPARE(read(image, path(name)), 0);
    }
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter_raster)

#include "tst_ImReaderWriter_raster.moc"
