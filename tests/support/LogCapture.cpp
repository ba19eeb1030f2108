#include "tests/support/LogCapture.h"

#include "tests/support/patience.h"

#include <QMutex>
#include <QMutexLocker>
#include <QVector>

namespace {

QMutex theMutex;
QVector<LogCapture*> theCaptures;
QtMessageHandler thePrevious = nullptr;

} // namespace

/// Called with the mutex held.
void collectLogLine(const QString& text)
{
    for (LogCapture* capture : qAsConst(theCaptures))
        capture->m_lines.append(text);
}

namespace {

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    QtMessageHandler previous = nullptr;
    {
        const QMutexLocker lock(&theMutex);
        collectLogLine(text);
        previous = thePrevious;
    }
    if (previous != nullptr)
        previous(type, context, text);
}

} // namespace

LogCapture::LogCapture()
{
    const QMutexLocker lock(&theMutex);
    if (theCaptures.isEmpty())
        thePrevious = qInstallMessageHandler(handleMessage);
    theCaptures.append(this);
}

LogCapture::~LogCapture()
{
    const QMutexLocker lock(&theMutex);
    theCaptures.removeOne(this);
    if (theCaptures.isEmpty())
        qInstallMessageHandler(thePrevious);
}

QStringList LogCapture::lines(int from) const
{
    const QMutexLocker lock(&theMutex);
    return m_lines.mid(from);
}

void LogCapture::clear()
{
    const QMutexLocker lock(&theMutex);
    m_lines.clear();
}

int LogCapture::mark() const
{
    const QMutexLocker lock(&theMutex);
    return m_lines.size();
}

int LogCapture::indexOf(const QString& part, int from) const
{
    const QMutexLocker lock(&theMutex);
    for (int i = from; i < m_lines.size(); ++i)
        if (m_lines.at(i).contains(part))
            return i;
    return -1;
}

bool LogCapture::waitForLine(const QString& part, int ms, int from) const
{
    return patience::waitFor([this, part, from] { return contains(part, from); }, ms);
}
