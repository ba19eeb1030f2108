#include "ImageFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <random>

#include <sys/resource.h>

using general::ImReaderWriter;

/// The image in memory, and what fails.
class tst_ImReaderWriter : public QObject {
    Q_OBJECT

private slots:
    void imageType_data();
    void imageType();

    void newObject_holdsNoPixels();
    void load_copiesThePixels();
    void data_isThe16BitBufferFor16Alone();
    void loadOfTwoSamples_goesToThe16BitBuffer();
    void loadOfOtherDepths_isRefused_data();
    void loadOfOtherDepths_isRefused();
    void loadOfMorePixelsThanCanBeCounted_isRefused();

    void writeWithoutPixels_failsAndLeavesTheFile();
    void writeIntoMissingFolder_fails_data();
    void writeIntoMissingFolder_fails();
    void writeToFullStick_fails_data();
    void writeToFullStick_fails();
    void readOfMissingFile_fails();
    void largerImageAfterSmaller_replacesTheBuffer();

private:
    std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }

    QTemporaryDir m_folder;
};

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
    image.load(pixels.data(), 4, 3, 8, 3, kLzw, kRgb);
    pixels.fill('\0');
    QVERIFY(image.data(8) != pixels.data());
    QCOMPARE(QByteArray(static_cast<char*>(image.data(8)), 36), original);
    QCOMPARE(image.data(16), nullptr);
}

void tst_ImReaderWriter::data_isThe16BitBufferFor16Alone()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(6), 3, 1, 2));
    QVERIFY(load(image, pattern(3), 3, 1, 1)); // the two-sample image stays in its own buffer
    for (const int bits : { 8, 0, -1, 12, 24, 32 }) {
        QCOMPARE(image.data(bits), image.data(8));
        QVERIFY(image.data(bits) != image.data(16));
    }
    QCOMPARE(QByteArray(static_cast<char*>(image.data(8)), 3), pattern(3));
    QCOMPARE(QByteArray(static_cast<char*>(image.data(16)), 6), pattern(6));
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
    image.load(pixels.data(), 4, 3, bits, samples, kLzw, kGrey);
    QCOMPARE(image.data(8), nullptr);
    QCOMPARE(image.data(16), nullptr);
    QVERIFY(!write(image, path("refused.tif")));
}

void tst_ImReaderWriter::loadOfMorePixelsThanCanBeCounted_isRefused()
{
    QByteArray pixels = pattern(10);
    ImReaderWriter image;
    image.load(pixels.data(), 65536, 65536, 8, 1, kLzw, kGrey);
    QCOMPARE(image.data(8), nullptr);
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
    QVERIFY(load(image, noise, 300, 200, 1, kGrey, kUncompressed));
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
    QVERIFY(load(image, pixels, 300, 200, 3, kRgb));
    QVERIFY(write(image, path("large.tif")));
    QCOMPARE(read(image, path("large.tif")), 1);
    QVERIFY(QByteArray(static_cast<char*>(image.data(8)), pixels.size()) == pixels);
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter)

#include "tst_ImReaderWriter.moc"
