#include "tests/endurance/Footprint.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <malloc.h>
#include <unistd.h>

namespace {

constexpr double kKiB = 1024;

double residentMiB()
{
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no /proc");
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) / kKiB
        / kKiB;
}

double allocatedKiB()
{
    const auto memory = mallinfo2();
    return static_cast<double>(memory.uordblks + memory.hblkhd) / kKiB;
}

double growthOfSecondHalf(const std::vector<double>& values)
{
    return values.back() - values[values.size() / 2];
}

/// Of a figure: start, middle, end, growth and what is allowed.
QString line(const char* name, const std::vector<double>& values, int digits, double allowed)
{
    const double growth = growthOfSecondHalf(values);
    QString text = QString("    %1").arg(name, -18);
    for (const double value : values)
        text += QString("%1").arg(value, 10, 'f', digits);
    text += QString("   second half %1, at most %2: %3\n").arg(growth, 7, 'f', digits).arg(allowed);
    return text.arg(growth <= allowed ? "good" : "FALLS SHORT");
}

template <typename Field> std::vector<double> column(const std::vector<Footprint>& rows, Field field)
{
    std::vector<double> values;
    values.reserve(rows.size());
    for (const Footprint& row : rows)
        values.push_back(static_cast<double>(row.*field));
    return values;
}

} // namespace

Footprint Footprint::now()
{
    malloc_trim(0);
    const auto entries
        = QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return { residentMiB(), allocatedKiB(), entries.size() };
}

Footprint Footprint::lower(const Footprint& other) const
{
    return { std::min(resident, other.resident), std::min(allocated, other.allocated),
        std::min(handles, other.handles) };
}

bool Endurance::isFlat(const Allowance& allowance) const
{
    return growthOfSecondHalf(column(footprints, &Footprint::resident)) <= allowance.resident
        && growthOfSecondHalf(column(footprints, &Footprint::allocated)) <= allowance.allocated
        && growthOfSecondHalf(column(footprints, &Footprint::handles)) <= allowance.handles;
}

QString Endurance::text(const Allowance& allowance) const
{
    return QString("%1, start, middle and end:\n").arg(what)
        + line("resident MiB", column(footprints, &Footprint::resident), 2, allowance.resident)
        + line("allocated KiB", column(footprints, &Footprint::allocated), 1, allowance.allocated)
        + line("open handles", column(footprints, &Footprint::handles), 0, allowance.handles);
}
