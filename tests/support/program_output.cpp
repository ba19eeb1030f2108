#include "tests/support/program_output.h"

#include "tests/support/patience.h"

#include <QDebug>
#include <QProcess>

QByteArray outputOf(
    const QString& program, const QStringList& arguments, const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(patience::limit(30000));
    if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        qWarning() << "outputOf:" << program << arguments << "code" << process.exitCode()
                   << process.errorString() << process.readAllStandardError();
    }
    return process.readAllStandardOutput();
}
