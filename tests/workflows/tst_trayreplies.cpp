#include "tests/workflows/PageTest.h"

#include <QPushButton>
#include <QTableWidget>

/// What the replies to moves of the tray do to its buttons, by what is under way. The replies are given to
/// the parser as the link delivers them; those of the board are lost.
class tst_trayreplies : public PageTest {
    Q_OBJECT

public:
    tst_trayreplies()
        : PageTest("TAB_STAGE")
    {
    }

private slots:
    void ejectReply_emptiesTheMap();
    void xAbsReplyWithoutInsert_leavesTheTextsAndEndsTheMove();
    void xAbsReplyDuringAnEject_leavesTheTextsAndEndsTheMove();
    void xAbsReplyDuringAnInsert_restoresTheButtonOnce();

private:
    void reply(const QString& text) { m_desk->window().slot_parsing_protocol_Controller(text); }
};

void tst_trayreplies::ejectReply_emptiesTheMap()
{
    // With a slide in, so that all of it has to change.
    QVERIFY(click("pushButton_INSERT"));
    QVERIFY(becomesEnabled("pushButton_INSERT"));
    const auto* map = m_desk->widget<QTableWidget>("tableWidget_SLIDE");
    QCOMPARE(map->item(0, 0)->background().color(), QColor(Qt::red));
    QVERIFY(map->isEnabled() && m_desk->isEnabled("comboBox_SLIDE"));
    QCOMPARE(m_desk->text("lineEdit_FIELD_CURRENT"), QString("0"));
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE EJECT"));
    QVERIFY(click("pushButton_EJECT"));
    QCOMPARE(m_desk->text("pushButton_EJECT"), QString("~~~"));
    for (const char* button : { "pushButton_INSERT", "pushButton_EJECT" })
        QVERIFY2(!m_desk->isEnabled(button) && !m_desk->style(button).contains("rgb(0, 170, 255)"), button);

    reply("$OK#X#STAGE EJECT\r\n");
    QCOMPARE(m_desk->text("pushButton_EJECT"), QString("Eject"));
    QVERIFY(m_desk->isEnabled("pushButton_EJECT"));
    QCOMPARE(m_desk->style("pushButton_EJECT"),
        QString("font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)"));
    QVERIFY(m_desk->isEnabled("pushButton_INSERT"));
    QVERIFY(!map->isEnabled());
    QVERIFY(!m_desk->isEnabled("comboBox_SLIDE"));
    QCOMPARE(m_desk->text("lineEdit_FIELD_CURRENT"), QString("X"));
    QCOMPARE(map->columnCount(), 2);
    for (int column = 0; column < 2; ++column)
        QCOMPARE(map->item(0, column)->background().color(), QColor(Qt::white));
}

void tst_trayreplies::xAbsReplyWithoutInsert_leavesTheTextsAndEndsTheMove()
{
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    auto* insert = m_desk->window().findChild<QPushButton*>("pushButton_INSERT");
    auto* eject = m_desk->window().findChild<QPushButton*>("pushButton_EJECT");
    insert->setText("text");
    eject->setText("other");
    insert->setEnabled(false);
    eject->setEnabled(false);
    reply("$OK#X#STAGE ABS 500\r\n");
    QVERIFY(insert->isEnabled() && eject->isEnabled());
    QCOMPARE(insert->text(), QString("text"));
    QCOMPARE(eject->text(), QString("other"));
    QCOMPARE(moved.count(), 1);
}

void tst_trayreplies::xAbsReplyDuringAnEject_leavesTheTextsAndEndsTheMove()
{
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE EJECT"));
    QVERIFY(click("pushButton_EJECT"));
    auto* insert = m_desk->window().findChild<QPushButton*>("pushButton_INSERT");
    insert->setText("text");
    QVERIFY(!insert->isEnabled());
    QSignalSpy moved(&m_desk->window(), &MainWindow::sig_finish_X_Stage_Move);
    reply("$OK#X#STAGE ABS 500\r\n");
    QCOMPARE(moved.count(), 1);
    QVERIFY(insert->isEnabled() && m_desk->isEnabled("pushButton_EJECT"));
    QCOMPARE(insert->text(), QString("text"));
    QCOMPARE(m_desk->text("pushButton_EJECT"), QString("~~~"));
}

void tst_trayreplies::xAbsReplyDuringAnInsert_restoresTheButtonOnce()
{
    QVERIFY(m_desk->rig.fault("lose", "$X#STAGE ABS"));
    QVERIFY(click("pushButton_INSERT"));
    auto* insert = m_desk->window().findChild<QPushButton*>("pushButton_INSERT");
    auto* map = m_desk->window().findChild<QWidget*>("tableWidget_SLIDE");
    QVERIFY(!map->isEnabled());
    reply("$OK#X#STAGE ABS 0\r\n");
    QCOMPARE(insert->text(), QString("Insert"));
    QCOMPARE(insert->styleSheet(),
        QString("font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)"));
    QVERIFY(insert->isEnabled() && m_desk->isEnabled("pushButton_EJECT") && map->isEnabled());
    // The insert is over: a further reply is one of any other move.
    insert->setText("text");
    reply("$OK#X#STAGE ABS 0\r\n");
    QCOMPARE(insert->text(), QString("text"));
}

WORKFLOW_MAIN(tst_trayreplies)
#include "tst_trayreplies.moc"
