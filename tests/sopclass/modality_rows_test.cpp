#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>

#include "sopclass/table_file.h"

namespace {

struct Row {
    const char* uid;
    const char* mnemonic;
    uint64_t size;
};

// The library itself has no use for the sizes.
constexpr Row kRows[] = {
#define PGKIT_MODALITY(uid, mnemonic, size) {uid, mnemonic, size},
#include "sopclass/modalities.inc"
#undef PGKIT_MODALITY
};

TEST(ModalityRows, HoldTheSizesToo) {
    const auto expected = pgkit_test::ReadTable("modalities.tsv");
    ASSERT_EQ(std::size(kRows), expected.size());
    for (size_t i = 0; i < std::size(kRows); ++i) {
        EXPECT_EQ(kRows[i].uid, expected[i][1]);
        EXPECT_EQ(kRows[i].mnemonic, expected[i][2]);
        EXPECT_EQ(kRows[i].size, std::stoull(expected[i][3])) << kRows[i].uid;
    }
}

}  // namespace
