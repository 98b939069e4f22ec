#include "json/number_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using pgkit::NumberText;

std::string TextOf(const std::optional<NumberText>& number) {
    return number ? std::string(number->View()) : "none";
}
std::string Ds(std::string_view text) { return TextOf(pgkit::JsonNumberOfDS(text)); }
std::string Is(std::string_view text) { return TextOf(pgkit::JsonNumberOfIS(text)); }
std::string Decimal(std::string_view number) { return TextOf(pgkit::DecimalStringOf(number)); }

TEST(DecimalStrings, KeepTheirDigitsInJson) {
    EXPECT_EQ(Ds("0"), "0");
    EXPECT_EQ(Ds("-0.0"), "-0.0");
    EXPECT_EQ(Ds("+001.250"), "1.250");
    EXPECT_EQ(Ds(".5"), "0.5");
    EXPECT_EQ(Ds("-5."), "-5");
    EXPECT_EQ(Ds("1E+05"), "1e+05");
    EXPECT_EQ(Ds("123456789012345"), "123456789012345");
}

TEST(DecimalStrings, AreNoNumbersOfJson) {
    for (const char* text : {"", ".", "+", "e5", "1e", "1e+", "1.2.3", "0x10", "1,5", "1 2", "nan",
                             "inf", "--1", "+-1", "1-"}) {
        EXPECT_EQ(Ds(text), "none") << text;
    }
}

TEST(DecimalStrings, AreNoNumbersWhereADoubleLosesDigits) {
    EXPECT_EQ(Ds("9007199254740991"), "9007199254740991");
    EXPECT_EQ(Ds("9007199254740993"), "none");
    EXPECT_EQ(Ds("1e309"), "none");
    EXPECT_EQ(Ds("1.5e308"), "1.5e308");
    EXPECT_EQ(Ds("1e-308"), "none");
    EXPECT_EQ(Ds("3e-308"), "3e-308");
    EXPECT_EQ(Ds("0e999"), "none");
}

// They have to fit 16 characters again.
TEST(DecimalStrings, AreNoNumbersWhenTheyAreTooLong) {
    EXPECT_EQ(Ds(".12345678901234"), "0.12345678901234");
    EXPECT_EQ(Ds(".123456789012345"), "none");
    EXPECT_EQ(Ds("1.0000000000000000"), "none");
}

TEST(IntegerStrings, AreNumbersOfJson) {
    EXPECT_EQ(Is("0012"), "12");
    EXPECT_EQ(Is("+12"), "12");
    EXPECT_EQ(Is("-2147483648"), "-2147483648");
    for (const char* text : {"", "+", "-", "+-1", "1.0", "1e2", "2147483648", "1 "})
        EXPECT_EQ(Is(text), "none") << text;
}

TEST(JsonNumbers, BecomeDecimalStrings) {
    EXPECT_EQ(Decimal("1.50"), "1.50");
    EXPECT_EQ(Decimal("1234567890123456"), "1234567890123456");
    EXPECT_EQ(Decimal("12345678901234567"), "1.2345678901e+16");
    EXPECT_EQ(Decimal("100000000000000000000"), "1e+20");
    EXPECT_EQ(Decimal("0.30000000000000004"), "0.3");
    EXPECT_EQ(Decimal("-0.33333333333333331"), "-0.3333333333333");
    EXPECT_EQ(Decimal("-1.2345678901234567e-300"), "-1.23456789e-300");
    EXPECT_EQ(Decimal("1.00000000000000000e-999"), "none");
}

TEST(JsonNumbers, BecomeWholeNumbers) {
    EXPECT_EQ(pgkit::WholeNumber<uint16_t>("65535"), 65535);
    EXPECT_EQ(pgkit::WholeNumber<uint16_t>("65536"), std::nullopt);
    EXPECT_EQ(pgkit::WholeNumber<uint16_t>("-1"), std::nullopt);
    EXPECT_EQ(pgkit::WholeNumber<uint16_t>("-0"), 0);
    EXPECT_EQ(pgkit::WholeNumber<int16_t>("-3.2768e4"), -32768);
    EXPECT_EQ(pgkit::WholeNumber<int32_t>("1.0"), 1);
    EXPECT_EQ(pgkit::WholeNumber<int32_t>("0.5"), std::nullopt);
    EXPECT_EQ(pgkit::WholeNumber<int32_t>("1e300"), std::nullopt);
    EXPECT_EQ(pgkit::WholeNumber<uint64_t>("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(pgkit::WholeNumber<uint64_t>("18446744073709551616"), std::nullopt);
    EXPECT_EQ(pgkit::WholeNumber<int64_t>("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(pgkit::WholeNumber<int64_t>(""), std::nullopt);
}

}  // namespace
