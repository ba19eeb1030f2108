#pragma once

#include <cstring>
#include <string>

namespace wiretext {

/// Writes `text` into a field of a record, cut to its size and filled up with NUL.
template <std::size_t size> void copyText(char (&field)[size], const std::string& text)
{
    std::memset(field, 0, size);
    text.copy(field, size - 1);
}

} // namespace wiretext
