#include <gtest/gtest.h>

#include "pgkit/sopclass.h"

namespace {

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
