#include "OrdinaryUser.h"

#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr uid_t kNobody = 65534;

bool isRoot()
{
    uid_t real = 0;
    uid_t effective = 0;
    uid_t saved = 0;
    getresuid(&real, &effective, &saved);
    return saved == 0;
}

} // namespace

OrdinaryUser::OrdinaryUser()
    : m_good(!isRoot() || setresuid(kNobody, kNobody, 0) == 0)
{
}

OrdinaryUser::~OrdinaryUser()
{
    if (isRoot() && setresuid(0, 0, 0) == 0) {
        prctl(PR_SET_DUMPABLE, 1); // lost with the identity; the leak check needs it
    }
}

uid_t OrdinaryUser::id()
{
    return isRoot() ? kNobody : geteuid();
}
