#include "tests/workflows/Desk.h"
#include "tests/workflows/SettingsWrites.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QSpinBox>
#include <QTemporaryDir>

/// The slope calibration, on a unit whose carrier is exactly level: best focus is 30000 everywhere. A slope
/// is made by another reference for the second run: all positions of a run lie whole fine steps from it.
class tst_zslope : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void calibration_makesTheseMoves();
    void emptyReplyToAnXMove_isNotNoticed();
    void results_areStoredInThisOrder();
    void results_areLoggedInThisOrder();
    void finishBox_hasThisTextAndIsTheOnlyOne();
    void slope_isStoredPerMillimetre_data();
    void slope_isStoredPerMillimetre();
    void button_isBusyDuringBothRunsAndShowsSlopeAfterwards();
    void autofocusReference_staysOnShowWhileTheFileChanges();
    void followingAutofocus_showsItsBoxAndLeavesTheRecord();
    void debugFolder_isAskedForAtEachRun();
    void startBeforeTheFirstInsert_isTheDefault();
    void startAfterAnInsert_isTheOneStoredThen();
    void referenceSetAfterACalibration_is115BelowBestFocus();
    void offset_isStoredAsAWholeNumber_data();
    void offset_isStoredAsAWholeNumber();

private:
    bool connectUnit(const QByteArray& settings);
    bool calibrate();
    bool insertSlide();
    void useReferenceOfSecondRun(int reference);
    QByteArray stored(const QByteArray& key) const;

    std::unique_ptr<Desk> m_desk;
};

namespace {

constexpr int kFocus = 30000; ///< best focus of the unit, in bright field

const QByteArray kReferenceInFocus = "[Calibration]\nZ reference=30000\n";

QString zTo(int position)
{
    return QString("$Z#STAGE ABS %1").arg(position);
}

QString xTo(int position)
{
    return QString("$X#STAGE ABS %1").arg(position);
}

QStringList scan(int step, int frames)
{
    QStringList lines { "$Z#STAGE DIR MINUS", QString("$Z#STAGE STEP %1").arg(step) };
    for (int i = 0; i < frames; ++i)
        lines << "$Z#STAGE RUN";
    return lines;
}

QStringList moveBy(int distance)
{
    return { "$Z#STAGE POS", QString("$Z#STAGE STEP %1").arg(std::abs(distance)),
        distance > 0 ? "$Z#STAGE DIR PLUS" : "$Z#STAGE DIR MINUS", "$Z#STAGE RUN" };
}

/// Coarse and fine run around a reference that is best focus itself, from where the stage stands.
QStringList runInFocus(int stage)
{
    const int endOfCoarse = kFocus + 3680 - 15 * 460;
    const int startOfFine = kFocus + 460;
    return moveBy(kFocus + 3680 - stage) + scan(460, 15) + moveBy(startOfFine - endOfCoarse) + scan(115, 7)
        + QStringList { zTo(startOfFine) } + moveBy(-460) + scan(115, 1);
}

} // namespace

void tst_zslope::init()
{
    m_desk.reset(new Desk);
}

void tst_zslope::cleanup()
{
    m_desk.reset();
}

bool tst_zslope::connectUnit(const QByteArray& settings)
{
    Desk::putSettings(settings);
    if (!m_desk->connectUnit() || !hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"))
        return false;
    // Not the camera's exposure, only the time that a frame is waited for: on a busy machine a frame of
    // before the move would put the result one fine step aside.
    m_desk->widget<QSpinBox>("spinBox_EXPOSURE")->setValue(patience::limit(100));
    return true;
}

/// Presses the button and waits for the box at the end to have been answered.
bool tst_zslope::calibrate()
{
    const int before = m_desk->boxes.boxes().size();
    return hand::click(m_desk->window(), "pushButton_REFERENCE_Z_SLOPE")
        && m_desk->boxes.waitForBoxes(before + 1, 60000);
}

bool tst_zslope::insertSlide()
{
    return hand::click(m_desk->window(), "pushButton_INSERT")
        && patience::waitFor([this] { return m_desk->isEnabled("tableWidget_SLIDE"); });
}

/// The panel is not locked meanwhile, so that another reference can come in between the runs.
void tst_zslope::useReferenceOfSecondRun(int reference)
{
    connect(&m_desk->window(), &MainWindow::sig_finish_Autofocusing, this, [this, reference] {
        m_desk->widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText(QString::number(reference));
    });
}

QByteArray tst_zslope::stored(const QByteArray& key) const
{
    const QList<QByteArray> lines = Desk::settings().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(key + '='))
            return line.mid(key.size() + 1);
    }
    return {};
}

void tst_zslope::calibration_makesTheseMoves()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    const int mark = m_desk->rig.mark();
    QVERIFY(calibrate());
    // The second run begins 115 below the focus of the first, and around the same reference.
    const QStringList expected
        = QStringList { xTo(30931) } + runInFocus(32000) + QStringList { xTo(10132) } + runInFocus(29885);
    QCOMPARE(m_desk->rig.sentSince(mark), expected);
    QCOMPARE(m_desk->rig.state().value("x").toInt(), 10132);
    QCOMPARE(m_desk->rig.state().value("z").toInt(), 29885);
}

void tst_zslope::emptyReplyToAnXMove_isNotNoticed()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    QVERIFY(m_desk->rig.fault("nul", "$X#STAGE ABS", 2));
    const int mark = m_desk->rig.mark();
    QVERIFY(calibrate());
    QCOMPARE(m_desk->rig.sentSince(mark).filter("$X#STAGE"), QStringList({ xTo(30931), xTo(10132) }));
    QCOMPARE(stored("Z ref A1"), QByteArray("30000"));
    QCOMPARE(stored("Z ref B1"), QByteArray("30000"));
}

void tst_zslope::results_areStoredInThisOrder()
{
    QVERIFY(connectUnit({}));
    m_desk->widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText("30000");
    const QByteArray version = "\n[Software]\nVersion FW=" + stored("Version FW") + "\n";
    QCOMPARE(Desk::settings(), "[Calibration]\nPrisma offset=0\n" + version);
    const SettingsWrites writes;
    QVERIFY(calibrate());
    QCOMPARE(writes.changes(),
        QStringList({ "Calibration/Z ref A1=30000", "Calibration/Z ref B1=30000",
            "Calibration/Z ref slope=0.000", "Calibration/Z reference=30000", "Calibration/Z ref 1ch=29360",
            "Calibration/Z ref 2ch=31920", "Calibration/Z ref 3ch=29360", "Calibration/Z ref 8ch=29360",
            "Calibration/Z ref Validation=30000" }));
    // In the file the keys of a group are sorted.
    QCOMPARE(Desk::settings(),
        "[Calibration]\nPrisma offset=0\nZ ref 1ch=29360\nZ ref 2ch=31920\nZ ref 3ch=29360\n"
        "Z ref 8ch=29360\nZ ref A1=30000\nZ ref B1=30000\nZ ref Validation=30000\n"
        "Z ref slope=0.000\nZ reference=30000\n"
            + version);
}

void tst_zslope::results_areLoggedInThisOrder()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    useReferenceOfSecondRun(kFocus + 40);
    QVERIFY(calibrate());
    QCOMPARE(m_desk->log.lines().filter("m_z_slope_cal."),
        QStringList({ "m_z_slope_cal.pos_A1: 30000", "m_z_slope_cal.pos_B1: 30040", "m_z_slope_cal.slope: 40",
            "m_z_slope_cal.slope_per_mm: 1.02564", "m_z_slope_cal.cal_1ch_pos: 29360",
            "m_z_slope_cal.cal_2ch_pos: 31920", "m_z_slope_cal.cal_3ch_pos: 29360",
            "m_z_slope_cal.cal_8ch_pos: 29360" }));
}

void tst_zslope::finishBox_hasThisTextAndIsTheOnlyOne()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    useReferenceOfSecondRun(kFocus - 40);
    QVERIFY(calibrate());
    QCOMPARE(m_desk->boxes.boxes().size(), 1);
    const ShownBox& box = m_desk->boxes.boxes().first();
    QCOMPARE(box.text,
        QString(
            "\nfinish Z slope calibration ! \n\nZ ref A1 : 30000 \nZ ref B1 : 29960 \nZ ref slope : -1.026 \n"
            "Z reference : 30000 \nZ ref 1ch : 29360 \nZ ref 2ch : 31920 \nZ ref 3ch : 29360 \n"
            "Z ref 8ch : 29360 \n"));
    QCOMPARE(box.title, QString("Info"));
    QCOMPARE(box.icon, QMessageBox::Information);
    QCOMPARE(box.buttons, QStringList({ "OK" }));
}

void tst_zslope::slope_isStoredPerMillimetre_data()
{
    QTest::addColumn<int>("slope");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("level") << 0 << QByteArray("0.000");
    QTest::newRow("39") << 39 << QByteArray("1.000");
    QTest::newRow("40") << 40 << QByteArray("1.026");
    QTest::newRow("B1 below A1") << -39 << QByteArray("-1.000");
}

void tst_zslope::slope_isStoredPerMillimetre()
{
    QFETCH(int, slope);
    QFETCH(QByteArray, text);
    QVERIFY(connectUnit(kReferenceInFocus));
    useReferenceOfSecondRun(kFocus + slope);
    QVERIFY(calibrate());
    QCOMPARE(stored("Z ref B1"), QByteArray::number(kFocus + slope));
    QCOMPARE(stored("Z ref slope"), text);
    // The heights of the slides do not depend on it.
    QCOMPARE(stored("Z ref 2ch"), QByteArray("31920"));
    QVERIFY(!Desk::settings().contains("slope=" + QByteArray::number(slope) + '\n'));
}

void tst_zslope::button_isBusyDuringBothRunsAndShowsSlopeAfterwards()
{
    QVERIFY(connectUnit(kReferenceInFocus));
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
    QVERIFY(calibrate());
    QCOMPARE(seen, QStringList({ "~~~", "disabled", "~~~", "disabled", "Slope", "enabled" }));
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("AF"));
    QVERIFY(m_desk->isEnabled("pushButton_AUTOFOCUS"));
}

void tst_zslope::autofocusReference_staysOnShowWhileTheFileChanges()
{
    // 30000 lies 45 steps from a fine position of a run around 32000, and 70 from the next one.
    QVERIFY(connectUnit({}));
    QVERIFY(calibrate());
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("32000"));
    QCOMPARE(stored("Z reference"), QByteArray("30045"));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_Z"), QString("31965"));

    m_desk->close();
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("30045"));
}

void tst_zslope::followingAutofocus_showsItsBoxAndLeavesTheRecord()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    QVERIFY(calibrate());
    m_desk->widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText("30040");
    QVERIFY(hand::click(m_desk->window(), "pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(2, 60000));
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish auto focusing !"));
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("29925"));

    // Runs that end before their first frame find nothing: what comes out is what the record holds.
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE STEP 460", 2));
    QVERIFY(calibrate());
    QVERIFY(m_desk->boxes.texts().last().contains("\nZ ref A1 : 30000 \nZ ref B1 : 30000 \n"));
    QCOMPARE(stored("Z ref A1"), QByteArray("30000"));
}

void tst_zslope::debugFolder_isAskedForAtEachRun()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    QTemporaryDir first;
    QTemporaryDir second;
    for (const QString& folder : { first.path(), second.path() }) {
        m_desk->boxes.handleNext([folder](QDialog& dialog) {
            auto* files = qobject_cast<QFileDialog*>(&dialog);
            QVERIFY(files != nullptr);
            files->setDirectory(folder);
            files->selectFile(folder);
            dialog.done(QDialog::Accepted);
        });
    }
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

void tst_zslope::startBeforeTheFirstInsert_isTheDefault()
{
    QVERIFY(connectUnit("[Calibration]\nZ reference=30000\n\n[Start position]\n2 Channel=31000\n"));
    const int mark = m_desk->rig.mark();
    QVERIFY(calibrate());
    QCOMPARE(m_desk->rig.sentSince(mark).filter("$X#STAGE"), QStringList({ xTo(30931), xTo(10132) }));
}

void tst_zslope::startAfterAnInsert_isTheOneStoredThen()
{
    QVERIFY(connectUnit("[Calibration]\nZ reference=30000\n\n[Start position]\n2 Channel=31000\n"));
    QVERIFY(insertSlide());
    Desk::putSettings("[Start position]\n2 Channel=32000\n");
    const int mark = m_desk->rig.mark();
    QVERIFY(calibrate());
    QCOMPARE(m_desk->rig.sentSince(mark).filter("$X#STAGE"), QStringList({ xTo(31000), xTo(10201) }));
}

void tst_zslope::referenceSetAfterACalibration_is115BelowBestFocus()
{
    QVERIFY(connectUnit(kReferenceInFocus));
    QVERIFY(calibrate());
    QCOMPARE(stored("Z reference"), QByteArray("30000"));
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_REFERENCE_AUTOFOCUS_SET"));
    QCOMPARE(stored("Z reference"), QByteArray("29885"));
    QCOMPARE(stored("Z ref A1"), QByteArray("30000"));
    QCOMPARE(m_desk->text("lineEdit_REFERENCE_AUTOFOCUS"), QString("29885"));
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
}

void tst_zslope::offset_isStoredAsAWholeNumber_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("positive") << QString("5") << QByteArray("5");
    QTest::newRow("negative") << QString("-2") << QByteArray("-2");
    QTest::newRow("no number") << QString("three") << QByteArray("0");
    QTest::newRow("empty") << QString() << QByteArray("0");
}

void tst_zslope::offset_isStoredAsAWholeNumber()
{
    QFETCH(QString, typed);
    QFETCH(QByteArray, text);
    QVERIFY(connectUnit({}));
    QCOMPARE(m_desk->text("lineEdit_OFFSET_Z"), QString("3"));
    QVERIFY(hand::type(m_desk->window(), "lineEdit_OFFSET_Z", typed));
    QCOMPARE(stored("Z offset"), QByteArray());
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_OFFSET_Z"));
    QCOMPARE(stored("Z offset"), text);
    QCOMPARE(m_desk->text("lineEdit_OFFSET_Z"), typed);
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
}

WORKFLOW_MAIN(tst_zslope)
#include "tst_zslope.moc"
