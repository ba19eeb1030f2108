#include "tests/workflows/SlideTest.h"

/// The X start position of a slide type: where a field move takes it from, and when it is read.
class tst_slidestart : public SlideTest {
    Q_OBJECT

private slots:
    void editedStartPosition_countsAtTheNextMove_data();
    void editedStartPosition_countsAtTheNextMove();
    void editedStartPosition_countsAtTheNextChangeOfChannel();
    void calibrationAtTheMark_countsAtTheNextMove();
    void stepThatDoesNothing_hasReadTheStartPosition_data();
    void stepThatDoesNothing_hasReadTheStartPosition();
    void prismaMoves_areLogged();
};

void tst_slidestart::editedStartPosition_countsAtTheNextMove_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QStringList>("targets"); // of the moves to the second field and back to the first
    const auto row
        = [](const char* name, int type, const char* value, const char* second, const char* first) {
              QTest::newRow(name) << type << QByteArray(value) << QStringList({ second, first });
          };
    row("1-Channel", 0, "1 Channel=1000", "1480", "1000");
    row("2-Channel", 1, "2 Channel=1000", "520", "1000");
    row("3-Channel", 2, "3 Channel=1000", "1480", "1000");
    row("8-Channel", 3, "8 Channel=1000", "520", "1000");
    row("Reusable", 4, "2 Channel=1000", "520", "1000");
    row("Validation", 5, "2 Channel=1000", "520", "1000");
    row("Prisma Max", 6, "Prisma=1000", "520", "1000");
    row("no number", 1, "2 Channel=abc", "-480", "0");
    row("1-Channel, empty", 0, "1 Channel=", "10373", "9893");
    row("2-Channel, empty", 1, "2 Channel=", "30451", "30931");
    row("3-Channel, empty", 2, "3 Channel=", "30985", "30505");
    row("8-Channel, empty", 3, "8 Channel=", "37811", "38291");
    row("Prisma Max, empty", 6, "Prisma=", "28100", "28580");
    row("beyond the range", 1, "2 Channel=-99999999999", "-2147483648", "-2147483648");
}

void tst_slidestart::editedStartPosition_countsAtTheNextMove()
{
    QFETCH(int, type);
    QFETCH(QByteArray, value);
    QFETCH(QStringList, targets);
    // On a 3-channel slide it is PREV that raises the field index.
    const char* const raise = type == 2 ? "pushButton_FIELD_PREV" : "pushButton_FIELD_NEXT";
    const char* const lower = type == 2 ? "pushButton_FIELD_NEXT" : "pushButton_FIELD_PREV";
    QVERIFY(m_panel->insert(type));
    QVERIFY(m_panel->move(raise));
    Desk::putSettings("[Start position]\n" + value + "\n");
    const int mark = m_desk->mark();
    QVERIFY(m_panel->move(raise));
    QVERIFY(m_panel->move(lower));
    QCOMPARE(m_desk->linesSince(mark), targets.replaceInStrings(QRegularExpression("^"), "$X#STAGE ABS "));
}

void tst_slidestart::editedStartPosition_countsAtTheNextChangeOfChannel()
{
    QVERIFY(m_panel->insert(1));
    Desk::putSettings("[Start position]\n2 Channel=50000\n");
    const int mark = m_desk->mark();
    QVERIFY(m_panel->changeChannel(1));
    QCOMPARE(m_desk->linesSince(mark).last(), QString("$X#STAGE ABS 29201"));
}

void tst_slidestart::calibrationAtTheMark_countsAtTheNextMove()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
    QVERIFY(m_desk->rig.set("x", 12010));
    QVERIFY(click("pushButton_POSITION_X"));
    QVERIFY(comesToShow("lineEdit_POSITION_X", "12010"));
    QVERIFY(click("pushButton_START_X_CALIBRATION"));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    const int mark = m_desk->mark();
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 30461" }));
}

void tst_slidestart::stepThatDoesNothing_hasReadTheStartPosition_data()
{
    QTest::addColumn<QString>("step");
    QTest::newRow("NEXT at the last field") << "NEXT";
    QTest::newRow("PREV at the X home") << "PREV";
    QTest::newRow("double click on the current channel") << "double click";
}

/// The slope calibration goes to the start position that was read last, and reads none of its own.
void tst_slidestart::stepThatDoesNothing_hasReadTheStartPosition()
{
    QFETCH(QString, step);
    QVERIFY(m_panel->insert(6));
    for (int field = 0; step == "NEXT" && field < 5; ++field)
        QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    Desk::putSettings("[Start position]\n2 Channel=41000\n");
    const int mark = m_desk->mark();
    if (step == "NEXT")
        m_desk->window().on_pushButton_FIELD_NEXT_clicked(); // the button is off
    else if (step == "PREV")
        m_desk->window().on_pushButton_FIELD_PREV_clicked();
    else
        QVERIFY(m_panel->doubleClick(0));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    QVERIFY(click("pushButton_REFERENCE_Z_SLOPE"));
    QVERIFY(m_desk->boxes.waitForBoxes(++m_boxesAskedFor, 60000));
    QCOMPARE(m_desk->linesSince(mark).filter("$X#STAGE"),
        QStringList({ "$X#STAGE ABS 41000", "$X#STAGE ABS 20201" }));
}

void tst_slidestart::prismaMoves_areLogged()
{
    QVERIFY(m_panel->insert(6));
    const int logMark = m_desk->log.mark();
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QVERIFY(m_panel->move("pushButton_FIELD_PREV"));
    QCOMPARE(m_desk->log.lines(logMark).filter("===========>prisma slide : "),
        QStringList({ "===========>prisma slide :  28580", "===========>prisma slide :  28100",
            "===========>prisma slide :  28580" }));
}

WORKFLOW_MAIN(tst_slidestart)
#include "tst_slidestart.moc"
