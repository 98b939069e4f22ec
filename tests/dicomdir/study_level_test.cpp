#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST_F(StudyLevel, AnObjectKnowsItsRecord) {
    WholeStudy("1.2");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Study().flags, 0u);
    EXPECT_EQ(browsed.Study().record, browsed->dataSet->FindNode(0x0004, 0x1220)->first->next);
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

// The modality of a study whose series have these.
std::string ModalityOfStudyWith(const std::vector<std::string>& modalities) {
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("P", "DOE"), "1");
    for (const std::string& modality : modalities) {
        const std::string uid = "5." + std::to_string(directory.Count());
        directory.Image(directory.Series(study, uid, modality), uid + ".1", 1);
    }
    return BrowsedDirectory(directory).Study().modality;
}

TEST(StudyModality, IsThatOfItsSeries) {
    EXPECT_EQ(ModalityOfStudyWith({"CT"}), "CT");
    EXPECT_EQ(ModalityOfStudyWith({"MR", "MR"}), "MR");
}

TEST(StudyModality, IsThreePointsWhenTheyDiffer) {
    EXPECT_EQ(ModalityOfStudyWith({"MR", "CT", "MR"}), "...");
}

TEST(StudyModality, DiffersByCase) { EXPECT_EQ(ModalityOfStudyWith({"MR", "mr"}), "..."); }

TEST(StudyModality, SkipsLeadingSeriesWithoutOne) {
    EXPECT_EQ(ModalityOfStudyWith({"", "US"}), "US");
}

TEST(StudyModality, SeriesWithoutOneDifferFromThoseThatHaveOne) {
    EXPECT_EQ(ModalityOfStudyWith({"US", ""}), "...");
}

TEST_F(StudyLevel, ModalityCountsSeriesThatAreDroppedLater) {
    const size_t study = WholeStudy("1", "MR");
    directory_.Child(directory_.Series(study, "6", "CT"), "PRIVATE");
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Study().series.GetCount(), 1);
    EXPECT_STREQ(browsed.Study().modality, "...");
}

TEST_F(StudyLevel, ModalityIsNotChangedByTheSeriesModalityThatLeavesSet) {
    const size_t series = directory_.Series(directory_.Study(patient_, "1"), "5", "OT");
    directory_[directory_.Image(series, "5.1", 1)].Set(0x0004, 0x1510, "UI",
                                                       "1.2.840.10008.5.1.4.1.1.88.11");
    BrowsedDirectory browsed(directory_);
    EXPECT_STREQ(browsed.Series().modality, "SR");
    EXPECT_STREQ(browsed.Study().modality, "OT");
}

}  // namespace
