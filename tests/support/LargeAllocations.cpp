#include "tests/support/LargeAllocations.h"

#include <cerrno>

namespace {

thread_local bool counting = false;
thread_local int largeOnes = 0;

} // namespace

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QR9_COUNTS_ALLOCATIONS

namespace {

void take(std::size_t bytes)
{
    if (counting && bytes >= LargeAllocations::kLarge)
        ++largeOnes;
}

} // namespace

/// The C library's own allocator under the names that everyone calls, with a count.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t number, std::size_t bytes);
void* __libc_realloc(void* memory, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);

void* malloc(std::size_t bytes)
{
    take(bytes);
    return __libc_malloc(bytes);
}
void* calloc(std::size_t number, std::size_t bytes)
{
    take(number * bytes);
    return __libc_calloc(number, bytes);
}
void* realloc(void* memory, std::size_t bytes)
{
    take(bytes);
    return __libc_realloc(memory, bytes);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t bytes)
{
    take(bytes);
    *memory = __libc_memalign(alignment, bytes);
    return *memory == nullptr ? ENOMEM : 0;
}
}
#endif

LargeAllocations::LargeAllocations()
{
    largeOnes = 0;
    counting = true;
}

LargeAllocations::~LargeAllocations()
{
    counting = false;
}

bool LargeAllocations::areCounted()
{
#ifdef QR9_COUNTS_ALLOCATIONS
    return true;
#else
    return false;
#endif
}

int LargeAllocations::count() const
{
    return largeOnes;
}
