#include "base/row_index.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

constexpr std::string_view kRows[] = {"b", "a", "c", "a"};

constexpr pgkit::RowIndex<8> kIndex(4, [](size_t row) { return pgkit::HashText(kRows[row]); });

// Every row collides with every other.
constexpr pgkit::RowIndex<8> kCollidingIndex(4, [](size_t) { return uint32_t{7}; });

constexpr size_t Find(std::string_view key) {
    return kIndex.Find(pgkit::HashText(key), [key](size_t row) { return kRows[row] == key; });
}

TEST(RowIndex, FindsRowsAtCompileTimeToo) {
    static_assert(Find("b") == 0);
    EXPECT_EQ(Find("c"), 2u);
}

TEST(RowIndex, TheFirstOfEqualRowsWins) { EXPECT_EQ(Find("a"), 1u); }

TEST(RowIndex, AnAbsentKeyHasNoRow) {
    EXPECT_EQ(Find("d"), kIndex.kNoRow);
    EXPECT_EQ(Find(""), kIndex.kNoRow);
}

TEST(RowIndex, RowsThatCollideAreAllFoundInTableOrder) {
    for (size_t row = 0; row < 4; ++row) {
        EXPECT_EQ(kCollidingIndex.Find(7, [row](size_t i) { return i == row; }), row);
    }
    EXPECT_EQ(kCollidingIndex.Find(7, [](size_t) { return false; }), kCollidingIndex.kNoRow);
}

TEST(RowIndex, TextHashFoldsCharactersWhenAsked) {
    const auto upper = [](char c) { return c == 'a' ? 'A' : c; };
    EXPECT_EQ(pgkit::HashText("a-A", upper), pgkit::HashText("A-A"));
    EXPECT_NE(pgkit::HashText("a"), pgkit::HashText("A"));
}

}  // namespace
