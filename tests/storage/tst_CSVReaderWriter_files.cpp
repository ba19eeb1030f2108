#include "storage/CSVReaderWriter.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Rows = std::vector<std::string>;

/// Tables as files: written, written newest first, read.
class tst_CSVReaderWriter_files : public QObject {
    Q_OBJECT

private slots:
    void write_endsWithoutALineEnd();
    void writeOfHeaderAlone_isTheHeader();
    void writeWithoutRows_makesAnEmptyFile();
    void write_truncatesAnOlderFile();
    void writeIntoMissingFolder_isPassedOver();

    void reverseWrite_putsTheNewestUnderTheHeader();
    void reverseWriteOfHeaderAlone_isTheHeaderAndALineEnd();
    void reverseWriteOfOneLine_hasNoLineEndBehindIt();
    void reverseWriteWithoutRows_makesAnEmptyFile();

    void read_appendsEveryLine();
    void readLine_endsAtTheLineFeedAlone();
    void readTable_keepsItsHeaderForTheNextWrap();
    void readOfMissingFile_leavesTheRows();
    void readOfFolder_leavesTheRows();
    void readPastTheLimit_keepsAllRows();
    void writtenTable_isReadBack();

private:
    QByteArray written(const CSVReaderWriter& table) const;
    QByteArray reverseWritten(const CSVReaderWriter& table) const;
    QByteArray contents() const;
    void put(const QByteArray& text) const;

    QTemporaryDir m_folder;
    std::string m_path = m_folder.filePath("table.csv").toStdString();
};

QByteArray tst_CSVReaderWriter_files::contents() const
{
    QFile file(QString::fromStdString(m_path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file";
}

void tst_CSVReaderWriter_files::put(const QByteArray& text) const
{
    QFile file(QString::fromStdString(m_path));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

QByteArray tst_CSVReaderWriter_files::written(const CSVReaderWriter& table) const
{
    table.write(m_path.c_str());
    return contents();
}

QByteArray tst_CSVReaderWriter_files::reverseWritten(const CSVReaderWriter& table) const
{
    table.reverseWrite(m_path.c_str());
    return contents();
}

void tst_CSVReaderWriter_files::write_endsWithoutALineEnd()
{
    CSVReaderWriter table(100, "header");
    table.fillDataField("a");
    table.fillDataField("b");
    QCOMPARE(written(table), QByteArray("header\na\nb"));
}

void tst_CSVReaderWriter_files::writeOfHeaderAlone_isTheHeader()
{
    QCOMPARE(written(CSVReaderWriter(100, "header")), QByteArray("header"));
}

void tst_CSVReaderWriter_files::writeWithoutRows_makesAnEmptyFile()
{
    QCOMPARE(written(CSVReaderWriter("header")), QByteArray());
}

void tst_CSVReaderWriter_files::write_truncatesAnOlderFile()
{
    written(CSVReaderWriter(100, "a much longer line than the next one"));
    QCOMPARE(written(CSVReaderWriter(100, "short")), QByteArray("short"));
}

void tst_CSVReaderWriter_files::writeIntoMissingFolder_isPassedOver()
{
    const CSVReaderWriter table(100, "header");
    const QString path = m_folder.filePath("missing/table.csv");
    table.write(qPrintable(path));
    table.reverseWrite(qPrintable(path));
    QVERIFY(!QFile::exists(path));
}

void tst_CSVReaderWriter_files::reverseWrite_putsTheNewestUnderTheHeader()
{
    CSVReaderWriter table(100, "header");
    for (const char* line : { "a", "b", "c" }) {
        table.fillDataField("%s", line);
    }
    QCOMPARE(reverseWritten(table), QByteArray("header\nc\nb\na"));
}

void tst_CSVReaderWriter_files::reverseWriteOfHeaderAlone_isTheHeaderAndALineEnd()
{
    QCOMPARE(reverseWritten(CSVReaderWriter(100, "header")), QByteArray("header\n"));
}

void tst_CSVReaderWriter_files::reverseWriteOfOneLine_hasNoLineEndBehindIt()
{
    CSVReaderWriter table(100, "header");
    table.fillDataField("a");
    QCOMPARE(reverseWritten(table), QByteArray("header\na"));
}

void tst_CSVReaderWriter_files::reverseWriteWithoutRows_makesAnEmptyFile()
{
    QCOMPARE(reverseWritten(CSVReaderWriter("header")), QByteArray());
}

void tst_CSVReaderWriter_files::read_appendsEveryLine()
{
    put("first\n\nlast");
    CSVReaderWriter table(100, "header");
    table.read(m_path.c_str());
    QCOMPARE(table.csv(), (Rows { "header", "first", "", "last" }));
    // The header of the table is not that of the file.
    table.erase();
    table.read(m_path.c_str());
    QCOMPARE(table.csv(), (Rows { "first", "", "last" }));
}

void tst_CSVReaderWriter_files::readLine_endsAtTheLineFeedAlone()
{
    put("a\r\nb\rc\n");
    CSVReaderWriter table("header");
    table.read(m_path.c_str());
    QCOMPARE(table.csv(), (Rows { "a\r", "b\rc" })); // and no empty row behind the last line end
}

void tst_CSVReaderWriter_files::readTable_keepsItsHeaderForTheNextWrap()
{
    put("header of the file\na\nb");
    CSVReaderWriter table(3, "header");
    table.erase();
    table.read(m_path.c_str());
    table.fillDataField("c");
    QCOMPARE(table.csv(), (Rows { "header", "b", "c" }));
}

void tst_CSVReaderWriter_files::readOfMissingFile_leavesTheRows()
{
    CSVReaderWriter table(100, "header");
    table.read(qPrintable(m_folder.filePath("missing.csv")));
    QCOMPARE(table.csv(), Rows { "header" });
}

void tst_CSVReaderWriter_files::readOfFolder_leavesTheRows()
{
    CSVReaderWriter table(100, "header");
    table.read(qPrintable(m_folder.path()));
    QCOMPARE(table.csv(), Rows { "header" });
}

void tst_CSVReaderWriter_files::readPastTheLimit_keepsAllRows()
{
    put("1\n2\n3");
    CSVReaderWriter table(2, "header");
    table.read(m_path.c_str());
    QCOMPARE(table.csv(), (Rows { "header", "1", "2", "3" }));
}

void tst_CSVReaderWriter_files::writtenTable_isReadBack()
{
    CSVReaderWriter source(100, "index, focus position, focus value");
    source.fillDataField("1, 34000, 12.5");
    source.fillDataField("2, 33540, 99.25, Best focus");
    source.write(m_path.c_str());

    CSVReaderWriter copy("unused");
    copy.read(m_path.c_str());
    QCOMPARE(copy.csv(), source.csv());
}

QTEST_GUILESS_MAIN(tst_CSVReaderWriter_files)

#include "tst_CSVReaderWriter_files.moc"
