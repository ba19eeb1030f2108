#include "tests/workflows/SlideTest.h"
#include "tests/workflows/StandardOutput.h"

#include <QComboBox>
#include <QTableWidget>

/// Insert and eject: what goes to the board, what the panel looks like meanwhile, the map of each slide
/// type and the height that it comes in at.
class tst_slide : public SlideTest {
    Q_OBJECT

private slots:
    void withoutSlide_onlyInsertAndEjectCanBePressed();
    void insert_locksThePanelUntilItsReply();
    void insert_bringsTheLightBack();
    void chosenType_isInsertedAtOnce();
    void sameTypeChosenAgain_doesNothingAndInsertRepeats();
    void map_hasTheColumnsOfTheType_data();
    void map_hasTheColumnsOfTheType();
    void heightOfAnInsert_comesFromTheFile_data();
    void heightOfAnInsert_comesFromTheFile();
    void eject_locksThePanelUntilItsReply();
    void ejectOnGfp_switchesTheGfpLedOff();
};

void tst_slide::withoutSlide_onlyInsertAndEjectCanBePressed()
{
    // As after the start: the constructor has drawn two white cells.
    QCOMPARE(m_panel->enabled(), enabledWithoutSlide());
    QCOMPARE(m_panel->field(), QString("X"));
    QCOMPARE(m_panel->cells(), QString("ww"));
    QVERIFY(!m_panel->doubleClick(1));
    QVERIFY(!hand::choose(m_desk->window(), "comboBox_SLIDE", 2));
    QVERIFY(!click("pushButton_FIELD_NEXT"));
}

void tst_slide::insert_locksThePanelUntilItsReply()
{
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE ABS", 1, 100));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_INSERT"));
    QCOMPARE(m_panel->enabled(), QString());
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("~~~"));
    QCOMPARE(m_desk->style("pushButton_INSERT"), idleStyle());
    QCOMPARE(m_desk->style("pushButton_EJECT"), idleStyle());
    // The height is reached before the tray comes in.
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), QString("32000"));
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("32000"));
    QVERIFY(m_panel->waitForMoves(1));
    QCOMPARE(
        m_desk->linesSince(mark), QStringList({ "$A#LED BRT1 7 6", "$Z#STAGE ABS 32000", "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->enabled(), enabledAtHome());
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("Insert"));
    QCOMPARE(m_desk->style("pushButton_INSERT"), activeStyle());
    QCOMPARE(m_desk->style("pushButton_EJECT"), idleStyle()); // stays idle
    QCOMPARE(m_panel->field(), QString("0"));
    QCOMPARE(m_panel->cells(), QString("rw"));
}

void tst_slide::insert_bringsTheLightBack()
{
    QVERIFY(m_panel->eject());
    QCOMPARE(m_desk->text("pushButton_LED_TOGGLE"), QString("ON"));
    QCOMPARE(m_desk->rig.state().value("leds").toObject().value("bf1").toInt(), 0);
    QVERIFY(m_panel->insert(1));
    QCOMPARE(m_desk->text("pushButton_LED_TOGGLE"), QString("OFF"));
    QCOMPARE(m_desk->rig.state().value("leds").toObject().value("bf1").toInt(), 7);
}

void tst_slide::chosenType_isInsertedAtOnce()
{
    Desk::putSettings("[Calibration]\nZ ref 3ch=32333\n");
    QVERIFY(m_panel->insert(1));
    const int mark = m_desk->mark();
    const int moves = m_panel->moves();
    QByteArray printed;
    {
        const StandardOutput output;
        hand::choose(m_desk->window(), "comboBox_SLIDE", 2);
        printed = output.text();
    }
    QCOMPARE(m_desk->widget<QComboBox>("comboBox_SLIDE")->currentIndex(), 2);
    QVERIFY2(printed.contains("on_comboBox_SLIDE_currentIndexChanged index : 2\n"), printed);
    QCOMPARE(m_panel->enabled(), QString());
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(
        m_desk->linesSince(mark), QStringList({ "$A#LED BRT1 7 6", "$Z#STAGE ABS 32333", "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->enabled(), QString("Insert Eject Combo Prev Map"));
    QCOMPARE(m_panel->cells(), QString("rww"));
}

void tst_slide::sameTypeChosenAgain_doesNothingAndInsertRepeats()
{
    QVERIFY(m_panel->insert(3));
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    int mark = m_desk->mark();
    QVERIFY(hand::choose(m_desk->window(), "comboBox_SLIDE", 3));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    QCOMPARE(m_panel->field(), QString("1"));
    mark = m_desk->mark();
    QVERIFY(m_panel->move("pushButton_INSERT"));
    QCOMPARE(
        m_desk->linesSince(mark), QStringList({ "$A#LED BRT1 7 6", "$Z#STAGE ABS 32000", "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->field(), QString("0"));
}

void tst_slide::map_hasTheColumnsOfTheType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<int>("width");
    QTest::newRow("1-Channel") << 0 << "r" << 400;
    QTest::newRow("2-Channel") << 1 << "rw" << 200;
    QTest::newRow("3-Channel") << 2 << "rww" << 133;
    QTest::newRow("8-Channel") << 3 << "rwwwwwww" << 50;
    QTest::newRow("Reusable") << 4 << "r" << 200;
    QTest::newRow("Validation") << 5 << "r" << 200;
    QTest::newRow("Prisma Max") << 6 << "r" << 200;
}

void tst_slide::map_hasTheColumnsOfTheType()
{
    QFETCH(int, type);
    QFETCH(QString, cells);
    QVERIFY(m_panel->insert(type));
    QCOMPARE(m_panel->cells(), cells);
    const auto* map = m_desk->widget<QTableWidget>("tableWidget_SLIDE");
    QCOMPARE(map->rowCount(), 1);
    for (int i = 0; i < map->columnCount(); ++i) {
        QTEST(map->columnWidth(i), "width");
        QCOMPARE(map->item(0, i)->text(), QString::number(i + 1));
        QCOMPARE(map->item(0, i)->textAlignment(), int(Qt::AlignHCenter | Qt::AlignVCenter));
    }
    // The tray goes out: the columns stay and are white.
    QVERIFY(m_panel->eject());
    QCOMPARE(m_panel->cells(), cells.replace('r', 'w'));
    QCOMPARE(m_panel->field(), QString("X"));
}

void tst_slide::heightOfAnInsert_comesFromTheFile_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("height");
    const QByteArray all = "[Calibration]\nZ reference=32700\nZ ref 1ch=32100\nZ ref 2ch=32200\n"
                           "Z ref 3ch=32300\nZ ref 8ch=32800\nZ ref slope=-7.853\nReusable offset=5000\n"
                           "Validation offset=1000\nPrisma offset=50\n";
    // At the first channel the slope counts for nothing.
    QTest::newRow("1-Channel") << 0 << all << "32100";
    QTest::newRow("2-Channel") << 1 << all << "32200";
    QTest::newRow("3-Channel") << 2 << all << "32300";
    QTest::newRow("8-Channel") << 3 << all << "32800";
    QTest::newRow("Reusable") << 4 << all << "37200";
    QTest::newRow("Validation") << 5 << all << "31700";
    QTest::newRow("Prisma Max") << 6 << all << "32150";
    QTest::newRow("Reusable, defaults") << 4 << QByteArray() << "37676";
    QTest::newRow("Validation, defaults") << 5 << QByteArray() << "30720";
    QTest::newRow("Prisma Max, defaults") << 6 << QByteArray() << "32000";
    // What no axis can reach is sent as far as a number goes, and does not come round to the other end.
    QTest::newRow("above the range") << 4
                                     << QByteArray(
                                            "[Calibration]\nZ ref 2ch=2147483647\nReusable offset=10\n")
                                     << "2147483647";
    QTest::newRow("below the range") << 5
                                     << QByteArray(
                                            "[Calibration]\nZ reference=-99999999999\nValidation offset=10\n")
                                     << "-2147483648";
    QTest::newRow("no number") << 1 << QByteArray("[Calibration]\nZ ref 2ch=abc\n") << "0";
    QTest::newRow("empty value") << 1 << QByteArray("[Calibration]\nZ ref 2ch=\n") << "32000";
    QTest::newRow("slope no number") << 1 << QByteArray("[Calibration]\nZ ref slope=steep\n") << "32000";
}

void tst_slide::heightOfAnInsert_comesFromTheFile()
{
    QFETCH(int, type);
    QFETCH(QByteArray, file);
    QFETCH(QString, height);
    QVERIFY(m_panel->insert(type));
    if (!file.isEmpty())
        Desk::putSettings(file);
    const int mark = m_desk->mark();
    QVERIFY(m_panel->move("pushButton_INSERT"));
    QCOMPARE(m_desk->linesSince(mark).value(1), "$Z#STAGE ABS " + height);
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), height);
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), height);
    QCOMPARE(Desk::settings(), file);
}

void tst_slide::eject_locksThePanelUntilItsReply()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE EJECT", 1, 100));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_EJECT"));
    QCOMPARE(m_panel->enabled(), QString());
    QCOMPARE(m_desk->text("pushButton_EJECT"), QString("~~~"));
    QCOMPARE(m_desk->style("pushButton_EJECT"), idleStyle());
    QCOMPARE(m_desk->style("pushButton_INSERT"), idleStyle());
    QVERIFY(patience::waitFor([this] { return m_desk->text("pushButton_EJECT") == "Eject"; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE EJECT" }));
    QCOMPARE(m_panel->enabled(), enabledWithoutSlide());
    QCOMPARE(m_desk->style("pushButton_EJECT"), activeStyle());
    QCOMPARE(m_desk->style("pushButton_INSERT"), idleStyle());
    QCOMPARE(m_panel->field(), QString("X"));
    QCOMPARE(m_panel->cells(), QString("ww"));
}

void tst_slide::ejectOnGfp_switchesTheGfpLedOff()
{
    QVERIFY(m_panel->insert(1));
    m_desk->window().on_pushButton_ILLUMINATION_GFP_clicked();
    const int mark = m_desk->mark();
    QVERIFY(m_panel->eject());
    QVERIFY(m_panel->insert(1));
    QCOMPARE(m_desk->linesSince(mark),
        QStringList(
            { "$A#LED OFF2", "$X#STAGE EJECT", "$A#LED BRT2 300", "$Z#STAGE ABS 32000", "$X#STAGE ABS 0" }));
    m_desk->window().on_pushButton_ILLUMINATION_BF_clicked();
}

WORKFLOW_MAIN(tst_slide)
#include "tst_slide.moc"
