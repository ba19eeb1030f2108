#include "tests/workflows/Desk.h"

#include <QPushButton>

/// The tray's axis by hand, and the calibration of the start positions.
class tst_xaxis : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void step_sendsTheFieldAsTyped_data();
    void step_sendsTheFieldAsTyped();
    void position_isAskedForAndShown();
    void stepMove_setsTheDirectionAndRuns_data();
    void stepMove_setsTheDirectionAndRuns();
    void secondClickWhileTheStageMoves_sendsNothing();
    void lostReplyOfAStep_leavesTheButtonUntilTheNextStep();
    void silentBoard_queuedCommandsDoNotHoldTheWindow();
    void reference_movesToTheStoredMark_data();
    void reference_movesToTheStoredMark();
    void reference_showsItsTargetBeforeTheMoveHasEnded();
    void doubledReplyToReference_endsTheMoveTwice();
    void calibration_writesSixValues_data();
    void calibration_writesSixValues();
    void referenceAndCalibrationAtOnce_takesTheRequestedPosition();
    void calibration_leavesTheRestOfTheFileAlone();
    void calibrationTwice_writesTheSame();

private:
    QString position() { return m_desk->text("lineEdit_POSITION_X"); }
    bool click(const char* button) { return hand::click(m_desk->window(), button); }
    bool becomesEnabled(const QString& button)
    {
        auto* widget = m_desk->window().findChild<QPushButton*>(button);
        return patience::waitFor([widget] { return widget->isEnabled(); });
    }
    /// Drives the unit there and has the panel show it.
    bool standAt(int x)
    {
        return m_desk->rig.set("x", x) && click("pushButton_POSITION_X")
            && patience::waitFor([&] { return position() == QString::number(x); });
    }

    std::unique_ptr<Desk> m_desk;
};

void tst_xaxis::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QCOMPARE(position(), QString("0"));
    QCOMPARE(m_desk->text("lineEdit_STEP_X"), QString("13"));
}

void tst_xaxis::init()
{
    Desk::removeSettings();
    QVERIFY(m_desk->rig.set("x", 20000));
}

void tst_xaxis::cleanup()
{
    m_desk->rig.clearFaults();
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_xaxis::cleanupTestCase()
{
    m_desk.reset();
}

void tst_xaxis::step_sendsTheFieldAsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("number") << "130";
    QTest::newRow("empty") << "";
    QTest::newRow("letters") << "ab";
    QTest::newRow("negative") << "-13";
    QTest::newRow("over-long") << QString(200, '3');
}

void tst_xaxis::step_sendsTheFieldAsTyped()
{
    QFETCH(QString, typed);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_X", typed));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_STEP_X"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE STEP " + typed }));
    QVERIFY(m_desk->isEnabled("pushButton_STEP_X"));
}

void tst_xaxis::position_isAskedForAndShown()
{
    QVERIFY(m_desk->rig.set("x", -77));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(patience::waitFor([this] { return position() == "-77"; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE POS" }));
}

void tst_xaxis::stepMove_setsTheDirectionAndRuns_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("other");
    QTest::addColumn<QString>("direction");
    QTest::addColumn<QString>("reached");
    QTest::newRow("minus") << "pushButton_MVN_X"
                           << "pushButton_MVP_X"
                           << "MINUS"
                           << "19987";
    QTest::newRow("plus") << "pushButton_MVP_X"
                          << "pushButton_MVN_X"
                          << "PLUS"
                          << "20013";
}

void tst_xaxis::stepMove_setsTheDirectionAndRuns()
{
    QFETCH(QString, button);
    QFETCH(QString, other);
    QFETCH(QString, direction);
    QFETCH(QString, reached);
    QVERIFY(hand::type(m_desk->window(), "lineEdit_STEP_X", "13"));
    QVERIFY(click("pushButton_STEP_X"));
    const int mark = m_desk->mark();
    QVERIFY(hand::click(m_desk->window(), button));
    QVERIFY(!m_desk->isEnabled(qPrintable(button)));
    QVERIFY(m_desk->isEnabled(qPrintable(other)));
    QVERIFY(becomesEnabled(button));
    QVERIFY(m_desk->isEnabled(qPrintable(other)));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE DIR " + direction, "$X#STAGE RUN" }));
    QCOMPARE(position(), reached);
}

void tst_xaxis::secondClickWhileTheStageMoves_sendsNothing()
{
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE RUN", 1, 200));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_MVP_X"));
    QTest::mouseClick(m_desk->widget("pushButton_MVP_X"), Qt::LeftButton);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE DIR PLUS", "$X#STAGE RUN" }));
    QVERIFY(!m_desk->isEnabled("pushButton_MVP_X"));
    QVERIFY(becomesEnabled("pushButton_MVP_X"));
}

void tst_xaxis::lostReplyOfAStep_leavesTheButtonUntilTheNextStep()
{
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE RUN"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_MVN_X"));
    QCOMPARE(m_desk->linesSince(mark).last(), QString("$X#STAGE RUN"));
    QVERIFY(!m_desk->isEnabled("pushButton_MVN_X"));
    QVERIFY(click("pushButton_MVP_X"));
    QVERIFY(becomesEnabled("pushButton_MVN_X"));
}

void tst_xaxis::silentBoard_queuedCommandsDoNotHoldTheWindow()
{
    QVERIFY(m_desk->rig.fault("silent"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(click("pushButton_START_X_REF"));
    QVERIFY(click("pushButton_START_X_REF"));
    QCOMPARE(m_desk->linesSince(mark),
        QStringList({ "$X#STAGE POS", "$X#STAGE POS", "$X#STAGE ABS 12000", "$X#STAGE ABS 12000" }));
    QVERIFY(m_desk->isEnabled("pushButton_START_X_REF"));
}

void tst_xaxis::reference_movesToTheStoredMark_data()
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

void tst_xaxis::reference_movesToTheStoredMark()
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

void tst_xaxis::reference_showsItsTargetBeforeTheMoveHasEnded()
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

void tst_xaxis::doubledReplyToReference_endsTheMoveTwice()
{
    QVERIFY(m_desk->rig.fault("double", "$X#STAGE ABS"));
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    QVERIFY(click("pushButton_START_X_REF"));
    QVERIFY(patience::waitFor([&] { return moved.count() == 2; }));
    QCOMPARE(position(), QString("12000"));
}

void tst_xaxis::calibration_writesSixValues_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("0") << 0
                       << QStringList({ "[Start position]", "Calibration=-12000", "1 Channel=-2107",
                              "2 Channel=18931", "3 Channel=18505", "8 Channel=26291", "Prisma=16580" });
    QTest::newRow("mark at its nominal place")
        << 12000
        << QStringList({ "[Start position]", "Calibration=0", "1 Channel=9893", "2 Channel=30931",
               "3 Channel=30505", "8 Channel=38291", "Prisma=28580" });
    QTest::newRow("another") << 11934
                             << QStringList({ "[Start position]", "Calibration=-66", "1 Channel=9827",
                                    "2 Channel=30865", "3 Channel=30439", "8 Channel=38225",
                                    "Prisma=28514" });
}

void tst_xaxis::calibration_writesSixValues()
{
    QFETCH(int, position);
    QFETCH(QStringList, lines);
    QVERIFY(standAt(position));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    lines.sort();
    QCOMPARE(sortedLines(Desk::settings()), lines);
    QCOMPARE(m_desk->linesSince(mark), QStringList()); // the board is not asked
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_xaxis::referenceAndCalibrationAtOnce_takesTheRequestedPosition()
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

void tst_xaxis::calibration_leavesTheRestOfTheFileAlone()
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

void tst_xaxis::calibrationTwice_writesTheSame()
{
    QVERIFY(standAt(12010));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    const QByteArray once = Desk::settings();
    QVERIFY(once.contains("\nCalibration=10\n"));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QCOMPARE(sortedLines(Desk::settings()), sortedLines(once));
}

WORKFLOW_MAIN(tst_xaxis)
#include "tst_xaxis.moc"
