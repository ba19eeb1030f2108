// Lets ThreadSanitizer see the locks of Qt, whose library is built without it: without this, everything that
// a QMutex guards would be reported as a race. The wrappers stand before the library's own functions, because
// the program is searched first, and do nothing but tell what happens. Linked into tests of the thread
// sanitizer's build alone.

#include <dlfcn.h>

extern "C" {

void __tsan_acquire(void* address);
void __tsan_release(void* address);

// QMutex::lock()
void _ZN6QMutex4lockEv(void* mutex)
{
    using Lock = void (*)(void*);
    static const auto lock = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "_ZN6QMutex4lockEv"));
    lock(mutex);
    __tsan_acquire(mutex);
}

// QMutex::tryLock(int)
bool _ZN6QMutex7tryLockEi(void* mutex, int milliseconds)
{
    using TryLock = bool (*)(void*, int);
    static const auto tryLock = reinterpret_cast<TryLock>(dlsym(RTLD_NEXT, "_ZN6QMutex7tryLockEi"));
    const bool locked = tryLock(mutex, milliseconds);
    if (locked)
        __tsan_acquire(mutex);
    return locked;
}

// QMutex::unlock()
void _ZN6QMutex6unlockEv(void* mutex)
{
    using Unlock = void (*)(void*);
    static const auto unlock = reinterpret_cast<Unlock>(dlsym(RTLD_NEXT, "_ZN6QMutex6unlockEv"));
    __tsan_release(mutex);
    unlock(mutex);
}

// QWaitCondition::wait(QMutex*, unsigned long)
bool _ZN14QWaitCondition4waitEP6QMutexm(void* condition, void* mutex, unsigned long milliseconds)
{
    using Wait = bool (*)(void*, void*, unsigned long);
    static const auto wait = reinterpret_cast<Wait>(dlsym(RTLD_NEXT, "_ZN14QWaitCondition4waitEP6QMutexm"));
    __tsan_release(mutex);
    const bool woken = wait(condition, mutex, milliseconds);
    __tsan_acquire(mutex);
    return woken;
}

} // extern "C"
