#include "tests/workflows/Desk.h"

#include "link/Controller.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>

/// What replies of the board do to the window. The replies are given to the parser as the link delivers them.
class tst_protocol : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void beforeTheBoardIsFound_nothingIsShownOrParsed();
    void textBeforeTheFirstDollar_isShownAndNotParsed();
    void console_growsAtItsEndAlsoAfterAClick();
    void console_followsItsEnd();
    void positionReplies_areShown();
    void originReply_shows0Whatever();
    void absReply_showsTheRequestedPosition();
    void absReply_restoresBothButtons();
    void runReply_enablesBothStepButtons();
    void filterReply_setsItsBox_data();
    void filterReply_setsItsBox();
    void ledReply_changesNothingOnTheScreen();
    void twoRepliesInOneText_actInOrder();
    void recognisedThenUnknown_actsTwice();
    void repetition_takesTheDeviceOfTheUnknownFrame();
    void unknownFirstFrame_hasNoEffect();
    void negativeAnswer_isShownAndDropped();
    void versionReply_isStoredEachTime();
    void versionReplyBehindAnother_repeatsNothing();
    void recordOfNoDevice_isDropped_data();
    void recordOfNoDevice_isDropped();

private:
    void reply(const QString& text) { m_desk->window().slot_parsing_protocol_Controller(text); }
    QString console()
    {
        return m_desk->widget<QPlainTextEdit>("plainTextEdit_RECEIVED_CMD_CONTROLLER")->toPlainText();
    }

    std::unique_ptr<Desk> m_desk;
};

void tst_protocol::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_DEBUG"));
}

void tst_protocol::init()
{
    QVERIFY(hand::click(m_desk->window(), "pushButton_CLEAR_CMD_RECEIVED"));
}

void tst_protocol::cleanupTestCase()
{
    m_desk.reset();
}

void tst_protocol::beforeTheBoardIsFound_nothingIsShownOrParsed()
{
    auto* controller = m_desk->window().findChild<Controller*>();
    controller->m_bFound = false;
    m_desk->widget<QLineEdit>("lineEdit_POSITION_Z")->setText("7");
    reply("$OK#Z#STAGE POS#500\r\n");
    controller->m_bFound = true;
    QCOMPARE(console(), QString());
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("7"));
}

void tst_protocol::textBeforeTheFirstDollar_isShownAndNotParsed()
{
    reply("OK#Z#STAGE POS#1\r\n$OK#Z#STAGE POS#2\r\n");
    QCOMPARE(console(), QString("OK#Z#STAGE POS#1\n$OK#Z#STAGE POS#2\n"));
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("2"));
}

void tst_protocol::console_growsAtItsEndAlsoAfterAClick()
{
    reply("$first\r\n");
    QVERIFY(hand::clickAt(m_desk->window(), "plainTextEdit_RECEIVED_CMD_CONTROLLER", QPoint(2, 8)));
    reply("$second\r\n");
    QCOMPARE(console(), QString("$first\n$second\n"));
}

void tst_protocol::console_followsItsEnd()
{
    for (int i = 0; i < 100; ++i)
        reply("$line\r\n");
    const auto* console = m_desk->widget<QPlainTextEdit>("plainTextEdit_RECEIVED_CMD_CONTROLLER");
    QVERIFY(console->verticalScrollBar()->maximum() > 0);
    QVERIFY(console->viewport()->rect().contains(console->cursorRect()));
    QVERIFY(console->textCursor().atEnd());
}

void tst_protocol::positionReplies_areShown()
{
    reply("$OK#X#STAGE POS#12000\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_X"), QString("12000"));
    reply("$OK#X#STAGE RUN#12013\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_X"), QString("12013"));
    reply("$OK#Z#STAGE POS#-5\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("-5"));
    reply("$OK#Z#STAGE RUN#500\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("500"));
}

void tst_protocol::originReply_shows0Whatever()
{
    reply("$OK#Z#STAGE POS#500\r\n");
    reply("$OK#Z#STAGE ORIGIN#123\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("0"));
}

void tst_protocol::absReply_showsTheRequestedPosition()
{
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_ABS_Z", "31000"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_ABS_Z"));
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("pushButton_ABS_Z"); }));
    reply("$OK#Z#STAGE ABS 999\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("31000"));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_DEBUG"));
}

void tst_protocol::absReply_restoresBothButtons()
{
    auto* absolute = m_desk->window().findChild<QPushButton*>("pushButton_ABS_Z");
    auto* reference = m_desk->window().findChild<QPushButton*>("pushButton_REFERENCE_Z");
    for (QPushButton* button : { absolute, reference }) {
        button->setText("~~~");
        button->setEnabled(false);
    }
    reply("$OK#Z#STAGE ABS 5\r\n");
    QCOMPARE(absolute->text(), QString("[Z] ABS"));
    QCOMPARE(reference->text(), QString("[Z] Ref"));
    QVERIFY(absolute->isEnabled() && reference->isEnabled());
}

void tst_protocol::runReply_enablesBothStepButtons()
{
    for (const QString unit : { "X", "Z" }) {
        auto* down = m_desk->window().findChild<QPushButton*>("pushButton_MVN_" + unit);
        auto* up = m_desk->window().findChild<QPushButton*>("pushButton_MVP_" + unit);
        down->setEnabled(false);
        up->setEnabled(false);
        reply("$OK#" + unit + "#STAGE RUN#1\r\n");
        QVERIFY(down->isEnabled() && up->isEnabled());
    }
}

void tst_protocol::filterReply_setsItsBox_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("box");
    QTest::addColumn<int>("value");
    QTest::newRow("1") << "$OK#A#FILTER READ1#11\r\n"
                       << "spinBox_FILTER1_CORR" << 11;
    QTest::newRow("2") << "$OK#A#FILTER READ2#222\r\n"
                       << "spinBox_FILTER2_CORR" << 222;
    QTest::newRow("3") << "$OK#A#FILTER READ3#3333\r\n"
                       << "spinBox_FILTER3_CORR" << 3333;
}

void tst_protocol::filterReply_setsItsBox()
{
    QFETCH(QString, text);
    QFETCH(QString, box);
    reply("$OK#A#FILTER GO 2\r\n"); // no action of its own
    reply(text);
    QTEST(m_desk->window().findChild<QSpinBox*>(box)->value(), "value");
}

void tst_protocol::ledReply_changesNothingOnTheScreen()
{
    const QPixmap before = m_desk->window().findChild<QWidget*>("TAB_LIGHT")->grab();
    reply("$OK#A#LED BRT3 100\r\n");
    QCOMPARE(m_desk->window().findChild<QWidget*>("TAB_LIGHT")->grab().toImage(), before.toImage());
    QCOMPARE(console(), QString("$OK#A#LED BRT3 100\n"));
}

void tst_protocol::twoRepliesInOneText_actInOrder()
{
    reply("$OK#Z#STAGE POS#1\r\n$OK#X#STAGE POS#2\r\n$OK#Z#STAGE POS#3\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("3"));
    QCOMPARE(m_desk->text("lineEdit_POSITION_X"), QString("2"));
}

void tst_protocol::recognisedThenUnknown_actsTwice()
{
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    reply("$OK#X#STAGE ABS 500\r\n");
    QCOMPARE(moved.count(), 1);
    reply("$OK#X#STAGE ABS 500\r\n$OK#X#STAGE STEP 115\r\n");
    QCOMPARE(moved.count(), 3);
    // Each further unknown frame repeats once more.
    reply("$OK#X#STAGE ABS 500\r\n$noise\r\n$noise\r\n");
    QCOMPARE(moved.count(), 6);

    auto* down = m_desk->window().findChild<QPushButton*>("pushButton_MVN_Z");
    down->setEnabled(false);
    reply("$OK#Z#STAGE RUN#500\r\n$OK#Z#STAGE STEP 115\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("500"));
    QVERIFY(down->isEnabled());
}

void tst_protocol::repetition_takesTheDeviceOfTheUnknownFrame()
{
    // An X move by position, and behind it an echo of Z: the second action is that of a Z move by position.
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    auto* absolute = m_desk->window().findChild<QPushButton*>("pushButton_ABS_Z");
    absolute->setEnabled(false);
    reply("$OK#X#STAGE ABS 500\r\n$OK#Z#STAGE STEP 115\r\n");
    QCOMPARE(moved.count(), 1);
    QVERIFY(absolute->isEnabled());
}

void tst_protocol::unknownFirstFrame_hasNoEffect()
{
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    reply("$OK#X#STAGE STEP 13\r\n");
    reply("$OK#X#STAGE STEP 13\r\n$OK#X#STAGE ABS 500\r\n");
    QCOMPARE(moved.count(), 1);
}

void tst_protocol::negativeAnswer_isShownAndDropped()
{
    m_desk->window().findChild<QLineEdit*>("lineEdit_POSITION_Z")->setText("7");
    reply("$NG#Z#STAGE POS#500\r\n");
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("7"));
    QCOMPARE(console(), QString("$NG#Z#STAGE POS#500\n"));
}

void tst_protocol::versionReply_isStoredEachTime()
{
    for (int i = 0; i < 2; ++i) {
        Desk::removeSettings();
        reply("$OK#A#VER#9.9 beta\r\n");
        QCOMPARE(m_desk->text("lineEdit_FIRMWARE"), QString("9.9 beta"));
        QCOMPARE(Desk::settings(), QByteArray("[Software]\nVersion FW=9.9 beta\n"));
    }
}

void tst_protocol::versionReplyBehindAnother_repeatsNothing()
{
    // The version frame names the main unit, which has no action.
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    reply("$OK#X#STAGE ABS 500\r\n$OK#A#VER#1\r\n");
    QCOMPARE(moved.count(), 1);
}

void tst_protocol::recordOfNoDevice_isDropped_data()
{
    QTest::addColumn<int>("device");
    QTest::newRow("the main unit") << 0;
    QTest::newRow("above") << 4;
    QTest::newRow("below") << -1;
}

void tst_protocol::recordOfNoDevice_isDropped()
{
    QFETCH(int, device);
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    auto* absolute = m_desk->window().findChild<QPushButton*>("pushButton_ABS_Z");
    auto* box = m_desk->window().findChild<QSpinBox*>("spinBox_FILTER1_CORR");
    absolute->setText("text");
    box->setValue(7);
    for (const int function : { 0, 1, 2, 3, 4, 8, 9, 11 })
        m_desk->window().do_protocol_function_Controller({ device, function, 1, 1 });
    QCOMPARE(moved.count(), 0);
    QCOMPARE(absolute->text(), QString("text"));
    QCOMPARE(box->value(), 7);
    absolute->setText("[Z] ABS");
}

WORKFLOW_MAIN(tst_protocol)
#include "tst_protocol.moc"
