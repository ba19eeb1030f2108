#include "tests/workflows/SlidePanel.h"
#include "tests/workflows/StandardOutput.h"

#include <QComboBox>
#include <QTableWidget>

/// Insert, channel change and eject: what goes to the board, what the panel looks like meanwhile, and what
/// becomes of replies that are late, lost or doubled.
class tst_slide : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void withoutSlide_onlyInsertAndEjectCanBePressed();
    void insert_locksThePanelUntilItsReply();
    void insert_bringsTheLightBack();
    void chosenType_isInsertedAtOnce();
    void sameTypeChosenAgain_doesNothingAndInsertRepeats();
    void map_hasTheColumnsOfTheType_data();
    void map_hasTheColumnsOfTheType();
    void heightOfAnInsert_comesFromTheFile_data();
    void heightOfAnInsert_comesFromTheFile();
    void heightOfAChannel_followsTheSlope_data();
    void heightOfAChannel_followsTheSlope();
    void doubleClick_startsTheChannelAtItsFirstField();
    void doubleClickOnTheFirstChannel_goesToTheHome();
    void doubleClickOnTheCurrentChannel_doesNothing();
    void doubleClickOnATypeOfOneChannel_doesNothing();
    void editedStartPosition_countsAtTheNextMove_data();
    void editedStartPosition_countsAtTheNextMove();
    void prismaMoves_areLogged();
    void eject_locksThePanelUntilItsReply();
    void ejectOnGfp_switchesTheGfpLedOff();
    void secondPressWhileTheStageMoves_sendsNothing();
    void secondPressOfARisingPrev_movesOnceMore();
    void lostReplyOfAnInsert_isMadeUpForByTheNextMove();
    void doubledReply_changesNothingMore();
    void numberThatIsNoType_leavesThePanelLocked();

private:
    bool click(const char* button) { return hand::click(m_desk->window(), button); }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<SlidePanel> m_panel;
};

namespace {

const QString kIdle = "font: 11pt 'Sans Serif'; color : black; background-color : none";
const QString kActive = "font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)";

const QString kAtHome = "Insert Eject Combo Next Map";
const QString kNoSlide = "Insert Eject";

} // namespace

void tst_slide::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    m_panel.reset(new SlidePanel(*m_desk));
}

void tst_slide::init()
{
    Desk::removeSettings();
}

void tst_slide::cleanup()
{
    m_desk->rig.clearFaults();
    // A test that ended with the panel locked leaves it open to the next one.
    if (!m_desk->isEnabled("pushButton_EJECT"))
        m_desk->rig.say("$OK#X#STAGE EJECT\r\n");
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("pushButton_EJECT"); }));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_slide::cleanupTestCase()
{
    m_panel.reset();
    m_desk.reset();
}

void tst_slide::withoutSlide_onlyInsertAndEjectCanBePressed()
{
    // As after the start: the constructor has drawn two white cells.
    QCOMPARE(m_panel->enabled(), kNoSlide);
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
    QCOMPARE(m_desk->style("pushButton_INSERT"), kIdle);
    QCOMPARE(m_desk->style("pushButton_EJECT"), kIdle);
    // The height is reached before the tray comes in.
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), QString("32000"));
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("32000"));
    QVERIFY(m_panel->waitForMoves(1));
    QCOMPARE(
        m_desk->linesSince(mark), QStringList({ "$A#LED BRT1 7 6", "$Z#STAGE ABS 32000", "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->enabled(), kAtHome);
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("Insert"));
    QCOMPARE(m_desk->style("pushButton_INSERT"), kActive);
    QCOMPARE(m_desk->style("pushButton_EJECT"), kIdle); // stays idle
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

void tst_slide::heightOfAChannel_followsTheSlope_data()
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

void tst_slide::heightOfAChannel_followsTheSlope()
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

void tst_slide::doubleClick_startsTheChannelAtItsFirstField()
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

void tst_slide::doubleClickOnTheFirstChannel_goesToTheHome()
{
    QVERIFY(m_panel->insert(3));
    QVERIFY(m_panel->changeChannel(6));
    const int mark = m_desk->mark();
    QVERIFY(m_panel->changeChannel(0));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$Z#STAGE ABS 32000", "$X#STAGE ABS 0" }));
    QCOMPARE(m_panel->field(), QString("0"));
    QCOMPARE(m_panel->cells(), QString("rwwwwwww"));
    QCOMPARE(m_panel->enabled(), kAtHome);
}

void tst_slide::doubleClickOnTheCurrentChannel_doesNothing()
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

void tst_slide::doubleClickOnATypeOfOneChannel_doesNothing()
{
    for (int type : { 0, 4, 5, 6 }) {
        QVERIFY(m_panel->insert(type));
        const int mark = m_desk->mark();
        QVERIFY(m_panel->doubleClick(0));
        QCOMPARE(m_desk->linesSince(mark), QStringList());
        QCOMPARE(m_panel->enabled(), kAtHome);
    }
}

void tst_slide::editedStartPosition_countsAtTheNextMove_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("first"); // of NEXT
    QTest::addColumn<QString>("second");
    QTest::newRow("1-Channel") << 0 << QByteArray("1 Channel=1000") << "1480"
                               << "1000";
    QTest::newRow("2-Channel") << 1 << QByteArray("2 Channel=1000") << "520"
                               << "1000";
    QTest::newRow("8-Channel") << 3 << QByteArray("8 Channel=1000") << "520"
                               << "1000";
    QTest::newRow("Reusable") << 4 << QByteArray("2 Channel=1000") << "520"
                              << "1000";
    QTest::newRow("Validation") << 5 << QByteArray("2 Channel=1000") << "520"
                                << "1000";
    QTest::newRow("Prisma Max") << 6 << QByteArray("Prisma=1000") << "520"
                                << "1000";
    QTest::newRow("no number") << 1 << QByteArray("2 Channel=abc") << "-480"
                               << "0";
    QTest::newRow("empty") << 1 << QByteArray("2 Channel=") << "30451"
                           << "30931";
}

void tst_slide::editedStartPosition_countsAtTheNextMove()
{
    QFETCH(int, type);
    QFETCH(QByteArray, value);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QVERIFY(m_panel->insert(type));
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    Desk::putSettings("[Start position]\n" + value + "\n");
    const int mark = m_desk->mark();
    QVERIFY(m_panel->move("pushButton_FIELD_NEXT"));
    QVERIFY(m_panel->move("pushButton_FIELD_PREV"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS " + first, "$X#STAGE ABS " + second }));
}

void tst_slide::prismaMoves_areLogged()
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

void tst_slide::eject_locksThePanelUntilItsReply()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE EJECT", 1, 100));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_EJECT"));
    QCOMPARE(m_panel->enabled(), QString());
    QCOMPARE(m_desk->text("pushButton_EJECT"), QString("~~~"));
    QCOMPARE(m_desk->style("pushButton_EJECT"), kIdle);
    QCOMPARE(m_desk->style("pushButton_INSERT"), kIdle);
    QVERIFY(patience::waitFor([this] { return m_desk->text("pushButton_EJECT") == "Eject"; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE EJECT" }));
    QCOMPARE(m_panel->enabled(), kNoSlide);
    QCOMPARE(m_desk->style("pushButton_EJECT"), kActive);
    QCOMPARE(m_desk->style("pushButton_INSERT"), kIdle);
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

void tst_slide::secondPressWhileTheStageMoves_sendsNothing()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("late", "$X#STAGE", 1, 100));
    const int mark = m_desk->mark();
    const int moves = m_panel->moves();
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(m_desk->widget("pushButton_FIELD_NEXT"), Qt::LeftButton);
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 30931" }));
    QCOMPARE(m_panel->field(), QString("1"));
}

void tst_slide::secondPressOfARisingPrev_movesOnceMore()
{
    // The button turned off by this press is the other one, so the second press counts.
    QVERIFY(m_panel->insert(2));
    QVERIFY(m_panel->move("pushButton_FIELD_PREV"));
    const int mark = m_desk->mark();
    const int moves = m_panel->moves();
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(m_desk->widget("pushButton_FIELD_PREV"), Qt::LeftButton);
    QVERIFY(m_panel->waitForMoves(moves + 2));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE ABS 30985", "$X#STAGE ABS 31465" }));
    QCOMPARE(m_panel->field(), QString("3"));
}

void tst_slide::lostReplyOfAnInsert_isMadeUpForByTheNextMove()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE ABS 0"));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_INSERT"));
    QCOMPARE(m_desk->linesSince(mark).last(), QString("$X#STAGE ABS 0"));
    QCOMPARE(m_panel->enabled(), QString());
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("~~~"));
    const int moves = m_panel->moves();
    m_desk->window().on_pushButton_START_X_REF_clicked(); // a button of another page
    QVERIFY(m_panel->waitForMoves(moves + 1));
    QCOMPARE(m_panel->enabled(), kAtHome);
    QCOMPARE(m_desk->text("pushButton_INSERT"), QString("Insert"));
    QCOMPARE(m_desk->style("pushButton_INSERT"), kActive);
}

void tst_slide::doubledReply_changesNothingMore()
{
    QVERIFY(m_panel->insert(1));
    QVERIFY(m_desk->rig.fault("double", "$X#STAGE", 2));
    int moves = m_panel->moves();
    QVERIFY(click("pushButton_FIELD_NEXT"));
    QVERIFY(m_panel->waitForMoves(moves + 2));
    QCOMPARE(m_panel->field(), QString("1"));
    QCOMPARE(m_panel->enabled(), kAtHome);
    QVERIFY(m_panel->eject());
    QCOMPARE(m_panel->enabled(), kNoSlide);
    QCOMPARE(m_panel->cells(), QString("ww"));
}

void tst_slide::numberThatIsNoType_leavesThePanelLocked()
{
    QVERIFY(m_panel->insert(1));
    int mark = m_desk->mark();
    m_desk->window().on_comboBox_SLIDE_currentIndexChanged(7);
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#LED BRT1 7 6" }));
    QCOMPARE(m_panel->enabled(), QString());
    mark = m_desk->mark();
    m_desk->window().on_pushButton_FIELD_NEXT_clicked();
    m_desk->window().on_pushButton_FIELD_PREV_clicked();
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    // The map of no type is not drawn, and the read-out is.
    m_desk->window().set_SLIDE_indicator(7, 0, 4);
    QCOMPARE(m_panel->cells(), QString("rw"));
    QCOMPARE(m_panel->field(), QString("5"));
}

WORKFLOW_MAIN(tst_slide)
#include "tst_slide.moc"
