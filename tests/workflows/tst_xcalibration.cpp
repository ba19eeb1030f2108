#include "tests/workflows/PageTest.h"
#include "tests/workflows/SettingsWrites.h"

/// The way to the reference mark, and the calibration of the start positions from it.
class tst_xcalibration : public PageTest {
    Q_OBJECT

public:
    tst_xcalibration()
        : PageTest("TAB_QC2")
    {
    }

protected slots:
    void init() override;

private slots:
    void reference_movesToTheStoredMark_data();
    void reference_movesToTheStoredMark();
    void reference_showsItsTargetBeforeTheMoveHasEnded();
    void doubledReplyToReference_endsTheMoveTwice();
    void calibration_writesSixValues_data();
    void calibration_writesSixValues();
    void referenceAndCalibrationAtOnce_takesTheRequestedPosition();
    void calibration_leavesTheRestOfTheFileAlone();
    void calibrationTwice_writesTheSame();
    void calibration_storesTheValuesInThisOrder();
    void absurdCalibration_isDrivenToAsFarAsANumberGoes();
    void calibrationAtAnAbsurdPosition_staysWithinTheRange();

private:
    QString position() { return m_desk->text("lineEdit_POSITION_X"); }
    /// Drives the unit there and has the panel show it.
    bool standAt(int x)
    {
        return m_desk->rig.set("x", x) && click("pushButton_POSITION_X")
            && comesToShow("lineEdit_POSITION_X", QString::number(x));
    }
};

void tst_xcalibration::init()
{
    PageTest::init();
    QVERIFY(m_desk->rig.set("x", 20000));
}

void tst_xcalibration::reference_movesToTheStoredMark_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("target");
    QTest::newRow("first run, no file") << QByteArray() << 12000;
    QTest::newRow("no key") << QByteArray("[Start position]\n1 Channel=5\n") << 12000;
    QTest::newRow("above") << QByteArray("[Start position]\nCalibration=345\n") << 12345;
    QTest::newRow("below") << QByteArray("[Start position]\nCalibration=-66\n") << 11934;
    QTest::newRow("empty") << QByteArray("[Start position]\nCalibration=\n") << 12000;
    QTest::newRow("no number") << QByteArray("[Start position]\nCalibration=abc\n") << 12000;
    QTest::newRow("number and letters") << QByteArray("[Start position]\nCalibration=12abc\n") << 12012;
    QTest::newRow("escaped group") << QByteArray("[Start%20position]\nCalibration=7\n") << 12007;
}

void tst_xcalibration::reference_movesToTheStoredMark()
{
    QFETCH(QByteArray, file);
    QFETCH(int, target);
    if (!file.isEmpty())
        Desk::putSettings(file);
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_START_X_REF"));
    QVERIFY(patience::waitFor([&] { return moved.count() == 1; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ QString("$X#STAGE ABS %1").arg(target) }));
    QCOMPARE(position(), QString::number(target));
    QCOMPARE(m_desk->rig.state().value("x").toInt(), target);
    QCOMPARE(Desk::settings(), file); // reading changes nothing
}

void tst_xcalibration::reference_showsItsTargetBeforeTheMoveHasEnded()
{
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE ABS", 1, 200));
    QVERIFY(standAt(500));
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    QVERIFY(click("pushButton_START_X_REF"));
    QCOMPARE(position(), QString("12000"));
    QCOMPARE(moved.count(), 0);
    QVERIFY(patience::waitFor([&] { return moved.count() == 1; }));
    QCOMPARE(position(), QString("12000"));
}

void tst_xcalibration::doubledReplyToReference_endsTheMoveTwice()
{
    QVERIFY(m_desk->rig.fault("double", "$X#STAGE ABS"));
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    QVERIFY(click("pushButton_START_X_REF"));
    QVERIFY(patience::waitFor([&] { return moved.count() == 2; }));
    QCOMPARE(position(), QString("12000"));
}

void tst_xcalibration::calibration_writesSixValues_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QByteArray>("file"); // in which the keys of a group are sorted
    QTest::newRow("0") << 0
                       << QByteArray("[Start position]\n1 Channel=-2107\n2 Channel=18931\n3 Channel=18505\n"
                                     "8 Channel=26291\nCalibration=-12000\nPrisma=16580\n");
    QTest::newRow("mark at its nominal place")
        << 12000
        << QByteArray("[Start position]\n1 Channel=9893\n2 Channel=30931\n3 Channel=30505\n"
                      "8 Channel=38291\nCalibration=0\nPrisma=28580\n");
    QTest::newRow("another") << 11934
                             << QByteArray(
                                    "[Start position]\n1 Channel=9827\n2 Channel=30865\n3 Channel=30439\n"
                                    "8 Channel=38225\nCalibration=-66\nPrisma=28514\n");
}

void tst_xcalibration::calibration_writesSixValues()
{
    QFETCH(int, position);
    QVERIFY(standAt(position));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QTEST(Desk::settings(), "file");
    QCOMPARE(m_desk->linesSince(mark), QStringList()); // the board is not asked
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_xcalibration::referenceAndCalibrationAtOnce_takesTheRequestedPosition()
{
    QVERIFY(standAt(500));
    Desk::putSettings("[Start position]\nCalibration=345\n");
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE ABS", 1, 200));
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    QVERIFY(click("pushButton_START_X_REF"));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QCOMPARE(moved.count(), 0);
    QStringList expected { "[Start position]", "Calibration=345", "1 Channel=10238", "2 Channel=31276",
        "3 Channel=30850", "8 Channel=38636", "Prisma=28925" };
    expected.sort();
    QCOMPARE(sortedLines(Desk::settings()), expected);
    QVERIFY(patience::waitFor([&] { return moved.count() == 1; }));
}

void tst_xcalibration::calibration_leavesTheRestOfTheFileAlone()
{
    QVERIFY(standAt(12000));
    Desk::putSettings("[Calibration]\nZ ref A1=31111\n\n[Start position]\n2 Channel=1\nReusable=2\n");
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QStringList expected { "[Calibration]", "Z ref A1=31111", "[Start position]", "Reusable=2",
        "Calibration=0", "1 Channel=9893", "2 Channel=30931", "3 Channel=30505", "8 Channel=38291",
        "Prisma=28580" };
    expected.sort();
    QCOMPARE(sortedLines(Desk::settings()), expected);
}

void tst_xcalibration::calibrationTwice_writesTheSame()
{
    QVERIFY(standAt(12010));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    const QByteArray once = Desk::settings();
    QVERIFY(once.contains("\nCalibration=10\n"));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QCOMPARE(sortedLines(Desk::settings()), sortedLines(once));
}

void tst_xcalibration::calibration_storesTheValuesInThisOrder()
{
    QVERIFY(standAt(11934));
    Desk::putSettings("[Start position]\nPrisma=1\n");
    const SettingsWrites writes;
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QCOMPARE(writes.changes(),
        QStringList({ "Start position/Calibration=-66", "Start position/1 Channel=9827",
            "Start position/2 Channel=30865", "Start position/3 Channel=30439",
            "Start position/8 Channel=38225", "Start position/Prisma=28514" }));
}

void tst_xcalibration::absurdCalibration_isDrivenToAsFarAsANumberGoes()
{
    Desk::putSettings("[Start position]\nCalibration=99999999999\n");
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_START_X_REF"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 2147483647" }));
    QCOMPARE(position(), QString("2147483647"));
}

void tst_xcalibration::calibrationAtAnAbsurdPosition_staysWithinTheRange()
{
    QVERIFY(m_desk->rig.say("$OK#X#STAGE POS#2147483647\r\n"));
    QVERIFY(comesToShow("lineEdit_POSITION_X", "2147483647"));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QStringList expected { "[Start position]", "Calibration=2147471647", "1 Channel=2147481540",
        "2 Channel=2147483647", "3 Channel=2147483647", "8 Channel=2147483647", "Prisma=2147483647" };
    expected.sort();
    QCOMPARE(sortedLines(Desk::settings()), expected);
}

WORKFLOW_MAIN(tst_xcalibration)
#include "tst_xcalibration.moc"
