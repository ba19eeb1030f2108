#include "tests/support/LogCapture.h"
#include "tests/support/program_output.h"

#include <QTest>

class tst_program_output : public QObject {
    Q_OBJECT

private slots:
    void output_isThatOfStandardOutputAlone()
    {
        const LogCapture log;
        QCOMPARE(outputOf("sh", { "-c", "echo said; echo aside >&2" }), QByteArray("said\n"));
        QCOMPARE(log.lines(), QStringList());
    }

    void environment_isTheOneGiven()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QR9_WORD", "a word");
        QCOMPARE(outputOf("sh", { "-c", "echo $QR9_WORD" }, environment), QByteArray("a word\n"));
    }

    void errorAtTheEnd_isToldWithItsReason()
    {
        const LogCapture log;
        QCOMPARE(outputOf("sh", { "-c", "echo half; echo no disk >&2; exit 3" }), QByteArray("half\n"));
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.contains("code 3"));
        QVERIFY(log.contains("no disk"));
    }

    void missingProgram_isTold()
    {
        const LogCapture log;
        QCOMPARE(outputOf("/nowhere/program", {}), QByteArray());
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.contains("/nowhere/program"));
    }
};

QTEST_GUILESS_MAIN(tst_program_output)
#include "tst_program_output.moc"
