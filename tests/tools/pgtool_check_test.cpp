#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class PgtoolCheck : public testing::Test {
  protected:
    std::string Write(const std::string& name, const InstanceFile& file) {
        return directory_.Write(name, file.Data());
    }
    Finished Check(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "check");
        return Pgtool(arguments);
    }

    TempDir directory_;
};

TEST_F(PgtoolCheck, TellsWhatBecomesOfEachFile) {
    const std::string a = Write("A", Instance(1));
    const std::string b = Write("B", Instance(2).TransferSyntax("1.2.840.10008.1.2.4.50"));
    const Finished run = Check({a, b, "--profile", "STD-GEN-CD"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out,
              a + ": 0 Dicom file accepted\n" + b + ": 5 Profile restriction don't match file\n");
    EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(PgtoolCheck, SucceedsWhenAllFilesAreAccepted) {
    const std::string a = Write("A", Instance(1));
    const std::string b = Write("B", Instance(2));
    EXPECT_EQ(Check({a, b, "--profile", "STD-GEN-CD"}).exitStatus, 0);
    EXPECT_EQ(Check({a, b}).exitStatus, 0);
}

TEST_F(PgtoolCheck, KnowsAnInstanceThatCameBefore) {
    const std::string a = Write("A", Instance(1));
    const std::string b = Write("B", Instance(1));
    const Finished run = Check({a, b});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr(b + ": 6 SOPInstanceUID already found and registered\n"));
}

TEST_F(PgtoolCheck, WritesNothing) {
    const std::string text = directory_.Write("TEXT", "no DICOM at all");
    EXPECT_EQ(Check({text}).out, text + ": 2 File is not DICOM Part 10 compliant\n");
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("dcmdir.lst")));
}

TEST_F(PgtoolCheck, ReportsMissingFilesAsUnreadable) {
    const std::string missing = directory_.Path("missing");
    const Finished run = Check({missing});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, missing + ": 2 File is not DICOM Part 10 compliant\n");
    EXPECT_THAT(run.err, HasSubstr("unable to open"));
    EXPECT_THAT(run.err, EndsWith("pgtool check: cannot open " + missing + ": no such file\n"));
}

// Directories were unreadable files.
TEST_F(PgtoolCheck, GoesThroughDirectories) {
    std::filesystem::create_directories(directory_.Path("D/E"));
    const std::string a = Write("D/A", Instance(1));
    const std::string b = Write("D/E/B", Instance(2));
    directory_.Write("D/TEXT", "no DICOM at all");
    const Finished run = Check({"-r", directory_.Path("D")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, a + ": 0 Dicom file accepted\n" + b + ": 0 Dicom file accepted\n");
    EXPECT_EQ(run.err, "pgtool check: 1 other files\n");
    const Finished plain = Check({directory_.Path("D")});
    EXPECT_EQ(plain.exitStatus, 1);
    EXPECT_THAT(plain.err, EndsWith("D is a directory; -r works on the files in it\n"));
    const std::string list = directory_.Write("LIST", a + "\n" + b + "\n");
    EXPECT_EQ(Check({"--files-from", list}).out, run.out);
}

TEST_F(PgtoolCheck, NeedsAFile) {
    EXPECT_EQ(Check({}).exitStatus, 2);
    EXPECT_EQ(Check({"--profile", "STD-GEN-CD"}).exitStatus, 2);
}

}  // namespace
