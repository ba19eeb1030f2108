#include "tests/workflows/Desk.h"
#include "tests/workflows/StandIns.h"

#include "app/version_text.h"
#include "app/zr_meta.h"

#include <QElapsedTimer>
#include <QTextBrowser>

/// The version panel: this tool's build beside that of the instrument's main application.
class tst_version : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void panel_isFilledBeforeAnyConnection();
    void hiddenText_holdsBothSetsOfRecords();
    void outputOfReadelf_isLoggedLineByLine();
    void outputLines_areReadLikeThis_data();
    void outputLines_areReadLikeThis();
    void outputThatComesInPieces_isReadOnce();
    void missingFile_leavesVersionEmptyAndSecond0();
    void fileWithoutRecords_leavesVersionEmptyAndSecond0();
    void fileThatIsNoProgram_leavesVersionEmptyAndSecond0();
    void missingReadelf_leavesVersionEmptyAndSecond0();
    void hangingReadelf_holdsTheStartFor30SecondsAtMost();

private:
    QString mainVersion() { return m_desk->text("lineEdit_QR9_VERSION"); }
    QString mainBuild() { return m_desk->text("lineEdit_LAST_QR9_BUILD"); }
    void showsNothingOfTheMainApplication();

    std::unique_ptr<Desk> m_desk;
};

namespace {

// The working directory is the instrument's folder, in which its main application lies.
const char kMainApplication[] = "TAVO_QR9.app";
const char kPutAside[] = "TAVO_QR9.app.aside";

/// A `readelf` that prints this for the main application's records, and nothing for anything else.
bool putReadelf(StandIns& programs, const QByteArray& output)
{
    QFile text("output");
    return text.open(QIODevice::WriteOnly) && text.write(output) == output.size()
        && programs.put("readelf",
            "#!/bin/sh\n[ \"$*\" = '-p ZR_META TAVO_QR9.app' ] && exec /usr/bin/cat /root/TAVO_QR9/output\n");
}

} // namespace

void tst_version::initTestCase()
{
    Desk::removeSettings();
    // As the program does when it starts.
    QCoreApplication::setApplicationVersion(version_text::applicationVersion());
    m_desk.reset(new Desk);
    m_desk->open(); // the connection is still to begin
}

void tst_version::cleanup()
{
    if (QFile::exists(kPutAside)) {
        QFile::remove(kMainApplication);
        QVERIFY(QFile::rename(kPutAside, kMainApplication));
    }
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_version::cleanupTestCase()
{
    QVERIFY(m_desk->waitForConnection());
    m_desk.reset();
}

void tst_version::panel_isFilledBeforeAnyConnection()
{
    QVERIFY(!m_desk->isShown("pushButton_EXIT"));
    // The room's main application carries these records.
    QCOMPARE(mainVersion(), QString("3.1.7"));
    QCOMPARE(mainBuild(), QString("2025-06-20 09:23"));
    QCOMPARE(m_desk->text("lineEdit_QC_VERSION"), QString("2.4.2"));
    const qint64 seconds = QString(zr_meta::BUILD_DATE).section('=', 1).toLongLong();
    QCOMPARE(m_desk->text("lineEdit_LAST_QC_BUILD"),
        QDateTime::fromSecsSinceEpoch(seconds).toString("yyyy-MM-dd hh:mm"));
    for (const char* field : { "lineEdit_QR9_VERSION", "lineEdit_LAST_QR9_BUILD", "lineEdit_QC_VERSION",
             "lineEdit_LAST_QC_BUILD" })
        QVERIFY(m_desk->widget<QLineEdit>(field)->isReadOnly());
}

void tst_version::hiddenText_holdsBothSetsOfRecords()
{
    auto* browser = m_desk->widget<QTextBrowser>("textBrowser");
    QVERIFY(!m_desk->isShown("textBrowser"));
    const QString build = m_desk->text("lineEdit_LAST_QC_BUILD");
    const QString seconds = QString(zr_meta::BUILD_DATE).section('=', 1);
    const QStringList lines { "From global vars:", "VERSION=2.4.2", "BASE_VERSION=2.4.2", build,
        zr_meta::BASE_SVN_REV, "", "From application version:", "VERSION=2.4.2", seconds,
        zr_meta::BASE_SVN_REV };
    QCOMPARE(browser->toPlainText().split('\n'), lines);
}

void tst_version::outputOfReadelf_isLoggedLineByLine()
{
    StandIns programs;
    QVERIFY(putReadelf(programs, "\n  [    20]  BUILD_DATE=1750411409\n\nBASE_VERSION=3.1.7\n"));
    const int logMark = m_desk->log.mark();
    m_desk->window().set_version();
    // Empty lines are lines, too, also the one behind the last line end.
    QCOMPARE(m_desk->log.lines(logMark).filter("===>> "),
        QStringList({ "===>> str :  \"\"", "===>> str :  \"  [    20]  BUILD_DATE=1750411409\"",
            "===>> str :  \"\"", "===>> str :  \"BASE_VERSION=3.1.7\"", "===>> str :  \"\"",
            "===>> BUILD_DATE :  \"2025-06-20 09:23\"", "===>> BASE_VERSION :  \"3.1.7\"" }));
}

void tst_version::outputLines_areReadLikeThis_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("build");
    const QString second0 = "1970-01-01 00:00";
    QTest::newRow("as readelf prints")
        << QByteArray("\nString dump of section 'ZR_META':\n  [     0]  BASE_SVN_REV=12\n"
                      "  [    20]  BUILD_DATE=1750411409\n  [    40]  BASE_VERSION=2.5.0\n"
                      "  [    58]  VERSION=2.5.1\n\n")
        << "2.5.0"
        << "2025-06-20 09:23";
    QTest::newRow("last matching line wins")
        << QByteArray("BUILD_DATE=0\nBASE_VERSION=1\nBUILD_DATE=1750411409\nBASE_VERSION=2\n") << "2"
        << "2025-06-20 09:23";
    QTest::newRow("beyond 32 bits") << QByteArray("BUILD_DATE=4294967296\n") << ""
                                    << "2106-02-07 06:28";
    // The seconds in ms are 125 times 2 to the 64th, of which 64 bits keep nothing.
    QTest::newRow("ms beyond 64 bits") << QByteArray("BUILD_DATE=2305843009213693952\n") << "" << second0;
    QTest::newRow("seconds beyond 64 bits")
        << QByteArray("BUILD_DATE=99999999999999999999\n") << "" << second0;
    QTest::newRow("no number") << QByteArray("BUILD_DATE=today\nBASE_VERSION=x\n") << "x" << second0;
    QTest::newRow("nothing behind the sign") << QByteArray("BUILD_DATE=\nBASE_VERSION=\n") << "" << second0;
    QTest::newRow("no sign") << QByteArray("BUILD_DATE\nBASE_VERSION\n") << "" << second0;
    QTest::newRow("two signs") << QByteArray("BASE_VERSION=a=b\n") << "a" << second0;
    QTest::newRow("the tool's key alone") << QByteArray("VERSION=9\n") << "" << second0;
    QTest::newRow("without a line end") << QByteArray("BASE_VERSION=3") << "3" << second0;
    QTest::newRow("other bytes") << QByteArray("\xff\xfe\n\x01\x02\nBASE_VERSION=4\n") << "4" << second0;
}

void tst_version::outputLines_areReadLikeThis()
{
    QFETCH(QByteArray, output);
    StandIns programs;
    QVERIFY(putReadelf(programs, output));
    m_desk->window().set_version();
    QTEST(mainVersion(), "version");
    QTEST(mainBuild(), "build");
    QCOMPARE(m_desk->text("lineEdit_QC_VERSION"), QString("2.4.2"));
}

void tst_version::outputThatComesInPieces_isReadOnce()
{
    StandIns programs;
    QVERIFY(programs.put(
        "readelf", "#!/bin/sh\necho BASE_VERSION=5\n/usr/bin/sleep 20\necho BUILD_DATE=1750411409\n"));
    QElapsedTimer clock;
    clock.start();
    m_desk->window().set_version();
    QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(mainVersion(), QString("5"));
    QCOMPARE(mainBuild(), QString("1970-01-01 00:00"));
}

void tst_version::showsNothingOfTheMainApplication()
{
    m_desk->window().set_version();
    QCOMPARE(mainVersion(), QString());
    QCOMPARE(mainBuild(), QString("1970-01-01 00:00"));
    QCOMPARE(m_desk->text("lineEdit_QC_VERSION"), QString("2.4.2"));
}

void tst_version::missingFile_leavesVersionEmptyAndSecond0()
{
    QVERIFY(QFile::rename(kMainApplication, kPutAside));
    showsNothingOfTheMainApplication();
}

void tst_version::fileWithoutRecords_leavesVersionEmptyAndSecond0()
{
    QVERIFY(QFile::rename(kMainApplication, kPutAside));
    QVERIFY(QFile::copy("/usr/bin/true", kMainApplication));
    showsNothingOfTheMainApplication();
}

void tst_version::fileThatIsNoProgram_leavesVersionEmptyAndSecond0()
{
    QVERIFY(QFile::rename(kMainApplication, kPutAside));
    QFile file(kMainApplication);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("not a program\n");
    file.close();
    showsNothingOfTheMainApplication();
}

void tst_version::missingReadelf_leavesVersionEmptyAndSecond0()
{
    const StandIns noPrograms;
    showsNothingOfTheMainApplication();
}

void tst_version::hangingReadelf_holdsTheStartFor30SecondsAtMost()
{
    StandIns programs;
    QVERIFY(programs.put("readelf", "#!/bin/sh\nexec /usr/bin/sleep 600\n"));
    QElapsedTimer clock;
    clock.start();
    showsNothingOfTheMainApplication();
    QVERIFY2(
        clock.elapsed() >= 30000 && clock.elapsed() < 35000, qPrintable(QString::number(clock.elapsed())));
}

WORKFLOW_MAIN(tst_version)
#include "tst_version.moc"
