#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "pgkit/dictionary.h"
#include "pgkit/lookup.h"
#include "pgkit/sopclass.h"

namespace {

constexpr char kImplicit[] = "1.2.840.10008.1.2";

// The bytes that a lookup writes into a buffer of this size.
std::string WrittenOfCt(size_t size) {
    std::string buffer(80, '*');
    EXPECT_EQ(pgxGetModalityName("CT", buffer.data(), size), 19u);
    return buffer.substr(0, buffer.find('*'));
}

TEST(BoundedLookup, GivesTheWholeTextAndItsLength) {
    char unbounded[70];
    char bounded[70];
    ASSERT_EQ(pgGetUIDName(kImplicit, unbounded), 0);
    EXPECT_EQ(pgxGetUIDName(kImplicit, bounded, sizeof bounded), std::strlen(unbounded));
    EXPECT_STREQ(bounded, unbounded);
    EXPECT_EQ(pgxGetSOPClassUIDToModality("1.2.840.10008.5.1.4.1.1.2", bounded, 70), 2u);
    EXPECT_STREQ(bounded, "CT");
    EXPECT_EQ(pgxGetModalityName("CT", bounded, 70), 19u);
    EXPECT_STREQ(bounded, "Computed Tomography");
    EXPECT_EQ(pgxGetTagPrintableName(0x7FE0, 0x0010, bounded, 70), 9u);
    EXPECT_STREQ(bounded, "PixelData");
    EXPECT_EQ(pgxGetVRPrintableName(14, bounded, 70), 2u);
    EXPECT_STREQ(bounded, "PN");
}

TEST(BoundedLookup, CutsATextAndTerminatesIt) {
    EXPECT_EQ(WrittenOfCt(20), std::string("Computed Tomography\0", 20));
    EXPECT_EQ(WrittenOfCt(19), std::string("Computed Tomograph\0", 19));
    EXPECT_EQ(WrittenOfCt(5), std::string("Comp\0", 5));
    EXPECT_EQ(WrittenOfCt(1), std::string("\0", 1));
    EXPECT_EQ(WrittenOfCt(0), "");
}

TEST(BoundedLookup, NeedsNoBufferToTellTheLength) {
    EXPECT_EQ(pgxGetModalityName("CT", nullptr, 0), 19u);
    EXPECT_EQ(pgxGetModalityName("CT", nullptr, 100), 19u);
    EXPECT_EQ(pgxGetUIDName("1.2.3", nullptr, 100), 0u);
}

TEST(BoundedLookup, GivesAPlaceholderAndZeroForWhatIsUnknown) {
    char text[20];
    for (const char* const key : {"1.2.3", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(pgxGetUIDName(key, text, sizeof text), 0u);
        EXPECT_STREQ(text, "<NULL uid>");
        EXPECT_EQ(pgxGetSOPClassUIDToModality(key, text, sizeof text), 0u);
        EXPECT_STREQ(text, "XX");
        EXPECT_EQ(pgxGetModalityName(key, text, sizeof text), 0u);
        EXPECT_STREQ(text, "<NULL modality>");
    }
    EXPECT_EQ(pgxGetTagPrintableName(0x0008, 0x0FFF, text, sizeof text), 0u);
    EXPECT_STREQ(text, "<Unknown Tag>");
    EXPECT_EQ(pgxGetVRPrintableName(99, text, sizeof text), 0u);
    EXPECT_STREQ(text, "????");
    EXPECT_EQ(pgxGetUIDName("1.2.3", text, 4), 0u);
    EXPECT_STREQ(text, "<NU");
}

// Functions that had nowhere to write to wrote to address 0.
TEST(UnboundedLookup, ToleratesNullOutputs) {
    uint16_t group = 0;
    uint8_t valueRep = 0;
    EXPECT_EQ(pgFindElementIdInfo(3652, nullptr, nullptr), 1u);
    EXPECT_EQ(pgFindElementIdInfo(3652, &group, nullptr), 1u);
    EXPECT_EQ(group, 0x7FE0);
    EXPECT_EQ(pgFindElementIdInfoAndVR(3652, nullptr, nullptr, nullptr), 1u);
    EXPECT_EQ(pgFindElementIdInfoAndVR(3652, nullptr, nullptr, &valueRep), 1u);
    EXPECT_EQ(valueRep, 27);
    EXPECT_EQ(pgGetVRPrintableName(14, nullptr), 1u);
    EXPECT_EQ(pgGetVRPrintableName(99, nullptr), 0u);
    EXPECT_EQ(pgGetTagPrintableName(0x7FE0, 0x0010, nullptr), 1u);
    EXPECT_EQ(pgGetUIDName(kImplicit, nullptr), -1);
    EXPECT_EQ(pgGetModalityName("CT", nullptr), -1);
    EXPECT_EQ(pgGetSOPClassUIDToModality(kImplicit, nullptr), -1);
}

}  // namespace
