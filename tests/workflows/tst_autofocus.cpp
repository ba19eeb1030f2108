#include "storage/ImReaderWriter.h"
#include "tests/workflows/Desk.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QTemporaryDir>

/// The focus search, move by move.
class tst_autofocus : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void coarseRun_makesTheseMoves();
    void fineRun_makesTheseMoves();
    void run_findsTheTrueFocusAndStops115BelowIt();
    void buttonIsBusyDuringTheRunAndShowsAfAfterwards();
    void finishSignal_comesOnceAndBeforeTheBox();
    void silentRun_showsNoBox();
    void everyRun_startsFromTheStoredReference();
    void stageAtTheStart_isSentAStepOf0Down();
    void referenceBeyondEveryAxis_isSearchedForAtTheUpperEnd();
    void staleReply_isThrownAwayAndTheCommandSentAgain();
    void emptyReplyAtTheBeginningOfAScan_goesToTheLastStep();
    void emptyReplyAtTheLastStep_isRepeated();
    void runAfterAnEarlyEnd_measuresEachFrameOnce();
    void framesWithoutFluorescence_areMeasuredByTheLaplacian();
    void equalSamples_firstOneWins();
    void debugFolder_holdsPicturesAndTables();
    void debugFolderUsedTwice_isWrittenOver();
    void cancelledDialog_runsWithoutDebugOutput();

private:
    QStringList scan(int count) const;
    bool run();
    int stored(const QString& label) const;

    std::unique_ptr<Desk> m_desk;
};

namespace {

const QString kPos = "$Z#STAGE POS";
const QString kRun = "$Z#STAGE RUN";

QString step(int size)
{
    return QString("$Z#STAGE STEP %1").arg(size);
}

QString direction(const char* name)
{
    return QString("$Z#STAGE DIR %1").arg(name);
}

QString absolute(int position)
{
    return QString("$Z#STAGE ABS %1").arg(position);
}

QStringList repeated(const QString& line, int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << line;
    return lines;
}

} // namespace

void tst_autofocus::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    // A field of cells under the objective.
    QVERIFY(m_desk->rig.set("x", 30931));
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
}

void tst_autofocus::cleanup()
{
    m_desk.reset();
}

/// Presses AF and waits for the run's box to have been answered.
bool tst_autofocus::run()
{
    const int before = m_desk->boxes.boxes().size();
    return hand::click(m_desk->window(), "pushButton_AUTOFOCUS")
        && m_desk->boxes.waitForBoxes(before + 1, 60000);
}

/// Position behind the last log line of a step.
int tst_autofocus::stored(const QString& label) const
{
    const QStringList lines = m_desk->log.lines().filter(label + " m_AutofocusingRef:");
    return lines.isEmpty() ? 0 : lines.last().section(' ', 3, 3).toInt();
}

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
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
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
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QVERIFY(m_desk->rig.sentSince(mark).contains(absolute(32460)));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("32000"));
}

void tst_autofocus::stageAtTheStart_isSentAStepOf0Down()
{
    QVERIFY(m_desk->rig.set("z", 32460));
    const int mark = m_desk->rig.mark();
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
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

void tst_autofocus::staleReply_isThrownAwayAndTheCommandSentAgain()
{
    // An echo where a position was asked for has three fields instead of four.
    QVERIFY(m_desk->rig.fault("noise", kPos, 1, "$OK#Z#STAGE STOP\r\n"));
    const int mark = m_desk->rig.mark();
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    const QStringList sent = m_desk->rig.sentSince(mark);
    QCOMPARE(sent.mid(0, 3), QStringList({ kPos, kPos, step(460) }));
}

void tst_autofocus::emptyReplyAtTheBeginningOfAScan_goesToTheLastStep()
{
    QVERIFY(m_desk->rig.fault("nul", step(115)));
    const int mark = m_desk->rig.mark();
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QStringList expected { kPos, step(460), direction("PLUS"), kRun, direction("MINUS"), step(115) };
    expected << direction("MINUS") << step(115) << kRun;
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
}

void tst_autofocus::emptyReplyAtTheLastStep_isRepeated()
{
    // Both of the scan's beginning and the first two of the last step.
    QVERIFY(m_desk->rig.fault("nul", direction("MINUS"), 3));
    const int mark = m_desk->rig.mark();
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QStringList expected { kPos, step(460), direction("PLUS"), kRun };
    expected << repeated(direction("MINUS"), 4) << step(115) << kRun;
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
}

void tst_autofocus::runAfterAnEarlyEnd_measuresEachFrameOnce()
{
    QVERIFY(m_desk->rig.fault("nul", step(115)));
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    const int logMark = m_desk->log.mark();
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QCOMPARE(m_desk->log.lines(logMark).filter("val:").size(), 7);
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
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    // The first frame stands one step below the start, at the top of the scan.
    QCOMPARE(stored("[2]"), 32345);
}

void tst_autofocus::debugFolder_holdsPicturesAndTables()
{
    QTemporaryDir folder;
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    m_desk->boxes.handleNext([&](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        if (files == nullptr)
            QFAIL("not a file dialog");
        QVERIFY(files->testOption(QFileDialog::ShowDirsOnly));
        files->setDirectory(folder.path());
        files->selectFile(folder.path());
        dialog.done(QDialog::Accepted);
    });
    QVERIFY(hand::click(m_desk->window(), "pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QVERIFY(m_desk->log.contains("m_strAutofocusing:"));

    const struct {
        const char* name;
        int frames;
        int first;
        int distance;
    } steps[] = { { "step1", 15, 32000 + 3220, 460 }, { "step2", 7, stored("[1]") + 345, 115 } };
    for (const auto& scan : steps) {
        const QDir output(folder.filePath(scan.name));
        const QStringList pictures = output.entryList({ "*.tif" }, QDir::Files, QDir::Name);
        QCOMPARE(pictures.size(), scan.frames);
        QFile table(output.filePath(QString(scan.name) + "_debug.csv"));
        QVERIFY(table.open(QIODevice::ReadOnly));
        const QStringList lines = QString(table.readAll()).split("\n");
        QCOMPARE(lines.size(), scan.frames + 1);
        QCOMPARE(lines[0], QString("index, focus position, focus value"));
        QCOMPARE(lines.filter(", Best focus").size(), 1);
        for (int i = 0; i < scan.frames; ++i) {
            const int position = scan.first - i * scan.distance;
            const QString value = lines[i + 1].split(", ")[2];
            QVERIFY(lines[i + 1].startsWith(QString("%1, %2, ").arg(i + 1).arg(position)));
            QCOMPARE(pictures[i],
                QString("%1_%2_z%3_f%4.tif")
                    .arg(scan.name)
                    .arg(i + 1, 2, 10, QChar('0'))
                    .arg(position)
                    .arg(value));
            // One frame of grey bytes, and the very one that was measured.
            std::string path = output.filePath(pictures[i]).toStdString();
            general::ImReaderWriter picture;
            QCOMPARE(picture.read(path), 1);
            auto* const pixels = static_cast<uchar*>(picture.data(8));
            QVERIFY(pixels != nullptr);
            const double again = alg_autoFocus().get_focusValue(ALG_FOCUS_LAPLACIAN, pixels, 1280, 960);
            QCOMPARE(QString("%1").arg(again), value);
        }
    }
}

void tst_autofocus::debugFolderUsedTwice_isWrittenOver()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("step2"));
    QFile old(folder.filePath("step2/step2_debug.csv"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(10000, 'x'));
    old.close();
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    m_desk->boxes.handleNext([&](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        files->setDirectory(folder.path());
        files->selectFile(folder.path());
        dialog.done(QDialog::Accepted);
    });
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll().split('\n').size(), 8);
    QVERIFY(!QDir(folder.filePath("step1")).exists());
}

void tst_autofocus::cancelledDialog_runsWithoutDebugOutput()
{
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    m_desk->boxes.handleNext([](QDialog& dialog) { dialog.reject(); });
    m_desk->window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QVERIFY(!m_desk->log.contains("m_strAutofocusing:"));
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish auto focusing !"));
}

WORKFLOW_MAIN(tst_autofocus)
#include "tst_autofocus.moc"
