// The characters of the system's sets, all of them: the same on every platform.
#include "platform/charset_conversion.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/threads.h"

namespace {

using pgkit::platform::Charset;
using pgkit::platform::CharsetConversion;

// Units of one or two bytes, each byte within these bounds; no second byte when last is 0.
struct Units {
    uint8_t firstLead, lastLead, firstTrail, lastTrail;
};
constexpr Units kSingle = {0x80, 0xFF, 0, 0};
constexpr Units kPairs = {0xA1, 0xFE, 0xA1, 0xFE};
constexpr Units kGbkPairs = {0x81, 0xFE, 0x40, 0xFE};

struct Expected {
    const char* name;
    Charset charset;
    Units units;
    int count;      // of units that are characters
    uint32_t hash;  // of the units and their characters, in order
};

std::vector<std::string> AllOf(const Units& units) {
    std::vector<std::string> all;
    for (int lead = units.firstLead; lead <= units.lastLead; ++lead) {
        const std::string first(1, static_cast<char>(lead));
        if (units.lastTrail == 0) all.push_back(first);
        for (int trail = units.firstTrail; trail <= units.lastTrail && trail > 0; ++trail)
            all.push_back(first + static_cast<char>(trail));
    }
    return all;
}

uint32_t Hashed(uint32_t hash, uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        hash = (hash ^ (number >> shift & 0xFF)) * 16777619u;
    return hash;
}

uint32_t Hashed(uint32_t hash, const std::string& unit) {
    for (const char byte : unit)
        hash = Hashed(hash, static_cast<uint8_t>(byte));
    return hash;
}

std::string Encoded(CharsetConversion& conversion, char32_t character) {
    char unit[pgkit::platform::kMaxCharsetUnit];
    return std::string(unit, conversion.Encode(character, unit));
}

class CharsetTable : public testing::TestWithParam<Expected> {};

TEST_P(CharsetTable, IsThatOfTheStandardOnEveryPlatform) {
    CharsetConversion conversion(GetParam().charset);
    int count = 0;
    uint32_t hash = 2166136261u;
    for (const std::string& unit : AllOf(GetParam().units)) {
        const char32_t character = conversion.Decode(unit);
        if (character == 0) continue;
        ++count;
        hash = Hashed(Hashed(hash, unit), character);
        ASSERT_GE(character, 0x80u) << "a unit that stands for ASCII";
        ASSERT_EQ(Encoded(conversion, character), unit) << std::hex << uint32_t{character};
    }
    EXPECT_EQ(count, GetParam().count);
    EXPECT_EQ(hash, GetParam().hash);
}

INSTANTIATE_TEST_SUITE_P(
    All, CharsetTable,
    testing::Values(Expected{"Iso8859_2", Charset::Iso8859_2, kSingle, 128, 0x35EF9CCE},
                    Expected{"Iso8859_3", Charset::Iso8859_3, kSingle, 121, 0x82561F9E},
                    Expected{"Iso8859_4", Charset::Iso8859_4, kSingle, 128, 0x8E0C5B04},
                    Expected{"Iso8859_5", Charset::Iso8859_5, kSingle, 128, 0x439C66C2},
                    Expected{"Iso8859_6", Charset::Iso8859_6, kSingle, 83, 0x5CFDF615},
                    Expected{"Iso8859_7", Charset::Iso8859_7, kSingle, 125, 0x06B5E683},
                    Expected{"Iso8859_8", Charset::Iso8859_8, kSingle, 92, 0x9BA06784},
                    Expected{"Iso8859_9", Charset::Iso8859_9, kSingle, 128, 0x3378E85C},
                    Expected{"Iso8859_15", Charset::Iso8859_15, kSingle, 128, 0xFA003CE4},
                    Expected{"Tis620", Charset::Tis620, kSingle, 87, 0xD1AA7BAB},
                    Expected{"JisX0208", Charset::JisX0208, kPairs, 6879, 0x5DE6F2C8},
                    Expected{"JisX0212", Charset::JisX0212, kPairs, 6067, 0xAA64542A},
                    Expected{"KsX1001", Charset::KsX1001, kPairs, 8227, 0x9B7F0EFE},
                    Expected{"Gb2312", Charset::Gb2312, kPairs, 7445, 0xC712815E},
                    Expected{"Gbk", Charset::Gbk, kGbkPairs, 21791, 0xF8BAEE4B}),
    [](const auto& tested) { return std::string(tested.param.name); });

// Platforms used to disagree on these: each has several characters that look alike.
TEST(CharsetConversion, LookalikesAreThoseOfTheStandard) {
    const struct {
        Charset charset;
        const char* unit;
        char32_t character;
    } expected[] = {
        {Charset::JisX0208, "\241\300", 0xFF3C}, {Charset::JisX0208, "\241\301", 0x301C},
        {Charset::JisX0208, "\241\302", 0x2016}, {Charset::JisX0208, "\241\335", 0x2212},
        {Charset::JisX0208, "\241\361", 0x00A2}, {Charset::JisX0208, "\241\362", 0x00A3},
        {Charset::JisX0208, "\242\314", 0x00AC}, {Charset::JisX0212, "\242\267", 0xFF5E},
        {Charset::KsX1001, "\242\350", 0x327E},  {Charset::Gb2312, "\241\244", 0x30FB},
        {Charset::Gb2312, "\241\252", 0x2015},   {Charset::Gbk, "\241\244", 0x00B7},
        {Charset::Gbk, "\241\252", 0x2014},      {Charset::Iso8859_7, "\241", 0x2018},
        {Charset::Iso8859_8, "\257", 0x00AF},
    };
    for (const auto& row : expected) {
        CharsetConversion conversion(row.charset);
        EXPECT_EQ(conversion.Decode(row.unit), row.character)
            << std::hex << uint32_t{row.character};
    }
}

TEST(CharsetConversion, SimilarCharactersDoNotTakeThePlaceOfMissingOnes) {
    CharsetConversion latin2(Charset::Iso8859_2);
    EXPECT_EQ(Encoded(latin2, 0x00E8), "");  // e with grave accent
    EXPECT_EQ(Encoded(latin2, 0x2019), "");
    EXPECT_EQ(Encoded(latin2, 0xFF21), "");
    CharsetConversion japanese(Charset::JisX0208);
    EXPECT_EQ(Encoded(japanese, 0xFF5E), "");  // a wide tilde, where the set has a wave dash
    EXPECT_EQ(Encoded(japanese, 0xFF0D), "");
    EXPECT_EQ(Encoded(japanese, 0x2460), "");
}

TEST(CharsetConversion, PrivateUseIsNoCharacter) {
    EXPECT_EQ(CharsetConversion(Charset::KsX1001).Decode("\311\241"), 0u);
    EXPECT_EQ(CharsetConversion(Charset::Gbk).Decode("\252\241"), 0u);
    EXPECT_EQ(CharsetConversion(Charset::JisX0208).Decode("\365\241"), 0u);
    CharsetConversion chinese(Charset::Gbk);
    EXPECT_EQ(Encoded(chinese, 0xE000), "");
}

TEST(CharsetConversion, Gb18030HasTheUsersOwnCharacters) {
    CharsetConversion chinese(Charset::Gb18030);
    EXPECT_EQ(chinese.Decode("\252\241"), 0xE000u);
    EXPECT_EQ(Encoded(chinese, 0xE000), "\252\241");
    EXPECT_EQ(chinese.Decode("\326\320"), 0x4E2Du);
}

TEST(CharsetConversion, Gb18030HasEverythingElseInFourBytes) {
    CharsetConversion chinese(Charset::Gb18030);
    const std::string first = "\201\060\201\060";
    if (chinese.Decode(first) == 0) GTEST_SKIP() << "this system has no GB 18030";
    EXPECT_EQ(chinese.Decode(first), 0x80u);
    EXPECT_EQ(Encoded(chinese, 0x00FF), "\201\060\213\067");
    EXPECT_EQ(chinese.Decode("\224\071\374\070"), 0x1F602u);
    EXPECT_EQ(Encoded(chinese, 0x1F602), "\224\071\374\070");
    EXPECT_EQ(chinese.Decode("\343\062\232\065"), 0x10FFFFu);
    EXPECT_EQ(chinese.Decode("\343\062\232\066"), 0u);
}

TEST(CharsetConversion, AFailureLeavesNothingBehind) {
    CharsetConversion korean(Charset::KsX1001);
    EXPECT_EQ(korean.Decode("\310"), 0u);
    EXPECT_EQ(korean.Decode("\377\377"), 0u);
    EXPECT_EQ(korean.Decode("\310\253"), 0xD64Du);
    EXPECT_EQ(Encoded(korean, 0xD800), "");
    EXPECT_EQ(Encoded(korean, 0x10FFFF), "");
    EXPECT_EQ(Encoded(korean, 0xD64D), "\310\253");
}

TEST(CharsetConversion, SeveralOfOneSetGoTogether) {
    CharsetConversion one(Charset::Iso8859_5);
    CharsetConversion other(Charset::Iso8859_5);
    EXPECT_EQ(one.Decode("\273"), 0x041Bu);
    EXPECT_EQ(other.Decode("\273"), 0x041Bu);
    EXPECT_EQ(Encoded(one, 0x041B), "\273");
}

TEST(CharsetConversion, ThreadsDoNotMeet) {
    std::vector<int> wrong(4);
    pgkit_test::RunOnThreads(wrong.size(), [&wrong](size_t thread) {
        for (int i = 0; i < 2000; ++i) {
            CharsetConversion korean(Charset::KsX1001);
            CharsetConversion greek(Charset::Iso8859_7);
            if (korean.Decode("\310\253") != 0xD64D) ++wrong[thread];
            if (greek.Decode("\304") != 0x0394) ++wrong[thread];
            if (Encoded(korean, 0xD64D) != "\310\253") ++wrong[thread];
        }
    });
    EXPECT_EQ(wrong, std::vector<int>(4));
}

}  // namespace
