#include "tests/workflows/SlopeDesk.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTimer>

/// The Stage page during and after a slope calibration, what disturbs one, and the reference beside it.
class tst_zslopepanel : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void button_isBusyDuringBothRunsAndShowsSlopeAfterwards();
    void autofocusReference_staysOnShowWhileTheFileChanges();
    void followingAutofocus_showsItsBoxAndLeavesTheRecord();
    void runAfterACalibration_isNoLongerSilent();
    void exitDuringACalibration_storesNothing_data();
    void exitDuringACalibration_storesNothing();
    void debugFolder_isAskedForAtEachRun();
    void runThatEndsWhileTheFolderIsAskedFor_isNotTakenForTheNextOne();
    void referenceSetAfterACalibration_is115BelowBestFocus();
    void referenceSetFromNoNumber_isZero();

private:
    std::unique_ptr<SlopeDesk> m_desk;
};

namespace {

constexpr int kFramesOfARun = 15 + 7;

void takeFolder(QDialog& dialog, const QString& folder)
{
    auto* files = qobject_cast<QFileDialog*>(&dialog);
    QVERIFY(files != nullptr);
    files->setDirectory(folder);
    files->selectFile(folder);
    dialog.done(QDialog::Accepted);
}

} // namespace

void tst_zslopepanel::init()
{
    m_desk.reset(new SlopeDesk);
}

void tst_zslopepanel::cleanup()
{
    m_desk.reset();
}

void tst_zslopepanel::button_isBusyDuringBothRunsAndShowsSlopeAfterwards()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    QCOMPARE(m_desk->text("pushButton_REFERENCE_Z_SLOPE"), QString("[Z] Slope"));
    QStringList seen;
    connect(&m_desk->window(), &MainWindow::sig_finish_Autofocusing, this, [&] {
        seen << m_desk->text("pushButton_REFERENCE_Z_SLOPE")
             << (m_desk->isEnabled("pushButton_REFERENCE_Z_SLOPE") ? "enabled" : "disabled");
    });
    m_desk->boxes.lookAtEach([&](QDialog&) {
        seen << m_desk->text("pushButton_REFERENCE_Z_SLOPE")
             << (m_desk->isEnabled("pushButton_REFERENCE_Z_SLOPE") ? "enabled" : "disabled");
    });
    QVERIFY(m_desk->calibrate());
    QCOMPARE(seen, QStringList({ "~~~", "disabled", "~~~", "disabled", "Slope", "enabled" }));
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("AF"));
    QVERIFY(m_desk->isEnabled("pushButton_AUTOFOCUS"));
}

void tst_zslopepanel::autofocusReference_staysOnShowWhileTheFileChanges()
{
    // 30000 lies 45 steps from a fine position of a run around 32000, and 70 from the next one.
    QVERIFY(m_desk->connectWith({}));
    QVERIFY(m_desk->calibrate());
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("32000"));
    QCOMPARE(SlopeDesk::stored("Z reference"), QByteArray("30045"));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), QString("31965"));

    m_desk->close();
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("30045"));
}

void tst_zslopepanel::followingAutofocus_showsItsBoxAndLeavesTheRecord()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    QVERIFY(m_desk->calibrate());
    m_desk->widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText("30040");
    QVERIFY(hand::click(m_desk->window(), "pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish auto focusing !"));
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("29925"));

    // Runs that end before their first frame find nothing: what comes out is what the record holds.
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE STEP 460", 2));
    QVERIFY(m_desk->calibrate());
    QVERIFY(m_desk->boxes.texts().last().contains("\nZ ref A1 : 30000 \nZ ref B1 : 30000 \n"));
    QCOMPARE(SlopeDesk::stored("Z ref A1"), QByteArray("30000"));
}

/// The click on the button of the focus search would clear the flag by itself.
void tst_zslopepanel::runAfterACalibration_isNoLongerSilent()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    QVERIFY(m_desk->calibrate());
    m_desk->window().pushButton_AUTOFOCUS_clicked(true);
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish auto focusing !"));
}

void tst_zslopepanel::exitDuringACalibration_storesNothing_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<QStringList>("moves");
    QTest::newRow("first run") << 3 << QStringList({ "$X#STAGE ABS 30931", "$X#STAGE ORIGIN" });
    QTest::newRow("second run") << kFramesOfARun
            + 3 << QStringList({ "$X#STAGE ABS 30931", "$X#STAGE ABS 10132", "$X#STAGE ORIGIN" });
}

void tst_zslopepanel::exitDuringACalibration_storesNothing()
{
    QFETCH(int, frames);
    QFETCH(QStringList, moves);
    QVERIFY(m_desk->connectWith("[Calibration]\nZ ref 2ch=33333\nZ reference=30000\n"));
    const QByteArray before = Desk::settings();
    const int mark = m_desk->mark();
    QTimer exit;
    exit.setSingleShot(true);
    connect(&exit, &QTimer::timeout, this, [this] { hand::click(m_desk->window(), "pushButton_EXIT"); });
    int taken = 0;
    connect(&m_desk->window(), &MainWindow::sig_ImageGrabbed, this, [&] {
        if (++taken == frames)
            exit.start();
    });
    const auto calibrate = [this] { hand::click(m_desk->window(), "pushButton_REFERENCE_Z_SLOPE"); };
    QMetaObject::invokeMethod(this, calibrate, Qt::QueuedConnection);
    // Closing the window ends it, as in the program.
    QApplication::exec();
    QCOMPARE(taken, frames);
    QCOMPARE(Desk::settings(), before);
    QCOMPARE(m_desk->boxes.texts(), QStringList());
    QCOMPARE(m_desk->linesSince(mark).filter("$X#STAGE"), moves);
}

void tst_zslopepanel::debugFolder_isAskedForAtEachRun()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    QTemporaryDir first;
    QTemporaryDir second;
    for (const QString& folder : { first.path(), second.path() })
        m_desk->boxes.handleNext([folder](QDialog& dialog) { takeFolder(dialog, folder); });
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_Z_SLOPE"));
    QVERIFY(m_desk->boxes.waitForBoxes(3, 60000));
    QCOMPARE(m_desk->boxes.boxes()[0].className, QString("QFileDialog"));
    QCOMPARE(m_desk->boxes.boxes()[1].className, QString("QFileDialog"));
    QVERIFY(m_desk->boxes.texts()[2].startsWith("\nfinish Z slope calibration !"));
    for (const QString& folder : { first.path(), second.path() }) {
        QCOMPARE(QDir(folder + "/step1").entryList({ "*.tif" }).size(), 15);
        QCOMPARE(QDir(folder + "/step2").entryList({ "*.tif" }).size(), 7);
    }
}

void tst_zslopepanel::runThatEndsWhileTheFolderIsAskedFor_isNotTakenForTheNextOne()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    for (int run = 0; run < 2; ++run) {
        m_desk->boxes.handleNext([this](QDialog& dialog) {
            emit m_desk->window().sig_finish_Autofocusing();
            dialog.done(QDialog::Rejected);
        });
    }
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_Z_SLOPE"));
    QVERIFY(m_desk->boxes.waitForBoxes(3, 60000));
    QCOMPARE(SlopeDesk::stored("Z ref A1"), QByteArray("30000"));
    QCOMPARE(SlopeDesk::stored("Z ref B1"), QByteArray("30000"));
}

void tst_zslopepanel::referenceSetAfterACalibration_is115BelowBestFocus()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    QVERIFY(m_desk->calibrate());
    QCOMPARE(SlopeDesk::stored("Z reference"), QByteArray("30000"));
    const int mark = m_desk->mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_AUTOFOCUS_SET"));
    QCOMPARE(SlopeDesk::stored("Z reference"), QByteArray("29885"));
    QCOMPARE(SlopeDesk::stored("Z ref A1"), QByteArray("30000"));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("29885"));
    QCOMPARE(m_desk->linesSince(mark), QStringList());
}

void tst_zslopepanel::referenceSetFromNoNumber_isZero()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    m_desk->widget<QLineEdit>("lineEdit_POSITION_Z")->setText("no number");
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_AUTOFOCUS_SET"));
    QCOMPARE(SlopeDesk::stored("Z reference"), QByteArray("0"));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("0"));
}

WORKFLOW_MAIN(tst_zslopepanel)
#include "tst_zslopepanel.moc"
