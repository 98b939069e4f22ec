#include <gtest/gtest.h>

#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;

// One patient to whom studies are added.
class StudyLevel : public testing::Test {
  protected:
    // A study with one series and image, whose UIDs begin with uid.
    size_t WholeStudy(const std::string& uid, const std::string& modality = "CT") {
        const size_t study = directory_.Study(patient_, uid);
        directory_.Image(directory_.Series(study, uid + ".1", modality), uid + ".1.1", 1);
        return study;
    }

    DirectoryBuilder directory_;
    size_t patient_ = directory_.Patient("P", "DOE");
};

TEST_F(StudyLevel, RecordFillsTheKeysOfItsObject) {
    const size_t record = WholeStudy("1.2");
    directory_[record]
        .Set(0x0020, 0x0010, "SH", " ST1 ")
        .Set(0x0008, 0x0020, "DA", "20200131")
        .Set(0x0008, 0x0030, "TM", "101112.123 ")
        .Set(0x0008, 0x0050, "SH", " ACC ")
        .Set(0x0008, 0x1030, "LO", " Head scan ")
        .Set(0x0008, 0x0070, "LO", " Maker ")
        .Set(0x0008, 0x0090, "PN", " REF^PHYS ")
        .Set(0x0008, 0x0005, "CS", "ISO_IR 101 ");
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirStudyNode& study = browsed.Study();
    EXPECT_STREQ(study.studyInstanceUid, "1.2");
    EXPECT_STREQ(study.studyId, "ST1");
    EXPECT_STREQ(study.studyDate, "20200131");
    EXPECT_STREQ(study.studyTime, "101112.123");
    EXPECT_STREQ(study.accessionNumber, "ACC");
    EXPECT_STREQ(study.studyDescription, "Head scan");
    EXPECT_STREQ(study.manufacturer, "Maker");
    EXPECT_STREQ(study.referringPhysiciansName, "REF^PHYS");
    EXPECT_STREQ(study.specificCharacterSet, "ISO_IR 101");
    EXPECT_EQ(study.flags, 0u);
    EXPECT_EQ(study.record, browsed->dataSet->FindNode(0x0004, 0x1220)->first->next);
}

TEST_F(StudyLevel, RecordWithoutKeysGivesEmptyTexts) {
    directory_[WholeStudy("1.2")].Remove(0x0020, 0x000D);
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirStudyNode& study = browsed.Study();
    for (const char* text :
         {study.studyInstanceUid, study.studyId, study.studyDate, study.studyTime,
          study.accessionNumber, study.studyDescription, study.manufacturer,
          study.referringPhysiciansName, study.specificCharacterSet})
        EXPECT_STREQ(text, "");
    EXPECT_STREQ(study.modality, "CT");
}

TEST_F(StudyLevel, TextsAreCutToFit) {
    const std::string text(300, 'x');
    directory_[WholeStudy("1.2")]
        .Set(0x0020, 0x000D, "UI", std::string(100, '1'))
        .Set(0x0020, 0x0010, "SH", text)
        .Set(0x0008, 0x0020, "DA", text)
        .Set(0x0008, 0x0030, "TM", text)
        .Set(0x0008, 0x0050, "SH", text)
        .Set(0x0008, 0x1030, "LO", text)
        .Set(0x0008, 0x0070, "LO", text)
        .Set(0x0008, 0x0090, "PN", text)
        .Set(0x0008, 0x0005, "CS", text);
    BrowsedDirectory browsed(directory_);
    PGX_DicomDirStudyNode& study = browsed.Study();
    EXPECT_EQ(study.studyInstanceUid, std::string(64, '1'));
    EXPECT_EQ(study.studyId, text.substr(0, 16));
    EXPECT_EQ(study.studyDate, text.substr(0, 8));
    EXPECT_EQ(study.studyTime, text.substr(0, 16));
    EXPECT_EQ(study.accessionNumber, text.substr(0, 16));
    EXPECT_EQ(study.studyDescription, text.substr(0, 64));
    EXPECT_EQ(study.manufacturer, text.substr(0, 64));
    EXPECT_EQ(study.referringPhysiciansName, text.substr(0, 194));
    EXPECT_EQ(study.specificCharacterSet, text.substr(0, 50));
}

TEST_F(StudyLevel, TheReferencedInstanceGoesBeforeTheStudyInstance) {
    directory_[WholeStudy("1.2")].Set(0x0004, 0x1511, "UI", "9.8.7");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(9.8.7(1.2.1(1.2.1.1)))");
}

TEST_F(StudyLevel, AnEmptyReferencedInstanceDoesNot) {
    directory_[WholeStudy("1.2")].Set(0x0004, 0x1511, "UI", "");
    directory_[WholeStudy("1.3")].Set(0x0004, 0x1511, "UI", "  ");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(1.2(1.2.1(1.2.1.1)) 1.3(1.3.1(1.3.1.1)))");
}

TEST_F(StudyLevel, StudiesOfEqualUidAreMergedAndKeepTheFirstKeys) {
    directory_[WholeStudy("1.2")].Set(0x0020, 0x0010, "SH", "FIRST");
    WholeStudy("1.3");
    const size_t again = directory_.Study(patient_, "1.2");
    directory_[again].Set(0x0020, 0x0010, "SH", "SECOND");
    directory_.Image(directory_.Series(again, "7", "CT"), "7.1", 1);
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(1.2(1.2.1(1.2.1.1) 7(7.1)) 1.3(1.3.1(1.3.1.1)))");
    EXPECT_STREQ(browsed.Study().studyId, "FIRST");
}

TEST_F(StudyLevel, UidsAreComparedAfterCutting) {
    directory_[WholeStudy("1.2")].Set(0x0020, 0x000D, "UI", std::string(64, '1') + "2");
    directory_[WholeStudy("1.3")].Set(0x0020, 0x000D, "UI", std::string(64, '1') + "3");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Patient().studies.GetCount(), 1);
    EXPECT_EQ(browsed.Study().series.GetCount(), 2);
}

TEST_F(StudyLevel, EqualUidsOfTwoPatientsAreTwoStudies) {
    WholeStudy("1.2");
    patient_ = directory_.Patient("Q", "ROE");
    WholeStudy("1.2");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(),
              "P(1.2(1.2.1(1.2.1.1))) Q(1.2(1.2.1(1.2.1.1)))");
}

TEST_F(StudyLevel, RecordsMayBeOfAnyType) {
    directory_[WholeStudy("1.2")].Set(0x0004, 0x1430, "CS", "VISIT");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(1.2(1.2.1(1.2.1.1)))");
}

TEST_F(StudyLevel, AStudyWithoutSeriesIsDropped) {
    WholeStudy("1.2");
    directory_.Child(directory_.Study(patient_, "1.3"), "CURVE");
    WholeStudy("1.4");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(1.2(1.2.1(1.2.1.1)) 1.4(1.4.1(1.4.1.1)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST_F(StudyLevel, AStudyThatWasDroppedMayComeAgain) {
    directory_.Child(directory_.Study(patient_, "1.2"), "CURVE");
    WholeStudy("1.3");
    WholeStudy("1.2");
    EXPECT_EQ(BrowsedDirectory(directory_).Outline(), "P(1.3(1.3.1(1.3.1.1)) 1.2(1.2.1(1.2.1.1)))");
}

TEST_F(StudyLevel, AStudyWithoutALowerLevelEndsItsLevelAndStays) {
    WholeStudy("1.2");
    directory_.Study(patient_, "1.3");
    WholeStudy("1.4");
    patient_ = directory_.Patient("Q", "ROE");
    WholeStudy("1.5");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(1.2(1.2.1(1.2.1.1)) 1.3()) Q(1.5(1.5.1(1.5.1.1)))");
    EXPECT_EQ(browsed.Messages(), "DICOMDIR parsing error: Study without Series\n");
}

TEST_F(StudyLevel, AStudyThatStayedChildlessIsDroppedWhenItComesAgainChildless) {
    directory_.Study(patient_, "1.3");
    patient_ = directory_.Patient("P", "DOE");
    WholeStudy("1.4");
    directory_.Child(directory_.Study(patient_, "1.3"), "CURVE");
    WholeStudy("1.5");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(1.4(1.4.1(1.4.1.1)) 1.5(1.5.1(1.5.1.1)))");
}

TEST_F(StudyLevel, ALostLowerLevelIsReportedWithItsOffset) {
    directory_[WholeStudy("1.2")].lowerOffset = 4000000000u;
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(1.2())");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: First Series item not found at 4000000000\n"
              "DICOMDIR parsing error: Study without Series\n");
}

TEST_F(StudyLevel, ALostNextRecordEndsTheLevel) {
    directory_[WholeStudy("1.2")].nextOffset = 77;
    WholeStudy("1.3");
    patient_ = directory_.Patient("Q", "ROE");
    WholeStudy("1.4");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "P(1.2(1.2.1(1.2.1.1))) Q(1.4(1.4.1(1.4.1.1)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Study not found\n");
}

class StudyModality : public StudyLevel {
  protected:
    void AddSeries(size_t study, const std::string& modality) {
        const std::string uid = "5." + std::to_string(directory_.Count());
        directory_.Image(directory_.Series(study, uid, modality), uid + ".1", 1);
    }
};

TEST_F(StudyModality, IsThatOfItsSeries) {
    const size_t study = directory_.Study(patient_, "1");
    AddSeries(study, "MR");
    AddSeries(study, "MR");
    EXPECT_STREQ(BrowsedDirectory(directory_).Study().modality, "MR");
}

TEST_F(StudyModality, IsThreePointsWhenTheyDiffer) {
    const size_t study = directory_.Study(patient_, "1");
    AddSeries(study, "MR");
    AddSeries(study, "CT");
    AddSeries(study, "MR");
    EXPECT_STREQ(BrowsedDirectory(directory_).Study().modality, "...");
}

TEST_F(StudyModality, DiffersByCase) {
    const size_t study = directory_.Study(patient_, "1");
    AddSeries(study, "MR");
    AddSeries(study, "mr");
    EXPECT_STREQ(BrowsedDirectory(directory_).Study().modality, "...");
}

TEST_F(StudyModality, SkipsLeadingSeriesWithoutOne) {
    const size_t study = directory_.Study(patient_, "1");
    AddSeries(study, "");
    AddSeries(study, "US");
    EXPECT_STREQ(BrowsedDirectory(directory_).Study().modality, "US");
}

TEST_F(StudyModality, SeriesWithoutOneDifferFromThoseThatHaveOne) {
    const size_t study = directory_.Study(patient_, "1");
    AddSeries(study, "US");
    AddSeries(study, "");
    EXPECT_STREQ(BrowsedDirectory(directory_).Study().modality, "...");
}

TEST_F(StudyModality, CountsSeriesThatAreDroppedLater) {
    const size_t study = directory_.Study(patient_, "1");
    AddSeries(study, "MR");
    directory_.Child(directory_.Series(study, "6", "CT"), "PRIVATE");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Study().series.GetCount(), 1);
    EXPECT_STREQ(browsed.Study().modality, "...");
}

TEST_F(StudyModality, IsNotChangedByTheSeriesModalityThatLeavesSet) {
    const size_t study = directory_.Study(patient_, "1");
    const size_t series = directory_.Series(study, "5", "OT");
    directory_[directory_.Image(series, "5.1", 1)].Set(0x0004, 0x1510, "UI",
                                                       "1.2.840.10008.5.1.4.1.1.88.11");
    BrowsedDirectory browsed(directory_);
    EXPECT_STREQ(browsed.Series().modality, "SR");
    EXPECT_STREQ(browsed.Study().modality, "OT");
}

}  // namespace
