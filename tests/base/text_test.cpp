#include "base/text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

TEST(Text, TrimTakesBlanksOffBothEndsOnly) {
    EXPECT_EQ(pgkit::TrimBlanks("  a b "), "a b");
    EXPECT_EQ(pgkit::TrimBlanks("a"), "a");
    EXPECT_EQ(pgkit::TrimBlanks("   "), "");
    EXPECT_EQ(pgkit::TrimBlanks(""), "");
    EXPECT_EQ(pgkit::TrimBlanks("\t a\t"), "\t a\t");
}

TEST(Text, UpperCaseIsAsciiOnly) { EXPECT_EQ(pgkit::ToUpper("az 9\xE4"), "AZ 9\xE4"); }

TEST(Text, CopyToFieldIsCutAndTerminated) {
    char field[4] = "xyz";
    pgkit::CopyToField(field, "abcdef");
    EXPECT_STREQ(field, "abc");
    pgkit::CopyToField(field, "a");
    EXPECT_STREQ(field, "a");
}

TEST(Text, CopyUnboundedWritesTheTextAndItsTerminatorOnly) {
    char buffer[] = "xxxxxx";
    pgkit::CopyUnbounded(buffer, "abc");
    EXPECT_EQ(std::string(buffer, 6), std::string("abc\0xx", 6));
    pgkit::CopyUnbounded(buffer, "");
    EXPECT_EQ(std::string(buffer, 2), std::string("\0b", 2));
}

TEST(Text, NewTextIsATerminatedCopy) {
    const std::unique_ptr<char[]> copy(pgkit::NewText("abc"));
    EXPECT_STREQ(copy.get(), "abc");
}

TEST(Text, NullCountsAsEmpty) {
    EXPECT_EQ(pgkit::OrEmpty(nullptr), "");
    EXPECT_EQ(pgkit::OrEmpty("a"), "a");
}

}  // namespace
