#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

/// A VirtualInstrument process in a folder of its own and a client of its control socket. Everything blocks,
/// 10 s at most; what fails is a failed check of the running test.
class RunningInstrument {
public:
    explicit RunningInstrument(const QStringList& options = { "--seed", "2", "--quick" });
    ~RunningInstrument();

    /// Path of the program.
    static QString program();

    bool isReady() const { return !m_ready.isEmpty(); }
    QStringList ports() const;
    QString boardPort() const { return m_ready.value("board").toString(); }
    QString file(const QString& name) const { return m_folder.filePath(name); }
    QProcess& process() { return m_process; }

    /// One request of the control socket and its answer; empty when there is none.
    QJsonObject ask(const QJsonObject& request);
    QJsonObject ask(const QString& command) { return ask(QJsonObject { { "cmd", command } }); }
    QJsonValue state(const QString& key) { return ask("state").value(key); }
    bool set(const QString& key, const QJsonValue& value);
    bool fault(const QString& name, const QString& match = {}, const QJsonValue& value = {}, int count = 1);

    void holdClock();
    void advance(double ms);

    /// All that went over the board's wire, each line as "> text" or "< text".
    QStringList transcript();
    /// Waits until so many lines of the program have reached the board.
    bool hasReached(int lines);

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QJsonObject m_ready;
    int m_control = -1;
};
