#pragma once

#include <sys/types.h>

/// For its lifetime a root process has the rights of an ordinary user, so that permissions bind it. For an
/// ordinary user it changes nothing.
class OrdinaryUser {
public:
    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    /// False where this system lets root not become another user.
    bool isGood() const { return m_good; }
    /// Who must own the files of the test.
    static uid_t id();

private:
    bool m_good;
};
