#include "tests/workflows/PageTest.h"
#include "tests/workflows/StandIns.h"

#include <QElapsedTimer>
#include <QRadioButton>
#include <QSpinBox>

/// Serial number and host name, option flags, and the height offsets of three slide types.
class tst_identity : public PageTest {
    Q_OBJECT

public:
    tst_identity()
        : PageTest("TAB_QC2")
    {
    }

protected slots:
    void init() override;

private slots:
    void model_isShownInCapitalsWithTheCursorKept();
    void serialParts_haveTheirLength();
    void write_storesTheSerialAndRenewsTheHostName();
    void write_joinsWhateverIsThere_data();
    void write_joinsWhateverIsThere();
    void missingScript_leavesNoHostNameAndGoesOn();
    void failingScript_isNotReported();
    void hangingScript_holdsTheWindowFor30SecondsAtMost();
    void options_areDisabledByTheForm();
    void options_storeTheirFlag_data();
    void options_storeTheirFlag();
    void offsets_areStoredAtOnce_data();
    void offsets_areStoredAtOnce();
    void offsets_countAtTheNextInsert();
    void serialWithB_hidesTheFluorescenceAfterTheNextStart();

private:
    bool open(const char* page) { return hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", page); }
    bool enterSerial(const QString& model, const QString& prefix, const QString& suffix)
    {
        return hand::type(m_desk->window(), "lineEdit_SERIAL_MODEL", model)
            && hand::type(m_desk->window(), "lineEdit_SERIAL_PREFIX", prefix)
            && hand::type(m_desk->window(), "lineEdit_SERIAL_SUFFIX", suffix);
    }
};

namespace {

const char kHostName[] = "/etc/hostname";

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void tst_identity::init()
{
    PageTest::init();
    QFile hostName(kHostName);
    QVERIFY(hostName.open(QIODevice::WriteOnly));
    hostName.write("before\n");
    QVERIFY(open("TAB_QC2"));
}

void tst_identity::model_isShownInCapitalsWithTheCursorKept()
{
    auto* model = m_desk->widget<QLineEdit>("lineEdit_SERIAL_MODEL");
    QVERIFY(hand::type(m_desk->window(), "lineEdit_SERIAL_MODEL", "ab"));
    QCOMPARE(model->text(), QString("AB"));
    QCOMPARE(model->cursorPosition(), 2);
    // In the middle of the text it stays where it was, too.
    QTest::keyClick(model, Qt::Key_Home);
    QTest::keyClicks(model, "x");
    QCOMPARE(model->text(), QString("XAB"));
    QCOMPARE(model->cursorPosition(), 1);
    QTest::keyClick(model, Qt::Key_Delete);
    QCOMPARE(model->text(), QString("XB"));
    QCOMPARE(model->cursorPosition(), 1);
    // The model alone is written so.
    QVERIFY(hand::type(m_desk->window(), "lineEdit_SERIAL_PREFIX", "ab"));
    QCOMPARE(m_desk->text("lineEdit_SERIAL_PREFIX"), QString("ab"));
}

void tst_identity::serialParts_haveTheirLength()
{
    QVERIFY(enterSerial("tv9xyz", "12345", "1234567"));
    QCOMPARE(m_desk->text("lineEdit_SERIAL_MODEL"), QString("TV9"));
    QCOMPARE(m_desk->text("lineEdit_SERIAL_PREFIX"), QString("12"));
    QCOMPARE(m_desk->text("lineEdit_SERIAL_SUFFIX"), QString("12345"));
}

void tst_identity::write_storesTheSerialAndRenewsTheHostName()
{
    QVERIFY(enterSerial("tv9", "07", "00042"));
    const QByteArray before = contentOf("/run/rig/stubs.log");
    const int logMark = m_desk->log.mark();
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    QCOMPARE(Desk::settings(), QByteArray("[TAVO-QR9]\nSerial=TV9-07-00042\n"));
    // The script runs once, without arguments, and behind the storing: it takes the name from the file.
    QCOMPARE(contentOf("/run/rig/stubs.log"), before + "update_hostname.sh \n");
    QCOMPARE(contentOf(kHostName), QByteArray("TV9-07-00042\n"));
    const QStringList told { "Start deleting  host name", "delete host name, Start updating hostname",
        "Finish update_hostname" };
    QCOMPARE(m_desk->log.lines(logMark).filter("host"), told);
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

void tst_identity::write_joinsWhateverIsThere_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("serial");
    QTest::newRow("all empty") << ""
                               << ""
                               << "" << QByteArray("--");
    QTest::newRow("empty prefix") << "TV9"
                                  << ""
                                  << "00001" << QByteArray("TV9--00001");
    QTest::newRow("percent signs") << "%s%"
                                   << "%d"
                                   << "%n%s%" << QByteArray("%S%-%d-%n%s%");
    QTest::newRow("dashes") << "-"
                            << "--"
                            << "-" << QByteArray("------");
}

void tst_identity::write_joinsWhateverIsThere()
{
    QFETCH(QString, model);
    QFETCH(QString, prefix);
    QFETCH(QString, suffix);
    QFETCH(QByteArray, serial);
    QVERIFY(enterSerial(model, prefix, suffix));
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    QCOMPARE(Desk::settings(), "[TAVO-QR9]\nSerial=" + serial + "\n");
}

void tst_identity::missingScript_leavesNoHostNameAndGoesOn()
{
    const StandIns noPrograms;
    QVERIFY(enterSerial("TV9", "00", "00001"));
    const int logMark = m_desk->log.mark();
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    QCOMPARE(Desk::settings(), QByteArray("[TAVO-QR9]\nSerial=TV9-00-00001\n"));
    QVERIFY(!QFile::exists(kHostName));
    QVERIFY(m_desk->log.contains("Finish update_hostname", logMark));
    // Without a host name to remove it is the same.
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    QVERIFY(!QFile::exists(kHostName));
}

void tst_identity::failingScript_isNotReported()
{
    StandIns programs;
    QVERIFY(programs.put("update_hostname.sh", "#!/bin/sh\nexit 3\n"));
    const int logMark = m_desk->log.mark();
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    QVERIFY(!QFile::exists(kHostName));
    QVERIFY(m_desk->log.contains("Finish update_hostname", logMark));
}

void tst_identity::hangingScript_holdsTheWindowFor30SecondsAtMost()
{
    StandIns programs;
    QVERIFY(programs.put("update_hostname.sh", "#!/bin/sh\nexec /usr/bin/sleep 600\n"));
    const int logMark = m_desk->log.mark();
    QElapsedTimer clock;
    clock.start();
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    QVERIFY2(
        clock.elapsed() >= 30000 && clock.elapsed() < 35000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(m_desk->log.contains("Finish update_hostname", logMark));
    QVERIFY(Desk::settings().contains("Serial="));
}

void tst_identity::options_areDisabledByTheForm()
{
    QVERIFY(open("TAB_OPTION"));
    for (const char* option : { "VATLINE", "TALLYLINK", "QLPK" }) {
        QVERIFY(!m_desk->isEnabled(qPrintable(QString("groupBox_") + option)));
        QVERIFY(m_desk->isShown(qPrintable(QString("groupBox_") + option)));
        QVERIFY(!click(QString("radioButton_%1_YES").arg(option)));
        QVERIFY(
            m_desk->widget<QRadioButton>(qPrintable(QString("radioButton_%1_NO").arg(option)))->isChecked());
    }
    QCOMPARE(Desk::settings(), QByteArray());
}

void tst_identity::options_storeTheirFlag_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("Vatline") << "VATLINE" << QByteArray("Vatline");
    QTest::newRow("TallyLink") << "TALLYLINK" << QByteArray("TallyLink");
    QTest::newRow("QLPK") << "QLPK" << QByteArray("QLPK");
}

void tst_identity::options_storeTheirFlag()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, key);
    QVERIFY(open("TAB_OPTION"));
    // No hand reaches the buttons in this form: the rule is that of their slots.
    auto* group = m_desk->window().findChild<QWidget*>("groupBox_" + option);
    group->setEnabled(true);
    QVERIFY(click(QString("radioButton_%1_YES").arg(option)));
    QCOMPARE(Desk::settings(), "[TAVO-QR9]\n" + key + "=Yes\n");
    QVERIFY(click(QString("radioButton_%1_NO").arg(option)));
    QCOMPARE(Desk::settings(), "[TAVO-QR9]\n" + key + "=No\n");
    QVERIFY(click(QString("radioButton_%1_NO").arg(option)));
    QCOMPARE(Desk::settings(), "[TAVO-QR9]\n" + key + "=No\n");
    group->setEnabled(false);
}

void tst_identity::offsets_areStoredAtOnce_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("Reusable") << "spinBox_REUSABLE_OFFSET" << QByteArray("Reusable offset");
    QTest::newRow("Validation") << "spinBox_VALIDATION_OFFSET" << QByteArray("Validation offset");
    QTest::newRow("Prisma Max") << "spinBox_PRISMA_OFFSET" << QByteArray("Prisma offset");
}

void tst_identity::offsets_areStoredAtOnce()
{
    QFETCH(QString, box);
    QFETCH(QByteArray, key);
    QVERIFY(open("TAB_OPTION"));
    const auto stored = [&](const char* value) { return "[Calibration]\n" + key + "=" + value + "\n"; };
    const int mark = m_desk->mark();
    QVERIFY(hand::type(m_desk->window(), box, "4321")); // each figure is a new value
    QCOMPARE(Desk::settings(), stored("4321"));
    QVERIFY(hand::press(m_desk->window(), box, Qt::Key_Up));
    QCOMPARE(Desk::settings(), stored("4322"));
    QVERIFY(hand::type(m_desk->window(), box, "0"));
    QCOMPARE(Desk::settings(), stored("0"));
    QVERIFY(hand::type(m_desk->window(), box, "99999")); // the fifth figure is beyond the box
    QCOMPARE(Desk::settings(), stored("9999"));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

void tst_identity::offsets_countAtTheNextInsert()
{
    QVERIFY(open("TAB_OPTION"));
    QVERIFY(hand::type(m_desk->window(), "spinBox_REUSABLE_OFFSET", "4000"));
    QVERIFY(open("TAB_STAGE"));
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    QVERIFY(click("pushButton_INSERT"));
    QVERIFY(patience::waitFor([&] { return moved.count() == 1; }));
    const int mark = m_desk->mark();
    QVERIFY(hand::choose(m_desk->window(), "comboBox_SLIDE", 4));
    QVERIFY(patience::waitFor([&] { return moved.count() == 2; }));
    QCOMPARE(m_desk->linesSince(mark).value(1), QString("$Z#STAGE ABS 36000"));
}

void tst_identity::serialWithB_hidesTheFluorescenceAfterTheNextStart()
{
    const QStringList buttons { "pushButton_ILLUMINATION_GFP", "pushButton_ILLUMINATION_RFP" };
    QVERIFY(open("TAB_QC2"));
    QVERIFY(enterSerial("TV9", "00", "0B001"));
    QVERIFY(click("pushButton_SERIAL_WRITE"));
    for (const QString& button : buttons)
        QVERIFY(m_desk->isShown(qPrintable(button)));
    m_desk->close();
    m_desk->open();
    for (const QString& button : buttons)
        QVERIFY(!m_desk->isShown(qPrintable(button)));
    QCOMPARE(m_desk->text("lineEdit_SERIAL_SUFFIX"), QString("0B001"));
    QVERIFY(m_desk->waitForConnection());
}

WORKFLOW_MAIN(tst_identity)
#include "tst_identity.moc"
