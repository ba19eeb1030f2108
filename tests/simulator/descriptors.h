#pragma once

#include <QByteArray>
#include <QString>

// Plain file descriptors: what the program has on its side of a port or a socket.

constexpr int kPatienceMs = 30000; ///< only a failing test waits so long

/// A connected Unix socket, or -1.
int connectedSocket(const QString& path);

/// An opened serial port, as the program has it, or -1.
int openedPort(const QString& path);

/// False when the other side takes no more.
bool writeAll(int fd, const QByteArray& bytes);

/// The bytes up to `end` (and with it, one read more at most); less when the other side is silent or has
/// gone.
QByteArray readUntil(int fd, const QByteArray& end, int ms = kPatienceMs);

/// Exactly so many bytes; less when the other side is silent or has gone.
QByteArray readExactly(int fd, int count, int ms = kPatienceMs);

/// What one read gives; empty when nothing comes within `ms`.
QByteArray readOnce(int fd, int ms = kPatienceMs);
