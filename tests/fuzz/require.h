#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process like a crash when what must hold for every input does not hold, so that the input is kept
/// by whoever has made it.
#define REQUIRE(condition)                                                                                   \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);              \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (false)
