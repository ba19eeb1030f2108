#include "tests/workflows/FocusTest.h"

using namespace focus_lines;

/// The focus search, move by move.
class tst_autofocus : public FocusTest {
    Q_OBJECT

private slots:
    void coarseRun_makesTheseMoves();
    void fineRun_makesTheseMoves();
    void run_findsTheTrueFocusAndStops115BelowIt();
    void buttonIsBusyDuringTheRunAndShowsAfAfterwards();
    void finishSignal_comesOnceAndBeforeTheBox();
    void silentRun_showsNoBox();
    void everyRun_startsFromTheStoredReference();
    void stageAtTheStart_isSentAStepOf0Down();
    void referenceBeyondEveryAxis_isSearchedForAtTheUpperEnd();
    void framesWithoutFluorescence_areMeasuredByTheLaplacian();
    void equalSamples_firstOneWins();
};

void tst_autofocus::coarseRun_makesTheseMoves()
{
    const int mark = m_desk->rig.mark();
    QVERIFY(run());
    const int coarse = stored("[1]");
    const int best = stored("[2]");
    QVERIFY(coarse != 0 && best != 0);

    // The stage stands at the 2-channel reference when the run begins.
    QStringList expected { kPos, step(3680), direction("PLUS"), kRun };
    expected << direction("MINUS") << step(460) << repeated(kRun, 15);
    const int endOfCoarse = 32000 + 3680 - 15 * 460;
    const int startOfFine = coarse + 460;
    expected << kPos << step(std::abs(startOfFine - endOfCoarse))
             << direction(endOfCoarse < startOfFine ? "PLUS" : "MINUS") << kRun;
    expected << direction("MINUS") << step(115) << repeated(kRun, 7);
    expected << absolute(startOfFine) << kPos << step(startOfFine - best) << direction("MINUS") << kRun;
    expected << direction("MINUS") << step(115) << kRun;
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
}

void tst_autofocus::fineRun_makesTheseMoves()
{
    const int mark = m_desk->rig.mark();
    QVERIFY(runFine());
    const int best = stored("[2]");
    QStringList expected { kPos, step(460), direction("PLUS"), kRun };
    expected << direction("MINUS") << step(115) << repeated(kRun, 7);
    expected << absolute(32460) << kPos << step(32460 - best) << direction("MINUS") << kRun;
    expected << direction("MINUS") << step(115) << kRun;
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
    QVERIFY(!m_desk->log.contains("[1] m_AutofocusingRef:"));
}

void tst_autofocus::run_findsTheTrueFocusAndStops115BelowIt()
{
    QVERIFY(run());
    const int best = stored("[2]");
    const double trueFocus
        = m_desk->rig.request({ { "cmd", "bestFocus" }, { "x", 30931 } }).value("bf").toDouble();
    QVERIFY2(std::abs(best - trueFocus) <= 115.0, qPrintable(QString("%1 %2").arg(best).arg(trueFocus)));
    QCOMPARE(m_desk->rig.state().value("z").toInt(), best - 115);
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z").toInt(), best - 115);
}

void tst_autofocus::buttonIsBusyDuringTheRunAndShowsAfAfterwards()
{
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("[AF]"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_AUTOFOCUS"));
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("~~~"));
    QVERIFY(!m_desk->isEnabled("pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Info"));
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("AF"));
    QVERIFY(m_desk->isEnabled("pushButton_AUTOFOCUS"));
}

void tst_autofocus::finishSignal_comesOnceAndBeforeTheBox()
{
    QSignalSpy finished(&m_desk->window(), &MainWindow::sig_finish_Autofocusing);
    int finishedAtBox = -1;
    m_desk->boxes.lookAtEach([&](QDialog&) { finishedAtBox = finished.count(); });
    QVERIFY(run());
    QCOMPARE(finishedAtBox, 1);
    QCOMPARE(finished.count(), 1);
}

void tst_autofocus::silentRun_showsNoBox()
{
    // The run leaves the flag as it is: a second one, begun as calibrations do, is as silent.
    QSignalSpy finished(&m_desk->window(), &MainWindow::sig_finish_Autofocusing);
    m_desk->window().focusSilently(false);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("AF"));
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(patience::waitFor([&] { return finished.count() == 2; }, 60000));
    QCOMPARE(m_desk->boxes.boxes().size(), 0);
}

void tst_autofocus::everyRun_startsFromTheStoredReference()
{
    QVERIFY(run());
    const int mark = m_desk->rig.mark();
    QVERIFY(runFine());
    QVERIFY(m_desk->rig.sentSince(mark).contains(absolute(32460)));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("32000"));
}

void tst_autofocus::stageAtTheStart_isSentAStepOf0Down()
{
    QVERIFY(m_desk->rig.set("z", 32460));
    const int mark = m_desk->rig.mark();
    QVERIFY(runFine());
    QCOMPARE(m_desk->rig.sentSince(mark).mid(0, 4), QStringList({ kPos, step(0), direction("MINUS"), kRun }));
}

/// Of a damaged settings file. The start above it must not come round to the other end of the axis.
void tst_autofocus::referenceBeyondEveryAxis_isSearchedForAtTheUpperEnd()
{
    m_desk->widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText("2147483647");
    const int mark = m_desk->rig.mark();
    QVERIFY(run());
    QCOMPARE(m_desk->rig.sentSince(mark).mid(0, 4),
        QStringList({ kPos, step(2147483647 - 32000), direction("PLUS"), kRun }));
}

void tst_autofocus::framesWithoutFluorescence_areMeasuredByTheLaplacian()
{
    // The same frame, measured in both channels, gives the value of the channel's measure.
    std::vector<unsigned char> frame(std::size_t(1280) * 960);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = static_cast<unsigned char>((i * 7) % 251);
    alg_autoFocus measure;
    const auto loggedValue = [this, &frame] {
        const int logMark = m_desk->log.mark();
        m_desk->window().slot_ImageGrabbed_AutoFocusing(frame.data(), 1280, 960);
        return m_desk->log.lines(logMark).filter("val:").value(0).section("val: ", 1).toDouble();
    };
    const double laplacian = measure.get_focusValue(ALG_FOCUS_LAPLACIAN, frame.data(), 1280, 960);
    const double tenengrad = measure.get_focusValue(ALG_FOCUS_TENENGRAD, frame.data(), 1280, 960);
    QVERIFY(std::abs(loggedValue() - laplacian) < laplacian * 1e-5);
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_ILLUMINATION_GFP"));
    QVERIFY(std::abs(loggedValue() - tenengrad) < tenengrad * 1e-5);
    QVERIFY(hand::click(m_desk->window(), "pushButton_ILLUMINATION_RFP"));
    QVERIFY(std::abs(loggedValue() - tenengrad) < tenengrad * 1e-5);
}

void tst_autofocus::equalSamples_firstOneWins()
{
    // The camera gives no frame any more: the buffer, and so every value, stays as it is.
    QVERIFY(m_desk->rig.fault("unplug"));
    QVERIFY(runFine());
    // The first frame stands one step below the start, at the top of the scan.
    QCOMPARE(stored("[2]"), 32345);
}

WORKFLOW_MAIN(tst_autofocus)
#include "tst_autofocus.moc"
