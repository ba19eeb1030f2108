#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QLocalSocket>
#include <QString>
#include <QStringList>

/// The test's line to the virtual instrument: asks for the truth and the state of the unit, reads what went
/// over the board's wire, sets faults. Each call blocks until the answer is there, at most 5 s, without
/// running the event loop. A failed call logs a warning and returns an empty result.
class RigClient {
public:
    explicit RigClient(QString path = "/run/rig/control.sock");

    /// True when the instrument is there.
    bool connectToRig();

    /// One request and its answer; {"ok":false,"error":...} when there is none.
    QJsonObject request(const QJsonObject& request);

    /// The true constants of the unit; where everything stands now.
    QJsonObject truth();
    QJsonObject state();

    /// Number of transcript lines so far: a mark for the functions below.
    int mark();

    /// Lines without their ends from a mark on: what the program sent to the board, what the board answered,
    /// or both in order, with "> " and "< " before them.
    QStringList sentSince(int mark);
    QStringList answeredSince(int mark);
    QStringList transcriptSince(int mark);

    /// Runs the event loop until the program has sent this line, at most patience::limit(ms).
    bool waitForSent(const QString& line, int mark, int ms = 10000);

    /// The next `count` lines that match (any line if empty) meet the fault; the value depends on the fault.
    bool fault(const QString& name, const QString& match = {}, int count = 1, const QJsonValue& value = {});
    bool clearFaults();

    /// Puts one quantity of the world, as "x", "z", "slide", "quick".
    bool set(const QString& key, const QJsonValue& value);

    /// The board sends this text unasked.
    bool say(const QString& text);

private:
    QStringList linesSince(int mark, const QString& direction, bool marked);
    bool succeeds(const QJsonObject& request);

    QString m_path;
    QLocalSocket m_socket;
};
