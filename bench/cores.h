#pragma once

#include <sched.h>

/// Keeps the calling thread, and every thread that it starts meanwhile, on one core, and the library to one
/// thread. Undone at the end of its lifetime, on the same thread.
class OneCoreOnly {
public:
    OneCoreOnly();
    ~OneCoreOnly();
    OneCoreOnly(const OneCoreOnly&) = delete;
    OneCoreOnly& operator=(const OneCoreOnly&) = delete;

private:
    cpu_set_t m_before {};
    int m_threadsBefore;
};

/// Number of cores that the calling thread may run on.
int coresAtHand();
