#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;

// A patient with one study, series and image, whose UIDs begin with uid.
size_t WholePatient(DirectoryBuilder& directory, const std::string& id, const std::string& name,
                    const std::string& uid) {
    const size_t patient = directory.Patient(id, name);
    const size_t series = directory.Series(directory.Study(patient, uid), uid + ".1", "CT");
    directory.Image(series, uid + ".1.1", 1);
    return patient;
}

TEST(PatientRecord, MakesAnObjectThatKnowsItsRecord) {
    DirectoryBuilder directory;
    WholePatient(directory, "4711", "DOE^JOHN", "1");
    BrowsedDirectory browsed(directory);
    PGX_DicomDirPatientNode& patient = browsed.Patient();
    EXPECT_EQ(patient.flags, 0u);
    EXPECT_EQ(patient.clientFlags, 0u);
    EXPECT_EQ(patient.clientData, nullptr);
    EXPECT_EQ(patient.record, browsed->dataSet->FindNode(0x0004, 0x1220)->first);
}

TEST(PatientRecord, IsCutBeforeItIsTrimmed) {
    DirectoryBuilder directory;
    WholePatient(directory, std::string(60, ' ') + "4711" + "22", "DOE", "1");
    BrowsedDirectory browsed(directory);
    EXPECT_STREQ(browsed.Patient().patientId, "4711");
}

TEST(PatientRecord, IsAnnouncedWhenItMakesANewPatient) {
    DirectoryBuilder directory;
    WholePatient(directory, "1", "DOE^JOHN", "1");
    WholePatient(directory, "2", " ROE^JANE ", "2");
    WholePatient(directory, "1", "DOE^JOHN", "3");
    const BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Output(), "Patient created DOE^JOHN\nPatient created ROE^JANE\n");
}

TEST(PatientRecord, MayBeOfAnyType) {
    DirectoryBuilder directory;
    const size_t record = WholePatient(directory, "4711", "DOE", "1");
    directory[record].Set(0x0004, 0x1430, "CS", "PRIVATE");
    EXPECT_EQ(BrowsedDirectory(directory).Outline(), "4711(1(1.1(1.1.1)))");
}

struct PatientKeys {
    std::string id;
    std::string name;
    std::string studyUid;
};

// The hierarchy of a directory with these records.
std::string OutlineOf(const std::vector<PatientKeys>& records) {
    DirectoryBuilder directory;
    for (const PatientKeys& record : records)
        WholePatient(directory, record.id, record.name, record.studyUid);
    return BrowsedDirectory(directory).Outline();
}

TEST(Patients, StandInTheOrderOfTheirRecords) {
    EXPECT_EQ(OutlineOf({{"30", "C", "3"}, {"10", "A", "1"}, {"20", "B", "2"}}),
              "30(3(3.1(3.1.1))) 10(1(1.1(1.1.1))) 20(2(2.1(2.1.1)))");
}

TEST(Patients, OfEqualIdAndNameAreMerged) {
    EXPECT_EQ(
        OutlineOf({{"4711", "DOE^JOHN", "1"}, {"4712", "ROE", "2"}, {"4711", "doe^john", "3"}}),
        "4711(1(1.1(1.1.1)) 3(3.1(3.1.1))) 4712(2(2.1(2.1.1)))");
}

TEST(Patients, ThatAreMergedKeepTheNameOfTheFirst) {
    DirectoryBuilder directory;
    WholePatient(directory, "4711", "DOE^JOHN", "1");
    WholePatient(directory, "4711", "doe^john", "3");
    EXPECT_STREQ(BrowsedDirectory(directory).Patient().patientsName, "DOE^JOHN");
}

TEST(Patients, OfEqualIdAndOtherNamesAreNot) {
    EXPECT_EQ(
        OutlineOf(
            {{"4711", "DOE^JOHN", "1"}, {"4711", "ROE^JOHN", "2"}, {"4711", "ROE^JOHN", "3"}}),
        "4711(1(1.1(1.1.1))) 4711(2(2.1(2.1.1)) 3(3.1(3.1.1)))");
}

TEST(Patients, IdsAreCaseSensitive) {
    EXPECT_EQ(OutlineOf({{"a", "DOE", "1"}, {"A", "DOE", "2"}}),
              "a(1(1.1(1.1.1))) A(2(2.1(2.1.1)))");
}

TEST(Patients, ThatAreMergedMayShareAStudy) {
    DirectoryBuilder directory;
    WholePatient(directory, "4711", "DOE", "1");
    const size_t second = directory.Patient("4711", "DOE");
    const size_t study = directory.Study(second, "1");
    directory.Image(directory.Series(study, "1.1", "CT"), "1.1.2", 2);
    EXPECT_EQ(BrowsedDirectory(directory).Outline(), "4711(1(1.1(1.1.1 1.1.2)))");
}

TEST(Patient, WithoutAnyLeafIsDropped) {
    DirectoryBuilder directory;
    const size_t patient = directory.Patient("1", "EMPTY");
    const size_t study = directory.Study(patient, "9");
    directory.Child(study, "PRIVATE");
    WholePatient(directory, "2", "DOE", "2");
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "2(2(2.1(2.1.1)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(Patient, ThatWasDroppedMayComeAgain) {
    DirectoryBuilder directory;
    directory.Child(directory.Study(directory.Patient("1", "DOE"), "9"), "PRIVATE");
    WholePatient(directory, "2", "ROE", "2");
    WholePatient(directory, "1", "DOE", "1");
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "2(2(2.1(2.1.1))) 1(1(1.1(1.1.1)))");
    EXPECT_EQ(browsed.Output(), "Patient created DOE\nPatient created ROE\nPatient created DOE\n");
}

TEST(Patient, WithoutALowerLevelEndsTheBrowseAndStays) {
    DirectoryBuilder directory;
    WholePatient(directory, "1", "DOE", "1");
    directory.Patient("2", "CHILDLESS");
    WholePatient(directory, "3", "ROE", "3");
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "1(1(1.1(1.1.1))) 2()");
    EXPECT_EQ(browsed.Messages(), "DICOMDIR parsing error: Patient without Study\n");
}

// A directory whose first patient's record is damaged.
class FirstOfTwoPatients : public testing::Test {
  protected:
    FirstOfTwoPatients() { WholePatient(directory_, "2", "ROE", "2"); }

    DirectoryBuilder directory_;
    size_t first_ = WholePatient(directory_, "1", "DOE", "1");
};

TEST_F(FirstOfTwoPatients, WithoutTheLowerLevelElementEndsTheBrowseToo) {
    directory_[first_].hasLower = false;
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "1()");
    EXPECT_EQ(browsed.Messages(), "DICOMDIR parsing error: Patient without Study\n");
}

TEST_F(FirstOfTwoPatients, WhoseLowerLevelIsLostEndsTheBrowseWithItsOffset) {
    directory_[first_].lowerOffset = 123456;
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "1()");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: First Study item not found at 123456\n"
              "DICOMDIR parsing error: Patient without Study\n");
}

TEST_F(FirstOfTwoPatients, WhoseNextRecordIsLostIsTheLast) {
    directory_[first_].nextOffset = 123456;
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "1(1(1.1(1.1.1)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Patient not found \n");
}

TEST_F(FirstOfTwoPatients, WithoutANextRecordElementIsTheLast) {
    directory_[first_].hasNext = false;
    BrowsedDirectory browsed(directory_);
    EXPECT_EQ(browsed.Outline(), "1(1(1.1(1.1.1)))");
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(FirstPatient, IsTheOneAtTheRootOffset) {
    DirectoryBuilder directory;
    WholePatient(directory, "1", "DOE", "1");
    const size_t second = WholePatient(directory, "2", "ROE", "2");
    directory.rootOffset = directory.OffsetOf(second);
    EXPECT_EQ(BrowsedDirectory(directory).Outline(), "2(2(2.1(2.1.1)))");
}

TEST(FirstPatient, ThatIsNotFoundGivesAnEmptyList) {
    DirectoryBuilder directory;
    WholePatient(directory, "1", "DOE", "1");
    for (const auto& [offset, sum] :
         std::vector<std::pair<uint32_t, std::string>>{{0u, "8"},
                                                       {4u, "12"},
                                                       {1000000u, "1000008"},
                                                       {0xFFFFFFF7u, "4294967295"},
                                                       {0xFFFFFFF8u, "0"},
                                                       {0xFFFFFFFFu, "7"}}) {
        directory.rootOffset = offset;
        BrowsedDirectory browsed(directory);
        EXPECT_EQ(browsed.Outline(), "");
        EXPECT_EQ(browsed.Output(),
                  "DICOMDIR parsing error: First patient not found (firstPatientOffset + 8 = " +
                      sum + ")\n");
    }
}

TEST(FirstPatient, MissingRootOffsetCountsAsZero) {
    DirectoryBuilder directory;
    WholePatient(directory, "1", "DOE", "1");
    directory.hasRootOffset = false;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "");
    EXPECT_EQ(browsed.Output(),
              "DICOMDIR parsing error: First patient not found (firstPatientOffset + 8 = 8)\n");
}

}  // namespace
