#include "tests/support/RigClient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalServer>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

namespace {

/// Answers one client from a thread of its own, since the client blocks while it waits.
class FakeRig : public QThread {
public:
    explicit FakeRig(QString path)
        : m_path(std::move(path))
    {
        start();
        m_listening.acquire();
    }
    ~FakeRig() override
    {
        requestInterruption();
        wait();
    }

protected:
    void run() override
    {
        QLocalServer server;
        server.listen(m_path);
        m_listening.release();
        while (!isInterruptionRequested() && !server.waitForNewConnection(20)) { }
        QLocalSocket* client = server.nextPendingConnection();
        while (client != nullptr && !isInterruptionRequested()) {
            client->waitForReadyRead(20);
            while (client->canReadLine()) {
                const QByteArray answer = answerTo(QJsonDocument::fromJson(client->readLine()).object());
                // In two pieces, as a socket may deliver it.
                client->write(answer.left(3));
                client->waitForBytesWritten();
                client->write(answer.mid(3));
                client->waitForBytesWritten();
            }
        }
    }

private:
    static QByteArray line(const QJsonObject& object)
    {
        return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    }

    static QByteArray answerTo(const QJsonObject& request)
    {
        const QString command = request.value("cmd").toString();
        if (command == "truth")
            return line({ { "ok", true }, { "truth", QJsonObject { { "magnification", 4.02 } } } });
        if (command == "state")
            return line({ { "ok", true }, { "x", 120 } });
        if (command == "transcript") {
            QJsonArray lines { QJsonObject { { "dir", ">" }, { "text", "$A#VER" } },
                QJsonObject { { "dir", "<" }, { "text", "$OK#A#VER#1.2" } },
                QJsonObject { { "dir", ">" }, { "text", "$Z#STAGE RUN" } } };
            for (int i = 0; i < request.value("from").toInt(); ++i)
                lines.removeFirst();
            return line({ { "ok", true }, { "lines", lines }, { "next", 3 } });
        }
        if (command == "fault" && request.value("name") == "late" && request.value("value") == 50
            && request.value("match") == "$Z#STAGE RUN" && request.value("count") == 2)
            return line({ { "ok", true } });
        if (command == "set" && request.value("key") == "x" && request.value("value") == 5)
            return line({ { "ok", true } });
        if (command == "say" && request.value("text") == "$OK#A#BTN\r\n")
            return line({ { "ok", true } });
        if (command == "clearFaults")
            return line({ { "ok", true } });
        return line({ { "ok", false }, { "error", "what?" } });
    }

    QString m_path;
    QSemaphore m_listening;
};

} // namespace

class tst_RigClient : public QObject {
    Q_OBJECT

private slots:
    void answers_areRead()
    {
        const QTemporaryDir folder;
        const FakeRig rig(folder.filePath("control.sock"));
        RigClient client(folder.filePath("control.sock"));
        QVERIFY(client.connectToRig());
        QCOMPARE(client.truth(), QJsonObject({ { "magnification", 4.02 } }));
        QCOMPARE(client.state().value("x").toInt(), 120);
        QCOMPARE(client.mark(), 3);
        QCOMPARE(client.sentSince(0), QStringList({ "$A#VER", "$Z#STAGE RUN" }));
        QCOMPARE(client.sentSince(1), QStringList { "$Z#STAGE RUN" });
        QCOMPARE(client.answeredSince(0), QStringList { "$OK#A#VER#1.2" });
        QCOMPARE(client.transcriptSince(1), QStringList({ "< $OK#A#VER#1.2", "> $Z#STAGE RUN" }));
        QVERIFY(client.waitForSent("$Z#STAGE RUN", 0));
        QVERIFY(!client.waitForSent("$X#STAGE RUN", 0, 20));
    }

    void orders_areSentWithTheirParameters()
    {
        const QTemporaryDir folder;
        const FakeRig rig(folder.filePath("control.sock"));
        RigClient client(folder.filePath("control.sock"));
        QVERIFY(client.fault("late", "$Z#STAGE RUN", 2, 50));
        QVERIFY(client.set("x", 5));
        QVERIFY(client.say("$OK#A#BTN\r\n"));
        QVERIFY(client.clearFaults());
    }

    void refusedOrder_isFalse()
    {
        const QTemporaryDir folder;
        const FakeRig rig(folder.filePath("control.sock"));
        RigClient client(folder.filePath("control.sock"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused.*what\\?"));
        QVERIFY(!client.set("y", 5));
    }

    void absentInstrument_isAFailureAndNoHang()
    {
        RigClient client("/nowhere/control.sock");
        QVERIFY(!client.connectToRig());
        QCOMPARE(client.request({ { "cmd", "state" } }).value("ok").toBool(true), false);
        QVERIFY(client.truth().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_RigClient)
#include "tst_rigclient.moc"
