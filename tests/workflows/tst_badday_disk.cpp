#include "tests/workflows/Desk.h"
#include "tests/workflows/SmallDisk.h"

#include <sys/time.h>

#include <atomic>
#include <cstdlib>
#include <ctime>

/// Days on which disk and clock are bad: no room for the settings file, a file that cannot be written or is
/// gone, a clock that jumps. The file holds the old values or the new ones, whole, and nothing else.
class tst_badday_disk : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fullDiskUnderAReference_keepsTheOldFileUntilThereIsRoom();
    void fullDiskUnderTheSlope_keepsTheOldFileAndTheBoxHasTheFigures();
    void fullDiskAtTheStart_unitComesUpAllTheSame();
    void fileTakenAwayMeanwhile_isWrittenAnew();
    void clockThatJumps_losesNoValue_data();
    void clockThatJumps_losesNoValue();
    void clockThatJumpsDuringFocus_doesNotMoveTheResult();

private:
    bool connectUnit();
    bool press(const char* button);

    std::unique_ptr<SmallDisk> m_disk;
    std::unique_ptr<Desk> m_desk;
};

namespace {

const QByteArray kReferenceInFocus = "[Calibration]\nZ reference=30000\n";
std::atomic<long> clockOffset { 0 }; ///< s that the wall clock is off

} // namespace

/// The wall clock of this process, as wrong as the test wants it.
extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept
{
    timespec time {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    now->tv_sec = time.tv_sec + clockOffset;
    now->tv_usec = time.tv_nsec / 1000;
    return 0;
}

void tst_badday_disk::init()
{
    m_disk.reset(new SmallDisk(kReferenceInFocus));
    m_desk.reset(new Desk);
}

void tst_badday_disk::cleanup()
{
    clockOffset = 0;
    m_desk.reset();
    m_disk.reset();
}

bool tst_badday_disk::connectUnit()
{
    return m_desk->connectUnit() && m_desk->rig.set("x", 30931)
        && hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE");
}

bool tst_badday_disk::press(const char* button)
{
    return hand::click(m_desk->window(), button);
}

void tst_badday_disk::fullDiskUnderAReference_keepsTheOldFileUntilThereIsRoom()
{
    QVERIFY(connectUnit());
    const QByteArray before = Desk::settings();
    QVERIFY(before.contains("Z reference=30000\n"));
    QVERIFY(m_disk->fill());
    QVERIFY(hand::type(m_desk->window(), "lineEdit_OFFSET_Z", "5"));
    const int logMark = m_desk->log.mark();
    QVERIFY(press("pushButton_OFFSET_Z"));
    QCOMPARE(Desk::settings(), before);
    QVERIFY(m_desk->log.contains("settings not stored", logMark));
    QVERIFY(m_desk->log.contains("Z offset", logMark));
    QCOMPARE(m_desk->text("lineEdit_OFFSET_Z"), QString("5"));

    QVERIFY(m_disk->makeRoom());
    QVERIFY(press("pushButton_OFFSET_Z"));
    QStringList expected = sortedLines(before);
    expected << "Z offset=5";
    expected.sort();
    QCOMPARE(sortedLines(Desk::settings()), expected);
}

void tst_badday_disk::fullDiskUnderTheSlope_keepsTheOldFileAndTheBoxHasTheFigures()
{
    QVERIFY(connectUnit());
    const QByteArray before = Desk::settings();
    QVERIFY(m_disk->fill());
    const int logMark = m_desk->log.mark();
    QVERIFY(press("pushButton_REFERENCE_Z_SLOPE"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QVERIFY(m_desk->boxes.texts().first().contains("\nZ ref A1 : 30000 \nZ ref B1 : 30000 \n"));
    QCOMPARE(Desk::settings(), before);
    QCOMPARE(m_desk->log.lines(logMark).filter("settings not stored").size(), 9);
}

void tst_badday_disk::fullDiskAtTheStart_unitComesUpAllTheSame()
{
    QVERIFY(m_disk->fill());
    QVERIFY(m_desk->connectUnit());
    QCOMPARE(Desk::settings(), kReferenceInFocus);
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("30000"));
}

void tst_badday_disk::fileTakenAwayMeanwhile_isWrittenAnew()
{
    QVERIFY(connectUnit());
    Desk::removeSettings();
    QVERIFY(hand::type(m_desk->window(), "lineEdit_OFFSET_Z", "4"));
    QVERIFY(press("pushButton_OFFSET_Z"));
    // What was not set on this day is not made up.
    QCOMPARE(Desk::settings(), QByteArray("[Calibration]\nZ offset=4\n"));
}

void tst_badday_disk::clockThatJumps_losesNoValue_data()
{
    QTest::addColumn<int>("seconds");
    QTest::newRow("a day back") << -86400;
    QTest::newRow("a year ahead") << 31536000;
    QTest::newRow("back to the beginning of time") << -1700000000;
}

void tst_badday_disk::clockThatJumps_losesNoValue()
{
    QFETCH(int, seconds);
    QVERIFY(connectUnit());
    // Texts of one length: the settings layer tells versions of a file by size and time stamp.
    for (int i = 1; i <= 6; ++i) {
        const QDateTime before = QDateTime::currentDateTime();
        clockOffset = i % 2 == 1 ? seconds : 0;
        const bool jumps = std::abs(before.secsTo(QDateTime::currentDateTime())) > 80000;
        QVERIFY2(jumps, "the jump does not reach the program");
        QVERIFY(hand::type(m_desk->window(), "lineEdit_OFFSET_Z", QString::number(i)));
        QVERIFY(press("pushButton_OFFSET_Z"));
        QVERIFY2(Desk::settings().contains("Z offset=" + QByteArray::number(i) + "\n"), Desk::settings());
        QVERIFY(Desk::settings().contains("Z reference=30000\n"));
    }
    m_desk->close();
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->text("lineEdit_OFFSET_Z"), QString("6"));
}

void tst_badday_disk::clockThatJumpsDuringFocus_doesNotMoveTheResult()
{
    QVERIFY(connectUnit());
    QTimer jumps;
    connect(&jumps, &QTimer::timeout, this, [] { clockOffset = clockOffset == 0 ? -86400 : 0; });
    jumps.start(200);
    QVERIFY(press("pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(m_desk->rig.state().value("z").toInt(), 30000 - 115);
}

WORKFLOW_MAIN(tst_badday_disk)
#include "tst_badday_disk.moc"
