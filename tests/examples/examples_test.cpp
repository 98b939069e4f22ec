#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    EXPECT_THAT(out, StartsWith("Patient: CompressedSamples^MR1 \nImage: 64 x 64\n  "));
    EXPECT_THAT(out, HasSubstr("PixelData"));
}

TEST(Examples, SayInOneLineThatAFileCannotBeRead) {
    for (const char* const example : {"read_and_print", "browse_disc", "read_in_c"}) {
        const Finished finished = RunExample(example, {TestData("missing")});
        EXPECT_EQ(finished.exitStatus, 1) << example;
        EXPECT_THAT(finished.err, HasSubstr("missing\n")) << example;
    }
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

TEST(Examples, ReadInCPrintsTheTopLevel) {
    const std::string out = OutputOf("read_in_c", {TestData("native/mr_implicit_le.dcm")});
    EXPECT_THAT(out, HasSubstr("(0010,0010) PN PatientsName, 22 bytes: CompressedSamples^MR1 \n"));
    EXPECT_THAT(out, HasSubstr("(7FE0,0010) OWOB PixelData, 8192 bytes\n"));
    EXPECT_THAT(out, Not(HasSubstr("????")));
}

}  // namespace
