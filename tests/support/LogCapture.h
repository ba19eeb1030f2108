#pragma once

#include <QString>
#include <QStringList>

/// Collects what the program logs for as long as it lives, from every thread, and passes it on to the handler
/// that was there before. Several may live at once; each gets all lines.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All lines so far, or those from a mark on.
    QStringList lines(int from = 0) const;

    /// Forgets all lines so far, and with them every mark: for runs that last long.
    void clear();

    /// Number of lines so far: a mark for the functions below.
    int mark() const;

    /// First line at or behind `from` that contains `part`, or -1.
    int indexOf(const QString& part, int from = 0) const;
    bool contains(const QString& part, int from = 0) const { return indexOf(part, from) >= 0; }

    /// Runs the event loop until such a line is there, at most patience::limit(ms).
    bool waitForLine(const QString& part, int ms = 5000, int from = 0) const;

private:
    friend void collectLogLine(const QString& text);

    QStringList m_lines;
};
