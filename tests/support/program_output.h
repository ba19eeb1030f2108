#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>

/// What a program of the system says on standard output. Blocks until it has ended, at most
/// patience::limit(30 s), without running the event loop. One that cannot be started, does not end or ends
/// with an error logs a warning with what it says on standard error; what it had said by then is the result.
QByteArray outputOf(const QString& program, const QStringList& arguments,
    const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());
