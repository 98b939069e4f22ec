#include "pgkit/value_representation.h"

#include <gtest/gtest.h>
#include <pgkit/dictionary.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

// By code.
constexpr std::array<const char*, 29> kNames = {
    "UL", "UI", "US", "AE", "AT", "LO", "OB", "SH", "CS",   "SQ", "DA", "TM", "DT",   "ST", "PN",
    "IS", "DS", "LT", "FL", "AS", "SL", "FD", "SS", "USSS", "OW", "UT", "OF", "OWOB", "UN"};

bool IsCharsetEncodedName(const std::string& name) {
    constexpr std::array<const char*, 6> kEncoded = {"SH", "LO", "ST", "LT", "PN", "UT"};
    return std::find(kEncoded.begin(), kEncoded.end(), name) != kEncoded.end();
}

std::string PrintableName(uint32_t valueRep) {
    char name[5] = "";
    pgGetVRPrintableName(valueRep, name);
    return name;
}

TEST(ValueRepresentation, CodesAndNamesLeadToEachOther) {
    for (uint32_t code = 0; code < kNames.size(); ++code) {
        char name[5];
        EXPECT_EQ(pgGetVRPrintableName(code, name), 1u);
        EXPECT_STREQ(name, kNames[code]);
        EXPECT_EQ(pgFindValueRepresentationVR(kNames[code]), code);
    }
}

TEST(ValueRepresentation, CodesWithoutANameGiveQuestionMarks) {
    for (const uint32_t code : {29u, 100u, 254u, 255u, 256u, 0xFFFFFFFFu}) {
        char name[5];
        EXPECT_EQ(pgGetVRPrintableName(code, name), 0u) << code;
        EXPECT_STREQ(name, "????");
    }
}

TEST(ValueRepresentation, NameIsWrittenWithItsTerminatorAndNoMore) {
    char name[6] = "xxxxx";
    pgGetVRPrintableName(VR_OW, name);
    EXPECT_EQ(std::memcmp(name, "OW\0xx", 5), 0);
    EXPECT_EQ(PrintableName(VR_OWOB), "OWOB");
}

TEST(ValueRepresentation, NamesAreComparedWholeAndCaseSensitively) {
    EXPECT_EQ(pgFindValueRepresentationVR("OW"), 24u);
    for (const char* text :
         {"ow", "Ow", "",   "O",  "OW ", " OW", "OWO", "OWOBX", "owob",  "USS",
          "XX", "OX", "??", "@A", "A@",  "[[",  "ZZ",  "\xFFL", "U\xCC", "255"}) {
        EXPECT_EQ(pgFindValueRepresentationVR(text), 255u) << text;
    }
    EXPECT_EQ(pgFindValueRepresentationVR(nullptr), 255u);
}

TEST(ValueRepresentation, CharacterSetMattersToSixOfThem) {
    for (uint32_t code = 0; code < 300; ++code) {
        EXPECT_EQ(pgIsCharsetEncodedVR(code) == 1, IsCharsetEncodedName(PrintableName(code)))
            << code;
    }
    EXPECT_EQ(pgIsCharsetEncodedVR(0xFFFFFFFF), 0u);
}

TEST(ValueRepresentation, CharacterSetQuestionByName) {
    for (const char* name : kNames) {
        EXPECT_EQ(pgIsCharsetEncodedVRValue(name) == 1, IsCharsetEncodedName(name)) << name;
    }
    for (const char* text : {"sh", "SH ", "", "S", "SHX", "????"}) {
        EXPECT_EQ(pgIsCharsetEncodedVRValue(text), 0u) << text;
    }
    EXPECT_EQ(pgIsCharsetEncodedVRValue(nullptr), 0u);
}

}  // namespace
