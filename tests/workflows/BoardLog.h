#pragma once

#include <QFile>
#include <QString>
#include <QStringList>
#include <QVector>

/// What the board of the room has written down of its line, with times of its own in whole milliseconds.
namespace board_log {

/// How long the program took, in ms, each time an answer that begins with `answer` was followed by the line
/// `next` at once.
inline QVector<int> pauses(const QString& answer, const QString& next)
{
    QFile file("/run/rig/board.log");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QVector<int> result;
    QStringList before { "0", "", "" };
    for (const QString& line : QString::fromLatin1(file.readAll()).split('\n')) {
        const QStringList words { line.section(' ', 0, 0), line.section(' ', 2, 2), line.section(' ', 3) };
        if (before[1] == "<" && before[2].startsWith(answer) && words[1] == ">" && words[2] == next)
            result << words[0].toInt() - before[0].toInt();
        before = words;
    }
    return result;
}

} // namespace board_log
