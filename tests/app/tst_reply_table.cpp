#include "app/reply_table.h"

#include <QtTest>

/// Replies of the board, cut into the fields of the record.
class tst_reply_table : public QObject {
    Q_OBJECT

private slots:
    void reply_fillsItsFields_data();
    void reply_fillsItsFields();
    void replyWithoutValue_keepsTheEarlierValue();
    void settingEcho_namesTheDeviceOnly_data();
    void settingEcho_namesTheDeviceOnly();
    void otherText_isUnknown_data();
    void otherText_isUnknown();
    void versionReply_givesTheTextBehindTheThirdHash();
    void shortReply_givesZero_data();
    void shortReply_givesZero();
};

namespace {

constexpr std::int32_t kOld = 77; ///< what an earlier reply left in a field

protocol_Controller_info parsed(const QString& frame, bool* acts)
{
    protocol_Controller_info info;
    info.device = info.function = info.value = info.value2 = kOld;
    const ReplyRow* row = findReply(frame);
    *acts = row != nullptr && fillProtocolInfo(*row, frame, info);
    return info;
}

} // namespace

void tst_reply_table::reply_fillsItsFields_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<int>("device");
    QTest::addColumn<int>("function");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("value2");
    const auto row = [](const char* frame, int device, int function, int value, int value2) {
        QTest::newRow(QByteArray(frame).trimmed().constData())
            << QString(frame) << device << function << value << value2;
    };
    row("$OK#A#LED BRT1 7 6\r\n", 0, 1, 1, kOld);
    row("$OK#A#LED BRT2 300\r\n", 0, 1, 2, kOld);
    row("$OK#A#LED BRT3 100\r\n", 0, 1, 3, kOld);
    row("$OK#A#LED OFF3\r\n", 0, 1, 0, kOld); // its last character is the line end
    row("$OK#X#STAGE ORIGIN\r\n", 1, 0, kOld, kOld);
    row("$OK#X#STAGE INSERT\r\n", 1, 1, kOld, kOld);
    row("$OK#X#STAGE EJECT\r\n", 1, 2, kOld, kOld);
    row("$OK#X#STAGE RUN#500\r\n", 1, 8, 500, kOld);
    row("$OK#X#STAGE ABS 1234\r\n", 1, 9, 1234, kOld);
    row("$OK#X#STAGE ABS -480\r\n", 1, 9, -480, kOld);
    row("$OK#X#STAGE POS#12000\r\n", 1, 11, 12000, kOld);
    row("$OK#Z#STAGE ORIGIN#9\r\n", 2, 0, kOld, kOld);
    row("$OK#Z#STAGE RUN#31540\r\n", 2, 8, 31540, kOld);
    row("$OK#Z#STAGE ABS 32000\r\n", 2, 9, 32000, kOld);
    row("$OK#Z#STAGE POS#1234\r\n", 2, 11, 1234, kOld);
    row("$OK#Z#STAGE BOTTOM\r\n", 2, 3, kOld, kOld);
    row("$OK#Z#STAGE TOP\r\n", 2, 4, kOld, kOld);
    row("$OK#A#FILTER ORIGIN\r\n", 3, 0, kOld, kOld);
    row("$OK#A#FILTER GO 2\r\n", 3, 1, kOld, kOld);
    row("$OK#A#FILTER READ1#10\r\n", 3, 2, 1, 10);
    row("$OK#A#FILTER READ2#20\r\n", 3, 2, 2, 20);
    row("$OK#A#FILTER READ3#9999\r\n", 3, 2, 3, 9999);
    row("$OK#Z#STAGE POS#12x\r\n", 2, 11, 0, kOld); // unreadable
}

void tst_reply_table::reply_fillsItsFields()
{
    QFETCH(QString, frame);
    bool acts = false;
    const protocol_Controller_info info = parsed(frame, &acts);
    QVERIFY(acts);
    QTEST(info.device, "device");
    QTEST(info.function, "function");
    QTEST(info.value, "value");
    QTEST(info.value2, "value2");
}

void tst_reply_table::replyWithoutValue_keepsTheEarlierValue()
{
    protocol_Controller_info info;
    QVERIFY(fillProtocolInfo(*findReply("$OK#Z#STAGE RUN#500\r\n"), "$OK#Z#STAGE RUN#500\r\n", info));
    QVERIFY(fillProtocolInfo(*findReply("$OK#X#STAGE EJECT\r\n"), "$OK#X#STAGE EJECT\r\n", info));
    QCOMPARE(info.device, 1);
    QCOMPARE(info.function, 2);
    QCOMPARE(info.value, 500);
}

void tst_reply_table::settingEcho_namesTheDeviceOnly_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<int>("device");
    QTest::newRow("X step") << "$OK#X#STAGE STEP 13\r\n" << 1;
    QTest::newRow("X dir") << "$OK#X#STAGE DIR PLUS\r\n" << 1;
    QTest::newRow("Z step") << "$OK#Z#STAGE STEP 115\r\n" << 2;
    QTest::newRow("Z speed") << "$OK#Z#STAGE SPEED 100\r\n" << 2;
    QTest::newRow("Z dir") << "$OK#Z#STAGE DIR MINUS\r\n" << 2;
    QTest::newRow("Z stop") << "$OK#Z#STAGE STOP\r\n" << 2;
    QTest::newRow("correction") << "$OK#A#FILTER COR1 10\r\n" << 3;
}

void tst_reply_table::settingEcho_namesTheDeviceOnly()
{
    QFETCH(QString, frame);
    bool acts = true;
    const protocol_Controller_info info = parsed(frame, &acts);
    QVERIFY(!acts);
    QTEST(info.device, "device");
    QCOMPARE(info.function, kOld);
    QCOMPARE(info.value, kOld);
    QCOMPARE(info.value2, kOld);
}

void tst_reply_table::otherText_isUnknown_data()
{
    QTest::addColumn<QString>("frame");
    QTest::newRow("negative answer") << "$ERR#Z#STAGE RUN\r\n";
    QTest::newRow("lower case") << "$ok#Z#STAGE RUN#5\r\n";
    QTest::newRow("other unit") << "$OK#Y#STAGE RUN#5\r\n";
    QTest::newRow("noise") << "$\x01\x02";
    QTest::newRow("nothing") << "$";
}

void tst_reply_table::otherText_isUnknown()
{
    QFETCH(QString, frame);
    QVERIFY(findReply(frame) == nullptr);
}

void tst_reply_table::versionReply_givesTheTextBehindTheThirdHash()
{
    const QString frame = "$OK#A#VER#QR9 1.07\r\n";
    bool acts = true;
    const protocol_Controller_info info = parsed(frame, &acts);
    QVERIFY(!acts);
    QCOMPARE(info.device, 0);
    QCOMPARE(info.function, kOld);
    QCOMPARE(versionText(frame), QString("QR9 1.07"));
    QCOMPARE(versionText("$OK#A#VER\r\n"), QString());
}

void tst_reply_table::shortReply_givesZero_data()
{
    QTest::addColumn<QString>("frame");
    QTest::newRow("RUN") << "$OK#Z#STAGE RUN\r\n";
    QTest::newRow("ABS") << "$OK#X#STAGE ABS\r\n";
    QTest::newRow("LED") << "$OK#A#LED\r\n";
}

void tst_reply_table::shortReply_givesZero()
{
    QFETCH(QString, frame);
    bool acts = false;
    QCOMPARE(parsed(frame, &acts).value, 0);
    QVERIFY(acts);
}

QTEST_APPLESS_MAIN(tst_reply_table)
#include "tst_reply_table.moc"
