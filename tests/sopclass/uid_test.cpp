#include "pgkit/uid.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(CheckUid, AcceptsNumbersSeparatedByPoints) {
    for (const char* uid : {"1.2", "0.1", "1.0", "1.0.3", "0.0", "1.2.840.10008.1.2.1", "10.20"}) {
        EXPECT_EQ(pgCheckUID(uid), 1) << uid;
    }
}

TEST(CheckUid, RefusesPointsWithoutANumberOnBothSides) {
    for (const char* uid : {"1.", ".1", "1.2.", ".1.2", "1..2", "...", "1.2..", "..1"}) {
        EXPECT_EQ(pgCheckUID(uid), 0) << uid;
    }
}

TEST(CheckUid, RefusesLeadingZeros) {
    for (const char* uid : {"01.2", "00.1", "1.02", "1.00", "1.2.03", "1.2.00.3"}) {
        EXPECT_EQ(pgCheckUID(uid), 0) << uid;
    }
}

TEST(CheckUid, RefusesASingleNumber) {
    EXPECT_EQ(pgCheckUID("12"), 0);
    EXPECT_EQ(pgCheckUID("123"), 0);
}

TEST(CheckUid, RefusesEverythingButDigitsAndPoints) {
    for (const char* uid : {"1.2a", "a.1", "1.2 ", " 1.2", "1.-2", "1,2", "1.\xB2"}) {
        EXPECT_EQ(pgCheckUID(uid), 0) << uid;
    }
}

TEST(CheckUid, RefusesNullAndTextsThatAreTooShortOrTooLong) {
    EXPECT_EQ(pgCheckUID(nullptr), 0);
    EXPECT_EQ(pgCheckUID(""), 0);
    EXPECT_EQ(pgCheckUID("1"), 0);
    const std::string longest = "1." + std::string(62, '2');
    EXPECT_EQ(pgCheckUID(longest.c_str()), 1);
    EXPECT_EQ(pgCheckUID((longest + "2").c_str()), 0);
}

}  // namespace
