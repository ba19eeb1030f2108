#include "app/version_text.h"

#include "app/zr_meta.h"

#include <QDateTime>
#include <QStringList>

namespace version_text {

QString valueOf(const QString& record)
{
    return record.split("=").value(1);
}

QString dateText(qulonglong seconds)
{
    // Multiplied without a sign: a number that is no date must not overflow.
    const qulonglong milliseconds = seconds * 1000;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds)).toString("yyyy-MM-dd hh:mm");
}

QString applicationVersion()
{
    return QString("%1|%2|%3").arg(zr_meta::VERSION, valueOf(zr_meta::BUILD_DATE), zr_meta::BASE_SVN_REV);
}

} // namespace version_text
