#pragma once

#include <QStringList>

/// Takes the log lines of its lifetime instead of the terminal. One at a time, on the main thread.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines so far, oldest first.
    QStringList lines() const;
};
