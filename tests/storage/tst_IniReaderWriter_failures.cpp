#include "OrdinaryUser.h"
#include "SettingsFolder.h"
#include "storage/IniReaderWriter.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

#include <csignal>
#include <memory>
#include <string>

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

} // namespace

/// Reads and writes that cannot be done: nothing is lost, and nothing comes up later.
class tst_IniReaderWriter_failures : public QObject {
    Q_OBJECT

private slots:
    void init();

    void missingFolder_writesNothing();
    void fileBelowAFile_writesNothing();
    void folderInPlaceOfTheFile_staysAsItIs();
    void readOnlyFolder_losesNothingAndStoresNothingLater();
    void readOnlyFile_losesNothingAndStoresNothingLater();
    void unreadableFile_yieldsTheDefaultAndIsNotOverwritten();
    void fileThatCanOnlyBeWritten_isNotOverwritten();
    void damagedLine_isLoggedAndTheOthersAreRead();
    void diskThatRunsFullAtAnyByte_losesNothingAndStoresNothingLater();

private:
    void putInFolderOfOrdinaryUser(const QByteArray& text) const;
    void giveFileToOrdinaryUser(mode_t mode) const;
    void compareUnchangedAfterFailedWrite(const QByteArray& before) const;

    std::unique_ptr<SettingsFolder> m_settings;
};

void tst_IniReaderWriter_failures::init()
{
    m_settings = std::make_unique<SettingsFolder>();
    QVERIFY(m_settings->isValid());
}

void tst_IniReaderWriter_failures::missingFolder_writesNothing()
{
    const std::string file = (m_settings->folder() + "/missing/TAVO_QR9.ini").toStdString();
    ini_write("Group", "key", "1", file);
    std::string value;
    QCOMPARE(ini_read("Group", "key", "default", value, file), 0);
    QVERIFY(m_settings->entries().isEmpty());
}

void tst_IniReaderWriter_failures::fileBelowAFile_writesNothing()
{
    m_settings->put("[Group]\nkey=1\n");
    const std::string file = m_settings->path() + "/below.ini";
    ini_write("Group", "key", "2", file);
    std::string value;
    QCOMPARE(ini_read("Group", "key", "default", value, file), 0);
    QCOMPARE(value, std::string("default"));
    QCOMPARE(m_settings->text(), QByteArray("[Group]\nkey=1\n"));
}

void tst_IniReaderWriter_failures::folderInPlaceOfTheFile_staysAsItIs()
{
    QVERIFY(QDir(m_settings->folder()).mkdir("TAVO_QR9.ini"));
    ini_write("Group", "key", "1", m_settings->path());
    QCOMPARE(m_settings->valueOf("Group", "key"), SettingsFolder::noValue);
    QCOMPARE(m_settings->entries(), QStringList { "TAVO_QR9.ini" });
    QVERIFY(QDir(m_settings->name()).isEmpty());
}

/// The file itself stays root's.
void tst_IniReaderWriter_failures::putInFolderOfOrdinaryUser(const QByteArray& text) const
{
    m_settings->put(text);
    QCOMPARE(chown(qPrintable(m_settings->folder()), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
}

void tst_IniReaderWriter_failures::giveFileToOrdinaryUser(mode_t mode) const
{
    QCOMPARE(chown(m_settings->path().c_str(), OrdinaryUser::id(), static_cast<gid_t>(-1)), 0);
    QCOMPARE(chmod(m_settings->path().c_str(), mode), 0);
}

/// Nothing of the failed write may come up: not in a read, not in the file, not with the next write.
void tst_IniReaderWriter_failures::compareUnchangedAfterFailedWrite(const QByteArray& before) const
{
    QCOMPARE(m_settings->valueOf("Group", "key"), std::string("old"));
    QCOMPARE(m_settings->valueOf("Group", "new"), SettingsFolder::noValue);
    QCOMPARE(m_settings->text(), before);
    QCOMPARE(m_settings->entries(), QStringList { "TAVO_QR9.ini" });
}

void tst_IniReaderWriter_failures::readOnlyFolder_losesNothingAndStoresNothingLater()
{
    const QByteArray before = "[Group]\nkey=old\n";
    putInFolderOfOrdinaryUser(before);
    QCOMPARE(chmod(qPrintable(m_settings->folder()), 0555), 0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        ini_write("Group", "key", "value of a failed write", m_settings->path());
        ini_write("Group", "new", "value of a failed write", m_settings->path());
        compareUnchangedAfterFailedWrite(before);
    }
    QCOMPARE(chmod(qPrintable(m_settings->folder()), 0755), 0);
    compareUnchangedAfterFailedWrite(before);
    ini_write("Group", "other", "1", m_settings->path());
    QCOMPARE(m_settings->text(), QByteArray("[Group]\nkey=old\nother=1\n"));
}

void tst_IniReaderWriter_failures::readOnlyFile_losesNothingAndStoresNothingLater()
{
    const QByteArray before = "[Group]\nkey=old\n";
    putInFolderOfOrdinaryUser(before);
    giveFileToOrdinaryUser(0444);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        ini_write("Group", "key", "value of a failed write", m_settings->path());
        ini_write("Group", "new", "value of a failed write", m_settings->path());
        compareUnchangedAfterFailedWrite(before);
    }
    QCOMPARE(chmod(m_settings->path().c_str(), 0644), 0);
    compareUnchangedAfterFailedWrite(before);
    ini_write("Group", "other", "1", m_settings->path());
    QCOMPARE(m_settings->text(), QByteArray("[Group]\nkey=old\nother=1\n"));
}

void tst_IniReaderWriter_failures::unreadableFile_yieldsTheDefaultAndIsNotOverwritten()
{
    const QByteArray before = "[Group]\nkey=old\n";
    putInFolderOfOrdinaryUser(before);
    giveFileToOrdinaryUser(0);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("settings cannot be read.*\"Group\" \"key\""));
        QCOMPARE(m_settings->valueOf("Group", "key"), SettingsFolder::noValue);
        ini_write("Group", "new", "value of a failed write", m_settings->path());
    }
    QCOMPARE(chmod(m_settings->path().c_str(), 0644), 0);
    compareUnchangedAfterFailedWrite(before);
}

void tst_IniReaderWriter_failures::fileThatCanOnlyBeWritten_isNotOverwritten()
{
    // What could not be read would be lost.
    const QByteArray before = "[Group]\nkey=old\n";
    putInFolderOfOrdinaryUser(before);
    giveFileToOrdinaryUser(0222);
    {
        const OrdinaryUser user;
        QVERIFY(user.isGood());
        ini_write("Group", "new", "value of a failed write", m_settings->path());
    }
    QCOMPARE(chmod(m_settings->path().c_str(), 0644), 0);
    compareUnchangedAfterFailedWrite(before);
}

void tst_IniReaderWriter_failures::damagedLine_isLoggedAndTheOthersAreRead()
{
    m_settings->put("[Group]\nkey=old\nno setting at all\nother=1\n");
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression("settings damaged.*TAVO_QR9\\.ini"));
    QCOMPARE(m_settings->valueOf("Group", "key"), std::string("old"));
    QCOMPARE(m_settings->valueOf("Group", "other"), std::string("1"));
}

void tst_IniReaderWriter_failures::diskThatRunsFullAtAnyByte_losesNothingAndStoresNothingLater()
{
    // Long enough for the disk to run full in each of the files that a write makes on its way, and with a key
    // behind the new one, which would be lost when the text is cut at a line end.
    const QByteArray before = "[Group]\nkey=old\nlong=" + QByteArray(200, 'x') + "\nz=1\n";
    const QByteArray after = before.left(before.size() - 4) + "new=0123456789\nz=1\n";
    m_settings->put(before);
    int room = 0;
    while (m_settings->text() != after && !QTest::currentTestFailed()) {
        if (room > 0) {
            compareUnchangedAfterFailedWrite(before);
        }
        const FullDisk disk(static_cast<rlim_t>(room));
        ini_write("Group", "new", "0123456789", m_settings->path());
        ++room;
    }
    QVERIFY2(room > after.size(), "a disk without room for the file was no obstacle");
    QVERIFY2(room < after.size() + 100, "a disk with room enough was an obstacle");
}

QTEST_GUILESS_MAIN(tst_IniReaderWriter_failures)

#include "tst_IniReaderWriter_failures.moc"
