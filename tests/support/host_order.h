// Bytes in memory, which differ with the machine.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <utility>

// Begins a test that gives or expects words in memory as little-endian machines have them. What
// other machines read, show and write is compared by tests/interop/compare_platforms.py.
#define PGKIT_SKIP_ON_BIG_ENDIAN()                                           \
    if (std::endian::native == std::endian::big)                             \
    GTEST_SKIP() << "the test has words in memory as little-endian machines" \
                    " have them"

namespace pgkit_test {

// The bytes with each whole unit of so many reversed.
template <typename Container>
Container WithUnitsReversed(Container bytes, size_t unit) {
    const auto step = static_cast<ptrdiff_t>(unit);
    for (auto at = bytes.begin(); std::distance(at, bytes.end()) >= step; at += step)
        std::reverse(at, at + step);
    return bytes;
}

// Words of so many bytes in little endian as this machine has them in memory, or the other way
// round.
template <typename Container>
Container InHostOrder(Container bytes, size_t unit) {
    if (std::endian::native == std::endian::little) return bytes;
    return WithUnitsReversed(std::move(bytes), unit);
}

}  // namespace pgkit_test
