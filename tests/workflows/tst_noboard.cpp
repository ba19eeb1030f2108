#include "tests/workflows/Desk.h"

/// No board on any port.
class tst_noboard : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_desk.reset(); }

    void twoBoxes_comeOneAfterTheOther();
    void exitButton_appearsOnlyAfterBothBoxes();
    void secondAttempt_behavesAsTheFirst();
    void exit_closesWithoutAnyCommand();

private:
    const QStringList m_texts { "COM Port [Controller] not find !!!", "Fail CONTROLLER connect !" };
    std::unique_ptr<Desk> m_desk;
};

void tst_noboard::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    m_desk->open();
}

void tst_noboard::twoBoxes_comeOneAfterTheOther()
{
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), m_texts);
    QCOMPARE(m_desk->boxes.boxes()[0].title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes()[0].icon, QMessageBox::Critical);
    QCOMPARE(m_desk->boxes.boxes()[1].title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes()[1].icon, QMessageBox::Information);
    QCOMPARE(m_desk->style("pushButton_CONNECT"),
        QString("font: 11pt 'Sans Serif'; color : black; background-color : none"));
    QCOMPARE(m_desk->text("lineEdit_COM_PORT_CONTROLLER"), QString("Not found"));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    QVERIFY(m_desk->log.contains("[Error] :  COM Port [Controller] not find !!!"));
    QVERIFY(m_desk->log.contains(
        "void MainWindow::on_pushButton_CONNECT_clicked() m_bConnected_Controller: false"));
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
    QCOMPARE(m_desk->window().cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(Desk::settings(), QByteArray());
}

void tst_noboard::exitButton_appearsOnlyAfterBothBoxes()
{
    QVector<bool> shown;
    QStringList texts;
    m_desk->boxes.lookAtEach([&](QDialog&) {
        shown << m_desk->isShown("pushButton_EXIT");
        texts << m_desk->text("pushButton_CONNECT");
    });
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(shown, QVector<bool>({ false, false }));
    QCOMPARE(texts, QStringList({ "~~~", "~~~" }));
}

void tst_noboard::secondAttempt_behavesAsTheFirst()
{
    QVERIFY(m_desk->waitForConnection());
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts(), m_texts + m_texts);
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
}

void tst_noboard::exit_closesWithoutAnyCommand()
{
    QVERIFY(m_desk->waitForConnection());
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
    QVERIFY(m_desk->log.contains("!!!!!!!!!!!!!!!!!!!!!!RESTART"));
}

WORKFLOW_MAIN(tst_noboard)
#include "tst_noboard.moc"
