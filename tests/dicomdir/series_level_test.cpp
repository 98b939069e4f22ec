#include <gtest/gtest.h>

#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"
#include "support/icon_sequence.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;
using pgkit_test::IconSequence;

// One study to which series are added.
class SeriesLevel : public testing::Test {
  protected:
    size_t WholeSeries(const std::string& uid) {
        const size_t series = directory_.Series(study_, uid, "CT");
        directory_.Image(series, uid + ".1", 1);
        return series;
    }

    DirectoryBuilder directory_;
    size_t study_ = directory_.Study(directory_.Patient("P", "DOE"), "S");
};

TEST_F(SeriesLevel, AnObjectKnowsItsRecord) {
    WholeSeries("1.2");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Series().icon, nullptr);
    EXPECT_EQ(browsed.Series().flags, 0u);
    EXPECT_EQ(browsed.Series().record,
              browsed->dataSet->FindNode(0x0004, 0x1220)->first->next->next);
}

TEST_F(SeriesLevel, KeysOf64KiBAreCutToo) {
    const std::string text(0xFFFE, 'x');
    directory_[WholeSeries("1.2")].Set(0x0008, 0x0081, "ST", text).Set(0x0020, 0x000E, "UI", text);
    for (const uint32_t loadLimit : {0u, 0x20000u}) {
        BrowsedDirectory browsed(directory_.Build(), loadLimit);
        EXPECT_EQ(browsed.Series().institutionAddress, text.substr(0, 1024));
        EXPECT_EQ(browsed.Series().seriesInstanceUid, text.substr(0, 64));
    }
}

TEST_F(SeriesLevel, RecordsOfOtherTypesAreSkipped) {
    WholeSeries("1");
    directory_[WholeSeries("2")].Set(0x0004, 0x1430, "CS", "SERIES X");
    directory_[WholeSeries("3")].Set(0x0004, 0x1430, "CS", "IMAGE");
    directory_[WholeSeries("4")].Set(0x0004, 0x1430, "CS", "series");
    directory_[WholeSeries("5")].Set(0x0004, 0x1430, "CS", "SERIES  ");
    directory_[WholeSeries("6")].Remove(0x0004, 0x1430);
    directory_[WholeSeries("7")].Set(0x0004, 0x1430, "CS", "");
    WholeSeries("8");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1(1.1) 8(8.1)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST_F(SeriesLevel, AfterASkippedRecordALostNextOneIsReportedInOtherWords) {
    WholeSeries("1");
    const size_t skipped = WholeSeries("2");
    directory_[skipped].Set(0x0004, 0x1430, "CS", "CURVE");
    directory_[skipped].nextOffset = 99;
    WholeSeries("3");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1(1.1)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Series not found\n");
}

TEST_F(SeriesLevel, ALostNextRecordEndsTheLevelAndTheStudiesGoOn) {
    directory_[WholeSeries("1")].nextOffset = 99;
    WholeSeries("2");
    study_ = directory_.Study(0, "T");
    WholeSeries("3");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1(1.1)) T(3(3.1)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Series item not found\n");
}

TEST_F(SeriesLevel, SeriesOfEqualUidAreMergedAndKeepTheFirstKeys) {
    directory_[WholeSeries("1")].Set(0x0020, 0x0011, "IS", "1");
    WholeSeries("2");
    const size_t again = directory_.Series(study_, "1", "MR");
    directory_[again].Set(0x0020, 0x0011, "IS", "9").Set(0x00E1, 0x1051, "LO", "KEY_IMAGES");
    directory_.Image(again, "1.2", 2);
    directory_.Image(again, "1.1", 1);
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1(1.1 1.2) 2(2.1)))");
    EXPECT_STREQ(browsed.Series().seriesNumber, "1");
    EXPECT_STREQ(browsed.Series().modality, "CT");
    EXPECT_EQ(browsed.Series().flags, 0u);
    EXPECT_STREQ(browsed.Study().modality, "CT");
    EXPECT_EQ(browsed.Messages(), "Instance already found : (1.1)\n");
}

TEST_F(SeriesLevel, EqualUidsOfTwoStudiesAreTwoSeries) {
    WholeSeries("1");
    study_ = directory_.Study(0, "T");
    WholeSeries("1");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(S(1(1.1)) T(1(1.1)))");
}

TEST_F(SeriesLevel, ASeriesWithoutLeavesIsDropped) {
    WholeSeries("1");
    directory_.Child(directory_.Series(study_, "2", "CT"), "PRIVATE");
    WholeSeries("3");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1(1.1) 3(3.1)))");
    EXPECT_EQ(browsed.Messages(),
              "[Refused Private/Invalid LeafType] Skipping record type PRIVATE\n");
}

TEST_F(SeriesLevel, ASeriesThatWasDroppedMayComeAgain) {
    directory_.Child(directory_.Series(study_, "1", "CT"), "PRIVATE");
    WholeSeries("2");
    WholeSeries("1");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(S(2(2.1) 1(1.1)))");
}

TEST_F(SeriesLevel, ASeriesWithoutALowerLevelEndsItsLevelAndStays) {
    directory_.Series(study_, "1", "CT");
    WholeSeries("2");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1()))");
    EXPECT_EQ(browsed.Messages(), "DICOMDIR parsing error: Series without Image\n");
}

TEST_F(SeriesLevel, ALostLowerLevelIsReportedWithItsOffset) {
    directory_[WholeSeries("1")].lowerOffset = 12;
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(S(1()))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: First Image item not found at 12\n"
              "DICOMDIR parsing error: Series without Image\n");
}

TEST_F(SeriesLevel, KeyImagesAreFlaggedByTheirPrivateElement) {
    directory_[WholeSeries("1")].Set(0x00E1, 0x1051, "LO", " KEY_IMAGES ");
    directory_[WholeSeries("2")].Set(0x00E1, 0x1051, "LO", "KEY_IMAGES_2");
    directory_[WholeSeries("3")].Set(0x00E1, 0x1051, "LO", "KEY_IMAGE");
    directory_[WholeSeries("4")].Set(0x00E1, 0x1051, "LO", "key_images");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Series(0, 0, 0).flags, 1u);
    EXPECT_EQ(browsed.Series(0, 0, 1).flags, 1u);
    EXPECT_EQ(browsed.Series(0, 0, 2).flags, 0u);
    EXPECT_EQ(browsed.Series(0, 0, 3).flags, 0u);
}

// The text is cut to 16 characters before its blanks are dropped.
TEST_F(SeriesLevel, KeyImagesBehindManyBlanksAreCut) {
    directory_[WholeSeries("1")].Set(0x00E1, 0x1051, "LO", std::string(7, ' ') + "KEY_IMAGES");
    EXPECT_EQ(BrowsedDirectory(directory_).Series().flags, 0u);
}

const std::string kIcon = IconSequence("MONOCHROME2 ", "\x12\x34");

TEST_F(SeriesLevel, AnIconBecomesABitmap) {
    directory_[WholeSeries("1")].Set(0x0088, 0x0200, "SQ", kIcon);
    EXPECT_NE(BrowsedDirectory(directory_).Series().icon, nullptr);
}

TEST_F(SeriesLevel, AnEmptyIconSequenceGivesNone) {
    directory_[WholeSeries("1")].Set(0x0088, 0x0200, "SQ", "");
    EXPECT_EQ(BrowsedDirectory(directory_).Series().icon, nullptr);
}

TEST_F(SeriesLevel, AMergedSeriesKeepsItsIcon) {
    WholeSeries("1");
    const size_t again = directory_.Series(study_, "1", "CT");
    directory_[again].Set(0x0088, 0x0200, "SQ", kIcon);
    directory_.Image(again, "1.2", 2);
    EXPECT_EQ(BrowsedDirectory(directory_).Series().icon, nullptr);
}

}  // namespace
