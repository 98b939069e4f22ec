#include <gtest/gtest.h>

#include <string>

#include "sopclass/sop_class_tables.h"
#include "sopclass/table_file.h"

namespace {

TEST(ModalityRows, HoldTheSizesToo) {
    const auto rows = pgkit::ModalityRows();
    const auto expected = pgkit_test::ReadTable("modalities.tsv");
    ASSERT_EQ(rows.size(), expected.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].uid, expected[i][1]);
        EXPECT_EQ(rows[i].mnemonic, expected[i][2]);
        EXPECT_EQ(rows[i].size, std::stoull(expected[i][3])) << rows[i].uid;
    }
}

}  // namespace
