#include "tests/workflows/SlideTest.h"

/// Change of the channel on the map, and the height of each channel on a tilted carrier.
class tst_slidechannel : public SlideTest {
    Q_OBJECT

private slots:
    void doubleClick_startsTheChannelAtItsFirstField();
    void doubleClickOnTheFirstChannel_goesToTheHome();
    void doubleClickOnTheCurrentChannel_doesNothing();
    void doubleClickOnATypeOfOneChannel_doesNothing();
    void heightOfAChannel_followsTheSlope_data();
    void heightOfAChannel_followsTheSlope();
};

void tst_slidechannel::doubleClick_startsTheChannelAtItsFirstField()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE ABS", 1, 100));
    const int mark = m_desk->mark();
    const int moves = m_panel->moves();
    QVERIFY(m_panel->doubleClick(1));
    QCOMPARE(m_panel->enabled(), QString());
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE ABS 32000", "$X#STAGE ABS 10132" }));
    QCOMPARE(m_panel->cells(), QString("wr"));
    QCOMPARE(m_panel->field(), QString("1"));
    QCOMPARE(m_panel->enabled(), QString("Insert Eject Combo Prev Map"));
}

void tst_slidechannel::doubleClickOnTheFirstChannel_goesToTheHome()
{
    QVERIFY(m_panel->insert(3));
    QVERIFY(m_panel->changeChannel(6));
    const int mark = m_desk->mark();
    QVERIFY(m_panel->changeChannel(0));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE ABS 32000", "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->field(), QString("0"));
    QCOMPARE(m_panel->cells(), QString("rwwwwwww"));
    QCOMPARE(m_panel->enabled(), enabledAtHome());
}

void tst_slidechannel::doubleClickOnTheCurrentChannel_doesNothing()
{
    QVERIFY(m_panel->insert(1));
    for (int column : { 0, 1 }) {
        if (column == 1)
            QVERIFY(m_panel->changeChannel(1));
        const QString enabled = m_panel->enabled();
        const QString field = m_panel->field();
        const int mark = m_desk->mark();
        QVERIFY(m_panel->doubleClick(column));
        QCOMPARE(m_desk->linesSince(mark), QStringList());
        QCOMPARE(m_panel->enabled(), enabled);
        QCOMPARE(m_panel->field(), field);
    }
}

void tst_slidechannel::doubleClickOnATypeOfOneChannel_doesNothing()
{
    for (int type : { 0, 4, 5, 6 }) {
        QVERIFY(m_panel->insert(type));
        const int mark = m_desk->mark();
        QVERIFY(m_panel->doubleClick(0));
        QCOMPARE(m_desk->linesSince(mark), QStringList());
        QCOMPARE(m_panel->enabled(), enabledAtHome());
    }
}

void tst_slidechannel::heightOfAChannel_followsTheSlope_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("column");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("height");
    const auto file = [](const char* key, int reference, const char* slope) {
        return QString("[Calibration]\n%1=%2\nZ ref slope=%3\n")
            .arg(key)
            .arg(reference)
            .arg(slope)
            .toLatin1();
    };
    QTest::newRow("2-Channel, 39 mm") << 1 << 1 << file("Z ref 2ch", 32200, "2") << "32278";
    QTest::newRow("3-Channel, 23.15 mm") << 2 << 1 << file("Z ref 3ch", 32300, "2") << "32346"; // 46.3
    QTest::newRow("3-Channel, 46.3 mm") << 2 << 2 << file("Z ref 3ch", 32300, "2") << "32392"; // 92.6
    QTest::newRow("8-Channel, 63 mm") << 3 << 7 << file("Z ref 8ch", 32800, "2") << "32926";
    QTest::newRow("defaults") << 3 << 4 << QByteArray() << "32000";
    // The sum is cut, and not the slope's part of it.
    QTest::newRow("falling, cut behind the sum") << 3 << 1 << file("Z ref 8ch", 32000, "-7.5") << "31932";
    QTest::newRow("sum below 0, cut towards 0") << 3 << 1 << file("Z ref 8ch", 0, "-7.5") << "-67";
    // 1.4 in single precision is a little less: 62.99999 steps and not 63.
    QTest::newRow("slope in single precision") << 3 << 5 << file("Z ref 8ch", 32000, "1.4") << "32062";
}

void tst_slidechannel::heightOfAChannel_followsTheSlope()
{
    QFETCH(int, type);
    QFETCH(int, column);
    QFETCH(QByteArray, file);
    QFETCH(QString, height);
    QVERIFY(m_panel->insert(type));
    if (!file.isEmpty())
        Desk::putSettings(file);
    const int mark = m_desk->mark();
    QVERIFY(m_panel->changeChannel(column));
    QCOMPARE(m_desk->linesSince(mark).value(0), "$Z#STAGE ABS " + height);
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), height);
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), height);
}

WORKFLOW_MAIN(tst_slidechannel)
#include "tst_slidechannel.moc"
