#include "PseudoPort.h"
#include "link/Controller.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

#include <array>
#include <csignal>
#include <memory>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A literal with NUL bytes in it.
template <int Size> QByteArray literal(const char (&text)[Size])
{
    return QByteArray(text, Size - 1);
}

// A controller on a port whose other end the test holds.
struct Link {
    PseudoPort board;
    Controller controller;
    QSignalSpy replies { &controller, &Controller::sig_parsing_protocol_Controller };

    Link()
    {
        controller.m_serialPort->setPortName(board.name());
        if (!controller.m_serialPort->open(QIODevice::ReadWrite)) {
            qFatal("%s does not open: %s", qPrintable(board.name()),
                qPrintable(controller.m_serialPort->errorString()));
        }
    }

    QStringList texts() const
    {
        QStringList all;
        for (const QList<QVariant>& arguments : replies) {
            all << arguments.at(0).toString();
        }
        return all;
    }

    // Sends each piece only when the one before has been read, so that a piece is a read. False when one
    // never is.
    bool sendInPieces(const QList<QByteArray>& pieces)
    {
        int expected = bytesRead();
        for (const QByteArray& piece : pieces) {
            board.send(piece);
            expected += piece.size();
            QElapsedTimer clock;
            clock.start();
            while (bytesRead() != expected) {
                if (clock.hasExpired(5000)) {
                    return false;
                }
                QCoreApplication::processEvents();
            }
        }
        return true;
    }

private:
    int bytesRead() const { return texts().join(QString()).size() + controller.m_readBuffer.size(); }
};

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

// What must be delivered: at each cut (and at the end) that stands behind a line end, everything since the
// last one.
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

class tst_Controller : public QObject {
    Q_OBJECT

private slots:
    void init();

    void construction_opensNoPort();

    void replySplitOverTwoReads_isDeliveredOnce();
    void threeRepliesCutInEveryWay_areDeliveredAtEachLineEnd();
    void threeBoardRepliesCutAtEveryTwoPlaces_areDeliveredAtEachLineEnd();
    void twoRepliesInOneRead_areDeliveredAsOneText();
    void replyEndingInLineFeedAlone_isNeverDelivered();
    void replyWithNul_isCutAtTheNul();
    void bytesAbove127_areLatin1();
    void replyText_isLogged();

    void versionReply_setsFoundBeforeTheSignal();
    void versionReplyAmongOthers_setsFound();
    void otherReply_leavesFoundUnset();
    void secondVersionReply_keepsFoundAndIsDelivered();

    void writeCommand_sendsTheLineAsItIs();
    void writeCommand_isLogged();
    void versionQuery_isSentStraight();

    void directRead_returnsTheWholeReply();
    void directRead_hidesTheReplyFromTheParser();
    void directReadOfReplyInPieces_waitsForTheLineEnd();
    void directReadOfLineFeedAlone_waitsOn();
    void directReadOfAnswerThatIsThereAlready_doesNotWait();
    void directReadOfReplyThatBeginsWithNul_isEmpty();
    void directReadOfReplyWithNul_isCutAtTheNul();
    void directRead_isLogged();
    void directReadAfterWriteCommand_takesTheEarlierReplyAndItsOwnReachesTheParser();
    void bytesHeldBeforeADirectRead_joinTheNextReply();
    void directReadWithinTheParser_isPossible();
    void directReadOfSilentBoard_holdsTheCallerAtRest_data();
    void directReadOfSilentBoard_holdsTheCallerAtRest();

    void searchWithoutPorts_failsAfterItsFirstSecond();
    void searchOfPortsThatDoNotOpen_costsASecondEach();
    void searchStartedDuringASearch_takesItsPlace();
    void searchWithoutPortsAfterASuccess_closesThePort();
};

void tst_Controller::init()
{
    QLoggingCategory::setFilterRules(QString());
    PseudoPort port;
    QVERIFY2(port.isGood(), "no pseudo-terminal to be had");
}

void tst_Controller::construction_opensNoPort()
{
    const Controller controller;
    QVERIFY(!controller.m_serialPort->isOpen());
    QCOMPARE(controller.m_serialPort->parent(), &controller);
    QVERIFY(!controller.m_bFound);
}

void tst_Controller::replySplitOverTwoReads_isDeliveredOnce()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#Z#STAGE RU" }));
    QCOMPARE(link.replies.size(), 0);
    QVERIFY(link.sendInPieces({ "N#32000\r\n" }));
    QCOMPARE(link.texts(), QStringList { "$OK#Z#STAGE RUN#32000\r\n" });
    QVERIFY(link.controller.m_readBuffer.isEmpty());
}

void tst_Controller::threeRepliesCutInEveryWay_areDeliveredAtEachLineEnd()
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

void tst_Controller::threeBoardRepliesCutAtEveryTwoPlaces_areDeliveredAtEachLineEnd()
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

void tst_Controller::twoRepliesInOneRead_areDeliveredAsOneText()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\r\n$OK#X#STAGE ABS 12\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#LED OFF1\r\n$OK#X#STAGE ABS 12\r\n" });
}

void tst_Controller::replyEndingInLineFeedAlone_isNeverDelivered()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#A#LED OFF1\n", "\n" }));
    QCOMPARE(link.replies.size(), 0);
    // It stays and joins the next text.
    QVERIFY(link.sendInPieces({ "$OK#A#LED OFF2\r\n" }));
    QCOMPARE(link.texts(), QStringList { "$OK#A#LED OFF1\n\n$OK#A#LED OFF2\r\n" });
}

void tst_Controller::replyWithNul_isCutAtTheNul()
{
    Link link;
    link.board.send(literal("$OK#A\0#LED OFF1\r\n"));
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A" });
    QVERIFY(link.controller.m_readBuffer.isEmpty());
}

void tst_Controller::bytesAbove127_areLatin1()
{
    Link link;
    link.board.send("$\xB5\xE9\r\n");
    QTRY_COMPARE(link.texts(), QStringList { QString::fromUtf8("$µé\r\n") });
}

void tst_Controller::replyText_isLogged()
{
    Link link;
    QTest::ignoreMessage(QtDebugMsg, R"([Controller] <<-----  "$OK#A#LED OFF1\r\n")");
    link.board.send("$OK#A#LED OFF1\r\n");
    QTRY_COMPARE(link.replies.size(), 1);
}

void tst_Controller::versionReply_setsFoundBeforeTheSignal()
{
    Link link;
    bool foundAtTheSignal = false;
    connect(&link.controller, &Controller::sig_parsing_protocol_Controller, this,
        [&] { foundAtTheSignal = link.controller.m_bFound; });
    link.board.send("$OK#A#VER#1.2.3\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#VER#1.2.3\r\n" });
    QVERIFY(foundAtTheSignal);
}

void tst_Controller::versionReplyAmongOthers_setsFound()
{
    Link link;
    link.board.send("noise$OK#A#LED OFF1\r\n$OK#A#VER#1\r\n");
    QTRY_COMPARE(link.replies.size(), 1);
    QVERIFY(link.controller.m_bFound);
}

void tst_Controller::otherReply_leavesFoundUnset()
{
    Link link;
    link.board.send("$OK#A#VE\r\n");
    QTRY_COMPARE(link.replies.size(), 1);
    QVERIFY(!link.controller.m_bFound);
}

void tst_Controller::secondVersionReply_keepsFoundAndIsDelivered()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#A#VER#1\r\n", "$OK#A#VER#1\r\n" }));
    QVERIFY(link.controller.m_bFound);
    QCOMPARE(link.replies.size(), 2);
}

void tst_Controller::writeCommand_sendsTheLineAsItIs()
{
    Link link;
    link.controller.write_command("$Z#STAGE RUN\n");
    link.controller.write_command("no line end");
    const QByteArray expected = "$Z#STAGE RUN\nno line end";
    QTRY_COMPARE(link.controller.m_serialPort->bytesToWrite(), 0);
    QCOMPARE(link.board.receive(expected.size()), expected);
}

void tst_Controller::writeCommand_isLogged()
{
    Link link;
    QTest::ignoreMessage(
        QtDebugMsg, R"(void Controller::write_command(QString) command :  "$Z#STAGE RUN\n")");
    link.controller.write_command("$Z#STAGE RUN\n");
}

void tst_Controller::versionQuery_isSentStraight()
{
    Link link;
    link.controller.check_Connection_Controller();
    QTRY_COMPARE(link.controller.m_serialPort->bytesToWrite(), 0);
    QCOMPARE(link.board.receive(7), QByteArray("$A#VER\n"));
}

void tst_Controller::directRead_returnsTheWholeReply()
{
    Link link;
    QByteArray command;
    std::thread board([&] {
        command = link.board.receive(13);
        link.board.send("$OK#Z#STAGE POS#31000\r\n");
    });
    const QString reply = link.controller.direct_read("$Z#STAGE POS\n");
    board.join();
    QCOMPARE(command, QByteArray("$Z#STAGE POS\n"));
    QCOMPARE(reply, QString("$OK#Z#STAGE POS#31000\r\n"));
}

void tst_Controller::directRead_hidesTheReplyFromTheParser()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\r\n");
    link.controller.direct_read("$A#LED OFF1\n");
    QVERIFY(link.controller.m_readBuffer.isEmpty());
    // The next reply goes the usual way again, and exactly once.
    link.board.send("$OK#A#LED OFF2\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#LED OFF2\r\n" });
}

void tst_Controller::directReadOfReplyInPieces_waitsForTheLineEnd()
{
    Link link;
    std::thread board([&] {
        link.board.receive(13);
        for (const char* piece : { "$OK#Z#STA", "GE POS#31", "000\r", "\n" }) {
            link.board.send(piece);
            std::this_thread::sleep_for(std::chrono::milliseconds(5)); // lets the piece be a read of its own
        }
    });
    const QString reply = link.controller.direct_read("$Z#STAGE POS\n");
    board.join();
    QCOMPARE(reply, QString("$OK#Z#STAGE POS#31000\r\n"));
}

void tst_Controller::directReadOfLineFeedAlone_waitsOn()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\n");
    std::thread board([&] {
        link.board.receive(12);
        link.board.send("$OK#A#LED OFF2\r\n");
    });
    const QString reply = link.controller.direct_read("$A#LED OFF1\n");
    board.join();
    QCOMPARE(reply, QString("$OK#A#LED OFF1\n$OK#A#LED OFF2\r\n"));
}

void tst_Controller::directReadOfAnswerThatIsThereAlready_doesNotWait()
{
    Link link;
    QElapsedTimer clock;
    clock.start();
    for (int round = 0; round < 20; ++round) {
        link.board.send("$OK#A#LED OFF1\r\n");
        QCOMPARE(link.controller.direct_read("$A#LED OFF1\n"), QString("$OK#A#LED OFF1\r\n"));
    }
    // One wait for bytes that never come would take 10 s.
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
}

void tst_Controller::directReadOfReplyThatBeginsWithNul_isEmpty()
{
    Link link;
    link.board.send(literal("\0$OK#Z#STAGE DIR PLUS\r\n"));
    QVERIFY(link.controller.direct_read("$Z#STAGE DIR PLUS\n").isEmpty());
}

void tst_Controller::directReadOfReplyWithNul_isCutAtTheNul()
{
    Link link;
    link.board.send(literal("$OK#Z\0#STAGE DIR PLUS\r\n"));
    QCOMPARE(link.controller.direct_read("$Z#STAGE DIR PLUS\n"), QString("$OK#Z"));
}

void tst_Controller::directRead_isLogged()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\r\n");
    QTest::ignoreMessage(
        QtDebugMsg, R"(QString Controller::direct_read(QString) command :  "$A#LED OFF1\n")");
    QTest::ignoreMessage(
        QtDebugMsg, R"(QString Controller::direct_read(QString) reply :  "$OK#A#LED OFF1\r\n")");
    link.controller.direct_read("$A#LED OFF1\n");
}

void tst_Controller::directReadAfterWriteCommand_takesTheEarlierReplyAndItsOwnReachesTheParser()
{
    Link link;
    link.controller.write_command("$Z#STAGE RUN\n");
    link.board.send("$OK#Z#STAGE RUN#100\r\n");
    QCOMPARE(link.controller.direct_read("$A#LED OFF1\n"), QString("$OK#Z#STAGE RUN#100\r\n"));
    link.board.send("$OK#A#LED OFF1\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#LED OFF1\r\n" });
}

void tst_Controller::bytesHeldBeforeADirectRead_joinTheNextReply()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#X#ST" }));
    link.board.send("$OK#A#LED OFF1\r\n");
    QCOMPARE(link.controller.direct_read("$A#LED OFF1\n"), QString("$OK#A#LED OFF1\r\n"));
    QCOMPARE(link.controller.m_readBuffer, QByteArray("$OK#X#ST"));
    link.board.send("AGE ABS 5\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#X#STAGE ABS 5\r\n" });
}

void tst_Controller::directReadWithinTheParser_isPossible()
{
    Link link;
    QString reply;
    connect(&link.controller, &Controller::sig_parsing_protocol_Controller, this, [&] {
        if (reply.isEmpty()) {
            link.board.send("$OK#Z#STAGE POS#7\r\n");
            reply = link.controller.direct_read("$Z#STAGE POS\n");
        }
    });
    link.board.send("$OK#Z#STAGE RUN#7\r\n");
    QTRY_COMPARE(reply, QString("$OK#Z#STAGE POS#7\r\n"));
    link.board.send("$OK#A#LED OFF1\r\n");
    QTRY_COMPARE(link.texts(), (QStringList { "$OK#Z#STAGE RUN#7\r\n", "$OK#A#LED OFF1\r\n" }));
}

void tst_Controller::directReadOfSilentBoard_holdsTheCallerAtRest_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("silent board") << "silent";
    QTest::newRow("cable pulled") << "pulled";
    QTest::newRow("port closed") << "closed";
}

// The call never comes back, so it is made in a process of its own that an alarm ends.
void tst_Controller::directReadOfSilentBoard_holdsTheCallerAtRest()
{
    QFETCH(QString, state);
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        std::signal(SIGALRM, SIG_DFL);
        Link link;
        if (state == "pulled") {
            link.board.hangUp();
        } else if (state == "closed") {
            link.controller.m_serialPort->close();
        }
        alarm(2);
        link.controller.direct_read("$Z#STAGE POS\n");
        _exit(0);
    }
    int status = 0;
    rusage usage {};
    QCOMPARE(wait4(child, &status, 0, &usage), child);
    QVERIFY2(WIFSIGNALED(status), "direct_read came back");
    QCOMPARE(WTERMSIG(status), SIGALRM);
    const double processorSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + 1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    QVERIFY2(processorSeconds < 0.5, qPrintable(QString::number(processorSeconds)));
}

void tst_Controller::searchWithoutPorts_failsAfterItsFirstSecond()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    QTest::ignoreMessage(QtDebugMsg, "[Error] :  COM Port [Controller] not find !!!");
    QElapsedTimer clock;
    clock.start();
    controller.do_COM_PortFind_Controller();
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 990, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.first(), (QList<QVariant> { false, QString() }));
    QVERIFY(!finished.wait(1200));
}

void tst_Controller::searchOfPortsThatDoNotOpen_costsASecondEach()
{
    Controller controller;
    controller.m_portList
        = { QSerialPortInfo(), QSerialPortInfo() }; // without a name, so they cannot be opened
    controller.m_portLast = 1;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    // The (empty) name and the reason stand without a separator; what opens is the folder /dev.
    const char* openFailure = R"([Error] :  "Is a directory")";
    QTest::ignoreMessage(QtDebugMsg, openFailure);
    QTest::ignoreMessage(QtDebugMsg, openFailure);
    QTest::ignoreMessage(QtDebugMsg, "[Error] :  COM Port [Controller] not find !!!");
    QElapsedTimer clock;
    clock.start();
    controller.do_COM_PortFind_Controller();
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 1980, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.first(), (QList<QVariant> { false, QString() }));
    QCOMPARE(controller.m_portIndex, 1);
}

void tst_Controller::searchStartedDuringASearch_takesItsPlace()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    controller.do_COM_PortFind_Controller();
    controller.do_COM_PortFind_Controller();
    QVERIFY(finished.wait());
    QVERIFY(!finished.wait(1200));
}

void tst_Controller::searchWithoutPortsAfterASuccess_closesThePort()
{
    Link link;
    QSignalSpy finished(&link.controller, &Controller::sig_finish_find_Controller);
    link.controller.do_COM_PortFind_Controller();
    QVERIFY(!link.controller.m_serialPort->isOpen());
    QVERIFY(finished.wait());
    QCOMPARE(finished.first(), (QList<QVariant> { false, QString() }));
}

QTEST_GUILESS_MAIN(tst_Controller)

#include "tst_Controller.moc"
