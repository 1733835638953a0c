#pragma once

#include <cstdio>
#include <cstdlib>

/// An invariant of a fuzz target; unlike assert it is never compiled out.
#define REQUIRE(condition)                                                       \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)
