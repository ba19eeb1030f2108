#include "tests/workflows/QcTest.h"
#include "tests/workflows/SettingsWrites.h"

/// What the QC page makes of two points, shows and stores. The unit magnifies exactly fourfold.
class tst_qcmeasure : public QcTest {
    Q_OBJECT

private slots:
    void measurement_showsSinglePrecision_data();
    void measurement_showsSinglePrecision();
    void measureWithoutPoints_showsWhatComesOut();
    void equalPoints_showWhatComesOut();
    void lengthThatRoundsToZero_showsWhatComesOut();
    void write_storesNineValuesInThisOrder();
    void writeBeforeAnyMeasurement_storesTheRecordAsItStands();
    void write_takesTheMeasurementAndNotWhatIsShown();
    void volumeOffset_isStoredAtOnce();
    void textInTheOffsetBox_leavesTheOffset();
};

void tst_qcmeasure::measurement_showsSinglePrecision_data()
{
    // Worked out apart from this program, with each operation rounded to single precision.
    QTest::addColumn<int>("pixels");
    QTest::addColumn<QStringList>("values");
    QTest::newRow("fourfold") << 1067
                              << QStringList({ "4.00", "0.10800", "197.00551", "771.60492", "771.60492",
                                     "1851.85181", "1851.85181", "925.92590" });
    QTest::newRow("3.90") << 1040
                          << QStringList({ "3.90", "0.11361", "187.27748", "733.50354", "733.50354",
                                 "1760.40833", "1760.40833", "880.20416" });
    QTest::newRow("4.10") << 1093
                          << QStringList({ "4.10", "0.10280", "206.97076", "810.63550", "810.63550",
                                 "1945.52527", "1945.52527", "972.76263" });
    // Half a millimetre. Here the text on the way changes what five and ten fields give.
    QTest::newRow("3.75") << 500
                          << QStringList({ "3.75", "0.12288", "173.14938", "678.16840", "678.16840",
                                 "1627.60413", "1627.60413", "813.80206" });
}

void tst_qcmeasure::measurement_showsSinglePrecision()
{
    QFETCH(int, pixels);
    QFETCH(QStringList, values);
    const QPoint one(100, 300);
    const QPoint two(100 + pixels, 300);
    QVERIFY(m_page->showMarks({ one, two }));
    QVERIFY(m_page->measure(one, two));
    QCOMPARE(m_page->values(), values);
}

void tst_qcmeasure::measureWithoutPoints_showsWhatComesOut()
{
    QVERIFY(m_page->capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE"));
    // Nothing divided by nothing; the sign in front of it is the processor's.
    QCOMPARE(m_page->values().filter(QRegularExpression("^-?nan$")).size(), 8);
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
}

void tst_qcmeasure::equalPoints_showWhatComesOut()
{
    const QPoint mark(300, 200);
    QVERIFY(m_page->showMarks({ mark }));
    QVERIFY(m_page->measure(mark, mark));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), m_desk->text("lineEdit_POINT_2"));
    QCOMPARE(m_page->values().filter(QRegularExpression("^-?nan$")).size(), 8);
}

void tst_qcmeasure::lengthThatRoundsToZero_showsWhatComesOut()
{
    const QPoint one(300, 200);
    const QPoint two(353, 200);
    QVERIFY(m_page->showMarks({ one, two }));
    QVERIFY(m_page->measure(one, two));
    QCOMPARE(m_page->values(), QStringList({ "inf", "0.00000", "inf", "inf", "inf", "inf", "inf", "inf" }));
}

void tst_qcmeasure::write_storesNineValuesInThisOrder()
{
    const QByteArray before = Desk::settings();
    QVERIFY(m_page->showMarks({ { 100, 300 }, { 1140, 300 } }));
    QVERIFY(m_page->measure({ 100, 300 }, { 1140, 300 }));
    QCOMPARE(Desk::settings(), before);
    const SettingsWrites writes;
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE_WRITE"));
    QCOMPARE(m_desk->boxes.texts(), QStringList());
    QCOMPARE(writes.changes(),
        QStringList(
            { "TAVO-QR9/Magnification=3.90", "TAVO-QR9/Volume factor=0.11361", "TAVO-QR9/Volume offset=1.10",
                "Volume factor/1 Channel=187.27748", "Volume factor/2 Channel=733.50354",
                "Volume factor/3 Channel=733.50354", "Volume factor/8 Channel=1760.40833",
                "Volume factor/Prisma=1760.40833", "Volume factor/Prisma Max=880.20416" }));
    QCOMPARE(Desk::settings(),
        before
            + "\n[TAVO-QR9]\nMagnification=3.90\nVolume factor=0.11361\nVolume offset=1.10\n"
              "\n[Volume factor]\n1 Channel=187.27748\n2 Channel=733.50354\n3 Channel=733.50354\n"
              "8 Channel=1760.40833\nPrisma=1760.40833\nPrisma Max=880.20416\n");
}

void tst_qcmeasure::writeBeforeAnyMeasurement_storesTheRecordAsItStands()
{
    const QByteArray before = Desk::settings();
    QVERIFY(m_page->capture());
    QVERIFY(hand::click(m_desk->window(), "checkBox_TARGETING_MODE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE_WRITE"));
    QCOMPARE(Desk::settings(),
        before
            + "\n[TAVO-QR9]\nMagnification=0.00\nVolume factor=0.00000\nVolume offset=1.10\n"
              "\n[Volume factor]\n1 Channel=0.00000\n2 Channel=0.00000\n3 Channel=0.00000\n"
              "8 Channel=0.00000\nPrisma=0.00000\nPrisma Max=0.00000\n");
}

void tst_qcmeasure::write_takesTheMeasurementAndNotWhatIsShown()
{
    const QByteArray before = Desk::settings();
    QVERIFY(m_page->showMarks({ { 100, 300 }, { 1167, 300 } }));
    QVERIFY(m_page->measure({ 100, 300 }, { 1167, 300 }));
    for (const char* edit :
        { "lineEdit_MAGNIFICATION", "lineEdit_VOLUME_FACTOR", "lineEdit_VOLUME_FACTOR_1CH",
            "lineEdit_VOLUME_FACTOR_2CH", "lineEdit_VOLUME_FACTOR_3CH", "lineEdit_VOLUME_FACTOR_8CH",
            "lineEdit_VOLUME_FACTOR_PRISMA", "lineEdit_VOLUME_FACTOR_PRISMA_MAX" })
        m_desk->widget<QLineEdit>(edit)->setText("9.99");
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", "1.25"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE_WRITE"));
    QCOMPARE(Desk::settings(),
        before
            + "\n[TAVO-QR9]\nMagnification=4.00\nVolume factor=0.10800\nVolume offset=1.25\n"
              "\n[Volume factor]\n1 Channel=197.00551\n2 Channel=771.60492\n3 Channel=771.60492\n"
              "8 Channel=1851.85181\nPrisma=1851.85181\nPrisma Max=925.92590\n");
}

void tst_qcmeasure::volumeOffset_isStoredAtOnce()
{
    const QByteArray before = Desk::settings();
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", "1.5"));
    QCOMPARE(Desk::settings(), before);
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", Qt::Key_Return));
    QCOMPARE(Desk::settings(), before + "\n[TAVO-QR9]\nVolume offset=1.50\n");
}

void tst_qcmeasure::textInTheOffsetBox_leavesTheOffset()
{
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", "abc"));
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_VOLUME_OFFSET", Qt::Key_Return));
    QCOMPARE(m_desk->text("doubleSpinBox_VOLUME_OFFSET"), QString("1.10"));
    QVERIFY(Desk::settings().contains("\nVolume offset=1.10\n"));
}

WORKFLOW_MAIN(tst_qcmeasure)
#include "tst_qcmeasure.moc"
