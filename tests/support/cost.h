// What a piece of code may cost.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>

#include "support/peak_memory.h"

namespace pgkit_test {

// Runs code and expects it to take less than a second of the processor (with sanitizers and under
// Wine: ten; emulated: a hundred).
template <typename Code>
void ExpectQuick(Code&& code) {
    const std::clock_t start = std::clock();
    code();
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    EXPECT_LT(seconds, PGKIT_TEST_SECONDS);
}

// The same, and expects the code to take no more memory than allowed.
template <typename Code>
void ExpectCheap(uint64_t allowedMemory, Code&& code) {
    const PeakMemory memory;
    ExpectQuick(code);
    if (const auto growth = memory.Growth()) {
        EXPECT_LE(*growth, allowedMemory);
    }
}

}  // namespace pgkit_test
