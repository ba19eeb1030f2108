#include "SettingsFolder.h"
#include "storage/IniReaderWriter.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <memory>
#include <string>

/// What a write makes of the settings files.
class tst_IniReaderWriter_write : public QObject {
    Q_OBJECT

private slots:
    void init();

    void firstWriteToMissingFile_holdsOnlyThatGroupAndKey();
    void writtenNames_haveTheirBlanksInTheFile();
    void percent20OfTheWholeFile_becomesABlank();
    void percent20InAValue_comesBackAsABlank();
    void otherKeysAndGroups_stay();
    void value_isReplaced();
    void writtenValue_comesBackTheSame_data();
    void writtenValue_comesBackTheSame();
    void valueThatIsNotUtf8_comesBackAsTheSameText();
    void emptyValueWritten_isKeptInTheFileAndReadAsTheDefault();
    void binaryFile_isReadAndWrittenWithoutACrash_data();
    void binaryFile_isReadAndWrittenWithoutACrash();
    void writesOfEqualSize_areNeverReadStale();
    void writesWithTheClockSetBack_areNeverReadStale();
    void write_leavesNothingElseInTheFolder();

private:
    std::unique_ptr<SettingsFolder> m_settings;
};

void tst_IniReaderWriter_write::init()
{
    m_settings = std::make_unique<SettingsFolder>();
    QVERIFY(m_settings->isValid());
}

void tst_IniReaderWriter_write::firstWriteToMissingFile_holdsOnlyThatGroupAndKey()
{
    ini_write("Calibration", "Prisma offset", "0", m_settings->path());
    QCOMPARE(m_settings->text(), QByteArray("[Calibration]\nPrisma offset=0\n"));
}

void tst_IniReaderWriter_write::writtenNames_haveTheirBlanksInTheFile()
{
    ini_write("Volume factor", "1 Channel", "197.00552", m_settings->path());
    ini_write("Volume factor", "Prisma Max", "925.92593", m_settings->path());
    const QList<QByteArray> lines = m_settings->text().split('\n');
    QVERIFY2(lines.contains("[Volume factor]"), m_settings->text());
    QVERIFY2(lines.contains("1 Channel=197.00552"), m_settings->text());
    QVERIFY2(lines.contains("Prisma Max=925.92593"), m_settings->text());
    QCOMPARE(m_settings->valueOf("Volume factor", "1 Channel"), std::string("197.00552"));
    QCOMPARE(m_settings->valueOf("Volume factor", "Prisma Max"), std::string("925.92593"));
}

void tst_IniReaderWriter_write::percent20OfTheWholeFile_becomesABlank()
{
    m_settings->put("[Volume%20factor]\nPrisma%20Max=a%20b%2\n");
    ini_write("Software", "Version FW", "1", m_settings->path());
    QVERIFY2(!m_settings->text().contains("%20"), m_settings->text());
    QVERIFY2(m_settings->text().contains("[Volume factor]\nPrisma Max=a b%2\n"), m_settings->text());
}

void tst_IniReaderWriter_write::percent20InAValue_comesBackAsABlank()
{
    ini_write("Software", "Version FW", "1%20beta", m_settings->path());
    QCOMPARE(m_settings->valueOf("Software", "Version FW"), std::string("1 beta"));
}

void tst_IniReaderWriter_write::otherKeysAndGroups_stay()
{
    m_settings->put("[Calibration]\nZ ref A1=31000\nZ ref B1=31500\n\n[Ch. BF]\nGain=0\n");
    ini_write("Calibration", "Z ref A1", "30000", m_settings->path());
    ini_write("TAVO-QR9", "Serial", "TV9-01-00042", m_settings->path());
    QCOMPARE(m_settings->valueOf("Calibration", "Z ref A1"), std::string("30000"));
    QCOMPARE(m_settings->valueOf("Calibration", "Z ref B1"), std::string("31500"));
    QCOMPARE(m_settings->valueOf("Ch. BF", "Gain"), std::string("0"));
    QCOMPARE(m_settings->valueOf("TAVO-QR9", "Serial"), std::string("TV9-01-00042"));
}

void tst_IniReaderWriter_write::value_isReplaced()
{
    ini_write("Calibration", "Z offset", "3", m_settings->path());
    ini_write("Calibration", "Z offset", "-12", m_settings->path());
    QCOMPARE(m_settings->text(), QByteArray("[Calibration]\nZ offset=-12\n"));
}

void tst_IniReaderWriter_write::writtenValue_comesBackTheSame_data()
{
    QTest::addColumn<QByteArray>("value");
    const QList<QByteArray> values { "a, b", "a,b", ",", "a;b", "a=b", "\"quoted\"", "back\\slash", "100%",
        "%41", " blanks around ", " ", "two\nlines\r\n", "tab\t", "@Invalid()", "@", "[group]", "#", "/",
        "1.10", "Yes", "\xC2\xB5m", "\xE6\xB8\xAC\xE5\xAE\x9A", "\xF0\x9F\x94\xAC", "\xEF\xBB\xBFmarked",
        QByteArray(5000, 'x'), QByteArray("nul\0inside", 10) };
    for (const QByteArray& value : values) {
        QTest::newRow(value.left(20).toPercentEncoding().constData()) << value;
    }
}

void tst_IniReaderWriter_write::writtenValue_comesBackTheSame()
{
    QFETCH(QByteArray, value);
    ini_write("Group", "before", "1", m_settings->path());
    ini_write("Group", "the key", value.toStdString(), m_settings->path());
    ini_write("Group", "the next", "2", m_settings->path());
    std::string found;
    QCOMPARE(ini_read("Group", "the key", SettingsFolder::noValue, found, m_settings->path()), 1);
    QCOMPARE(QByteArray::fromStdString(found), value);
}

void tst_IniReaderWriter_write::valueThatIsNotUtf8_comesBackAsTheSameText()
{
    ini_write("Software", "Version FW", "1.0 \xB5\xFF", m_settings->path()); // Latin-1
    QCOMPARE(m_settings->valueOf("Software", "Version FW"),
        std::string("1.0 \xC2\xB5\xC3\xBF")); // the same in UTF-8
    // The first byte of a letter whose rest is missing is a letter of its own.
    ini_write("Software", "Version FW", "1.0 \xC3", m_settings->path());
    QCOMPARE(m_settings->valueOf("Software", "Version FW"), std::string("1.0 \xC3\x83"));
}

void tst_IniReaderWriter_write::emptyValueWritten_isKeptInTheFileAndReadAsTheDefault()
{
    ini_write("TAVO-QR9", "Serial", "", m_settings->path());
    QCOMPARE(m_settings->text(), QByteArray("[TAVO-QR9]\nSerial=\n"));
    QCOMPARE(m_settings->valueOf("TAVO-QR9", "Serial"), SettingsFolder::noValue);
}

void tst_IniReaderWriter_write::binaryFile_isReadAndWrittenWithoutACrash_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte) {
        all.append(static_cast<char>(byte));
    }
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("every byte") << all.repeated(20);
    QTest::newRow("NULs") << QByteArray(4096, '\0');
    QTest::newRow("open bracket") << QByteArray("[[[[\n=\n]=[");
    QTest::newRow("broken escapes") << QByteArray("[a%\nb%2=\\x\\\nc=@Variant(\\0)\nd=@Rect(1\ne=\"");
    QTest::newRow("a line without an end") << QByteArray(100000, '=');
}

void tst_IniReaderWriter_write::binaryFile_isReadAndWrittenWithoutACrash()
{
    QFETCH(QByteArray, bytes);
    m_settings->put(bytes);
    QCOMPARE(m_settings->valueOf("Calibration", "Z reference"), SettingsFolder::noValue);
    for (const char* key : { "a", "b", "c", "d", "e" }) {
        m_settings->valueOf("a", key);
    }
    QCOMPARE(m_settings->text(), bytes);
    ini_write("Calibration", "Z reference", "31000", m_settings->path());
    QCOMPARE(m_settings->valueOf("Calibration", "Z reference"), std::string("31000"));
}

void tst_IniReaderWriter_write::writesOfEqualSize_areNeverReadStale()
{
    for (int round = 1000; round < 1150; ++round) {
        const std::string text = std::to_string(round);
        // With and without a blank: the file is shorter than what the settings layer wrote, or of the same
        // size.
        const std::string key = round % 2 == 0 ? "Z reference" : "Gain";
        ini_write("Group", key, text, m_settings->path());
        QCOMPARE(m_settings->valueOf("Group", key), text);
    }
}

void tst_IniReaderWriter_write::writesWithTheClockSetBack_areNeverReadStale()
{
    ini_write("Group", "Gain", "1000", m_settings->path());
    QFile file(m_settings->name());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(365), QFileDevice::FileModificationTime));
    file.close();
    for (int round = 1001; round < 1020; ++round) {
        const QDateTime before = QFileInfo(m_settings->name()).lastModified();
        ini_write("Group", "Gain", std::to_string(round), m_settings->path());
        QVERIFY(QFileInfo(m_settings->name()).lastModified() > before);
        QCOMPARE(m_settings->valueOf("Group", "Gain"), std::to_string(round));
    }
}

void tst_IniReaderWriter_write::write_leavesNothingElseInTheFolder()
{
    ini_write("Group", "key", "1", m_settings->path());
    ini_write("Group", "key", "2", m_settings->path());
    QCOMPARE(m_settings->entries(), QStringList { "TAVO_QR9.ini" });
}

QTEST_GUILESS_MAIN(tst_IniReaderWriter_write)

#include "tst_IniReaderWriter_write.moc"
