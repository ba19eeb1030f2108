#include "tests/workflows/BoardLog.h"
#include "tests/workflows/FocusTest.h"

#include <QCheckBox>
#include <QSpinBox>
#include <QTemporaryDir>

#include <algorithm>
#include <cstring>
#include <vector>

/// The frames of the focus search: when they are taken, who gets them, where they stay, and what of a run
/// outlives it.
class tst_autofocus_frames : public FocusTest {
    Q_OBJECT

private slots:
    void everyFrame_waitsForTheExposureOfTheBoxAnd50Ms();
    void everyFrame_isLoggedWithCountPositionAndValue();
    void coarseRun_logsTheBeginningOfBothSteps();
    void positionOnShow_isTheTargetBeforeTheStageIsThere();
    void afterARun_framesAreNotMeasured();
    void afterAnEarlyEnd_framesAreStillMeasured();
    void frameFromElsewhere_isCopiedIntoTheBuffer();
    void grabWithAFlag_tellsTheFrameBeforeItReturns();
    void buttonAfterASilentRun_showsItsBoxAgain();
    void nextStart_forgetsTheDebugFolder();

private:
    int measuredSince(int logMark) const { return m_desk->log.lines(logMark).filter(" val: ").size(); }
};

void tst_autofocus_frames::everyFrame_waitsForTheExposureOfTheBoxAnd50Ms()
{
    // What the box shows counts, and not what the camera was given.
    m_desk->widget<QSpinBox>("spinBox_EXPOSURE")->setValue(300);
    const QString run = "$Z#STAGE RUN";
    const int before = board_log::pauses("$OK#Z#STAGE RUN", run).size();
    QVERIFY(runFine());
    const QVector<int> pauses = board_log::pauses("$OK#Z#STAGE RUN", run).mid(before);
    QCOMPARE(pauses.size(), 6); // between the seven frames
    const int shortest = *std::min_element(pauses.begin(), pauses.end());
    QVERIFY2(shortest >= 300 + 50 - 1, qPrintable(QString::number(shortest)));
    QVERIFY2(shortest < 300 + 250, qPrintable(QString::number(shortest))); // a still picture's settling time
}

void tst_autofocus_frames::everyFrame_isLoggedWithCountPositionAndValue()
{
    QVERIFY(runFine());
    const QStringList frames = m_desk->log.lines().filter(" val: ");
    QCOMPARE(frames.size(), 7);
    for (int i = 0; i < frames.size(); ++i) {
        const QString expected
            = QString("void MainWindow::slot_ImageGrabbed_AutoFocusing\\(uchar\\*, int, int\\) "
                      "%1 pos: %2 val: \\d+(\\.\\d+)?")
                  .arg(i + 1)
                  .arg(32345 - 115 * i);
        QVERIFY2(
            QRegularExpression(QRegularExpression::anchoredPattern(expected)).match(frames[i]).hasMatch(),
            qPrintable(frames[i]));
    }
}

void tst_autofocus_frames::coarseRun_logsTheBeginningOfBothSteps()
{
    QVERIFY(run());
    QCOMPARE(m_desk->log.lines().filter("beginAutoFocusing_Step"),
        (QStringList {
            "void MainWindow::beginAutoFocusing_Step1()", "void MainWindow::beginAutoFocusing_Step2()" }));
}

void tst_autofocus_frames::positionOnShow_isTheTargetBeforeTheStageIsThere()
{
    auto* const shown = m_desk->widget<QLineEdit>("lineEdit_POSITION_Z");
    shown->clear();
    QStringList texts;
    connect(shown, &QLineEdit::textChanged, this, [&texts](const QString& text) { texts << text; });
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    // The move to the start has been sent, and its answer not been read.
    QCOMPARE(texts, (QStringList { "32000", "32460" }));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    const int best = m_desk->rig.state().value("z").toInt() + 115;
    for (int frame = 0; frame < 7; ++frame)
        QCOMPARE(texts.value(2 + frame), QString::number(32345 - 115 * frame));
    // Back above the scan, to the best position, and a fine step below it.
    QCOMPARE(texts.mid(9), (QStringList { "32460", QString::number(best), QString::number(best - 115) }));
}

void tst_autofocus_frames::afterARun_framesAreNotMeasured()
{
    QVERIFY(runFine());
    const int logMark = m_desk->log.mark();
    m_desk->window().slot_request_camera_grab();
    QCOMPARE(measuredSince(logMark), 0);
}

void tst_autofocus_frames::afterAnEarlyEnd_framesAreStillMeasured()
{
    // The scan's step size meets an empty answer: the run ends without the move that ends the measuring.
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE STEP 115"));
    QVERIFY(runFine());
    const int mark = m_desk->mark();
    const int logMark = m_desk->log.mark();
    m_desk->window().slot_request_camera_grab();
    QCOMPARE(measuredSince(logMark), 1);
    // Out of a scan nothing more comes of it.
    QCOMPARE(m_desk->linesSince(mark), QStringList());
    // The next run measures each of its frames once all the same, and ends the measuring.
    const int nextRun = m_desk->log.mark();
    QVERIFY(runFine());
    const QStringList measured = m_desk->log.lines(nextRun).filter(" val: ");
    QCOMPARE(measured.size(), 7);
    for (int frame = 0; frame < 7; ++frame)
        QVERIFY2(measured[frame].contains(QString("pos: %1 ").arg(32345 - 115 * frame)),
            qPrintable(measured[frame]));
    const int afterwards = m_desk->log.mark();
    m_desk->window().slot_request_camera_grab();
    QCOMPARE(measuredSince(afterwards), 0);
}

void tst_autofocus_frames::frameFromElsewhere_isCopiedIntoTheBuffer()
{
    const uchar* const buffer = m_desk->window().basler_camera_grab();
    std::vector<uchar> frame(std::size_t(1280) * 960, 7);
    m_desk->window().slot_ImageGrabbed_AutoFocusing(frame.data(), 1280, 960);
    QVERIFY(std::memcmp(buffer, frame.data(), frame.size()) == 0);
    // A smaller one fills as much as it has.
    std::vector<uchar> small(std::size_t(640) * 480, 9);
    m_desk->window().slot_ImageGrabbed_AutoFocusing(small.data(), 640, 480);
    std::copy(small.begin(), small.end(), frame.begin());
    QVERIFY(std::memcmp(buffer, frame.data(), frame.size()) == 0);
}

void tst_autofocus_frames::grabWithAFlag_tellsTheFrameBeforeItReturns()
{
    struct {
        int count = 0;
        uchar* pixels = nullptr;
        QSize size;
    } told;
    connect(&m_desk->window(), &MainWindow::sig_ImageGrabbed, this,
        [&told](uchar* pixels, int width, int height) {
            told = { told.count + 1, pixels, QSize(width, height) };
        });
    uchar* const buffer = m_desk->window().basler_camera_grab();
    QVERIFY(buffer != nullptr);
    QCOMPARE(told.count, 0);
    QCOMPARE(m_desk->window().basler_camera_grab(true), buffer);
    QCOMPARE(told.count, 1);
    QCOMPARE(told.pixels, buffer);
    QCOMPARE(told.size, QSize(1280, 960));
    QCOMPARE(m_desk->window().basler_camera_grab(false), buffer); // the flag has no effect
    QCOMPARE(told.count, 2);
    m_desk->window().slot_request_camera_grab();
    QCOMPARE(told.count, 3);
}

void tst_autofocus_frames::buttonAfterASilentRun_showsItsBoxAgain()
{
    QVERIFY(m_desk->window().focusSilently(false));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QVERIFY(run());
    QCOMPARE(m_desk->boxes.texts(), QStringList { "finish auto focusing !" });
}

void tst_autofocus_frames::nextStart_forgetsTheDebugFolder()
{
    QTemporaryDir folder;
    watchInto(folder.path());
    QVERIFY(runFine());
    const QDir output(folder.filePath("step2"));
    QCOMPARE(output.entryList(QDir::Files).size(), 7 + 1);
    QVERIFY(QDir(output).removeRecursively());
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(false);
    QVERIFY(runFine());
    QVERIFY(!output.exists());
}

WORKFLOW_MAIN(tst_autofocus_frames)
#include "tst_autofocus_frames.moc"
