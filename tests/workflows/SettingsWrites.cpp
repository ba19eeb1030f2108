#include "tests/workflows/SettingsWrites.h"

#include "tests/workflows/Desk.h"

#include <cstdio>
#include <fcntl.h>

namespace {

SettingsWrites* g_pWrites = nullptr;

/// The keys of the file as it stands now, each with its group and value.
QStringList keysNow()
{
    QStringList keys;
    QString group;
    const QStringList lines = QString::fromLatin1(Desk::settings()).split('\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (line.startsWith('['))
            group = line.mid(1, line.size() - 2);
        else
            keys << group + '/' + line;
    }
    return keys;
}

} // namespace

SettingsWrites::SettingsWrites()
    : m_before(keysNow())
{
    g_pWrites = this;
}

SettingsWrites::~SettingsWrites()
{
    g_pWrites = nullptr;
}

void SettingsWrites::add()
{
    const QStringList now = keysNow();
    QStringList changed;
    for (const QString& key : now) {
        if (!m_before.contains(key))
            changed << key;
    }
    m_changes << changed.join(", ");
    m_before = now;
}

/// Stands in for the C library's function of this name in the whole program. A settings file comes into its
/// place by it, so that each of its states can be seen.
extern "C" int rename(const char* from, const char* to) noexcept
{
    const int result = renameat(AT_FDCWD, from, AT_FDCWD, to);
    if (g_pWrites != nullptr && result == 0 && QByteArray(to).endsWith("/TAVO_QR9.ini"))
        g_pWrites->add();
    return result;
}
