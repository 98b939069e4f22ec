// Bytes in memory, which differ with the machine.
#pragma once

#include <gtest/gtest.h>

#include <bit>

// Begins a test that gives or expects words in memory as little-endian machines have them. What
// other machines read, show and write is compared by tests/interop/compare_platforms.py.
#define PGKIT_SKIP_ON_BIG_ENDIAN()                                           \
    if (std::endian::native == std::endian::big)                             \
    GTEST_SKIP() << "the test has words in memory as little-endian machines" \
                    " have them"
