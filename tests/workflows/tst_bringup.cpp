#include "tests/workflows/Desk.h"

#include <QSpinBox>

/// Stored values on their way into the form, at start and while the stage is brought up.
class tst_bringup : public QObject {
    Q_OBJECT

private slots:
    void missingFile_givesEveryDefault();
    void storedValues_areShown();
    void unreadableFile_givesDefaultsAndTheUnitComesUp_data();
    void unreadableFile_givesDefaultsAndTheUnitComesUp();
    void oddNumbers_areReadAsTheCLibraryReadsThem();
    void shifts_areSinglePrecision();
    void emptyStepAndSpeed_areSentAsTyped();
    void heightOfTheSlide_isTheStandbyPosition();
    void serialWithFewParts_doesNotCrash_data();
    void serialWithFewParts_doesNotCrash();
    void serialWithB_hidesFluorescence_data();
    void serialWithB_hidesFluorescence();
    void options_areRecognisedBySubstring();
    void folderInPlaceOfTheFile_losesNothingAndComesUp();
};

namespace {

const char kAll[]
    = "[ArduCAM]\nHor. Mirror=Yes\nVer. Mirror=No\n"
      "[TAVO-QR9]\nVolume offset=1.25\nMagnification=3.97\nVolume factor=0.10963\n"
      "Serial=QR9-26-00417\nVatline=Yes\nTallyLink=No\nQLPK=Yes\n"
      "[Volume factor]\n1 Channel=194.1\n2 Channel=760.2\n3 Channel=761\n8 Channel=1824.4\n"
      "Prisma=1824.5\nPrisma Max=912.3\n"
      "[Calibration]\nZ reference=31500\nZ offset=4\nReusable offset=5000\nValidation offset=1300\n"
      "Prisma offset=600\nZ ref 2ch=33420\n"
      "[Miscellaneous]\nPixel shift GFP X=1.5\nPixel shift GFP Y=-2.25\nPixel shift RFP X=0.125\n"
      "Pixel shift RFP Y=11.999\n";

/// What a unit without a settings file shows.
struct Shown {
    const char* field;
    const char* text;
};
constexpr Shown kDefaults[] = {
    { "lineEdit_MAGNIFICATION", "4" },
    { "lineEdit_VOLUME_FACTOR", "0.10800" },
    { "lineEdit_VOLUME_FACTOR_1CH", "197.00552" },
    { "lineEdit_VOLUME_FACTOR_2CH", "771.60494" },
    { "lineEdit_VOLUME_FACTOR_3CH", "771.60494" },
    { "lineEdit_VOLUME_FACTOR_8CH", "1851.85185" },
    { "lineEdit_VOLUME_FACTOR_PRISMA", "1851.85185" },
    { "lineEdit_VOLUME_FACTOR_PRISMA_MAX", "925.92593" },
    { "doubleSpinBox_VOLUME_OFFSET", "1.10" },
    { "lineEdit_SERIAL_MODEL", "TV9" },
    { "lineEdit_SERIAL_PREFIX", "00" },
    { "lineEdit_SERIAL_SUFFIX", "00000" },
    { "lineEdit_REFERENCE_AUTOFOCUS", "32000" },
    { "lineEdit_OFFSET_Z", "3" },
    { "spinBox_REUSABLE_OFFSET", "5676" },
    { "spinBox_VALIDATION_OFFSET", "1280" },
    { "spinBox_PRISMA_OFFSET", "0" },
    { "lineEdit_REFERENCE_Z", "32000" },
    { "lineEdit_POSITION_Z", "32000" },
    { "lineEdit_SHIFT_GFP_X", "0.00" },
    { "lineEdit_SHIFT_GFP_Y", "0.00" },
    { "lineEdit_SHIFT_RFP_X", "0.00" },
    { "lineEdit_SHIFT_RFP_Y", "0.00" },
};
constexpr Shown kStored[] = {
    { "lineEdit_MAGNIFICATION", "3.97" },
    { "lineEdit_VOLUME_FACTOR", "0.10963" },
    { "lineEdit_VOLUME_FACTOR_1CH", "194.10000" },
    { "lineEdit_VOLUME_FACTOR_2CH", "760.20000" },
    { "lineEdit_VOLUME_FACTOR_3CH", "761.00000" },
    { "lineEdit_VOLUME_FACTOR_8CH", "1824.40000" },
    { "lineEdit_VOLUME_FACTOR_PRISMA", "1824.50000" },
    { "lineEdit_VOLUME_FACTOR_PRISMA_MAX", "912.30000" },
    { "doubleSpinBox_VOLUME_OFFSET", "1.25" },
    { "lineEdit_SERIAL_MODEL", "QR9" },
    { "lineEdit_SERIAL_PREFIX", "26" },
    { "lineEdit_SERIAL_SUFFIX", "00417" },
    { "lineEdit_REFERENCE_AUTOFOCUS", "31500" },
    { "lineEdit_OFFSET_Z", "4" },
    { "spinBox_REUSABLE_OFFSET", "5000" },
    { "spinBox_VALIDATION_OFFSET", "1300" },
    { "spinBox_PRISMA_OFFSET", "600" },
    { "lineEdit_REFERENCE_Z", "33420" },
    { "lineEdit_POSITION_Z", "33420" },
    { "lineEdit_SHIFT_GFP_X", "1.50" },
    { "lineEdit_SHIFT_GFP_Y", "-2.25" },
    { "lineEdit_SHIFT_RFP_X", "0.12" },
    { "lineEdit_SHIFT_RFP_Y", "12.00" },
};

template <std::size_t N> QString firstDifference(Desk& desk, const Shown (&expected)[N])
{
    for (const Shown& field : expected) {
        const QString found = desk.text(field.field);
        if (found != field.text)
            return QString("%1 shows %2 and not %3").arg(field.field, found, field.text);
    }
    return QString();
}

} // namespace

void tst_bringup::missingFile_givesEveryDefault()
{
    Desk::removeSettings();
    Desk desk;
    QVERIFY(desk.connectUnit());
    QCOMPARE(firstDifference(desk, kDefaults), QString());
}

void tst_bringup::storedValues_areShown()
{
    Desk::putSettings(kAll);
    Desk desk;
    QVERIFY(desk.connectUnit());
    QCOMPARE(firstDifference(desk, kStored), QString());
    QVERIFY(desk.widget("radioButton_VATLINE_YES")->property("checked").toBool());
    QVERIFY(desk.widget("radioButton_TALLYLINK_NO")->property("checked").toBool());
    QVERIFY(desk.widget("radioButton_QLPK_YES")->property("checked").toBool());
}

void tst_bringup::unreadableFile_givesDefaultsAndTheUnitComesUp_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("binary") << QByteArray::fromHex("00ff7f454c46020101ff00000d0a5bffe05d3d25").repeated(200);
    QTest::newRow("no groups") << QByteArray("Z reference=5\nSerial\n=\n[\n");
    QTest::newRow("one long line") << QByteArray(300000, '[');
}

void tst_bringup::unreadableFile_givesDefaultsAndTheUnitComesUp()
{
    QFETCH(QByteArray, content);
    Desk::putSettings(content);
    Desk desk;
    QVERIFY(desk.connectUnit());
    QCOMPARE(firstDifference(desk, kDefaults), QString());
}

void tst_bringup::oddNumbers_areReadAsTheCLibraryReadsThem()
{
    Desk::putSettings("[Calibration]\nZ reference=89abc\nZ offset=x\nZ ref 2ch=-12\nReusable offset=20000\n"
                      "[TAVO-QR9]\nMagnification=4.0000001\nVolume offset=1,5\n");
    Desk desk;
    QVERIFY(desk.connectUnit());
    QCOMPARE(desk.text("lineEdit_REFERENCE_AUTOFOCUS"), QString("89"));
    QCOMPARE(desk.text("lineEdit_OFFSET_Z"), QString("0"));
    QCOMPARE(desk.text("lineEdit_REFERENCE_Z"), QString("-12"));
    QCOMPARE(desk.text("spinBox_REUSABLE_OFFSET"), QString("10000")); // the box's own limit
    QCOMPARE(desk.text("lineEdit_MAGNIFICATION"), QString("4"));
    QCOMPARE(desk.text("doubleSpinBox_VOLUME_OFFSET"), QString("1.00"));
}

void tst_bringup::shifts_areSinglePrecision()
{
    Desk::putSettings("[Miscellaneous]\nPixel shift GFP X=0.045\n");
    Desk desk;
    QVERIFY(desk.connectUnit());
    QCOMPARE(desk.text("lineEdit_SHIFT_GFP_X"), QString("0.05"));
}

void tst_bringup::emptyStepAndSpeed_areSentAsTyped()
{
    Desk::removeSettings();
    Desk desk;
    QVERIFY(desk.connectUnit());
    desk.widget<QLineEdit>("lineEdit_STEP_Z")->setText("");
    desk.widget<QLineEdit>("lineEdit_SPEED_Z")->setText("fast");
    const int mark = desk.rig.mark();
    QVERIFY(desk.window().setup_STAGE());
    QCOMPARE(desk.rig.sentSince(mark), QStringList({ "$Z#STAGE STEP ", "$Z#STAGE SPEED fast" }));
}

void tst_bringup::heightOfTheSlide_isTheStandbyPosition()
{
    Desk::putSettings("[Calibration]\nZ ref 2ch=31920\n");
    Desk desk;
    const int mark = desk.rig.mark();
    QVERIFY(desk.connectUnit());
    QVERIFY(desk.rig.sentSince(mark).contains("$Z#STAGE ABS 31920"));
    QCOMPARE(desk.rig.state().value("z").toInt(), 31920);
}

void tst_bringup::serialWithFewParts_doesNotCrash_data()
{
    QTest::addColumn<QByteArray>("serial");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("one") << QByteArray("TV9") << "TV9"
                         << ""
                         << "";
    QTest::newRow("two") << QByteArray("TV9-01") << "TV9"
                         << "01"
                         << "";
    QTest::newRow("empty parts") << QByteArray("--") << ""
                                 << ""
                                 << "";
    QTest::newRow("four") << QByteArray("TV9-01-23-45") << "TV9"
                          << "01"
                          << "23";
}

void tst_bringup::serialWithFewParts_doesNotCrash()
{
    QFETCH(QByteArray, serial);
    Desk::putSettings("[TAVO-QR9]\nSerial=" + serial + "\n");
    Desk desk;
    QVERIFY(desk.connectUnit());
    QTEST(desk.text("lineEdit_SERIAL_MODEL"), "model");
    QTEST(desk.text("lineEdit_SERIAL_PREFIX"), "prefix");
    QTEST(desk.text("lineEdit_SERIAL_SUFFIX"), "suffix");
}

void tst_bringup::serialWithB_hidesFluorescence_data()
{
    QTest::addColumn<QByteArray>("serial");
    QTest::newRow("first") << QByteArray("TV9-01-B0001");
    QTest::newRow("behind what the field shows") << QByteArray("TV9-01-00001B");
}

void tst_bringup::serialWithB_hidesFluorescence()
{
    QFETCH(QByteArray, serial);
    Desk::putSettings("[TAVO-QR9]\nSerial=" + serial + "\n");
    Desk desk;
    QVERIFY(desk.connectUnit());
    QVERIFY(!desk.isShown("pushButton_ILLUMINATION_GFP"));
    QVERIFY(!desk.isShown("pushButton_ILLUMINATION_RFP"));
    desk.close();
    Desk::putSettings("[TAVO-QR9]\nSerial=TVB-B1-b0001\n"); // a small b, and elsewhere
    QVERIFY(desk.connectUnit());
    QVERIFY(desk.isShown("pushButton_ILLUMINATION_GFP"));
}

void tst_bringup::options_areRecognisedBySubstring()
{
    Desk::putSettings("[TAVO-QR9]\nVatline=No, Yes\nTallyLink=yes\nQLPK=Yes!\n[ArduCAM]\nHor. Mirror=Yes!\n");
    Desk desk;
    desk.open();
    QVERIFY(desk.widget("radioButton_VATLINE_YES")->property("checked").toBool());
    QVERIFY(desk.widget("radioButton_TALLYLINK_NO")->property("checked").toBool());
    QVERIFY(desk.widget("radioButton_QLPK_YES")->property("checked").toBool());
    // The mirrors compare the whole text, and the vertical one is on without a key.
    QVERIFY(!desk.window().findChild<QWidget*>("checkBox_HOR_MIRROR")->property("checked").toBool());
    QVERIFY(desk.window().findChild<QWidget*>("checkBox_VER_MIRROR")->property("checked").toBool());
    QVERIFY(desk.waitForConnection());
}

void tst_bringup::folderInPlaceOfTheFile_losesNothingAndComesUp()
{
    // Nothing can be written there, not even by root.
    Desk::removeSettings();
    QVERIFY(QDir().mkdir("/root/TAVO_QR9/TAVO_QR9.ini"));
    {
        Desk desk;
        QVERIFY(desk.connectUnit());
        QCOMPARE(firstDifference(desk, kDefaults), QString());
        QVERIFY(desk.log.contains("settings cannot be read"));
    }
    QVERIFY(QDir().rmdir("/root/TAVO_QR9/TAVO_QR9.ini"));
}

WORKFLOW_MAIN(tst_bringup)
#include "tst_bringup.moc"
