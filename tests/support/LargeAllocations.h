#pragma once

#include <cstddef>

/// Counts the large pieces of memory that the thread which made it asks for, for as long as it lives. One at
/// a time on a thread. A program that is linked with it gets the C library's own allocator with a count, save
/// under a sanitizer, which has taken that place.
class LargeAllocations {
public:
    /// Bytes from which on a piece counts. A line of the live view is 2160 bytes; nothing that would be made
    /// anew for a frame is smaller than some of them.
    static constexpr std::size_t kLarge = 16384;

    LargeAllocations();
    ~LargeAllocations();
    LargeAllocations(const LargeAllocations&) = delete;
    LargeAllocations& operator=(const LargeAllocations&) = delete;

    /// False under a sanitizer: the count stays 0.
    static bool areCounted();
    int count() const;
};
