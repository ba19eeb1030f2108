#include "tests/workflows/Desk.h"

#include <QJsonArray>

/// The orderly way out.
class tst_exit : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void exit_givesTheLightTimeToGoOut();
    void exitAfterFailedInitialize_sendsItsCommandsAllTheSame();

private:
    std::unique_ptr<Desk> m_desk;
};

void tst_exit::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_exit::cleanup()
{
    m_desk.reset();
}

void tst_exit::exit_givesTheLightTimeToGoOut()
{
    QVERIFY(m_desk->connectUnit());
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QVERIFY(!m_desk->window().isVisible());
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    // The light has 25 ms to go out before the axis moves.
    const QJsonArray lines
        = m_desk->rig.request({ { "cmd", "transcript" }, { "from", mark } }).value("lines").toArray();
    QCOMPARE(lines[1].toObject().value("text").toString().trimmed(), QString("$OK#A#LED OFF1"));
    QCOMPARE(lines[2].toObject().value("text").toString().trimmed(), QString("$X#STAGE ORIGIN"));
    const double pause
        = lines[2].toObject().value("ms").toDouble() - lines[1].toObject().value("ms").toDouble();
    QVERIFY2(pause >= 25.0, qPrintable(QString::number(pause)));
    QVERIFY(m_desk->log.contains("!!!!!!!!!!!!!!!!!!!!!!RESTART"));
    QVERIFY(m_desk->boxes.boxes().isEmpty());
}

void tst_exit::exitAfterFailedInitialize_sendsItsCommandsAllTheSame()
{
    QVERIFY(m_desk->rig.fault("nul", "$X#STAGE EJECT"));
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Fail CONTROLLER initialize !" }));
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT"));
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList({ "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    QVERIFY(!m_desk->window().isVisible());
}

WORKFLOW_MAIN(tst_exit)
#include "tst_exit.moc"
