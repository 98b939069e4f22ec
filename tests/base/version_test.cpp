#include "pgkit/version.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

TEST(Version, TextIsCopiedAndTheRestOfTheBufferFilledWithZeros) {
    char buffer[64];
    std::memset(buffer, 'x', sizeof buffer);

    EXPECT_EQ(pgGetVersionString(buffer, 64), 17);
    EXPECT_STREQ(buffer, "2.86e 24-mar-2o15");
    EXPECT_TRUE(std::all_of(buffer + 17, buffer + 64, [](char c) { return c == '\0'; }));
}

TEST(Version, ShortBufferGetsNoTerminator) {
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(pgGetVersionString(buffer, 5), 17);
    EXPECT_STREQ(buffer, "2.86exx");
}

TEST(Version, BufferOfExactlyTheTextGetsNoTerminator) {
    char buffer[19];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(pgGetVersionString(buffer, 17), 17);
    EXPECT_EQ(std::string(buffer, 19), "2.86e 24-mar-2o15xx");
    EXPECT_EQ(pgGetVersionString(buffer, 18), 17);
    EXPECT_EQ(std::string(buffer, 19), std::string("2.86e 24-mar-2o15\0x", 19));
}

TEST(Version, NothingIsWrittenWithoutABufferOrRoom) {
    char buffer[2] = "x";
    EXPECT_EQ(pgGetVersionString(nullptr, 64), 17);
    EXPECT_EQ(pgGetVersionString(buffer, 0), 17);
    EXPECT_EQ(pgGetVersionString(buffer, -1), 17);
    EXPECT_STREQ(buffer, "x");
}

TEST(Version, NumberIsThatOfTheText) { EXPECT_EQ(pgGetVersionFloat(), 2.865f); }

}  // namespace
