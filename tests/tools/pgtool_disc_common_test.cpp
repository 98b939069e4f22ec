// pgtool disc, verify and browse: what belongs to no patient.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <string>
#include <vector>

#include "tools/disc_fixture.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// Without study, series and patient.
InstanceFile OfNoPatient(const char* sopClass, const char* uid) {
    return InstanceFile()
        .SopClass(sopClass)
        .Instance(uid)
        .Remove(0x0010, 0x0010)
        .Remove(0x0010, 0x0020)
        .Remove(0x0020, 0x000D)
        .Remove(0x0020, 0x000E)
        .Remove(0x0020, 0x0013);
}

InstanceFile Palette(const std::string& label, const char* uid) {
    return OfNoPatient("1.2.840.10008.5.1.4.39.1", uid)
        .Set(0x0070, 0x0080, "CS", label)
        .Set(0x0070, 0x0081, "LO", "Of hot iron");
}

InstanceFile HangingProtocol(const std::string& name) {
    return OfNoPatient("1.2.840.10008.5.1.4.38.1", "1.2.7.1")
        .Set(0x0072, 0x0002, "SH", name)
        .Set(0x0072, 0x0004, "LO", "Chest")
        .Set(0x0072, 0x0006, "CS", "SITE")
        .Set(0x0072, 0x0008, "LO", "X")
        .Set(0x0072, 0x000A, "DT", "20240101")
        .SetSequence(0x0072, 0x000C, StreamBuilder().Item().EndItem())
        .SetUS(0x0072, 0x0014, 0);
}

class PgtoolDiscCommon : public DiscFixture {
  protected:
    Finished Browse(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {"browse", Target()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Pgtool(arguments);
    }
};

// They were refused for want of a study.
TEST_F(PgtoolDiscCommon, PalettesAndHangingProtocolsStandAtTheRoot) {
    Write("A", Palette("HOT", "1.2.8.1"));
    Write("B", Complete(1));
    Write("C", HangingProtocol("CHEST"));
    Write("SUB/again", Palette("HOT", "1.2.8.1"));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_THAT(run.out, StartsWith("stored: 1 patient, 1 study, 1 series, 3 instances, 2 of no "
                                    "patient, "));
    EXPECT_THAT(Files(),
                ElementsAre("DICOM/COMMON/OB000001", "DICOM/COMMON/OB000002",
                            "DICOM/PAT00001/STU00001/SER00001/IM000001", "DICOMDIR", "README.TXT"));
    const auto disc = pgkit::directory::open(Target() + "/DICOMDIR");
    ASSERT_TRUE(disc);
    EXPECT_EQ(disc->patients().size(), 1u);
    std::vector<std::string> records;
    for (const pgkit::item& record : disc->common_records())
        records.push_back(record.find("DirectoryRecordType").text() + " " +
                          record.find("ContentLabel").text() +
                          record.find("HangingProtocolName").text());
    EXPECT_THAT(records, UnorderedElementsAre("PALETTE HOT", "HANGING PROTOCOL CHEST"));
    EXPECT_THAT(Text(Target() + "/README.TXT"), HasSubstr("(COMMON: what belongs to no patient"));
}

TEST_F(PgtoolDiscCommon, VerifyHasNoFindings) {
    Write("A", Palette("HOT", "1.2.8.1"));
    Write("B", Complete(1));
    Write("C", HangingProtocol("CHEST"));
    ASSERT_EQ(Disc().exitStatus, 0);
    const Finished run = Pgtool({"verify", Target()});
    EXPECT_EQ(run.exitStatus, 0) << run.out;
    EXPECT_THAT(run.err, HasSubstr("6 records, 3 files: no findings"));
}

// There was a patient without a name in their place, and an error of the library.
TEST_F(PgtoolDiscCommon, BrowseShowsThemBehindThePatients) {
    Write("A", Palette("HOT", "1.2.8.1"));
    Write("B", Complete(1));
    ASSERT_EQ(Disc().exitStatus, 0);
    const Finished tree = Browse();
    EXPECT_EQ(tree.exitStatus, 0);
    EXPECT_THAT(tree.err, IsEmpty());
    EXPECT_THAT(tree.out,
                HasSubstr("\nPALETTE  HOT  DICOM\\COMMON\\OB000001  [1.2.8.1]\n"
                          "1 patient, 1 study, 1 series, 2 instances, 0 missing files\n"));
    EXPECT_THAT(
        Browse({"--json"}).out,
        HasSubstr("\"common\":[{\"recordType\":\"PALETTE\",\"name\":\"HOT\",\"fullPath\":\""));
    EXPECT_THAT(Browse({"--files"}).out, HasSubstr("/DICOM/COMMON/OB000001\n"));
    std::filesystem::remove(Target() + "/DICOM/COMMON/OB000001");
    EXPECT_THAT(Browse().out, HasSubstr("[1.2.8.1]  (missing)\n"));
    EXPECT_THAT(Browse({"--files"}).err, HasSubstr("missing: DICOM\\COMMON\\OB000001"));
}

TEST_F(PgtoolDiscCommon, AMediumMayHaveNothingElse) {
    Write("A", Palette("HOT", "1.2.8.1"));
    const Finished run = Disc({"--web"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_EQ(Pgtool({"verify", Target()}).exitStatus, 0);
    const Finished tree = Browse();
    EXPECT_EQ(tree.exitStatus, 0);
    EXPECT_THAT(tree.err, IsEmpty());
    EXPECT_THAT(tree.out, StartsWith("PALETTE  HOT  "));
}

TEST_F(PgtoolDiscCommon, PagesNameThemEscaped) {
    Write("A", HangingProtocol("<b>CHEST</b>"));
    Write("B", Complete(1));
    ASSERT_EQ(Disc({"--web"}).exitStatus, 0);
    const std::string page = Text(Target() + "/INDEX.HTM");
    EXPECT_THAT(page, HasSubstr("<h2>Of no patient</h2>"));
    EXPECT_THAT(page, HasSubstr("HANGING PROTOCOL"));
    EXPECT_THAT(page, HasSubstr("&lt;b&gt;CHEST&lt;/b&gt;"));
    EXPECT_THAT(page, Not(HasSubstr("<b>CHEST")));
    EXPECT_THAT(page, Not(HasSubstr("(no name)")));
}

TEST_F(PgtoolDiscCommon, ADiscOfADiscHasThemToo) {
    Write("A", Palette("HOT", "1.2.8.1"));
    Write("B", Complete(1));
    ASSERT_EQ(Disc().exitStatus, 0);
    ASSERT_EQ(Run({Target(), "-o", directory_.Path("SECOND")}).exitStatus, 0);
    EXPECT_EQ(FilesOf(directory_.Path("SECOND")), FilesOf(Target()));
}

TEST_F(PgtoolDiscCommon, OtherContentOfTheSameUidIsAConflict) {
    Write("A", Palette("HOT", "1.2.8.1"));
    Write("B", Palette("COLD", "1.2.8.1"));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("it has the SOP Instance UID of "));
}

TEST_F(PgtoolDiscCommon, SeveralMediaHaveThemOnce) {
    for (int study = 1; study <= 3; ++study)
        Write("S" + std::to_string(study), Large(InstanceOf(study, 1, 1), 200000));
    Write("P", Palette("HOT", "1.2.8.1"));
    ASSERT_EQ(Disc({"--size", "400k"}).exitStatus, 0);
    size_t found = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory_.Path("")))
        found += entry.path().filename() == "OB000001";
    EXPECT_EQ(found, 1u);
}

}  // namespace
