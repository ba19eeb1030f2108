#include "OrdinaryUser.h"
#include "storage/IniReaderWriter.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// For its lifetime no file grows beyond so many bytes: a disk that runs full at that point.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
        : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit { bytes, m_before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before {};
    void (*m_signal)(int);
};

const char* const defaultText = "the default";

} // namespace

class tst_IniReaderWriter : public QObject {
    Q_OBJECT

private slots:
    void init();

    void missingFile_yieldsTheDefaultAndIsNotMade();
    void absentKey_yieldsTheDefaultAndLeavesTheFile();
    void emptyValue_isAsAbsent();
    void reading_neverChangesTheFile();
    void unquotedList_isJoinedToOneText_data();
    void unquotedList_isJoinedToOneText();
    void groupsAndKeys_areCaseSensitive();
    void keyByItsPath_isFound();
    void escapedNames_areReadToo();
    void editedFile_isReadAnew();
    void namesAbove127_areWidenedOneToOne();

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

    void missingFolder_writesNothing();
    void fileBelowAFile_writesNothing();
    void folderInPlaceOfTheFile_staysAsItIs();
    void readOnlyFolder_losesNothingAndStoresNothingLater();
    void readOnlyFile_losesNothingAndStoresNothingLater();
    void unreadableFile_yieldsTheDefaultAndIsNotOverwritten();
    void diskThatRunsFullAtAnyByte_losesNothingAndStoresNothingLater();

private:
    std::string path() const { return m_folder->filePath("TAVO_QR9.ini").toStdString(); }
    QString name() const { return m_folder->filePath("TAVO_QR9.ini"); }
    void setContents(const QByteArray& bytes) const;
    QByteArray contents() const;
    std::string valueOf(const std::string& group, const std::string& key) const;
    void compareUnchangedAfterFailedWrite(const QByteArray& before) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_IniReaderWriter::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_IniReaderWriter::setContents(const QByteArray& bytes) const
{
    QFile file(name());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray tst_IniReaderWriter::contents() const
{
    QFile file(name());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file";
}

std::string tst_IniReaderWriter::valueOf(const std::string& group, const std::string& key) const
{
    std::string value = "untouched";
    ini_read(group, key, defaultText, value, path());
    return value;
}

void tst_IniReaderWriter::missingFile_yieldsTheDefaultAndIsNotMade()
{
    std::string value;
    QCOMPARE(ini_read("Calibration", "Z reference", "32000", value, path()), 0);
    QCOMPARE(value, std::string("32000"));
    QVERIFY(!QFile::exists(name()));
}

void tst_IniReaderWriter::absentKey_yieldsTheDefaultAndLeavesTheFile()
{
    const QByteArray before = "; by hand\n[Calibration]\nZ offset=4\n";
    setContents(before);
    std::string value;
    QCOMPARE(ini_read("Calibration", "Z reference", "32000", value, path()), 0);
    QCOMPARE(value, std::string("32000"));
    QCOMPARE(ini_read("Correction", "Z offset", "10", value, path()), 0);
    QCOMPARE(value, std::string("10"));
    QCOMPARE(contents(), before);
}

void tst_IniReaderWriter::emptyValue_isAsAbsent()
{
    setContents("[Calibration]\nZ offset=\nZ reference=\"\"\n");
    std::string value;
    QCOMPARE(ini_read("Calibration", "Z offset", "3", value, path()), 0);
    QCOMPARE(value, std::string("3"));
    QCOMPARE(ini_read("Calibration", "Z reference", "32000", value, path()), 0);
    QCOMPARE(value, std::string("32000"));
}

void tst_IniReaderWriter::reading_neverChangesTheFile()
{
    const QByteArray before = "[Volume%20factor]\n1%20Channel=1, 2\n";
    setContents(before);
    const QDateTime stamp = QFileInfo(name()).lastModified();
    std::string value;
    QCOMPARE(ini_read("Volume factor", "1 Channel", "", value, path()), 1);
    QCOMPARE(contents(), before);
    QCOMPARE(QFileInfo(name()).lastModified(), stamp);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList { "TAVO_QR9.ini" });
}

void tst_IniReaderWriter::unquotedList_isJoinedToOneText_data()
{
    QTest::addColumn<QByteArray>("inFile");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("comma and blank") << QByteArray("a, b") << QByteArray("a, b");
    QTest::newRow("comma alone") << QByteArray("a,b") << QByteArray("a, b");
    QTest::newRow("three words") << QByteArray("a,b,c") << QByteArray("a, b, c");
    QTest::newRow("quoted") << QByteArray("\"a,b\"") << QByteArray("a,b");
}

void tst_IniReaderWriter::unquotedList_isJoinedToOneText()
{
    QFETCH(QByteArray, inFile);
    QFETCH(QByteArray, value);
    setContents("[Group]\nkey=" + inFile + "\n");
    QCOMPARE(valueOf("Group", "key"), value.toStdString());
}

void tst_IniReaderWriter::groupsAndKeys_areCaseSensitive()
{
    setContents("[Ch. BF]\nGain=1\ngain=2\n[ch. bf]\nGain=3\n");
    QCOMPARE(valueOf("Ch. BF", "Gain"), std::string("1"));
    QCOMPARE(valueOf("Ch. BF", "gain"), std::string("2"));
    QCOMPARE(valueOf("ch. bf", "Gain"), std::string("3"));
    QCOMPARE(valueOf("CH. BF", "Gain"), std::string(defaultText));
}

void tst_IniReaderWriter::keyByItsPath_isFound()
{
    setContents("[ArduCAM]\nHor. Mirror=Yes\n");
    QCOMPARE(valueOf("", "ArduCAM/Hor. Mirror"), std::string("Yes"));
}

void tst_IniReaderWriter::escapedNames_areReadToo()
{
    setContents("[Volume%20factor]\n1%20Channel=197.00552\n");
    QCOMPARE(valueOf("Volume factor", "1 Channel"), std::string("197.00552"));
}

void tst_IniReaderWriter::editedFile_isReadAnew()
{
    setContents("[Start position]\n1 Channel=9893\n");
    QCOMPARE(valueOf("Start position", "1 Channel"), std::string("9893"));
    setContents("[Start position]\n1 Channel=10\n");
    QCOMPARE(valueOf("Start position", "1 Channel"), std::string("10"));
    QVERIFY(QFile::remove(name()));
    QCOMPARE(valueOf("Start position", "1 Channel"), std::string(defaultText));
}

void tst_IniReaderWriter::namesAbove127_areWidenedOneToOne()
{
    // The bytes of an e with accent in UTF-8 are the two Latin-1 characters 0xC3 and 0xA9 here, in the file's
    // name too.
    const std::string letter = "\xC3\xA9";
    const std::string file = m_folder->path().toStdString() + "/" + letter + ".ini";
    ini_write("G" + letter, "K" + letter, "1", file);
    QFile written(m_folder->filePath(QString::fromUtf8("Ã©.ini")));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray("[G%C3%A9]\nK%C3%A9=1\n"));
    std::string value;
    QCOMPARE(ini_read("G" + letter, "K" + letter, "", value, file), 1);
    QCOMPARE(value, std::string("1"));
}

void tst_IniReaderWriter::firstWriteToMissingFile_holdsOnlyThatGroupAndKey()
{
    ini_write("Calibration", "Prisma offset", "0", path());
    QCOMPARE(contents(), QByteArray("[Calibration]\nPrisma offset=0\n"));
}

void tst_IniReaderWriter::writtenNames_haveTheirBlanksInTheFile()
{
    ini_write("Volume factor", "1 Channel", "197.00552", path());
    ini_write("Volume factor", "Prisma Max", "925.92593", path());
    const QList<QByteArray> lines = contents().split('\n');
    QVERIFY2(lines.contains("[Volume factor]"), contents());
    QVERIFY2(lines.contains("1 Channel=197.00552"), contents());
    QVERIFY2(lines.contains("Prisma Max=925.92593"), contents());
    QCOMPARE(valueOf("Volume factor", "1 Channel"), std::string("197.00552"));
    QCOMPARE(valueOf("Volume factor", "Prisma Max"), std::string("925.92593"));
}

void tst_IniReaderWriter::percent20OfTheWholeFile_becomesABlank()
{
    setContents("[Volume%20factor]\nPrisma%20Max=a%20b%2\n");
    ini_write("Software", "Version FW", "1", path());
    QVERIFY2(!contents().contains("%20"), contents());
    QVERIFY2(contents().contains("[Volume factor]\nPrisma Max=a b%2\n"), contents());
}

void tst_IniReaderWriter::percent20InAValue_comesBackAsABlank()
{
    ini_write("Software", "Version FW", "1%20beta", path());
    QCOMPARE(valueOf("Software", "Version FW"), std::string("1 beta"));
}

void tst_IniReaderWriter::otherKeysAndGroups_stay()
{
    setContents("[Calibration]\nZ ref A1=31000\nZ ref B1=31500\n\n[Ch. BF]\nGain=0\n");
    ini_write("Calibration", "Z ref A1", "30000", path());
    ini_write("TAVO-QR9", "Serial", "TV9-01-00042", path());
    QCOMPARE(valueOf("Calibration", "Z ref A1"), std::string("30000"));
    QCOMPARE(valueOf("Calibration", "Z ref B1"), std::string("31500"));
    QCOMPARE(valueOf("Ch. BF", "Gain"), std::string("0"));
    QCOMPARE(valueOf("TAVO-QR9", "Serial"), std::string("TV9-01-00042"));
}

void tst_IniReaderWriter::value_isReplaced()
{
    ini_write("Calibration", "Z offset", "3", path());
    ini_write("Calibration", "Z offset", "-12", path());
    QCOMPARE(contents(), QByteArray("[Calibration]\nZ offset=-12\n"));
}

void tst_IniReaderWriter::writtenValue_comesBackTheSame_data()
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

void tst_IniReaderWriter::writtenValue_comesBackTheSame()
{
    QFETCH(QByteArray, value);
    ini_write("Group", "before", "1", path());
    ini_write("Group", "the key", value.toStdString(), path());
    ini_write("Group", "the next", "2", path());
    std::string found;
    QCOMPARE(ini_read("Group", "the key", defaultText, found, path()), 1);
    QCOMPARE(QByteArray::fromStdString(found), value);
}

void tst_IniReaderWriter::valueThatIsNotUtf8_comesBackAsTheSameText()
{
    ini_write("Software", "Version FW", "1.0 \xB5\xFF", path()); // Latin-1
    QCOMPARE(valueOf("Software", "Version FW"), std::string("1.0 \xC2\xB5\xC3\xBF")); // the same in UTF-8
}

void tst_IniReaderWriter::emptyValueWritten_isKeptInTheFileAndReadAsTheDefault()
{
    ini_write("TAVO-QR9", "Serial", "", path());
    QCOMPARE(contents(), QByteArray("[TAVO-QR9]\nSerial=\n"));
    QCOMPARE(valueOf("TAVO-QR9", "Serial"), std::string(defaultText));
}

void tst_IniReaderWriter::binaryFile_isReadAndWrittenWithoutACrash_data()
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

void tst_IniReaderWriter::binaryFile_isReadAndWrittenWithoutACrash()
{
    QFETCH(QByteArray, bytes);
    setContents(bytes);
    QCOMPARE(valueOf("Calibration", "Z reference"), std::string(defaultText));
    for (const char* key : { "a", "b", "c", "d", "e" }) {
        valueOf("a", key);
    }
    QCOMPARE(contents(), bytes);
    ini_write("Calibration", "Z reference", "31000", path());
    QCOMPARE(valueOf("Calibration", "Z reference"), std::string("31000"));
}

void tst_IniReaderWriter::writesOfEqualSize_areNeverReadStale()
{
    for (int round = 1000; round < 1150; ++round) {
        const std::string text = std::to_string(round);
        // With and without a blank: the file is shorter than what the settings layer wrote, or of the same
        // size.
        const std::string key = round % 2 == 0 ? "Z reference" : "Gain";
        ini_write("Group", key, text, path());
        QCOMPARE(valueOf("Group", key), text);
    }
}

void tst_IniReaderWriter::writesWithTheClockSetBack_areNeverReadStale()
{
    ini_write("Group", "Gain", "1000", path());
    QFile file(name());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(365), QFileDevice::FileModificationTime));
    file.close();
    for (int round = 1001; round < 1020; ++round) {
        const QDateTime before = QFileInfo(name()).lastModified();
        ini_write("Group", "Gain", std::to_string(round), path());
        QVERIFY(QFileInfo(name()).lastModified() > before);
        QCOMPARE(valueOf("Group", "Gain"), std::to_string(round));
    }
}

void tst_IniReaderWriter::write_leavesNothingElseInTheFolder()
{
    ini_write("Group", "key", "1", path());
    ini_write("Group", "key", "2", path());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList { "TAVO_QR9.ini" });
}

void tst_IniReaderWriter::missingFolder_writesNothing()
{
    const std::string file = m_folder->filePath("missing/TAVO_QR9.ini").toStdString();
    ini_write("Group", "key", "1", file);
    std::string value;
    QCOMPARE(ini_read("Group", "key", "default", value, file), 0);
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void tst_IniReaderWriter::fileBelowAFile_writesNothing()
{
    setContents("[Group]\nkey=1\n");
    const std::string file = path() + "/below.ini";
    ini_write("Group", "key", "2", file);
    std::string value;
    QCOMPARE(ini_read("Group", "key", "default", value, file), 0);
    QCOMPARE(value, std::string("default"));
    QCOMPARE(contents(), QByteArray("[Group]\nkey=1\n"));
}

void tst_IniReaderWriter::folderInPlaceOfTheFile_staysAsItIs()
{
    QVERIFY(QDir(m_folder->path()).mkdir("TAVO_QR9.ini"));
    ini_write("Group", "key", "1", path());
    QCOMPARE(valueOf("Group", "key"), std::string(defaultText));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
        QStringList { "TAVO_QR9.ini" });
    QVERIFY(QDir(name()).isEmpty());
}

/// Nothing of the failed write may come up: not in a read, not in the file, not with the next write.
void tst_IniReaderWriter::compareUnchangedAfterFailedWrite(const QByteArray& before) const
{
    QCOMPARE(valueOf("Group", "key"), std::string("old"));
    QCOMPARE(valueOf("Group", "new"), std::string(defaultText));
    QCOMPARE(contents(), before);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList { "TAVO_QR9.ini" });
}

void tst_IniReaderWriter::readOnlyFolder_losesNothingAndStoresNothingLater()
{
    const QByteArray before = "[Group]\nkey=old\n";
    setContents(before);
    QCOMPARE(chown(qPrintable(m_folder->path()), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
    QCOMPARE(chmod(qPrintable(m_folder->path()), 0555), 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        ini_write("Group", "key", "value of a failed write", path());
        ini_write("Group", "new", "value of a failed write", path());
        compareUnchangedAfterFailedWrite(before);
    }
    QCOMPARE(chmod(qPrintable(m_folder->path()), 0755), 0);
    compareUnchangedAfterFailedWrite(before);
    ini_write("Group", "other", "1", path());
    QCOMPARE(contents(), QByteArray("[Group]\nkey=old\nother=1\n"));
}

void tst_IniReaderWriter::readOnlyFile_losesNothingAndStoresNothingLater()
{
    const QByteArray before = "[Group]\nkey=old\n";
    setContents(before);
    QCOMPARE(chown(qPrintable(m_folder->path()), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
    QCOMPARE(chown(path().c_str(), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
    QCOMPARE(chmod(path().c_str(), 0444), 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        ini_write("Group", "key", "value of a failed write", path());
        ini_write("Group", "new", "value of a failed write", path());
        compareUnchangedAfterFailedWrite(before);
    }
    QCOMPARE(chmod(path().c_str(), 0644), 0);
    compareUnchangedAfterFailedWrite(before);
    ini_write("Group", "other", "1", path());
    QCOMPARE(contents(), QByteArray("[Group]\nkey=old\nother=1\n"));
}

void tst_IniReaderWriter::unreadableFile_yieldsTheDefaultAndIsNotOverwritten()
{
    const QByteArray before = "[Group]\nkey=old\n";
    setContents(before);
    QCOMPARE(chown(qPrintable(m_folder->path()), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
    QCOMPARE(chown(path().c_str(), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
    QCOMPARE(chmod(path().c_str(), 0), 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        QCOMPARE(valueOf("Group", "key"), std::string(defaultText));
        ini_write("Group", "new", "value of a failed write", path());
    }
    QCOMPARE(chmod(path().c_str(), 0644), 0);
    compareUnchangedAfterFailedWrite(before);
}

void tst_IniReaderWriter::diskThatRunsFullAtAnyByte_losesNothingAndStoresNothingLater()
{
    // Long enough for the disk to run full in each of the files that a write makes on its way, and with a key
    // behind the new one, which would be lost when the text is cut at a line end.
    const QByteArray before = "[Group]\nkey=old\nlong=" + QByteArray(200, 'x') + "\nz=1\n";
    const QByteArray after = before.left(before.size() - 4) + "new=0123456789\nz=1\n";
    setContents(before);
    int room = 0;
    while (contents() != after && !QTest::currentTestFailed()) {
        if (room > 0) {
            compareUnchangedAfterFailedWrite(before);
        }
        const FullDisk disk(static_cast<rlim_t>(room));
        ini_write("Group", "new", "0123456789", path());
        ++room;
    }
    QVERIFY2(room > after.size(), "a disk without room for the file was no obstacle");
    QVERIFY2(room < after.size() + 100, "a disk with room enough was an obstacle");
}

QTEST_GUILESS_MAIN(tst_IniReaderWriter)

#include "tst_IniReaderWriter.moc"
