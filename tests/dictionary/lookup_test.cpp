// Lookups by identifier, tag and name.
#include <gtest/gtest.h>
#include <pgkit/dictionary.h>
#include <pgkit/value_representation.h>

#include <set>
#include <string>
#include <utility>

#include "support/tag_name.h"

namespace {

using pgkit_test::TagName;

constexpr uint32_t kNone = 0xFFFFFFFF;

uint32_t NameFound(uint16_t group, uint16_t element) {
    char name[128];
    return pgGetTagPrintableName(group, element, name);
}

TEST(ElementIdentifier, GivesItsTag) {
    uint16_t group = 0;
    uint16_t element = 0;
    EXPECT_EQ(pgFindElementIdInfo(245, &group, &element), 1u);
    EXPECT_EQ(group, 0x0010);
    EXPECT_EQ(element, 0x0010);
    EXPECT_EQ(pgFindElementIdInfo(3781, &group, &element), 1u);
    EXPECT_EQ(group, 0x0859);
    EXPECT_EQ(element, 0x5759);
}

TEST(ElementIdentifier, OutOfRangeLeavesTheOutputsAlone) {
    for (const int32_t id : {-1, 3782, INT32_MAX, INT32_MIN}) {
        uint16_t group = 0x1234;
        uint16_t element = 0x5678;
        uint8_t valueRep = 99;
        EXPECT_EQ(pgFindElementIdInfo(id, &group, &element), 0u) << id;
        EXPECT_EQ(pgFindElementIdInfoAndVR(id, &group, &element, &valueRep), 0u) << id;
        EXPECT_EQ(group, 0x1234);
        EXPECT_EQ(element, 0x5678);
        EXPECT_EQ(valueRep, 99);
    }
}

TEST(ElementIdentifier, GivesTagAndValueRepresentation) {
    uint16_t group = 0;
    uint16_t element = 0;
    uint8_t valueRep = 0;
    EXPECT_EQ(pgFindElementIdInfoAndVR(3652, &group, &element, &valueRep), 1u);
    EXPECT_EQ(group, 0x7FE0);
    EXPECT_EQ(element, 0x0010);
    EXPECT_EQ(valueRep, VR_OWOB);
}

TEST(TagToIdentifier, NeedsARowWithExactlyTheTag) {
    EXPECT_EQ(pgFindElementIdType(0x0010, 0x0010), 245u);
    EXPECT_EQ(pgFindElementIdType(0x0010, 0x0011), kNone);
    EXPECT_EQ(pgFindElementIdType(0xFFFE, 0xE000), kNone);
    EXPECT_EQ(pgFindElementIdType(0xFFFF, 0xFFFF), kNone);
}

TEST(TagToIdentifier, RepeatingGroupsMatchTheirBaseRowOnly) {
    EXPECT_NE(pgFindElementIdType(0x6000, 0x3000), kNone);
    EXPECT_EQ(pgFindElementIdType(0x6002, 0x3000), kNone);
    EXPECT_EQ(pgFindElementIdType(0x5002, 0x0005), kNone);
}

TEST(TagToIdentifier, GroupLengthsAndCreatorsHaveNoRow) {
    EXPECT_EQ(pgFindElementIdType(0x0008, 0x0000), kNone);
    EXPECT_EQ(pgFindElementIdType(0x0009, 0x0010), kNone);
}

// Tags right beside those of the table are where a wrong hash or comparison would show.
TEST(TagToIdentifier, NeighboursOfRowsAreFoundOnlyWhenTheyAreRows) {
    std::set<std::pair<uint16_t, uint16_t>> rows;
    uint16_t group = 0;
    uint16_t element = 0;
    for (int32_t id = 0; pgFindElementIdInfo(id, &group, &element) == 1; ++id)
        rows.emplace(group, element);
    for (const auto& row : rows) {
        for (const int step : {-1, 1, 0x100, 0x1000}) {
            const auto g = static_cast<uint16_t>(row.first + step);
            const auto e = static_cast<uint16_t>(row.second + step);
            EXPECT_EQ(pgFindElementIdType(row.first, e) != kNone, rows.contains({row.first, e}));
            EXPECT_EQ(pgFindElementIdType(g, row.second) != kNone, rows.contains({g, row.second}));
        }
    }
}

TEST(NameToIdentifier, IgnoresCase) {
    EXPECT_EQ(pgGetTagElementId("PatientsName"), 245u);
    EXPECT_EQ(pgGetTagElementId("patientsname"), 245u);
    EXPECT_EQ(pgGetTagElementId("PATIENTSNAME"), 245u);
    EXPECT_EQ(pgGetTagElementId("zorva_daem_requestedoperation"), 3781u);
}

TEST(NameToIdentifier, ComparesWholeNames) {
    EXPECT_EQ(pgGetTagElementId("PatientsNam"), kNone);
    EXPECT_EQ(pgGetTagElementId("PatientsName "), kNone);
    EXPECT_EQ(pgGetTagElementId(" PatientsName"), kNone);
    EXPECT_EQ(pgGetTagElementId("Patients_Name"), kNone);
}

TEST(NameToIdentifier, NullEmptyAndOverlongTextsAreNotFound) {
    EXPECT_EQ(pgGetTagElementId(nullptr), kNone);
    EXPECT_EQ(pgGetTagElementId(""), kNone);
    EXPECT_EQ(pgGetTagElementId(std::string(127, 'A').c_str()), kNone);
    EXPECT_EQ(pgGetTagElementId(std::string(128, 'A').c_str()), kNone);
    EXPECT_EQ(pgGetTagElementId(std::string(1 << 20, 'A').c_str()), kNone);
    EXPECT_EQ(pgGetTagElementId("\xC4\xFF"), kNone);
}

TEST(NameToIdentifier, NamesMadeAtRunTimeHaveNone) {
    EXPECT_EQ(pgGetTagElementId("GroupLength"), kNone);
    EXPECT_EQ(pgGetTagElementId("FileCreator"), kNone);
    EXPECT_EQ(pgGetTagElementId("<Unknown Tag>"), kNone);
}

TEST(TagToValueRepresentation, ComesFromTheRow) {
    EXPECT_EQ(pgFindValueRepresentation(0x0010, 0x0010), uint32_t{VR_PN});
    EXPECT_EQ(pgFindValueRepresentation(0x0028, 0x0106), uint32_t{VR_USSS});
    EXPECT_EQ(pgFindValueRepresentation(0x0859, 0x1040), uint32_t{VR_DS});
}

TEST(TagToValueRepresentation, PrivateCreatorsAreLo) {
    EXPECT_EQ(pgFindValueRepresentation(0x0009, 0x0010), uint32_t{VR_LO});
    EXPECT_EQ(pgFindValueRepresentation(0x0009, 0x00FF), uint32_t{VR_LO});
    EXPECT_EQ(pgFindValueRepresentation(0x6001, 0x0010), uint32_t{VR_LO});
    EXPECT_EQ(pgFindValueRepresentation(0xFFFF, 0x0010), uint32_t{VR_LO});
    EXPECT_EQ(pgFindValueRepresentation(0x0009, 0x000F), uint32_t{VR_Unknown});
    EXPECT_EQ(pgFindValueRepresentation(0x0009, 0x0100), uint32_t{VR_Unknown});
}

TEST(TagToValueRepresentation, GroupLengthsAreUlWithAndWithoutARow) {
    for (const int group : {0x0000, 0x0002, 0x0008, 0x0009, 0x7FE0, 0xFFFE, 0xFFFF}) {
        EXPECT_EQ(pgFindValueRepresentation(static_cast<uint16_t>(group), 0x0000), uint32_t{VR_UL});
    }
}

TEST(TagToValueRepresentation, RepeatingGroupsAreAnsweredByTheirBaseRow) {
    EXPECT_EQ(pgFindValueRepresentation(0x6002, 0x3000), uint32_t{VR_OWOB});
    EXPECT_EQ(pgFindValueRepresentation(0x60FE, 0x0010), uint32_t{VR_US});
    EXPECT_EQ(pgFindValueRepresentation(0x5012, 0x0005), uint32_t{VR_US});
    // The flag says nothing about evenness: odd groups of the same high byte are answered too.
    EXPECT_EQ(pgFindValueRepresentation(0x6001, 0x3000), uint32_t{VR_OWOB});
    EXPECT_EQ(pgFindValueRepresentation(0x6102, 0x3000), uint32_t{VR_Unknown});
    EXPECT_EQ(pgFindValueRepresentation(0x6002, 0x3001), uint32_t{VR_Unknown});
}

TEST(TagToValueRepresentation, UnknownTagsAre255) {
    EXPECT_EQ(pgFindValueRepresentation(0xFFFE, 0xE000), 255u);
    EXPECT_EQ(pgFindValueRepresentation(0xFFFE, 0xE00D), 255u);
    EXPECT_EQ(pgFindValueRepresentation(0xFFFE, 0xE0DD), 255u);
    EXPECT_EQ(pgFindValueRepresentation(0x0010, 0x9999), 255u);
    EXPECT_EQ(pgFindValueRepresentation(0xFFFF, 0xFFFF), 255u);
}

TEST(TagToName, ComesFromTheRow) {
    EXPECT_EQ(TagName(0x7FE0, 0x0010), "PixelData");
    EXPECT_EQ(TagName(0x0249, 0x1011), "GE_PlanCreationDate");
    EXPECT_EQ(NameFound(0x7FE0, 0x0010), 1u);
}

TEST(TagToName, GroupLengthsWithoutARowShareOneName) {
    EXPECT_EQ(TagName(0x0000, 0x0000), "CmdGroupLength0000");
    EXPECT_EQ(TagName(0x0002, 0x0000), "GroupLength0002");
    EXPECT_EQ(TagName(0x0008, 0x0000), "GroupLength");
    EXPECT_EQ(TagName(0x0009, 0x0000), "GroupLength");
    EXPECT_EQ(NameFound(0x0008, 0x0000), 1u);
}

TEST(TagToName, ElementTenWithoutARowIsAFileCreator) {
    EXPECT_EQ(TagName(0x0011, 0x0010), "FileCreator");
    EXPECT_EQ(NameFound(0x0011, 0x0010), 1u);
    // Only that one element number counts, but in even groups too.
    EXPECT_EQ(TagName(0x0006, 0x0010), "FileCreator");
    EXPECT_EQ(TagName(0x0011, 0x0011), "<Unknown Tag>");
}

TEST(TagToName, RepeatingGroupsGetTheBaseRowsName) {
    EXPECT_EQ(TagName(0x6002, 0x3000), "OverlayData");
    EXPECT_EQ(TagName(0x6002, 0x0010), "OverlayRows");
    EXPECT_EQ(TagName(0x6001, 0x0010), "OverlayRows");
    EXPECT_EQ(TagName(0x50FF, 0x0005), "RETIRED_CurveDimensions");
    EXPECT_EQ(TagName(0x6102, 0x3000), "<Unknown Tag>");
}

TEST(TagToName, UnknownTagsLeaveThePlaceholder) {
    EXPECT_EQ(TagName(0xFFFE, 0xE000), "<Unknown Tag>");
    EXPECT_EQ(NameFound(0xFFFE, 0xE000), 0u);
    EXPECT_EQ(NameFound(0x0009, 0x1001), 0u);
}

}  // namespace
