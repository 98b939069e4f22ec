#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/process.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

Finished RunExample(const std::string& name, const std::vector<std::string>& arguments) {
    return RunProgram(PGKIT_EXAMPLES + name + PGKIT_PROGRAM_SUFFIX, arguments);
}

// Runs an example that must succeed and returns what it printed, lines ending in "\n" on every
// platform.
std::string OutputOf(const std::string& name, const std::vector<std::string>& arguments) {
    Finished finished = RunExample(name, arguments);
    EXPECT_EQ(finished.exitStatus, 0) << name;
    EXPECT_EQ(finished.err, "") << name;
    std::erase(finished.out, '\r');
    return finished.out;
}

TEST(Examples, ReadAndPrintShowsPatientImageAndElements) {
    const std::string out = OutputOf("read_and_print", {TestData("native/mr_implicit_le.dcm")});
    EXPECT_THAT(out, StartsWith("Patient: CompressedSamples^MR1\nImage: 64 x 64\n(0002,0000) UL "));
    EXPECT_THAT(out, HasSubstr("\n(0010,0020) LO PatientID: 4MR1\n"));
    EXPECT_THAT(out, HasSubstr("\n(7FE0,0010) OWOB PixelData: \n"));
}

TEST(Examples, ReadAndPrintShowsItemsFurtherIn) {
    const std::string out = OutputOf("read_and_print", {TestData("sequences/rtplan_implicit.dcm")});
    EXPECT_THAT(out, HasSubstr("\n(300A,00B0) SQ BeamSequence: \n  (0008,0070) LO Manufacturer"));
}

TEST(Examples, ReadWithClassesShowsTheSameThroughMembers) {
    const std::string out = OutputOf("read_with_classes", {TestData("native/mr_implicit_le.dcm")});
    EXPECT_THAT(out, StartsWith("Patient: CompressedSamples^MR1 \nImage: 64 x 64\n  "));
    EXPECT_THAT(out, HasSubstr("PixelData"));
}

TEST(Examples, SayInOneLineThatAFileCannotBeRead) {
    for (const char* const example : {"read_with_classes", "browse_disc", "read_in_c"}) {
        const Finished finished = RunExample(example, {TestData("missing")});
        EXPECT_EQ(finished.exitStatus, 1) << example;
        EXPECT_THAT(finished.err, HasSubstr("missing\n")) << example;
    }
    const Finished finished = RunExample("read_and_print", {TestData("missing")});
    EXPECT_EQ(finished.exitStatus, 1);
    EXPECT_EQ(finished.err, "cannot read " + TestData("missing") + ": no such file\n");
}

TEST(Examples, EditAndSaveKeepsEverythingElse) {
    const TempDir directory;
    InstanceFile image;
    image.Patient("ID1", "DOE^JANE").Set(0x0010, 0x0030, "DA", "19700101");
    const std::string original = directory.Write("original", image.Data());
    const std::string edited = directory.Path("edited");
    EXPECT_EQ(OutputOf("edit_and_save", {original, edited, "NEW^NAME"}), "");

    image.Patient("ID1", "NEW^NAME").Remove(0x0010, 0x0030);
    const std::string expected = directory.Write("expected", image.Data());
    EXPECT_EQ(OutputOf("read_in_c", {edited}),
              "(0002,0000) UL GroupLength0002, 4 bytes\n" + OutputOf("read_in_c", {expected}));
}

TEST(Examples, BuildDataSetMakesAnImageThatReadsBack) {
    const TempDir directory;
    const std::string path = directory.Path("wedge.dcm");
    EXPECT_EQ(OutputOf("build_data_set", {path}), "");
    EXPECT_EQ(pgIsDicomFile(path.c_str()), 1);

    const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
    PGX_Node* const pixels = Child(root.get(), 0x7FE0, 0x0010);
    ASSERT_EQ(pixels->length, 4096u);
    EXPECT_EQ(pixels->valueRep, uint32_t{VR_OB});
    EXPECT_EQ(pixels->value[65], 4);
    PGX_Node* const item = Child(root.get(), 0x0008, 0x2218)->first;
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(TextOf(Child(item, 0x0008, 0x0104)), "Phantom ");
}

TEST(Examples, BrowseDiscListsTheHierarchy) {
    const std::string out = OutputOf("browse_disc", {TestData("dicomdir/DICOMDIR_implicit")});
    EXPECT_THAT(out, HasSubstr("\nDoe^Archibald (77654033)\n  study of 20010101: XR C Spine"));
    EXPECT_THAT(
        out,
        HasSubstr("\n    series 1, CR: \n      IMAGE 1: 77654033\\CR1\\6154 , 0 x 0, missing\n"));
}

TEST(Examples, MakeDiscMakesADicomdirThatBrowseDiscReads) {
    const TempDir directory;
    std::filesystem::create_directories(directory.Path("DISC/SUB"));
    InstanceFile image;
    image.Patient("ID1", "DOE^JANE");
    directory.Write("DISC/SUB/IM1", image.Data());
    directory.Write("DISC/README", "no image");
    EXPECT_EQ(OutputOf("make_disc", {directory.Path("DISC")}),
              "refused README (2)\nadded SUB\\IM1 (0)\nDICOMDIR of 1 files, 1 refused\n");
    const std::string out = OutputOf("browse_disc", {directory.Path("DISC/DICOMDIR")});
    EXPECT_THAT(out, HasSubstr("\nDOE^JANE (ID1)\n"));
    EXPECT_THAT(out, HasSubstr("\n      IMAGE 1: SUB\\IM1 , 3 x 2\n"));
}

TEST(Examples, MakeDiscAppliesAProfile) {
    const TempDir directory;
    std::filesystem::create_directories(directory.Path("DISC"));
    directory.Write("DISC/IM1", InstanceFile().Data());
    EXPECT_EQ(OutputOf("make_disc", {directory.Path("DISC"), "STD-DEN"}),
              "refused IM1 (5)\nDICOMDIR of 0 files, 1 refused\n");
}

// A file about somebody, for the tests of the anonymiser.
InstanceFile TellingImage(const std::string& uid) {
    StreamBuilder references;
    references.Item()
        .Element(0x0008, 0x1155, "UI", PaddedUid("1.2.3.1"))
        .Element(0x0010, 0x0010, "PN", "DOE^JANE")
        .Element(0x0041, 0x1001, "LO", "DOE ")
        .EndItem();
    InstanceFile image;
    image.Patient("DOE1", "DOE^JANE").Series("1.2.3").Instance(uid);
    image.Set(0x0008, 0x0080, "LO", "DOE HOSPITAL").Set(0x0008, 0x0050, "SH", "DOE2");
    image.Set(0x0041, 0x1002, "LO", "DOE").SetSequence(0x0008, 0x1140, references);
    return image;
}

TEST(Examples, AnonymizeFolderLeavesNothingThatItNames) {
    const TempDir directory;
    std::filesystem::create_directories(directory.Path("in/DOE"));
    directory.Write("in/1", TellingImage("1.2.3.1").Data());
    directory.Write("in/DOE/2", TellingImage("1.2.3.2").Data());
    directory.Write("in/README", "no image");
    const std::string out =
        OutputOf("anonymize_folder", {directory.Path("in"), directory.Path("out")});
    EXPECT_THAT(out, StartsWith("left out: "));
    EXPECT_THAT(out, HasSubstr("README\n2 files written, 0 failed\n"));
    for (const char* const name : {"out/IM00001.dcm", "out/IM00002.dcm"}) {
        const Bytes bytes = ReadFile(directory.Path(name));
        const std::string text(bytes.begin(), bytes.end());
        EXPECT_THAT(text, Not(HasSubstr("DOE"))) << name;
        EXPECT_THAT(text, Not(HasSubstr("1.2.3."))) << name;
        EXPECT_THAT(text, HasSubstr("ANONYMOUS")) << name;
        EXPECT_EQ(pgIsDicomFile(directory.Path(name).c_str()), 1);
    }
}

TEST(Examples, AnonymizeFolderKeepsTogetherWhatBelongsTogether) {
    const TempDir directory;
    std::filesystem::create_directories(directory.Path("in"));
    directory.Write("in/1", TellingImage("1.2.3.1").Data());
    directory.Write("in/2", TellingImage("1.2.3.2").Data());
    OutputOf("anonymize_folder", {directory.Path("in"), directory.Path("out")});
    const auto first = pgkit::data_set::open(directory.Path("out/IM00001.dcm"));
    const auto second = pgkit::data_set::open(directory.Path("out/IM00002.dcm"));
    const auto uid = [](const auto& image, const char* path) { return image->find(path).text(); };
    EXPECT_EQ(pgCheckUID(uid(first, "SOPInstanceUID").c_str()), 1);
    EXPECT_THAT(uid(first, "SOPInstanceUID"), StartsWith("2.25."));
    EXPECT_NE(uid(first, "SOPInstanceUID"), uid(second, "SOPInstanceUID"));
    EXPECT_EQ(uid(first, "SOPInstanceUID"), uid(first, "MediaStorageSOPInstanceUID"));
    EXPECT_EQ(uid(first, "SeriesInstanceUID"), uid(second, "SeriesInstanceUID"));
    EXPECT_EQ(uid(second, "ReferencedImageSequence[0].ReferencedSOPInstanceUID"),
              uid(first, "SOPInstanceUID"));
    EXPECT_EQ(uid(first, "SOPClassUID"), "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_EQ(uid(first, "TransferSyntaxUID"), "1.2.840.10008.1.2.1");
}

TEST(Examples, FramesToRawWritesEachFrame) {
    const TempDir directory;
    const std::string prefix = directory.Path("frame");
    const std::string image = TestData("native/mr_implicit_le.dcm");
    EXPECT_EQ(OutputOf("frames_to_raw", {image, prefix}), prefix + "1.raw: 8192 bytes\n");
    EXPECT_EQ(ReadFile(prefix + "1.raw"), pgkit::data_set::open(image)->find("PixelData").bytes());
    const Finished none =
        RunExample("frames_to_raw", {TestData("sequences/rtplan_implicit.dcm"), prefix});
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_THAT(none.err, HasSubstr(" has no frames\n"));
}

TEST(Examples, DiscToJsonPrintsEveryInstance) {
    const TempDir disc;
    disc.Write("IM1", InstanceFile().Instance("1.2.3.4.1").Data());
    disc.Write("IM2", InstanceFile().Instance("1.2.3.4.2").Data());
    OutputOf("make_disc", {disc.Path("")});
    const std::string json = OutputOf("disc_to_json", {disc.Path("DICOMDIR")});
    // The remarks of the library about patients stood in front of it.
    EXPECT_TRUE(json.starts_with("[{\"") && json.ends_with("}}]\n")) << json;
    EXPECT_THAT(json, HasSubstr(R"("00080018":{"vr":"UI","Value":["1.2.3.4.1"]})"));
    EXPECT_THAT(json, HasSubstr(R"("00080018":{"vr":"UI","Value":["1.2.3.4.2"]})"));
    EXPECT_EQ(RunExample("disc_to_json", {disc.Path("IM1")}).exitStatus, 1);
}

TEST(Examples, JsonToFileMakesAFile) {
    const TempDir directory;
    const std::string json = R"({"00100010":{"vr":"PN","Value":[{"Alphabetic":"Schädel^Ö"}]}})";
    const std::string path = directory.Write("json", Bytes(json.begin(), json.end()));
    const std::string made = directory.Path("made");
    EXPECT_EQ(OutputOf("json_to_file", {path, made}), "");
    EXPECT_EQ(pgkit::data_set::open(made)->find("PatientName").text(), "Schädel^Ö");
    const std::string broken = R"({"00100010":{"vr":"PN","Value":[1]}})";
    directory.Write("json", Bytes(broken.begin(), broken.end()));
    EXPECT_THAT(RunExample("json_to_file", {path, made}).err, HasSubstr(", PatientName: "));
}

TEST(Examples, ReadInCPrintsTheTopLevel) {
    const std::string out = OutputOf("read_in_c", {TestData("native/mr_implicit_le.dcm")});
    EXPECT_THAT(out, HasSubstr("(0010,0010) PN PatientsName, 22 bytes: CompressedSamples^MR1 \n"));
    EXPECT_THAT(out, HasSubstr("(7FE0,0010) OWOB PixelData, 8192 bytes\n"));
    EXPECT_THAT(out, Not(HasSubstr("????")));
}

}  // namespace
