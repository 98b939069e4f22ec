#include "dicomdir/create/growing_level.h"

#include <gtest/gtest.h>

namespace {

using pgkit::LeadingInteger;

TEST(NumbersOfSeries, AreTheIntegersThatTheirTextsBeginWith) {
    EXPECT_EQ(LeadingInteger("12"), 12);
    EXPECT_EQ(LeadingInteger("-3"), -3);
    EXPECT_EQ(LeadingInteger("+4"), 4);
    EXPECT_EQ(LeadingInteger(" \t007 "), 7);
    EXPECT_EQ(LeadingInteger("12.9"), 12);
    EXPECT_EQ(LeadingInteger("3\\4"), 3);
}

TEST(NumbersOfSeries, AreZeroForTextsWithoutANumber) {
    for (const char* text : {"", " ", "A1", "-", "+", "+-5", "--5", "- 5", ".5"})
        EXPECT_EQ(LeadingInteger(text), 0) << text;
}

TEST(NumbersOfSeries, AreLimitedToTheRangeOfIntegers) {
    EXPECT_EQ(LeadingInteger("2147483647"), INT32_MAX);
    EXPECT_EQ(LeadingInteger("2147483648"), INT32_MAX);
    EXPECT_EQ(LeadingInteger("-2147483649"), INT32_MIN);
    EXPECT_EQ(LeadingInteger("99999999999999"), INT32_MAX);
}

}  // namespace
