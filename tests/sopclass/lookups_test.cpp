#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "pgkit/sopclass.h"

namespace {

using Lookup = int32_t (*)(const char*, char*);

// The result of a lookup and the text that it leaves in the output.
std::pair<int32_t, std::string> Answer(Lookup lookup, const char* key) {
    char text[128] = "untouched";
    const int32_t result = lookup(key, text);
    return {result, text};
}

std::pair<int32_t, std::string> Is(int32_t result, const char* text) { return {result, text}; }

TEST(ModalityOfSopClass, IsTheMnemonicOfTheClass) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.2"), Is(0, "CT"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.11.1"), Is(0, "PSg"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.88.33"), Is(0, "SRc"));
}

TEST(ModalityOfSopClass, ClassesMayShareAMnemonic) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.6.1"), Is(0, "US"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.3.1"), Is(0, "US"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.6"), Is(0, "USr"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.3"), Is(0, "USr"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.88.65"), Is(0, "SRx"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.88.4"), Is(0, "SRx"));
}

TEST(ModalityOfSopClass, PrivateStorageClassesHaveOne) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.1"), Is(0, "vwLNr"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.2"), Is(0, "vwSBa"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.3"), Is(0, "vwDIR"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.4"), Is(0, "vwXFn"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.5"), Is(0, "vwBGx"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.6"), Is(0, "vwBGi"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.7"), Is(0, "vwBGf"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.99"), Is(0, "vwBLB"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.392.200036.9125.1.1.2"), Is(0, "fjCR"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.392.200036.9116.7.8.1.1.1"), Is(0, "thRAW"));
}

TEST(ModalityOfSopClass, PrivateServicesHaveNone) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.856.1"), Is(1, "XX"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.856.2"), Is(1, "XX"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.999.1.47.857.1.10"), Is(1, "XX"));
}

TEST(ModalityOfSopClass, ComparesWholeUids) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.3.4"), Is(1, "XX"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, ""), Is(1, "XX"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1"), Is(1, "XX"));
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, "1.2.840.10008.5.1.4.1.1.2 "), Is(1, "XX"));
}

TEST(ModalityName, IsTheDescriptionOfTheCode) {
    EXPECT_EQ(Answer(pgGetModalityName, "CT"), Is(0, "Computed Tomography"));
    EXPECT_EQ(Answer(pgGetModalityName, "_RLINK"), Is(0, "Report Link"));
}

TEST(ModalityName, KeepsItsSpelling) {
    EXPECT_EQ(Answer(pgGetModalityName, "OP"), Is(0, "Opthtalmology"));
    EXPECT_EQ(Answer(pgGetModalityName, "OCT"), Is(0, "Opthtalmic Coherence Tomography"));
    EXPECT_EQ(Answer(pgGetModalityName, "CP"), Is(0, "Culposcopy"));
}

TEST(ModalityName, IsCaseSensitive) {
    EXPECT_EQ(Answer(pgGetModalityName, "op"), Is(1, "<NULL modality>"));
    EXPECT_EQ(Answer(pgGetModalityName, "Ct"), Is(1, "<NULL modality>"));
}

TEST(ModalityName, UnknownCodesHaveNone) {
    EXPECT_EQ(Answer(pgGetModalityName, ""), Is(1, "<NULL modality>"));
    EXPECT_EQ(Answer(pgGetModalityName, "CTe"), Is(1, "<NULL modality>"));
}

TEST(UidName, IsTheRegisteredName) {
    EXPECT_EQ(Answer(pgGetUIDName, "1.2.840.10008.1.2.1"), Is(0, "LittleEndianExplicit"));
    EXPECT_EQ(Answer(pgGetUIDName, "1.2.840.10008.3.1.1.1"), Is(0, "StandardApplicationContext"));
    EXPECT_EQ(Answer(pgGetUIDName, "1.2.999.1.47.856.1"),
              Is(0, "ZorvaStringCommandChannelSOPClass"));
}

TEST(UidName, UnknownUidsHaveNone) {
    EXPECT_EQ(Answer(pgGetUIDName, "1.2.3.4"), Is(1, "<NULL uid>"));
    EXPECT_EQ(Answer(pgGetUIDName, ""), Is(1, "<NULL uid>"));
    EXPECT_EQ(Answer(pgGetUIDName, std::string(100000, '1').c_str()), Is(1, "<NULL uid>"));
}

TEST(SopClassLookups, ANullKeyLeavesThePlaceholder) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, nullptr), Is(-1, "XX"));
    EXPECT_EQ(Answer(pgGetModalityName, nullptr), Is(-1, "<NULL modality>"));
    EXPECT_EQ(Answer(pgGetUIDName, nullptr), Is(-1, "<NULL uid>"));
}

TEST(SopClassLookups, ANullOutputIsRefused) {
    for (const Lookup lookup : {pgGetSOPClassUIDToModality, pgGetModalityName, pgGetUIDName}) {
        EXPECT_EQ(lookup("1.2.840.10008.1.2", nullptr), -1);
        EXPECT_EQ(lookup(nullptr, nullptr), -1);
    }
}

TEST(SopClassLookups, WriteTheTextAndItsTerminatorOnly) {
    char text[8] = "abcdefg";
    EXPECT_EQ(pgGetSOPClassUIDToModality("1.2.840.10008.5.1.4.1.1.2", text), 0);
    EXPECT_EQ(std::string(text, 8), std::string("CT\0defg\0", 8));
}

TEST(SopCategories, NullBelongsToNone) {
    for (const auto holds :
         {pgIsImageSOPClass, pgIsReportSOPClass, pgIsWaveformSOPClass, pgIsKeyObjectSOPClass,
          pgIsPresentationSOPClass, pgIsRTDoseSOPClass, pgIsRTStructureSetSOPClass,
          pgIsRTPlanSOPClass, pgIsRadiotherapySOPClass, pgIsStorageSOPClass}) {
        EXPECT_FALSE(holds(nullptr));
        EXPECT_FALSE(holds(""));
    }
}

TEST(SopCategories, ImagesIncludeHardCopiesAndRtImages) {
    EXPECT_TRUE(pgIsImageSOPClass("1.2.840.10008.5.1.1.29"));
    EXPECT_TRUE(pgIsImageSOPClass("1.2.840.10008.5.1.1.30"));
    EXPECT_TRUE(pgIsImageSOPClass("1.2.840.10008.5.1.4.1.1.481.1"));
    EXPECT_TRUE(pgIsImageSOPClass("1.2.392.200036.9125.1.1.2"));
}

TEST(SopCategories, SpectroscopyAndEnhancedVolumesAreNoImages) {
    EXPECT_FALSE(pgIsImageSOPClass("1.2.840.10008.5.1.4.1.1.4.2"));
    EXPECT_FALSE(pgIsImageSOPClass("1.2.840.10008.5.1.4.1.1.4.3"));
    EXPECT_FALSE(pgIsImageSOPClass("1.2.840.10008.5.1.4.1.1.6.2"));
}

TEST(SopCategories, AKeyObjectSelectionIsNoReport) {
    EXPECT_FALSE(pgIsReportSOPClass("1.2.840.10008.5.1.4.1.1.88.59"));
    EXPECT_TRUE(pgIsKeyObjectSOPClass("1.2.840.10008.5.1.4.1.1.88.59"));
    EXPECT_TRUE(pgIsReportSOPClass("1.2.840.10008.5.1.4.1.1.88.67"));
    EXPECT_FALSE(pgIsKeyObjectSOPClass("1.2.840.10008.5.1.4.1.1.88.67"));
}

TEST(SopCategories, RadiotherapyIsMoreThanDosesStructureSetsAndPlans) {
    EXPECT_TRUE(pgIsRadiotherapySOPClass("1.2.840.10008.5.1.4.1.1.481.2"));
    EXPECT_TRUE(pgIsRadiotherapySOPClass("1.2.840.10008.5.1.4.1.1.481.7"));
    EXPECT_FALSE(pgIsRadiotherapySOPClass("1.2.840.10008.5.1.4.1.1.2"));
}

TEST(SopCategories, ATransferSyntaxIsNoStorageClass) {
    EXPECT_FALSE(pgIsStorageSOPClass("1.2.840.10008.1.2"));
    EXPECT_TRUE(pgIsStorageSOPClass("1.2.999.1.47.857.1.99"));
}

}  // namespace
