#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

/// Collects what the process prints on standard output for as long as it lives, in place of printing it.
class StandardOutput {
public:
    StandardOutput()
    {
        m_file.open();
        std::fflush(stdout);
        m_before = ::dup(STDOUT_FILENO);
        ::dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~StandardOutput()
    {
        std::fflush(stdout);
        ::dup2(m_before, STDOUT_FILENO);
        ::close(m_before);
    }
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /// All that reached the descriptor so far: what is still in a buffer does not count.
    QByteArray text() const
    {
        QFile file(m_file.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryFile m_file;
    int m_before = -1;
};
