#include "ImageFiles.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using general::ImReaderWriter;

namespace {

constexpr int kRawSamples = 1280 * 1024;

} // namespace

/// Raw files: bare samples, known by their size.
class tst_ImReaderWriter_raw : public QObject {
    Q_OBJECT

private slots:
    void writeRaw8_isTheBareSamples();
    void writeRaw16_isTheBareSamples();
    void writeRawOf48Bits_failsWithoutACrash();
    void readRaw_isKnownByItsSize_data();
    void readRaw_isKnownByItsSize();
    void readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived_data();
    void readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived();
    void readRawThenRaster_takesTheRawGeometry();

private:
    std::string path(const QString& name) const { return m_folder.filePath(name).toStdString(); }

    QTemporaryDir m_folder;
};

void tst_ImReaderWriter_raw::writeRaw8_isTheBareSamples()
{
    const QByteArray pixels = pattern(13 * 7 * 3);
    ImReaderWriter image;
    QVERIFY(load(image, pixels, 13, 7, 3));
    QVERIFY(write(image, path("x.raw")));
    QCOMPARE(contentsOf(path("x.raw")), pixels);
}

void tst_ImReaderWriter_raw::writeRaw16_isTheBareSamples()
{
    const QByteArray rows = samples16({ 0x0001, 0x0FFF, 0x8000, 0x1234, 0xABCD, 0x0000 });
    makeTiff(path("deep.tif"), 3, 2, 16, 1, rows);
    ImReaderWriter image;
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(write(image, path("deep.raw")));
    QCOMPARE(contentsOf(path("deep.raw")), rows);
}

void tst_ImReaderWriter_raw::writeRawOf48Bits_failsWithoutACrash()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(2), 2, 1, 1)); // a byte buffer that is too small for what follows
    makeTiff(path("deep.tif"), 30, 20, 16, 3, pattern(3600), kRgb);
    QCOMPARE(read(image, path("deep.tif")), 1);
    QVERIFY(!write(image, path("deep.raw")));
    makeTiff(path("deeper.tif"), 30, 20, 16, 4, pattern(4800));
    QCOMPARE(read(image, path("deeper.tif")), 1);
    QVERIFY(!write(image, path("deeper.raw")));
}

void tst_ImReaderWriter_raw::readRaw_isKnownByItsSize_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("bits");
    QTest::newRow("8 bits") << kRawSamples << 8;
    QTest::newRow("16 bits") << 2 * kRawSamples << 16;
}

void tst_ImReaderWriter_raw::readRaw_isKnownByItsSize()
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

void tst_ImReaderWriter_raw::readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<bool>("after16Bits");
    QTest::addColumn<int>("result");
    QTest::newRow("empty") << 0 << false << 0;
    QTest::newRow("one byte short") << kRawSamples - 1 << false << 0;
    QTest::newRow("one byte more") << kRawSamples + 1 << false << 1;
    QTest::newRow("16 bits, one byte short") << 2 * kRawSamples - 1 << true << 0;
    QTest::newRow("16 bits, one byte more") << 2 * kRawSamples + 1 << true << 1;
    QTest::newRow("16 bits, half") << kRawSamples + 2 << true << 0;
}

void tst_ImReaderWriter_raw::readRawOfOtherSize_keepsTheBitsAndTellsWhetherAllArrived()
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
    const int held = qMin(bytes, kRawSamples * (after16Bits ? 2 : 1));
    QVERIFY(QByteArray(static_cast<char*>(image.data(after16Bits ? 16 : 8)), held) == samples.left(held));
}

void tst_ImReaderWriter_raw::readRawThenRaster_takesTheRawGeometry()
{
    ImReaderWriter image;
    QVERIFY(load(image, pattern(4000 * 400), 4000, 400, 1)); // larger than a raw image
    const QByteArray samples = pattern(kRawSamples);
    QFile file(m_folder.filePath("x.raw"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(samples), kRawSamples);
    file.close();
    QCOMPARE(read(image, path("x.raw")), 1);
    QVERIFY(write(image, path("raw.png")));
    QCOMPARE(QImage(m_folder.filePath("raw.png")).size(), QSize(1280, 1024));
}

QTEST_GUILESS_MAIN(tst_ImReaderWriter_raw)

#include "tst_ImReaderWriter_raw.moc"
