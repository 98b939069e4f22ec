// The built-in table, seen through the exported lookups.
#include <gtest/gtest.h>
#include <pgkit/dictionary.h>
#include <pgkit/value_representation.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "dictionary/private_rows.h"
#include "support/tag_name.h"

namespace {

using pgkit_test::kPrivateRows;
using pgkit_test::TagName;

constexpr int32_t kRows = 3782;
constexpr int32_t kStandardRows = 3655;

struct Row {
    uint16_t group = 0;
    uint16_t element = 0;
    uint8_t valueRep = 0;
    std::string name;

    uint32_t Tag() const { return (uint32_t{group} << 16) | element; }
};

Row ReadRow(int32_t id) {
    Row row;
    EXPECT_EQ(pgFindElementIdInfoAndVR(id, &row.group, &row.element, &row.valueRep), 1u) << id;
    row.name = TagName(row.group, row.element);
    return row;
}

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = [] {
        std::vector<Row> all;
        for (int32_t id = 0; id < kRows; ++id)
            all.push_back(ReadRow(id));
        return all;
    }();
    return rows;
}

template <typename Condition>
auto CountRows(Condition condition) {
    return std::count_if(Rows().begin(), Rows().end(), condition);
}

auto CountPrefix(std::string_view prefix) {
    return CountRows([&](const Row& row) { return row.name.starts_with(prefix); });
}

TEST(ElementTable, HasExactly3782Rows) {
    uint16_t group = 1;
    uint16_t element = 2;
    EXPECT_EQ(pgFindElementIdInfo(kRows - 1, &group, &element), 1u);
    EXPECT_EQ(pgFindElementIdInfo(kRows, &group, &element), 0u);
}

TEST(ElementTable, StandardRowsAscendByTag) {
    EXPECT_EQ(Rows().front().Tag(), 0x00000000u);
    EXPECT_EQ(Rows()[kStandardRows - 1].Tag(), 0xFFFCFFFCu);
    for (size_t id = 1; id < kStandardRows; ++id) {
        EXPECT_LT(Rows()[id - 1].Tag(), Rows()[id].Tag()) << id;
    }
}

TEST(ElementTable, EveryTagOccursOnce) {
    std::set<uint32_t> tags;
    for (const Row& row : Rows())
        tags.insert(row.Tag());
    EXPECT_EQ(tags.size(), size_t{kRows});
}

TEST(ElementTable, EveryTagLeadsBackToItsIdentifier) {
    for (uint32_t id = 0; id < kRows; ++id) {
        EXPECT_EQ(pgFindElementIdType(Rows()[id].group, Rows()[id].element), id);
    }
}

TEST(ElementTable, EveryNameLeadsBackToItsIdentifier) {
    for (uint32_t id = 0; id < kRows; ++id) {
        EXPECT_EQ(pgGetTagElementId(Rows()[id].name.c_str()), id) << Rows()[id].name;
    }
}

TEST(ElementTable, NamesAreLettersDigitsAndUnderscoresOfAtMost127Characters) {
    for (const Row& row : Rows()) {
        EXPECT_FALSE(row.name.empty());
        EXPECT_LE(row.name.size(), 127u);
        EXPECT_EQ(row.name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                             "0123456789_"),
                  std::string::npos)
            << row.name;
    }
}

TEST(ElementTable, IdentifiersThatCallersKnowStayFixed) {
    struct Fixed {
        uint32_t id;
        uint32_t tag;
        uint8_t valueRep;
        const char* name;
    };
    const Fixed fixed[] = {
        {0, 0x00000000, VR_UL, "CmdGroupLength0000"},
        {46, 0x00020000, VR_UL, "GroupLength0002"},
        {47, 0x00020001, VR_OB, "FileMetaInformationVersion"},
        {48, 0x00020002, VR_UI, "MediaStorageSOPClassUID"},
        {49, 0x00020003, VR_UI, "MediaStorageSOPInstanceUID"},
        {50, 0x00020010, VR_UI, "TransferSyntaxUID"},
        {51, 0x00020012, VR_UI, "ImplementationClassUID"},
        {52, 0x00020013, VR_SH, "ImplementationVersionName"},
        {53, 0x00020016, VR_AE, "SourceApplicationEntityTitle"},
        {54, 0x00020100, VR_UI, "PrivateInformationCreatorUID"},
        {55, 0x00020102, VR_OB, "PrivateInformation"},
        {62, 0x00041220, VR_SQ, "DirectoryRecordSequence"},
        {76, 0x00080005, VR_CS, "SpecificCharacterSet"},
        {83, 0x00080016, VR_UI, "SOPClassUID"},
        {84, 0x00080018, VR_UI, "SOPInstanceUID"},
        {245, 0x00100010, VR_PN, "PatientsName"},
        {246, 0x00100020, VR_LO, "PatientID"},
        {1144, 0x0020000D, VR_UI, "StudyInstanceUID"},
        {1496, 0x00280010, VR_US, "Rows"},
        {3652, 0x7FE00010, VR_OWOB, "PixelData"},
        {3653, 0xFFFAFFFA, VR_SQ, "DigitalSignaturesSequence"},
        {3654, 0xFFFCFFFC, VR_OB, "DataSetTrailingPadding"},
        {3781, 0x08595759, VR_CS, "ZORVA_DAEM_RequestedOperation"},
    };
    for (const Fixed& expected : fixed) {
        const Row& row = Rows()[expected.id];
        EXPECT_EQ(row.Tag(), expected.tag) << expected.id;
        EXPECT_EQ(row.valueRep, expected.valueRep) << expected.id;
        EXPECT_EQ(row.name, expected.name) << expected.id;
    }
}

TEST(ElementTable, NamesThatCallersLookUpStandAtTheirTags) {
    const std::map<std::string, uint32_t> expected = {
        {"CmdAffectedSOPClassUID", 0x00000002},
        {"NEMA2_CmdCommandRecognitionCode", 0x00000010},
        {"CmdStatus", 0x00000900},
        {"CmdMoveOriginatorApplicationEntityTitle", 0x00001030},
        {"CmdACR_NEMA_MessageSetID", 0x00005010},
        {"ReferringPhysiciansName", 0x00080090},
        {"RETIRED_CurveDimensions", 0x50000005},
        {"OverlayRows", 0x60000010},
        {"RETIRED_OverlayPlanes", 0x60000012},
        {"NEMA2_OverlayCompressionCode", 0x60000060},
        {"OverlayData", 0x60003000},
    };
    for (const auto& [name, tag] : expected) {
        const uint32_t id = pgGetTagElementId(name.c_str());
        ASSERT_LT(id, uint32_t{kRows}) << name;
        EXPECT_EQ(Rows()[id].Tag(), tag) << name;
    }
}

TEST(ElementTable, MetaGroupIsRows46To55) {
    for (size_t id = 0; id < kRows; ++id) {
        EXPECT_EQ(Rows()[id].group == 0x0002, id >= 46 && id <= 55) << id;
    }
}

TEST(ElementTable, CommandGroupIsRows0To45WithPrefixesOfItsOwn) {
    for (size_t id = 0; id < kRows; ++id) {
        const Row& row = Rows()[id];
        const bool command = row.name.starts_with("Cmd") || row.name.starts_with("NEMA2_Cmd");
        EXPECT_EQ(row.group == 0x0000, id <= 45) << id;
        EXPECT_EQ(command, id <= 45) << row.name;
    }
    EXPECT_EQ(CountPrefix("Cmd"), 26);
    EXPECT_EQ(CountPrefix("NEMA2_Cmd"), 20);
}

TEST(ElementTable, CountsOfRetiredAndAcrNemaNames) {
    EXPECT_EQ(CountPrefix("RETIRED_"), 328);
    EXPECT_EQ(CountPrefix("NEMA2_"), 82);
}

TEST(ElementTable, CountsOfValueRepresentations) {
    const std::map<int, int> expected = {
        {VR_SQ, 803}, {VR_CS, 638},  {VR_LO, 308}, {VR_DS, 407}, {VR_US, 275}, {VR_IS, 220},
        {VR_FL, 223}, {VR_FD, 180},  {VR_SH, 126}, {VR_ST, 81},  {VR_UL, 69},  {VR_UI, 68},
        {VR_DA, 54},  {VR_TM, 53},   {VR_LT, 44},  {VR_DT, 39},  {VR_PN, 32},  {VR_AT, 29},
        {VR_OB, 21},  {VR_USSS, 19}, {VR_OW, 17},  {VR_AE, 16},  {VR_SL, 15},  {VR_SS, 16},
        {VR_UT, 13},  {VR_OWOB, 10}, {VR_OF, 5},   {VR_AS, 1},
    };
    std::map<int, int> counts;
    for (const Row& row : Rows())
        ++counts[row.valueRep];
    EXPECT_EQ(counts, expected);
}

TEST(ElementTable, OnlyTwoGroupLengthsAndNoItemTagsHaveRows) {
    EXPECT_EQ(CountRows([](const Row& row) { return row.element == 0; }), 2);
    EXPECT_EQ(pgFindElementIdType(0x0000, 0x0000), 0u);
    EXPECT_EQ(pgFindElementIdType(0x0002, 0x0000), 46u);
    EXPECT_EQ(CountRows([](const Row& row) { return row.group == 0xFFFE; }), 0);
}

// A row answers for its repeating group when any other group of the same high byte gets its name.
TEST(ElementTable, ExactlyTheRowsOfGroups5000And6000Repeat) {
    std::map<uint16_t, int> repeating;
    for (const Row& row : Rows()) {
        const uint16_t other = row.group ^ 0x0034;
        if (pgFindElementIdType(other, row.element) != 0xFFFFFFFF) continue;
        if (TagName(other, row.element) == row.name) ++repeating[row.group];
    }
    EXPECT_EQ(repeating, (std::map<uint16_t, int>{{0x5000, 26}, {0x6000, 40}}));
    EXPECT_EQ(CountRows([](const Row& row) { return row.group == 0x5000; }), 26);
    EXPECT_EQ(CountRows([](const Row& row) { return row.group == 0x6000; }), 40);
}

TEST(ElementTable, PrivateRowsFollowTheStandardOnes) {
    ASSERT_EQ(std::size(kPrivateRows), size_t{kRows - kStandardRows});
    for (size_t i = 0; i < std::size(kPrivateRows); ++i) {
        const Row& row = Rows()[kStandardRows + i];
        EXPECT_EQ(row.group, kPrivateRows[i].group) << i;
        EXPECT_EQ(row.element, kPrivateRows[i].element) << i;
        EXPECT_EQ(row.valueRep, kPrivateRows[i].valueRep) << i;
        EXPECT_EQ(row.name, kPrivateRows[i].name) << i;
    }
    EXPECT_EQ(CountRows([](const Row& row) { return row.group == 0x0249; }), 55);
    EXPECT_EQ(CountRows([](const Row& row) { return row.group == 0x0251; }), 39);
    EXPECT_EQ(CountRows([](const Row& row) { return row.group == 0x0859; }), 33);
}

// 64-bit FNV-1a over the lines "gggg,eeee VR name\n" (upper-case hexadecimal) of all rows in order.
// The expected value comes from the tab-separated list that the rows were first taken from: it
// guards the bulk of the rows, which no other test names one by one.
TEST(ElementTable, DigestOfAllTagsValueRepresentationsAndNames) {
    uint64_t digest = 0xCBF29CE484222325u;
    for (const Row& row : Rows()) {
        char valueRep[5];
        ASSERT_EQ(pgGetVRPrintableName(row.valueRep, valueRep), 1u);
        char line[160];
        std::snprintf(line, sizeof line, "%04X,%04X %s %s\n", row.group, row.element, valueRep,
                      row.name.c_str());
        for (const char* c = line; *c != '\0'; ++c) {
            digest = (digest ^ static_cast<unsigned char>(*c)) * 0x100000001B3u;
        }
    }
    EXPECT_EQ(digest, 0x57DC80D94B8F9026u);
}

}  // namespace
