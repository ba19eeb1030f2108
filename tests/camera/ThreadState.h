#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QThread>

#include <atomic>

#include <unistd.h>

/// Number of the calling thread, for isAsleep().
inline pid_t threadNumber()
{
    return ::gettid();
}

/// The system has that thread of the process wait for something: a lock, a condition, bytes.
inline bool isAsleep(pid_t thread)
{
    QFile file(QString("/proc/self/task/%1/stat").arg(thread));
    if (!file.open(QFile::ReadOnly)) {
        return false;
    }
    // "number (name) state ...", and the name may hold anything.
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "S";
}

/// Blocks until that thread sleeps, or `givenUp` is set.
inline void waitUntilAsleep(pid_t thread, const std::atomic<bool>& givenUp)
{
    while (!isAsleep(thread) && !givenUp) {
        QThread::usleep(50);
    }
}
