#include "tests/workflows/SettingsWrites.h"
#include "tests/workflows/SlopeDesk.h"

/// What the slope calibration moves, finds, stores and tells.
class tst_zslope : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void calibration_makesTheseMoves();
    void emptyReplyToAnXMove_isNotNoticed();
    void startBeforeTheFirstInsert_isTheDefault();
    void startAfterAnInsert_isTheOneStoredThen();
    void results_areStoredInThisOrder();
    void results_areLoggedInThisOrder();
    void finishBox_hasThisTextAndIsTheOnlyOne();
    void slope_isStoredPerMillimetre_data();
    void slope_isStoredPerMillimetre();

private:
    std::unique_ptr<SlopeDesk> m_desk;
};

namespace {

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
    const int endOfCoarse = SlopeDesk::kFocus + 3680 - 15 * 460;
    const int startOfFine = SlopeDesk::kFocus + 460;
    return moveBy(SlopeDesk::kFocus + 3680 - stage) + scan(460, 15) + moveBy(startOfFine - endOfCoarse)
        + scan(115, 7) + QStringList { zTo(startOfFine) } + moveBy(-460) + scan(115, 1);
}

} // namespace

void tst_zslope::init()
{
    m_desk.reset(new SlopeDesk);
}

void tst_zslope::cleanup()
{
    m_desk.reset();
}

void tst_zslope::calibration_makesTheseMoves()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    const int mark = m_desk->mark();
    QVERIFY(m_desk->calibrate());
    // The second run begins 115 below the focus of the first, and around the same reference.
    const QStringList expected
        = QStringList { xTo(30931) } + runInFocus(32000) + QStringList { xTo(10132) } + runInFocus(29885);
    QCOMPARE(m_desk->linesSince(mark), expected);
    QCOMPARE(m_desk->rig.state().value("x").toInt(), 10132);
    QCOMPARE(m_desk->rig.state().value("z").toInt(), 29885);
}

void tst_zslope::emptyReplyToAnXMove_isNotNoticed()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    QVERIFY(m_desk->rig.fault("nul", "$X#STAGE ABS", 2));
    const int mark = m_desk->mark();
    QVERIFY(m_desk->calibrate());
    QCOMPARE(m_desk->linesSince(mark).filter("$X#STAGE"), QStringList({ xTo(30931), xTo(10132) }));
    QCOMPARE(SlopeDesk::stored("Z ref A1"), QByteArray("30000"));
    QCOMPARE(SlopeDesk::stored("Z ref B1"), QByteArray("30000"));
}

void tst_zslope::startBeforeTheFirstInsert_isTheDefault()
{
    QVERIFY(m_desk->connectWith("[Calibration]\nZ reference=30000\n\n[Start position]\n2 Channel=31000\n"));
    const int mark = m_desk->mark();
    QVERIFY(m_desk->calibrate());
    QCOMPARE(m_desk->linesSince(mark).filter("$X#STAGE"), QStringList({ xTo(30931), xTo(10132) }));
}

void tst_zslope::startAfterAnInsert_isTheOneStoredThen()
{
    QVERIFY(m_desk->connectWith("[Calibration]\nZ reference=30000\n\n[Start position]\n2 Channel=31000\n"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_INSERT"));
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("tableWidget_SLIDE"); }));
    Desk::putSettings("[Start position]\n2 Channel=32000\n");
    const int mark = m_desk->mark();
    QVERIFY(m_desk->calibrate());
    QCOMPARE(m_desk->linesSince(mark).filter("$X#STAGE"), QStringList({ xTo(31000), xTo(10201) }));
}

void tst_zslope::results_areStoredInThisOrder()
{
    QVERIFY(m_desk->connectWith({}));
    m_desk->widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText("30000");
    const QByteArray version = "\n[Software]\nVersion FW=" + SlopeDesk::stored("Version FW") + "\n";
    QCOMPARE(Desk::settings(), "[Calibration]\nPrisma offset=0\n" + version);
    const SettingsWrites writes;
    QVERIFY(m_desk->calibrate());
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
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    m_desk->useReferenceOfSecondRun(SlopeDesk::kFocus + 40);
    QVERIFY(m_desk->calibrate());
    QCOMPARE(m_desk->log.lines().filter("m_z_slope_cal."),
        QStringList({ "m_z_slope_cal.pos_A1: 30000", "m_z_slope_cal.pos_B1: 30040", "m_z_slope_cal.slope: 40",
            "m_z_slope_cal.slope_per_mm: 1.02564", "m_z_slope_cal.cal_1ch_pos: 29360",
            "m_z_slope_cal.cal_2ch_pos: 31920", "m_z_slope_cal.cal_3ch_pos: 29360",
            "m_z_slope_cal.cal_8ch_pos: 29360" }));
}

void tst_zslope::finishBox_hasThisTextAndIsTheOnlyOne()
{
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    m_desk->useReferenceOfSecondRun(SlopeDesk::kFocus - 40);
    QVERIFY(m_desk->calibrate());
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
    QVERIFY(m_desk->connectWith(SlopeDesk::kReferenceInFocus));
    m_desk->useReferenceOfSecondRun(SlopeDesk::kFocus + slope);
    QVERIFY(m_desk->calibrate());
    QCOMPARE(SlopeDesk::stored("Z ref B1"), QByteArray::number(SlopeDesk::kFocus + slope));
    QCOMPARE(SlopeDesk::stored("Z ref slope"), text);
    // The reference and the heights of the slides do not depend on it.
    QCOMPARE(SlopeDesk::stored("Z ref A1"), QByteArray("30000"));
    QCOMPARE(SlopeDesk::stored("Z reference"), QByteArray("30000"));
    QCOMPARE(SlopeDesk::stored("Z ref 1ch"), QByteArray("29360"));
    QCOMPARE(SlopeDesk::stored("Z ref 2ch"), QByteArray("31920"));
    QCOMPARE(SlopeDesk::stored("Z ref 3ch"), QByteArray("29360"));
    QCOMPARE(SlopeDesk::stored("Z ref 8ch"), QByteArray("29360"));
    QCOMPARE(SlopeDesk::stored("Z ref Validation"), QByteArray("30000"));
    QVERIFY(!Desk::settings().contains("slope=" + QByteArray::number(slope) + '\n'));
}

WORKFLOW_MAIN(tst_zslope)
#include "tst_zslope.moc"
