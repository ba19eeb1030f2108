#include "tests/algorithms/log_capture.h"

#include <QMutex>
#include <QtGlobal>

namespace {

QMutex mutex;
QStringList taken;
QtMessageHandler before = nullptr;

void take(QtMsgType, const QMessageLogContext&, const QString& text)
{
    const QMutexLocker locker(&mutex);
    taken.append(text);
}

} // namespace

LogCapture::LogCapture()
{
    taken.clear();
    before = qInstallMessageHandler(take);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(before);
}

QStringList LogCapture::lines() const
{
    const QMutexLocker locker(&mutex);
    return taken;
}
