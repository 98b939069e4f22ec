#include <gtest/gtest.h>

#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"
#include "support/stream_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;
using pgkit_test::StreamBuilder;

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

TEST_F(SeriesLevel, RecordFillsTheKeysOfItsObject) {
    const size_t record = WholeSeries("1.2");
    directory_[record]
        .Set(0x0008, 0x103E, "LO", " Axial ")
        .Set(0x0020, 0x0011, "IS", " 12 ")
        .Set(0x0008, 0x0060, "CS", " MR ")
        .Set(0x0008, 0x0080, "LO", " Clinic ")
        .Set(0x0008, 0x0081, "ST", " Street 1 ")
        .Set(0x0008, 0x1050, "PN", " PERF^PHYS ")
        .Set(0x0008, 0x0005, "CS", "ISO_IR 100 ");
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirSeriesNode& series = browsed.Series();
    EXPECT_STREQ(series.seriesInstanceUid, "1.2");
    EXPECT_STREQ(series.seriesDescription, "Axial");
    EXPECT_STREQ(series.seriesNumber, "12");
    EXPECT_STREQ(series.modality, "MR");
    EXPECT_STREQ(series.institutionName, "Clinic");
    EXPECT_STREQ(series.institutionAddress, "Street 1");
    EXPECT_STREQ(series.performingPhysiciansName, "PERF^PHYS");
    EXPECT_STREQ(series.specificCharacterSet, "ISO_IR 100");
    EXPECT_EQ(series.icon, nullptr);
    EXPECT_EQ(series.flags, 0u);
    EXPECT_EQ(series.record, browsed->dataSet->FindNode(0x0004, 0x1220)->first->next->next);
}

TEST_F(SeriesLevel, RecordWithoutKeysGivesEmptyTexts) {
    directory_[WholeSeries("1.2")].Remove(0x0020, 0x000E).Remove(0x0008, 0x0060);
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirSeriesNode& series = browsed.Series();
    for (const char* text :
         {series.seriesInstanceUid, series.seriesDescription, series.seriesNumber, series.modality,
          series.institutionName, series.institutionAddress, series.performingPhysiciansName,
          series.specificCharacterSet})
        EXPECT_STREQ(text, "");
}

TEST_F(SeriesLevel, TextsAreCutToFit) {
    const std::string text(2000, 'x');
    directory_[WholeSeries("1.2")]
        .Set(0x0020, 0x000E, "UI", text)
        .Set(0x0008, 0x103E, "LO", text)
        .Set(0x0020, 0x0011, "IS", text)
        .Set(0x0008, 0x0060, "CS", text)
        .Set(0x0008, 0x0080, "LO", text)
        .Set(0x0008, 0x0081, "ST", text)
        .Set(0x0008, 0x1050, "PN", text)
        .Set(0x0008, 0x0005, "CS", text);
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirSeriesNode& series = browsed.Series();
    EXPECT_EQ(series.seriesInstanceUid, text.substr(0, 64));
    EXPECT_EQ(series.seriesDescription, text.substr(0, 64));
    EXPECT_EQ(series.seriesNumber, text.substr(0, 16));
    EXPECT_EQ(series.modality, text.substr(0, 16));
    EXPECT_EQ(series.institutionName, text.substr(0, 64));
    EXPECT_EQ(series.institutionAddress, text.substr(0, 1024));
    EXPECT_EQ(series.performingPhysiciansName, text.substr(0, 194));
    EXPECT_EQ(series.specificCharacterSet, text.substr(0, 50));
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

// An Icon Image Sequence of one item, 2 by 1 gray pixels.
std::string IconSequence() {
    StreamBuilder icon;
    icon.Element(0x0028, 0x0004, "CS", "MONOCHROME2 ")
        .ElementUS(0x0028, 0x0010, 1)
        .ElementUS(0x0028, 0x0011, 2)
        .ElementUS(0x0028, 0x0100, 8)
        .ElementUS(0x0028, 0x0102, 7)
        .Element(0x7FE0, 0x0010, "OB", "\x12\x34");
    StreamBuilder item;
    item.Item(icon.Size()).Append(icon.Data());
    return std::string(item.Data().begin(), item.Data().end());
}

TEST_F(SeriesLevel, AnIconBecomesABitmap) {
    directory_[WholeSeries("1")].Set(0x0088, 0x0200, "SQ", IconSequence());
    EXPECT_NE(BrowsedDirectory(directory_).Series().icon, nullptr);
}

TEST_F(SeriesLevel, AnEmptyIconSequenceGivesNone) {
    directory_[WholeSeries("1")].Set(0x0088, 0x0200, "SQ", "");
    EXPECT_EQ(BrowsedDirectory(directory_).Series().icon, nullptr);
}

TEST_F(SeriesLevel, AMergedSeriesKeepsItsIcon) {
    WholeSeries("1");
    const size_t again = directory_.Series(study_, "1", "CT");
    directory_[again].Set(0x0088, 0x0200, "SQ", IconSequence());
    directory_.Image(again, "1.2", 2);
    EXPECT_EQ(BrowsedDirectory(directory_).Series().icon, nullptr);
}

}  // namespace
