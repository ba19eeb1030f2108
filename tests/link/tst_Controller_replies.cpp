#include "tests/link/Link.h"

#include <QLoggingCategory>
#include <QTest>

namespace {

QList<QByteArray> cutBehind(const QByteArray& bytes, const QList<int>& places)
{
    QList<QByteArray> pieces;
    int begin = 0;
    for (const int place : places) {
        pieces << bytes.mid(begin, place - begin);
        begin = place;
    }
    pieces << bytes.mid(begin);
    return pieces;
}

/// What must be delivered: at each cut (and at the end) that stands behind a line end, everything since the
/// last one.
QStringList deliveredWhenCutBehind(const QByteArray& bytes, QList<int> places)
{
    QStringList texts;
    int begin = 0;
    for (const int place : places << bytes.size()) {
        if (bytes.left(place).endsWith("\r\n")) {
            texts << QString::fromLatin1(bytes.mid(begin, place - begin));
            begin = place;
        }
    }
    return texts;
}

} // namespace

// How the bytes that come in are cut into reply texts.
class tst_Controller_replies : public QObject {
    Q_OBJECT

private slots:
    void init();

    void replySplitOverTwoReads_isDeliveredOnce();
    void threeRepliesCutInEveryWay_areDeliveredAtEachLineEnd();
    void threeBoardRepliesCutAtEveryTwoPlaces_areDeliveredAtEachLineEnd();
    void twoRepliesInOneRead_areDeliveredAsOneText();
    void replyEndingInLineFeedAlone_isNeverDelivered();
    void replyWithNul_isCutAtTheNul();
    void bytesAbove127_areLatin1();
    void replyText_isLogged();
};

void tst_Controller_replies::init()
{
    QLoggingCategory::setFilterRules(QString());
}

void tst_Controller_replies::replySplitOverTwoReads_isDeliveredOnce()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#Z#STAGE RU" }));
    QCOMPARE(link.replies.size(), 0);
    QVERIFY(link.sendInPieces({ "N#32000\r\n" }));
    QCOMPARE(link.texts(), QStringList { "$OK#Z#STAGE RUN#32000\r\n" });
    QVERIFY(link.controller.m_readBuffer.isEmpty());
}

void tst_Controller_replies::threeRepliesCutInEveryWay_areDeliveredAtEachLineEnd()
{
    const QByteArray bytes = "$1\r\n2\r\n$3\r\n";
    QLoggingCategory::setFilterRules("default.debug=false"); // thousands of lines
    Link link;
    const unsigned places = static_cast<unsigned>(bytes.size()) - 1;
    for (unsigned way = 0; way < (1U << places); ++way) {
        QList<int> cuts;
        for (unsigned place = 0; place < places; ++place) {
            if ((way >> place) & 1U) {
                cuts << static_cast<int>(place + 1);
            }
        }
        link.replies.clear();
        QVERIFY(link.sendInPieces(cutBehind(bytes, cuts)));
        QCOMPARE(link.texts(), deliveredWhenCutBehind(bytes, cuts));
    }
}

void tst_Controller_replies::threeBoardRepliesCutAtEveryTwoPlaces_areDeliveredAtEachLineEnd()
{
    const QByteArray bytes = "$OK#A#VER#1.0\r\n$OK#Z#STAGE RUN#-7\r\n$OK#A#LED OFF1\r\n";
    QLoggingCategory::setFilterRules("default.debug=false"); // thousands of lines
    Link link;
    for (int first = 1; first < bytes.size(); ++first) {
        for (int second = first + 1; second < bytes.size(); ++second) {
            link.replies.clear();
            QVERIFY(link.sendInPieces(cutBehind(bytes, { first, second })));
            QCOMPARE(link.texts(), deliveredWhenCutBehind(bytes, { first, second }));
        }
    }
}

void tst_Controller_replies::twoRepliesInOneRead_areDeliveredAsOneText()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\r\n$OK#X#STAGE ABS 12\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#LED OFF1\r\n$OK#X#STAGE ABS 12\r\n" });
}

void tst_Controller_replies::replyEndingInLineFeedAlone_isNeverDelivered()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#A#LED OFF1\n", "\n" }));
    QCOMPARE(link.replies.size(), 0);
    // It stays and joins the next text.
    QVERIFY(link.sendInPieces({ "$OK#A#LED OFF2\r\n" }));
    QCOMPARE(link.texts(), QStringList { "$OK#A#LED OFF1\n\n$OK#A#LED OFF2\r\n" });
}

void tst_Controller_replies::replyWithNul_isCutAtTheNul()
{
    Link link;
    link.board.send(literal("$OK#A\0#LED OFF1\r\n"));
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A" });
    QVERIFY(link.controller.m_readBuffer.isEmpty());
}

void tst_Controller_replies::bytesAbove127_areLatin1()
{
    Link link;
    link.board.send("$\xB5\xE9\r\n");
    QTRY_COMPARE(link.texts(), QStringList { QString::fromUtf8("$µé\r\n") });
}

void tst_Controller_replies::replyText_isLogged()
{
    Link link;
    QTest::ignoreMessage(QtDebugMsg, R"([Controller] <<-----  "$OK#A#LED OFF1\r\n")");
    link.board.send("$OK#A#LED OFF1\r\n");
    QTRY_COMPARE(link.replies.size(), 1);
}

QTEST_GUILESS_MAIN(tst_Controller_replies)

#include "tst_Controller_replies.moc"
