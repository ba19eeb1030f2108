#include "storage/CSVReaderWriter.h"

#include <QTest>

using Rows = std::vector<std::string>;

/// Tables in memory: their header, their limit, their fields.
class tst_CSVReaderWriter : public QObject {
    Q_OBJECT

private slots:
    void constructionWithoutLimit_pushesNoRow();
    void constructionWithLimit_pushesTheFormattedHeader();
    void fillDataField_appendsTheFormattedLine();

    void limitOfThreeAndFourLines_keepsHeaderAndTheTwoNewest();
    void limitsBelowTwo_keepHeaderAndNewestLine_data();
    void limitsBelowTwo_keepHeaderAndNewestLine();
    void tableWithoutLimit_wrapsAtAHundredRows();
    void erasedTable_getsItsHeaderBackWhenItWraps();
    void erase_keepsTheHeaderForTheNextWrap();
    void longLine_isCutAndOverrunsNothing();

    void parse_data();
    void parse();
    void parse_clearsOlderFields();

    void replaceName_data();
    void replaceName();
    void replaceNameWithoutLines_returnsZero();
};

void tst_CSVReaderWriter::constructionWithoutLimit_pushesNoRow()
{
    const CSVReaderWriter table("index, %s", "value");
    QVERIFY(table.csv().empty());
}

void tst_CSVReaderWriter::constructionWithLimit_pushesTheFormattedHeader()
{
    const CSVReaderWriter table(100, "%s, %d", "index", 7);
    QCOMPARE(table.csv(), Rows { "index, 7" });
}

void tst_CSVReaderWriter::fillDataField_appendsTheFormattedLine()
{
    CSVReaderWriter table(100, "header");
    table.fillDataField("%d, %.2f, %s", 1, 2.5, "x");
    QCOMPARE(table.csv(), (Rows { "header", "1, 2.50, x" }));
}

void tst_CSVReaderWriter::limitOfThreeAndFourLines_keepsHeaderAndTheTwoNewest()
{
    CSVReaderWriter table(3, "header");
    for (const char* line : { "a", "b", "c", "d" }) {
        table.fillDataField("%s", line);
    }
    QCOMPARE(table.csv(), (Rows { "header", "c", "d" }));
}

void tst_CSVReaderWriter::limitsBelowTwo_keepHeaderAndNewestLine_data()
{
    QTest::addColumn<unsigned long>("limit");
    QTest::newRow("0") << 0UL;
    QTest::newRow("1") << 1UL;
}

void tst_CSVReaderWriter::limitsBelowTwo_keepHeaderAndNewestLine()
{
    QFETCH(unsigned long, limit);
    CSVReaderWriter table(limit, "header");
    table.fillDataField("a");
    QCOMPARE(table.csv(), (Rows { "header", "a" }));
    table.fillDataField("b");
    QCOMPARE(table.csv(), (Rows { "header", "b" }));
}

void tst_CSVReaderWriter::tableWithoutLimit_wrapsAtAHundredRows()
{
    CSVReaderWriter table("header");
    for (int line = 1; line <= 100; ++line) {
        table.fillDataField("%d", line);
    }
    QCOMPARE(table.csv().size(), std::size_t { 100 });
    QCOMPARE(table.csv().front(), std::string("1"));
    // The wrap puts the header in place of row 0 and drops row 1.
    table.fillDataField("101");
    QCOMPARE(table.csv().size(), std::size_t { 100 });
    QCOMPARE(table.csv().at(0), std::string("header"));
    QCOMPARE(table.csv().at(1), std::string("3"));
    QCOMPARE(table.csv().back(), std::string("101"));
}

void tst_CSVReaderWriter::erasedTable_getsItsHeaderBackWhenItWraps()
{
    CSVReaderWriter table(3, "header");
    table.erase();
    for (const char* line : { "a", "b", "c" }) {
        table.fillDataField("%s", line);
    }
    QCOMPARE(table.csv(), (Rows { "a", "b", "c" }));
    table.fillDataField("d");
    QCOMPARE(table.csv(), (Rows { "header", "c", "d" }));
}

void tst_CSVReaderWriter::erase_keepsTheHeaderForTheNextWrap()
{
    CSVReaderWriter table(0, "header");
    table.erase();
    QVERIFY(table.csv().empty());
    table.fillDataField("a");
    QCOMPARE(table.csv(), (Rows { "header", "a" }));
}

void tst_CSVReaderWriter::longLine_isCutAndOverrunsNothing()
{
    const std::string text(100000, 'x');
    CSVReaderWriter table(10, "%s", text.c_str());
    table.fillDataField("%s", text.c_str());
    for (const std::string& row : table.csv()) {
        QCOMPARE(row, std::string(4095, 'x'));
    }
}

void tst_CSVReaderWriter::parse_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("empty line") << "" << QStringList {};
    QTest::newRow("one field") << "a" << QStringList { "a" };
    QTest::newRow("two fields") << "a,b" << QStringList { "a", "b" };
    QTest::newRow("comma at the end") << "a,b," << QStringList { "a", "b" };
    QTest::newRow("empty field") << "a,,b" << QStringList { "a", "", "b" };
    QTest::newRow("comma at the beginning") << ",a" << QStringList { "", "a" };
    QTest::newRow("comma alone") << "," << QStringList { "" };
    QTest::newRow("blanks stay") << "a, b " << QStringList { "a", " b " };
}

void tst_CSVReaderWriter::parse()
{
    QFETCH(QString, line);
    QFETCH(QStringList, fields);
    const CSVReaderWriter table("header");
    std::vector<std::string> found;
    table.parse(line.toStdString(), found);
    QStringList texts;
    for (const std::string& field : found) {
        texts << QString::fromStdString(field);
    }
    QCOMPARE(texts, fields);
}

void tst_CSVReaderWriter::parse_clearsOlderFields()
{
    const CSVReaderWriter table("header");
    std::vector<std::string> fields { "old" };
    table.parse("", fields);
    QVERIFY(fields.empty());
}

void tst_CSVReaderWriter::replaceName_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("replaced");
    QTest::newRow("first field") << "old,1,2"
                                 << "new,1,2";
    QTest::newRow("row begins with a comma") << ",1,2"
                                             << "new,1,2";
    QTest::newRow("no comma") << "old"
                              << "old";
}

void tst_CSVReaderWriter::replaceName()
{
    QFETCH(QString, line);
    QFETCH(QString, replaced);
    CSVReaderWriter table(100, "header,x");
    table.fillDataField("first,1");
    table.fillDataField("%s", qPrintable(line));
    QCOMPARE(table.replaceName("new"), 1);
    QCOMPARE(table.csv(), (Rows { "header,x", "first,1", replaced.toStdString() }));
}

void tst_CSVReaderWriter::replaceNameWithoutLines_returnsZero()
{
    CSVReaderWriter table(100, "header,x");
    QCOMPARE(table.replaceName("new"), 0);
    QCOMPARE(table.csv(), Rows { "header,x" });
    table.erase();
    QCOMPARE(table.replaceName("new"), 0);
}

QTEST_GUILESS_MAIN(tst_CSVReaderWriter)

#include "tst_CSVReaderWriter.moc"
