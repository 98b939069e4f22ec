// The tables of today's standard, and what choosing an edition changes.
#include <gtest/gtest.h>
#include <pgkit/dictionary.h>
#include <pgkit/edition.h>
#include <pgkit/value_representation.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/current_edition.h"
#include "support/private_dictionary.h"
#include "support/tag_name.h"

namespace {

using pgkit_test::CurrentEdition;
using pgkit_test::TagName;

template <typename Function, typename... Arguments>
std::string TextFrom(Function function, Arguments... arguments) {
    char buffer[256];
    const size_t length = function(arguments..., buffer, sizeof buffer);
    EXPECT_EQ(std::string_view(buffer).size(), length);
    return buffer;
}

std::string Keyword(uint16_t group, uint16_t element) {
    return TextFrom(pgxTagKeyword, group, element);
}

std::string Multiplicity(uint16_t group, uint16_t element) {
    return TextFrom(pgxTagMultiplicity, group, element);
}

std::string VrOf(uint16_t group, uint16_t element) {
    char name[5];
    pgGetVRPrintableName(pgFindValueRepresentation(group, element), name);
    return name;
}

// "gggg,eeee", or nothing.
std::string TagOf(const char* name) {
    uint16_t group = 0;
    uint16_t element = 0;
    if (pgxFindTag(name, &group, &element) == 0) return "";
    char text[16];
    std::snprintf(text, sizeof text, "%04X,%04X", unsigned{group}, unsigned{element});
    return text;
}

// 64-bit FNV-1a, over lines.
class Digest {
  public:
    void Add(std::string_view text) {
        for (const char c : text)
            digest_ = (digest_ ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    }
    uint64_t Value() const { return digest_; }

  private:
    uint64_t digest_ = 0xCBF29CE484222325u;
};

// The groups that have elements of their own, not as tags of a range.
constexpr uint16_t kStandardGroups[] = {
    0x0000, 0x0002, 0x0004, 0x0008, 0x0010, 0x0012, 0x0014, 0x0016, 0x0018, 0x0020, 0x0022, 0x0024,
    0x0028, 0x0032, 0x0034, 0x0038, 0x003A, 0x0040, 0x0042, 0x0044, 0x0046, 0x0048, 0x0050, 0x0052,
    0x0054, 0x0060, 0x0062, 0x0064, 0x0066, 0x0068, 0x006A, 0x0070, 0x0072, 0x0074, 0x0076, 0x0078,
    0x0080, 0x0082, 0x0088, 0x0100, 0x0400, 0x2000, 0x2010, 0x2020, 0x2030, 0x2040, 0x2050, 0x2100,
    0x2110, 0x2120, 0x2130, 0x2200, 0x3002, 0x3004, 0x3006, 0x3008, 0x300A, 0x300C, 0x300E, 0x3010,
    0x4000, 0x4008, 0x4010, 0x4FFE, 0x5200, 0x5400, 0x5600, 0x7FE0, 0xFFFA, 0xFFFC, 0xFFFE,
};

template <typename Visit>
void ForTagsOfStandardGroups(Visit visit) {
    for (const uint16_t group : kStandardGroups) {
        for (uint32_t element = 0; element <= 0xFFFF; ++element)
            visit(group, static_cast<uint16_t>(element));
    }
}

// Whether a range covers the tag.
bool IsOfRange(uint16_t group, uint16_t element) {
    const bool isVariable = group == 0x7FE0 && Keyword(group, element).starts_with("Variable");
    const uint16_t block = element & 0xFF00;
    return isVariable || (group == 0x0020 && block == 0x3100) ||
           (group == 0x0028 && (block == 0x0400 || block == 0x0800));
}

// ---- Choosing -----------------------------------------------------------------------------------

TEST(Edition, IsTheBuiltInOneAfterLoading) {
    EXPECT_EQ(pgxUseEdition(PGX_EDITION_BUILT_IN), PGX_EDITION_BUILT_IN);
}

TEST(Edition, IsReplacedAndTheFormerOneReturned) {
    EXPECT_EQ(pgxUseEdition(PGX_EDITION_CURRENT), PGX_EDITION_BUILT_IN);
    EXPECT_EQ(pgxUseEdition(PGX_EDITION_CURRENT), PGX_EDITION_CURRENT);
    EXPECT_EQ(pgxUseEdition(PGX_EDITION_BUILT_IN), PGX_EDITION_CURRENT);
}

TEST(Edition, StaysWhenAnUnknownOneIsAskedFor) {
    const CurrentEdition current;
    for (const int32_t edition : {-1, 2, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(pgxUseEdition(edition), -1) << edition;
    }
    EXPECT_EQ(VrOf(0x0008, 0x0120), "UR");
}

// ---- What the built-in dictionary does not know -------------------------------------------------

struct NewElement {
    uint16_t group;
    uint16_t element;
    const char* valueRep;
    const char* keyword;
};

constexpr NewElement kNewElements[] = {
    {0x0008, 0x0120, "UR", "URNCodeValue"},
    {0x0008, 0x0119, "UC", "LongCodeValue"},
    {0x0008, 0x009D, "SQ", "ConsultingPhysicianIdentificationSequence"},
    {0x7FE0, 0x0001, "OV", "ExtendedOffsetTable"},
    {0x7FE0, 0x0008, "OF", "FloatPixelData"},
    {0x7FE0, 0x0009, "OD", "DoubleFloatPixelData"},
    {0x0066, 0x0040, "OL", "LongPrimitivePointIndexList"},
};

TEST(CurrentEdition, KnowsElementsThatCameLater) {
    for (const NewElement& row : kNewElements) {
        EXPECT_EQ(pgFindValueRepresentation(row.group, row.element), uint32_t{VR_Unknown});
        EXPECT_EQ(TagName(row.group, row.element), "<Unknown Tag>");
        const CurrentEdition current;
        EXPECT_EQ(VrOf(row.group, row.element), row.valueRep) << row.keyword;
        EXPECT_EQ(TagName(row.group, row.element), row.keyword);
    }
}

// The rows, in the order of their tags, as lines "gggg,eeee VR keyword". Count and digest come from
// the tab-separated list that the rows were made from.
TEST(CurrentEdition, Adds1617ElementsWithTheirValueRepresentationsAndKeywords) {
    const CurrentEdition current;
    int count = 0;
    Digest digest;
    ForTagsOfStandardGroups([&](uint16_t group, uint16_t element) {
        if (element == 0 || pgxTagMultiplicity(group, element, nullptr, 0) == 0) return;
        if (pgFindElementIdType(group, element) != 0xFFFFFFFF || IsOfRange(group, element)) return;
        char head[32];
        std::snprintf(head, sizeof head, "%04X,%04X %s ", unsigned{group}, unsigned{element},
                      VrOf(group, element).c_str());
        ++count;
        digest.Add(head + Keyword(group, element) + "\n");
    });
    EXPECT_EQ(count, 1617);
    EXPECT_EQ(digest.Value(), 0x7D4E8F6CB3575988u);
}

TEST(CurrentEdition, LeavesEveryBuiltInAnswerAsItIs) {
    const auto answers = [] {
        Digest digest;
        for (int32_t id = 0; id < 3782; ++id) {
            uint16_t group = 0;
            uint16_t element = 0;
            uint8_t valueRep = 0;
            pgFindElementIdInfoAndVR(id, &group, &element, &valueRep);
            const std::string name = TagName(group, element);
            digest.Add(name + " " + std::to_string(valueRep) + " " +
                       std::to_string(pgFindElementIdType(group, element)) + " " +
                       std::to_string(pgGetTagElementId(name.c_str())) + "\n");
        }
        return digest.Value();
    };
    const uint64_t builtIn = answers();
    const CurrentEdition current;
    EXPECT_EQ(answers(), builtIn);
}

// Today's standard has other value representations for these.
TEST(CurrentEdition, LeavesBuiltInValueRepresentationsThatHaveChangedSince) {
    const CurrentEdition current;
    EXPECT_EQ(VrOf(0x0008, 0x0010), "LO");
    EXPECT_EQ(VrOf(0x0014, 0x3022), "DS");
    EXPECT_EQ(VrOf(0x0028, 0x1200), "OW");
    EXPECT_EQ(VrOf(0x0010, 0x1050), "LT");
}

TEST(CurrentEdition, KnowsMoreTagsOfRanges) {
    EXPECT_EQ(VrOf(0x0020, 0x3102), "????");
    EXPECT_EQ(VrOf(0x7F02, 0x0010), "????");
    const CurrentEdition current;
    EXPECT_EQ(VrOf(0x0020, 0x3102), "CS");
    EXPECT_EQ(TagName(0x0020, 0x3102), "SourceImageIDs");
    EXPECT_EQ(VrOf(0x0028, 0x0451), "US");
    EXPECT_EQ(VrOf(0x1000, 0x1235), "US");
    EXPECT_EQ(TagName(0x1000, 0x1235), "ShiftTableTriplet");
    EXPECT_EQ(TagName(0x1010, 0x9ABC), "ZonalMap");
    EXPECT_EQ(VrOf(0x7F02, 0x0010), "OWOB");
    EXPECT_EQ(TagName(0x7F02, 0x0010), "VariablePixelData");
}

TEST(CurrentEdition, LeavesOddGroupsPrivate) {
    const CurrentEdition current;
    EXPECT_EQ(VrOf(0x7F01, 0x1010), "????");
    EXPECT_EQ(VrOf(0x1011, 0x1234), "????");
    EXPECT_EQ(VrOf(0x7F01, 0x0010), "LO");
}

TEST(CurrentEdition, AnswersBeforeThePrivateDictionary) {
    const pgkit_test::PrivateDictionaryText dictionary("(0008,\"ACME\",0120) LO Acme 1\n");
    EXPECT_EQ(VrOf(0x0008, 0x0120), "LO");
    const CurrentEdition current;
    EXPECT_EQ(VrOf(0x0008, 0x0120), "UR");
    EXPECT_EQ(TagName(0x0008, 0x0120), "URNCodeValue");
}

TEST(CurrentEdition, StillNamesGroupLengths) {
    const CurrentEdition current;
    EXPECT_EQ(TagName(0x0008, 0x0000), "GroupLength");
    EXPECT_EQ(VrOf(0x0008, 0x0000), "UL");
}

// ---- Value representations ----------------------------------------------------------------------

constexpr std::pair<uint32_t, const char*> kNewVrs[] = {{VR_OD, "OD"}, {VR_OL, "OL"}, {VR_OV, "OV"},
                                                        {VR_SV, "SV"}, {VR_UC, "UC"}, {VR_UR, "UR"},
                                                        {VR_UV, "UV"}};

TEST(CurrentEdition, NamesSevenMoreValueRepresentations) {
    uint32_t code = 29;
    for (const auto& [valueRep, expected] : kNewVrs) {
        EXPECT_EQ(valueRep, code++);
        char name[5];
        EXPECT_EQ(pgGetVRPrintableName(valueRep, name), 0u);
        EXPECT_STREQ(name, "????");
        EXPECT_EQ(pgFindValueRepresentationVR(expected), uint32_t{VR_Unknown});
        const CurrentEdition current;
        EXPECT_EQ(pgGetVRPrintableName(valueRep, name), 1u);
        EXPECT_STREQ(name, expected);
        EXPECT_EQ(pgFindValueRepresentationVR(expected), valueRep);
    }
}

TEST(CurrentEdition, NamesNoCodeBehindThem) {
    const CurrentEdition current;
    char name[5];
    EXPECT_EQ(pgGetVRPrintableName(36, name), 0u);
    EXPECT_STREQ(name, "????");
}

TEST(CurrentEdition, HasOneMoreValueRepresentationInTheDataSetsCharacters) {
    EXPECT_EQ(pgIsCharsetEncodedVR(VR_UC), 0u);
    const CurrentEdition current;
    for (const auto& [valueRep, name] : kNewVrs) {
        EXPECT_EQ(pgIsCharsetEncodedVR(valueRep), valueRep == VR_UC ? 1u : 0u) << name;
        EXPECT_EQ(pgIsCharsetEncodedVRValue(name), valueRep == VR_UC ? 1u : 0u) << name;
    }
}

// ---- Lookups of either edition ------------------------------------------------------------------

TEST(TagKeyword, IsTheOneOfToday) {
    EXPECT_EQ(Keyword(0x0010, 0x0010), "PatientName");
    EXPECT_EQ(Keyword(0x0008, 0x0120), "URNCodeValue");
    EXPECT_EQ(Keyword(0x6002, 0x3000), "OverlayData");
    EXPECT_EQ(Keyword(0x50FE, 0x3000), "CurveData");
    EXPECT_EQ(Keyword(0xFFFE, 0xE000), "Item");
}

TEST(TagKeyword, IsEmptyWhereTheStandardHasNone) {
    EXPECT_EQ(Keyword(0x0009, 0x1001), "");
    EXPECT_EQ(Keyword(0x6003, 0x3000), "");
    EXPECT_EQ(Keyword(0x0018, 0x0061), "");  // retired, and its keyword with it
    EXPECT_EQ(Keyword(0x0249, 0x1011), "");  // built-in, but private
    EXPECT_EQ(Keyword(0x0008, 0xFFFF), "");
}

TEST(TagKeyword, IsCutToTheBufferAndItsLengthReturned) {
    char buffer[8];
    EXPECT_EQ(pgxTagKeyword(0x0010, 0x0010, buffer, sizeof buffer), 11u);
    EXPECT_STREQ(buffer, "Patient");
    EXPECT_EQ(pgxTagKeyword(0x0010, 0x0010, nullptr, 0), 11u);
    EXPECT_EQ(pgxTagKeyword(0x0009, 0x1001, buffer, sizeof buffer), 0u);
    EXPECT_STREQ(buffer, "");
}

TEST(TagMultiplicity, IsAsPrinted) {
    EXPECT_EQ(Multiplicity(0x0010, 0x0010), "1");
    EXPECT_EQ(Multiplicity(0x0008, 0x0008), "2-n");
    EXPECT_EQ(Multiplicity(0x0008, 0x0005), "1-n");
    EXPECT_EQ(Multiplicity(0x0020, 0x0032), "3");
    EXPECT_EQ(Multiplicity(0x6002, 0x0050), "2");
    EXPECT_EQ(Multiplicity(0x0009, 0x1001), "");
}

TEST(CurrentTagAt, GoesThroughAllTagsOfTodayAndThenTheRanges) {
    std::vector<uint32_t> tags;
    uint16_t group = 0;
    uint16_t element = 0;
    for (uint32_t index = 0; pgxCurrentTagAt(index, &group, &element) == 1; ++index)
        tags.push_back(uint32_t{group} << 16 | element);
    const auto ranges = std::is_sorted_until(tags.begin(), tags.end());
    EXPECT_EQ(ranges - tags.begin(), 5189);
    EXPECT_TRUE(std::binary_search(tags.begin(), ranges, 0x00100010u));
    EXPECT_EQ(std::count(ranges, tags.end(), 0x60003000u), 1);
    EXPECT_EQ(pgxCurrentTagAt(UINT32_MAX, &group, &element), 0);
    EXPECT_EQ(pgxCurrentTagAt(0, nullptr, nullptr), 1);
}

TEST(FindTag, UnderstandsBothSpellingsWithoutRegardToCase) {
    EXPECT_EQ(TagOf("PatientsName"), "0010,0010");
    EXPECT_EQ(TagOf("PatientName"), "0010,0010");
    EXPECT_EQ(TagOf("patientname"), "0010,0010");
    EXPECT_EQ(TagOf("URNCodeValue"), "0008,0120");
    EXPECT_EQ(TagOf("RETIRED_CurveDimensions"), "5000,0005");
    EXPECT_EQ(TagOf("CurveDimensions"), "5000,0005");
    EXPECT_EQ(TagOf("OverlayData"), "6000,3000");
    EXPECT_EQ(TagOf("VariablePixelData"), "7F00,0010");
}

TEST(FindTag, UnderstandsNumbers) {
    EXPECT_EQ(TagOf("0010,0010"), "0010,0010");
    EXPECT_EQ(TagOf("(7fe0,0010)"), "7FE0,0010");
    EXPECT_EQ(TagOf("7FE00010"), "7FE0,0010");
    EXPECT_EQ(TagOf("6002,3000"), "6002,3000");
    EXPECT_EQ(TagOf("60xx,3000"), "6000,3000");
    EXPECT_EQ(TagOf("0009,10ff"), "0009,10FF");
}

TEST(FindTag, RefusesEverythingElse) {
    for (const char* text : {"", "PatientNam", "0010,001", "0010 0010", "0010,001G", "(0010,0010",
                             "0010,00100", "+010,0010", "-0010010", "00100010 "}) {
        EXPECT_EQ(TagOf(text), "") << text;
    }
    uint16_t group = 0x1234;
    EXPECT_EQ(pgxFindTag(nullptr, &group, nullptr), 0);
    EXPECT_EQ(group, 0x1234);
}

TEST(FindTag, ToleratesMissingOutputs) {
    EXPECT_EQ(pgxFindTag("PatientName", nullptr, nullptr), 1);
}

TEST(UidName, IsTheOneOfToday) {
    EXPECT_EQ(TextFrom(pgxUidName, "1.2.840.10008.5.1.4.1.1.2"), "CT Image Storage");
    EXPECT_EQ(TextFrom(pgxUidKeyword, "1.2.840.10008.5.1.4.1.1.2"), "CTImageStorage");
    EXPECT_EQ(TextFrom(pgxUidName, "1.2.840.10008.1.2.4.201"),
              "High-Throughput JPEG 2000 Image Compression (Lossless Only)");
}

TEST(UidName, IsEmptyForWhatTheStandardDoesNotList) {
    for (const char* uid : {"", "1.2.3", "1.2.840.10008.5.1.4.1.1.2 ", "CTImageStorage"}) {
        EXPECT_EQ(TextFrom(pgxUidName, uid), "") << uid;
        EXPECT_EQ(TextFrom(pgxUidKeyword, uid), "") << uid;
    }
    EXPECT_EQ(pgxUidName(nullptr, nullptr, 0), 0u);
    EXPECT_EQ(pgxUidKeyword(nullptr, nullptr, 0), 0u);
    // Retired without a name.
    EXPECT_EQ(TextFrom(pgxUidName, "1.2.840.10008.5.1.4.1.1.40"), "");
}

}  // namespace
