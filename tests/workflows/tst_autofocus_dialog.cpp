#include "app/autofocus_steps.h"
#include "tests/workflows/Desk.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QTemporaryDir>

#include <vector>

/// The question for the debug folder at the start of a focus run; and the states in which nothing runs, 5 and
/// 8 among them, which no part of the search uses.
class tst_autofocus_dialog : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_desk.reset(); }

    void question_hasNoParentNoCaptionAndStartsWhereTheProgramStands();
    void states_haveTheirFixedNumbers();
    void moveInAStateOfNoRun_isShownAndAdvancesNothing_data();
    void moveInAStateOfNoRun_isShownAndAdvancesNothing();
    void frameOutsideOfAScan_isMeasuredAndAdvancesNothing_data();
    void frameOutsideOfAScan_isMeasuredAndAdvancesNothing();

private:
    std::unique_ptr<Desk> m_desk;
};

namespace {

/// The state belongs to the search alone, which never puts most of these numbers there: the test reaches for
/// it past the access rules, as an explicit instantiation may.
template <int MainWindow::*member> struct Reach {
    friend int& stateOf(MainWindow& window) { return window.*member; }
};
template struct Reach<&MainWindow::m_autofocusState>;
int& stateOf(MainWindow& window);

} // namespace

void tst_autofocus_dialog::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
}

void tst_autofocus_dialog::question_hasNoParentNoCaptionAndStartsWhereTheProgramStands()
{
    struct {
        bool isFileDialog = false;
        bool hasParent = true;
        QString title;
        QString folder;
        bool directoriesAlone = false;
        QString button;
    } seen;
    QTemporaryDir folder;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    m_desk->boxes.handleNext([&](QDialog& dialog) {
        if (auto* files = qobject_cast<QFileDialog*>(&dialog)) {
            seen = { true, files->parentWidget() != nullptr, files->windowTitle(), files->directory().path(),
                files->testOption(QFileDialog::ShowDirsOnly), m_desk->text("pushButton_AUTOFOCUS") };
        }
        dialog.reject();
    });
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    const int logMark = m_desk->log.mark();
    const bool clicked = hand::click(m_desk->window(), "pushButton_AUTOFOCUS");
    QDir::setCurrent(before);
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(false);
    QVERIFY(clicked);
    QVERIFY(seen.isFileDialog);
    QVERIFY(!seen.hasParent);
    QCOMPARE(seen.folder, QDir(folder.path()).path());
    QVERIFY(seen.directoriesAlone);
    QCOMPARE(seen.button, QString("[AF]")); // as by the form: the run has not begun
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QVERIFY(!m_desk->log.contains("m_strAutofocusing:", logMark));

    // The toolkit puts its own words where a question has no caption.
    QFileDialog nameless(nullptr, QString(), QString());
    nameless.setFileMode(QFileDialog::Directory);
    nameless.show();
    const QString ownWords = nameless.windowTitle();
    nameless.hide();
    QCOMPARE(seen.title, ownWords);
}

void tst_autofocus_dialog::states_haveTheirFixedNumbers()
{
    QCOMPARE(std::vector<int>({ AF_IDLE, AF_FINAL_APPROACH, AF_FINAL_OFFSET, AF_STEP1_TO_START, AF_STEP1_SCAN,
                 AF_STEP2_TO_START, AF_STEP2_SCAN, AF_STEP3_TO_START, AF_STEP3_SCAN }),
        std::vector<int>({ 0, 1, 2, 3, 4, 6, 7, 9, 10 }));
}

void tst_autofocus_dialog::moveInAStateOfNoRun_isShownAndAdvancesNothing_data()
{
    QTest::addColumn<int>("state");
    for (const int state : { 0, 5, 8, 11, 1000 })
        QTest::addRow("%d", state) << state;
}

void tst_autofocus_dialog::moveInAStateOfNoRun_isShownAndAdvancesNothing()
{
    QFETCH(int, state);
    const int mark = m_desk->mark();
    const int logMark = m_desk->log.mark();
    m_desk->widget("pushButton_MVN_Z")->setEnabled(false);
    m_desk->widget("pushButton_MVP_Z")->setEnabled(false);
    int grabbed = 0;
    const auto counting = connect(
        &m_desk->window(), &MainWindow::sig_ImageGrabbed, this, [&grabbed](uchar*, int, int) { ++grabbed; });
    stateOf(m_desk->window()) = state;
    m_desk->window().slot_parsing_protocol_Controller("$OK#Z#STAGE RUN#31234\r\n");
    // Longer than a frame of a scan waits: one exposure of 35 ms and 50 ms.
    QTest::qWait(200);
    disconnect(counting);
    const int stateAfter = stateOf(m_desk->window());
    stateOf(m_desk->window()) = AF_IDLE;
    QCOMPARE(stateAfter, state);
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("31234"));
    QVERIFY(m_desk->isEnabled("pushButton_MVN_Z"));
    QVERIFY(m_desk->isEnabled("pushButton_MVP_Z"));
    QCOMPARE(grabbed, 0);
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    QCOMPARE(m_desk->log.lines(logMark).filter("AutoFocusing"), QStringList());
}

void tst_autofocus_dialog::frameOutsideOfAScan_isMeasuredAndAdvancesNothing_data()
{
    QTest::addColumn<int>("state");
    for (const int state : { 0, 1, 2, 3, 5, 6, 8, 9, 11 })
        QTest::addRow("%d", state) << state;
}

void tst_autofocus_dialog::frameOutsideOfAScan_isMeasuredAndAdvancesNothing()
{
    QFETCH(int, state);
    std::vector<uchar> frame(1228800, 77); // 1280 by 960
    const int mark = m_desk->mark();
    const int logMark = m_desk->log.mark();
    stateOf(m_desk->window()) = state;
    // More frames than any scan has: none of them is its last one.
    for (int i = 0; i < 16; ++i)
        m_desk->window().slot_ImageGrabbed_AutoFocusing(frame.data(), 1280, 960);
    const int stateAfter = stateOf(m_desk->window());
    stateOf(m_desk->window()) = AF_IDLE;
    QCOMPARE(stateAfter, state);
    const QStringList logged = m_desk->log.lines(logMark);
    QCOMPARE(logged.size(), 16);
    QCOMPARE(logged.filter("void MainWindow::slot_ImageGrabbed_AutoFocusing(uchar*, int, int) ").size(), 16);
    QCOMPARE(logged.filter(" val: 0").size(), 16); // a frame of one grey value
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

WORKFLOW_MAIN(tst_autofocus_dialog)
#include "tst_autofocus_dialog.moc"
