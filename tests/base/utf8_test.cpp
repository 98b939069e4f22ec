#include "base/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using pgkit::FirstUtf8Character;
using pgkit::IsValidUtf8;

std::string Written(char32_t character) {
    char bytes[pgkit::kMaxUtf8Size];
    return std::string(bytes, pgkit::WriteUtf8(character, bytes));
}

TEST(Utf8, EveryCharacterIsReadAsItWasWritten) {
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        if (character == 0xD800) character = 0xE000;
        const std::string bytes = Written(character);
        const auto first = FirstUtf8Character(bytes + "x");
        ASSERT_TRUE(first.isValid) << uint32_t{character};
        ASSERT_EQ(first.character, character);
        ASSERT_EQ(first.size, bytes.size());
    }
}

TEST(Utf8, TheSizesAreTheShortestOnes) {
    EXPECT_EQ(Written(0x7F), "\177");
    EXPECT_EQ(Written(0x80), "\302\200");
    EXPECT_EQ(Written(0x7FF), "\337\277");
    EXPECT_EQ(Written(0x800), "\340\240\200");
    EXPECT_EQ(Written(0xFFFF), "\357\277\277");
    EXPECT_EQ(Written(0x10000), "\360\220\200\200");
    EXPECT_EQ(Written(0x10FFFF), "\364\217\277\277");
}

TEST(Utf8, WhatIsNoCharacterIsWrittenAsReplacement) {
    EXPECT_EQ(Written(0xD800), "\357\277\275");
    EXPECT_EQ(Written(0xDFFF), "\357\277\275");
    EXPECT_EQ(Written(0x110000), "\357\277\275");
}

struct Broken {
    const char* bytes;
    size_t size;  // of what counts as one broken character
    bool isCutShort;
};

TEST(Utf8, ABrokenCharacterTakesTheBytesThatCouldHaveBegunOne) {
    for (const Broken& broken : {
             Broken{"\200x", 1, false},             // no beginning
             Broken{"\300\200", 1, false},          // longer than needed
             Broken{"\340\200\200", 1, false},      // likewise
             Broken{"\355\240\200", 1, false},      // a surrogate
             Broken{"\364\220\200\200", 1, false},  // beyond the last one
             Broken{"\365\200\200\200", 1, false},
             Broken{"\342\202x", 2, false},  // not gone on with
             Broken{"\360\237\230x", 3, false},
             Broken{"\303", 1, true},  // cut short
             Broken{"\342\202", 2, true},
             Broken{"\360\237\230", 3, true},
         }) {
        const auto first = FirstUtf8Character(broken.bytes);
        EXPECT_FALSE(first.isValid) << broken.bytes;
        EXPECT_EQ(first.character, pgkit::kReplacementCharacter);
        EXPECT_EQ(first.size, broken.size) << broken.bytes;
        EXPECT_EQ(first.isCutShort, broken.isCutShort) << broken.bytes;
    }
}

TEST(Utf8, ATextIsValidWhenAllOfItIs) {
    EXPECT_TRUE(IsValidUtf8(""));
    EXPECT_TRUE(IsValidUtf8("J\303\251r\303\264me"));
    EXPECT_FALSE(IsValidUtf8("J\303\251r\364me"));
    EXPECT_FALSE(IsValidUtf8("J\303"));
}

}  // namespace
