#include "tests/workflows/PageTest.h"

#include <QPlainTextEdit>

/// The debug console: any line to the board, and all that comes back through the parser.
class tst_console : public PageTest {
    Q_OBJECT

public:
    tst_console()
        : PageTest("TAB_DEBUG")
    {
    }

protected slots:
    void init() override;

private slots:
    void send_passesTheLineAndKeepsTheText();
    void returnKey_sendsAsTheButtonDoes();
    void clear_emptiesTheReplies();
    void lines_goOutAsTyped_data();
    void lines_goOutAsTyped();
    void overLongLine_isSentAndIgnoredByTheBoard();
    void directReplies_doNotAppear();
    void unaskedAndDoubledReplies_areShown();
    void portOfTheBoard_isShown();

private:
    QString shown()
    {
        return m_desk->widget<QPlainTextEdit>("plainTextEdit_RECEIVED_CMD_CONTROLLER")->toPlainText();
    }
    bool type(const QString& text)
    {
        return hand::type(m_desk->window(), "lineEdit_SEND_CMD_CONTROLLER", text);
    }
};

void tst_console::init()
{
    PageTest::init();
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_DEBUG"));
    QVERIFY(m_desk->rig.set("x", 4321));
    QVERIFY(click("pushButton_CLEAR_CMD_RECEIVED"));
}

void tst_console::send_passesTheLineAndKeepsTheText()
{
    QVERIFY(type("$X#STAGE POS"));
    const int mark = m_desk->mark();
    for (int press = 1; press <= 2; ++press) {
        QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
        QVERIFY(
            patience::waitFor([&] { return shown() == QString("$OK#X#STAGE POS#4321\n").repeated(press); }));
        QCOMPARE(m_desk->text("lineEdit_SEND_CMD_CONTROLLER"), QString("$X#STAGE POS"));
    }
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE POS", "$X#STAGE POS" }));
    QCOMPARE(m_desk->text("lineEdit_POSITION_X"), QString("4321")); // the replies act as any other
}

void tst_console::returnKey_sendsAsTheButtonDoes()
{
    QVERIFY(type("$X#STAGE POS"));
    const int mark = m_desk->mark();
    QVERIFY(hand::press(m_desk->window(), "lineEdit_SEND_CMD_CONTROLLER", Qt::Key_Return));
    QVERIFY(patience::waitFor([this] { return shown() == "$OK#X#STAGE POS#4321\n"; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$X#STAGE POS" }));
    QCOMPARE(m_desk->text("lineEdit_SEND_CMD_CONTROLLER"), QString("$X#STAGE POS"));
}

void tst_console::clear_emptiesTheReplies()
{
    QVERIFY(type("$X#STAGE POS"));
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QVERIFY(patience::waitFor([this] { return !shown().isEmpty(); }));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_CLEAR_CMD_RECEIVED"));
    QCOMPARE(shown(), QString());
    QCOMPARE(m_desk->text("lineEdit_SEND_CMD_CONTROLLER"), QString("$X#STAGE POS"));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

void tst_console::lines_goOutAsTyped_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << "";
    QTest::newRow("blank") << " ";
    QTest::newRow("no command") << "hello";
    QTest::newRow("percent signs") << "%1 %s %n";
    QTest::newRow("long") << QString(200, 'a');
}

void tst_console::lines_goOutAsTyped()
{
    QFETCH(QString, line);
    QVERIFY(type(line));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ line }));
    // The board ignores it, and the line is as good as before.
    QVERIFY(type("$X#STAGE POS"));
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QVERIFY(patience::waitFor([this] { return shown() == "$OK#X#STAGE POS#4321\n"; }));
}

void tst_console::overLongLine_isSentAndIgnoredByTheBoard()
{
    QVERIFY(type(QString(5000, 'a')));
    const int ignored = m_desk->rig.state().value("ignoredLines").toInt();
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QVERIFY(
        patience::waitFor([&] { return m_desk->rig.state().value("ignoredLines").toInt() == ignored + 1; }));
    QVERIFY(type("$X#STAGE POS"));
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QVERIFY(patience::waitFor([this] { return shown() == "$OK#X#STAGE POS#4321\n"; }));
}

void tst_console::directReplies_doNotAppear()
{
    QVERIFY(m_desk->rig.set("z", 31234));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(click("pushButton_STOP_Z"));
    QVERIFY(patience::waitFor([this] { return m_desk->text("lineEdit_POSITION_Z") == "31234"; }));
    QCOMPARE(shown(), QString("$OK#Z#STAGE POS#31234\n"));
}

void tst_console::unaskedAndDoubledReplies_areShown()
{
    QVERIFY(m_desk->rig.say("$NG#Z#LIMIT\r\n"));
    QVERIFY(patience::waitFor([this] { return shown() == "$NG#Z#LIMIT\n"; }));
    QVERIFY(m_desk->rig.fault("double", "$X#STAGE POS"));
    QVERIFY(type("$X#STAGE POS"));
    QVERIFY(click("pushButton_SEND_CMD_CONTROLLER"));
    QVERIFY(patience::waitFor(
        [this] { return shown() == "$NG#Z#LIMIT\n$OK#X#STAGE POS#4321\n$OK#X#STAGE POS#4321\n"; }));
}

void tst_console::portOfTheBoard_isShown()
{
    QCOMPARE(m_desk->text("lineEdit_COM_PORT_CONTROLLER"), QString("ttyUSB0"));
}

WORKFLOW_MAIN(tst_console)
#include "tst_console.moc"
