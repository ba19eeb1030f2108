#include "link/Controller.h"
#include "tests/workflows/DuringSearch.h"

/// The search for the board: what the window allows while it lasts, at the start and again, and that it ends.
class tst_search : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whileSearching_buttonIsBusyAndExitHidden();
    void secondPress_runsTheWholeSequenceAgain();
    void whileSearchingAgain_panelsAreOutOfReach();
    void pressDuringTheSequence_doesNothing();
    void failedSecondConnection_closesTheTabsAgain();
    void flagOfTheSearch_isClearedBeforeAnybodyHearsOfItsEnd_data();
    void flagOfTheSearch_isClearedBeforeAnybodyHearsOfItsEnd();

private:
    std::unique_ptr<Desk> m_desk;
};

void tst_search::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_search::cleanup()
{
    m_desk.reset();
}

void tst_search::whileSearching_buttonIsBusyAndExitHidden()
{
    struct {
        QString style;
        int cursor = -1;
        bool connectEnabled = false;
        bool exitShown = true;
        bool tabsEnabled = true;
    } seen;
    m_desk->open();
    QVERIFY(!m_desk->isShown("pushButton_EXIT"));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    DuringSearch look(*m_desk, [&] {
        seen.style = m_desk->style("pushButton_CONNECT");
        seen.cursor = m_desk->window().cursor().shape();
        seen.connectEnabled = m_desk->isEnabled("pushButton_CONNECT");
        seen.exitShown = m_desk->isShown("pushButton_EXIT");
        seen.tabsEnabled = m_desk->isEnabled("tabWidget_CONTROLLER");
    });
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(
        seen.style, QString("font: 11pt 'Sans Serif'; color : black; background-color : rgb(255, 170, 0)"));
    QCOMPARE(seen.cursor, int(Qt::WaitCursor));
    QVERIFY(seen.connectEnabled);
    QVERIFY(!seen.exitShown);
    QVERIFY(!seen.tabsEnabled);
}

void tst_search::secondPress_runsTheWholeSequenceAgain()
{
    QVERIFY(m_desk->connectUnit());
    const int mark = m_desk->rig.mark();
    const int logMark = m_desk->log.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(m_desk->log.contains("@ [Basler] CAMERA connected...", logMark));
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_search::whileSearchingAgain_panelsAreOutOfReach()
{
    // The port under trial may be one that never answers: a panel would wait for it for ever.
    QVERIFY(m_desk->connectUnit());
    bool tabsEnabled = true;
    DuringSearch look(*m_desk, [&] { tabsEnabled = m_desk->isEnabled("tabWidget_CONTROLLER"); });
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(!tabsEnabled);
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_search::pressDuringTheSequence_doesNothing()
{
    const int mark = m_desk->rig.mark();
    m_desk->open();
    int presses = 0;
    DuringSearch press(*m_desk, [&] {
        presses += hand::click(m_desk->window(), "pushButton_CONNECT");
        presses += hand::click(m_desk->window(), "pushButton_CONNECT");
    });
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(presses, 2);
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
}

void tst_search::failedSecondConnection_closesTheTabsAgain()
{
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE ORIGIN"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Fail CONTROLLER initialize !" }));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
    // The board is gone: searched for in vain.
    QVERIFY(m_desk->rig.fault("silent"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QCOMPARE(m_desk->boxes.texts().mid(1),
        QStringList({ "COM Port [Controller] not find !!!", "Fail CONTROLLER connect !" }));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_search::flagOfTheSearch_isClearedBeforeAnybodyHearsOfItsEnd_data()
{
    QTest::addColumn<bool>("found");
    QTest::newRow("found") << true;
    QTest::newRow("not found") << false;
}

void tst_search::flagOfTheSearch_isClearedBeforeAnybodyHearsOfItsEnd()
{
    QFETCH(bool, found);
    if (!found)
        QVERIFY(m_desk->rig.fault("silent"));
    m_desk->open();
    const auto* const link = m_desk->window().findChild<Controller*>();
    QVector<bool> during;
    QVector<bool> atTheEnd;
    connect(&m_desk->window(), &MainWindow::sig_finish_find_Controller, this,
        [&] { atTheEnd << link->m_bSearching; });
    m_desk->boxes.lookAtEach([&](QDialog&) { atTheEnd << link->m_bSearching; });
    {
        DuringSearch look(*m_desk, [&] { during << link->m_bSearching; });
        QVERIFY(m_desk->waitForConnection());
    }
    QVERIFY(!link->m_bSearching);
    // And for a further search.
    DuringSearch look(*m_desk, [&] { during << link->m_bSearching; });
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(!link->m_bSearching);
    QCOMPARE(during, (QVector<bool> { true, true }));
    // A search in vain ends with two boxes behind the signal.
    QCOMPARE(atTheEnd, QVector<bool>(found ? 2 : 6, false));
    QCOMPARE(m_desk->isEnabled("tabWidget_CONTROLLER"), found);
}

WORKFLOW_MAIN(tst_search)
#include "tst_search.moc"
