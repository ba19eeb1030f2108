#include "tests/simulator/RunningInstrument.h"

#include "tests/simulator/descriptors.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <unistd.h>

RunningInstrument::RunningInstrument(const QStringList& options)
{
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(program(), QStringList { "--rig", m_folder.path(), "--until-eof" } + options);
    QElapsedTimer waited;
    waited.start();
    while (!m_process.canReadLine() && m_process.state() != QProcess::NotRunning
        && waited.elapsed() < kPatienceMs) {
        m_process.waitForReadyRead(100);
    }
    m_ready = QJsonDocument::fromJson(m_process.readLine()).object();
    if (isReady()) {
        m_control = connectedSocket(file("control.sock"));
    }
}

RunningInstrument::~RunningInstrument()
{
    if (m_control >= 0) {
        ::close(m_control);
    }
    if (m_process.state() == QProcess::NotRunning) {
        return; // the test has seen to its end
    }
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(kPatienceMs)) {
        m_process.kill();
        m_process.waitForFinished();
    }
    // A sanitizer tells its findings by the exit code.
    QVERIFY2(m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0,
        m_process.readAllStandardError().constData());
}

QString RunningInstrument::program()
{
    return QR9_VIRTUAL_INSTRUMENT;
}

QStringList RunningInstrument::ports() const
{
    QStringList names;
    for (const auto& port : m_ready.value("ports").toArray()) {
        names << port.toString();
    }
    return names;
}

QJsonObject RunningInstrument::ask(const QJsonObject& request)
{
    writeAll(m_control, QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    return QJsonDocument::fromJson(readUntil(m_control, "\n")).object();
}

bool RunningInstrument::set(const QString& key, const QJsonValue& value)
{
    return ask({ { "cmd", "set" }, { "key", key }, { "value", value } }).value("ok").toBool();
}

bool RunningInstrument::fault(const QString& name, const QString& match, const QJsonValue& value, int count)
{
    return ask(
        { { "cmd", "fault" }, { "name", name }, { "match", match }, { "value", value }, { "count", count } })
        .value("ok")
        .toBool();
}

void RunningInstrument::holdClock()
{
    QVERIFY(ask({ { "cmd", "clock" }, { "action", "hold" } }).value("ok").toBool());
}

void RunningInstrument::advance(double ms)
{
    QVERIFY(ask({ { "cmd", "clock" }, { "action", "advance" }, { "ms", ms } }).value("ok").toBool());
}

QStringList RunningInstrument::transcript()
{
    QStringList lines;
    const QJsonArray entries = ask({ { "cmd", "transcript" }, { "from", 0 } }).value("lines").toArray();
    for (const auto& entry : entries) {
        lines << entry.toObject().value("dir").toString() + ' ' + entry.toObject().value("text").toString();
    }
    return lines;
}

bool RunningInstrument::hasReached(int lines)
{
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < kPatienceMs) {
        if (transcript().filter(QRegExp("^>")).size() >= lines) {
            return true;
        }
    }
    return false;
}
