#include "tests/link/Link.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// Exchanges that block: who gets the reply, and what a board that says nothing does to the caller.
class tst_Controller_directread : public QObject {
    Q_OBJECT

private slots:
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
};

void tst_Controller_directread::directRead_returnsTheWholeReply()
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

void tst_Controller_directread::directRead_hidesTheReplyFromTheParser()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\r\n");
    link.controller.direct_read("$A#LED OFF1\n");
    QVERIFY(link.controller.m_readBuffer.isEmpty());
    // The next reply goes the usual way again, and exactly once.
    link.board.send("$OK#A#LED OFF2\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#LED OFF2\r\n" });
}

void tst_Controller_directread::directReadOfReplyInPieces_waitsForTheLineEnd()
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

void tst_Controller_directread::directReadOfLineFeedAlone_waitsOn()
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

void tst_Controller_directread::directReadOfAnswerThatIsThereAlready_doesNotWait()
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

void tst_Controller_directread::directReadOfReplyThatBeginsWithNul_isEmpty()
{
    Link link;
    link.board.send(literal("\0$OK#Z#STAGE DIR PLUS\r\n"));
    QVERIFY(link.controller.direct_read("$Z#STAGE DIR PLUS\n").isEmpty());
}

void tst_Controller_directread::directReadOfReplyWithNul_isCutAtTheNul()
{
    Link link;
    link.board.send(literal("$OK#Z\0#STAGE DIR PLUS\r\n"));
    QCOMPARE(link.controller.direct_read("$Z#STAGE DIR PLUS\n"), QString("$OK#Z"));
}

void tst_Controller_directread::directRead_isLogged()
{
    Link link;
    link.board.send("$OK#A#LED OFF1\r\n");
    QTest::ignoreMessage(
        QtDebugMsg, R"(QString Controller::direct_read(QString) command :  "$A#LED OFF1\n")");
    QTest::ignoreMessage(
        QtDebugMsg, R"(QString Controller::direct_read(QString) reply :  "$OK#A#LED OFF1\r\n")");
    link.controller.direct_read("$A#LED OFF1\n");
}

void tst_Controller_directread::directReadAfterWriteCommand_takesTheEarlierReplyAndItsOwnReachesTheParser()
{
    Link link;
    link.controller.write_command("$Z#STAGE RUN\n");
    link.board.send("$OK#Z#STAGE RUN#100\r\n");
    QCOMPARE(link.controller.direct_read("$A#LED OFF1\n"), QString("$OK#Z#STAGE RUN#100\r\n"));
    link.board.send("$OK#A#LED OFF1\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#LED OFF1\r\n" });
}

void tst_Controller_directread::bytesHeldBeforeADirectRead_joinTheNextReply()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#X#ST" }));
    link.board.send("$OK#A#LED OFF1\r\n");
    QCOMPARE(link.controller.direct_read("$A#LED OFF1\n"), QString("$OK#A#LED OFF1\r\n"));
    QCOMPARE(link.controller.m_readBuffer, QByteArray("$OK#X#ST"));
    link.board.send("AGE ABS 5\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#X#STAGE ABS 5\r\n" });
}

void tst_Controller_directread::directReadWithinTheParser_isPossible()
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

void tst_Controller_directread::directReadOfSilentBoard_holdsTheCallerAtRest_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("silent board") << "silent";
    QTest::newRow("cable pulled") << "pulled";
    QTest::newRow("port closed") << "closed";
}

/// The call never comes back, so it is made in a process of its own that an alarm ends.
void tst_Controller_directread::directReadOfSilentBoard_holdsTheCallerAtRest()
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

QTEST_GUILESS_MAIN(tst_Controller_directread)

#include "tst_Controller_directread.moc"
