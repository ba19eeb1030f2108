#include "tests/support/LogCapture.h"
#include "tests/support/patience.h"

#include <QApplication>
#include <QDebug>
#include <QTest>
#include <QThread>

#include <memory>

class tst_LogCapture : public QObject {
    Q_OBJECT

private slots:
    void lines_areCollectedInOrder()
    {
        const LogCapture log;
        qDebug() << "one" << 1;
        const int mark = log.mark();
        qWarning("two");
        QCOMPARE(log.lines(), QStringList({ "one 1", "two" }));
        QCOMPARE(log.lines(mark), QStringList { "two" });
        QVERIFY(log.contains("one"));
        QVERIFY(!log.contains("one", mark));
        QCOMPARE(log.indexOf("wo"), 1);
        QCOMPARE(log.indexOf("three"), -1);
    }

    void clearedLog_holdsOnlyWhatCameAfterwards()
    {
        LogCapture log;
        qDebug("before");
        log.clear();
        QCOMPARE(log.mark(), 0);
        qDebug("after");
        QCOMPARE(log.lines(), QStringList { "after" });
    }

    void lineOfALaterMoment_isWaitedFor()
    {
        const LogCapture log;
        patience::later(20, qApp, [] { qDebug("it came"); });
        QVERIFY(log.waitForLine("it came"));
    }

    void lineThatNeverComes_endsTheWait()
    {
        const LogCapture log;
        QVERIFY(!log.waitForLine("never", 30));
    }

    void lineOfAnotherThread_isCollected()
    {
        const LogCapture log;
        const std::unique_ptr<QThread> thread(QThread::create([] { qDebug("from afar"); }));
        thread->start();
        QVERIFY(thread->wait());
        QVERIFY(log.contains("from afar"));
    }

    void innerCapture_leavesTheOuterOneAtWork()
    {
        const LogCapture outer;
        {
            const LogCapture inner;
            qDebug("both");
            QCOMPARE(inner.lines().size(), 1);
        }
        qDebug("outer");
        QCOMPARE(outer.lines(), QStringList({ "both", "outer" }));
    }
};

QTEST_MAIN(tst_LogCapture)
#include "tst_logcapture.moc"
