#include "simulator/camera/CameraLog.h"

#include <QByteArray>

#include <chrono>

namespace qr9::sim {

QString CameraLog::open(const QString& file)
{
    m_file.setFileName(file);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        return QStringLiteral("%1: %2").arg(file, m_file.errorString());
    }
    return {};
}

void CameraLog::triggered(quint64 number)
{
    add("trigger", number);
}

void CameraLog::sent(quint64 number)
{
    add("frame", number);
}

void CameraLog::add(const char* event, quint64 number)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto us = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
    m_file.write(QByteArray::number(static_cast<qlonglong>(us)) + ' ' + event + ' '
        + QByteArray::number(static_cast<qulonglong>(number)) + '\n');
}

} // namespace qr9::sim
