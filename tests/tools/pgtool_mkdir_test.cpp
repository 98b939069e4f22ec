#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/instance_file.h"
#include "support/patient_list.h"
#include "support/process.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kNotPart10 = "2 File is not DICOM Part 10 compliant: 1\n";

class PgtoolMkdir : public testing::Test {
  protected:
    PgtoolMkdir() { std::filesystem::create_directories(directory_.Path("MEDIUM/SUB")); }

    std::string Medium() const { return directory_.Path("MEDIUM"); }
    void Write(const std::string& name, const InstanceFile& file) {
        directory_.Write("MEDIUM/" + name, file.Data());
    }
    Finished Mkdir(std::vector<std::string> options) {
        options.insert(options.begin(), {"mkdir", Medium()});
        return RunProgram(PGKIT_PGTOOL, options);
    }

    // The hierarchy of the medium, or of another one.
    std::string Hierarchy(const std::string& medium = "MEDIUM") {
        PatientList patients;
        CapturePrinted([&] {
            patients.reset(pgGetPatientListFromFile(directory_.Path(medium + "/DICOMDIR").c_str()));
        });
        return Outline(patients.get());
    }

    DataSet Open() {
        return DataSet(pgOpenDataSetFile(directory_.Path("MEDIUM/DICOMDIR").c_str(), kLoadAll));
    }
    PGX_Node* LastRecord(PGX_Node* root) {
        PGX_Node* record = Child(root, 0x0004, 0x1220)->first;
        while (record->next != nullptr)
            record = record->next;
        return record;
    }

    TempDir directory_;
};

TEST_F(PgtoolMkdir, WritesTheDicomdirAndSumsUp) {
    Write("A", Instance(1));
    Write("SUB/B", Instance(2));
    Write("SUB/C", Instance(2));
    const Finished run = Mkdir({});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, std::string("0 Dicom file accepted: 2\n") + kNotPart10 +
                           "6 SOPInstanceUID already found and registered: 1\n");
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
    EXPECT_TRUE(std::filesystem::exists(directory_.Path("MEDIUM/dcmdir.lst")));
}

TEST_F(PgtoolMkdir, AcceptsWhatTheProfileAllows) {
    Write("A", Instance(1));
    Write("B", Instance(2).TransferSyntax("1.2.840.10008.1.2.4.50"));
    EXPECT_EQ(Mkdir({"--profile", "STD-GEN-CD", "--no-list"}).out,
              "0 Dicom file accepted: 1\n5 Profile restriction don't match file: 1\n");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(PgtoolMkdir, StaysOutOfSubdirectoriesAndWritesNoListOnDemand) {
    Write("A", Instance(1));
    Write("SUB/B", Instance(2));
    EXPECT_EQ(Mkdir({"--no-recurse", "--no-list"}).out, "0 Dicom file accepted: 1\n");
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/dcmdir.lst")));
}

TEST_F(PgtoolMkdir, StoresFileSizesAndTheFileSetId) {
    const InstanceFile file = Instance(1);
    Write("A", file);
    EXPECT_EQ(Mkdir({"--file-size", "--file-set-id", "DISC_1"}).exitStatus, 0);
    const DataSet root = Open();
    EXPECT_EQ(TextOf(Child(root.get(), 0x0004, 0x1130)), "DISC_1");
    EXPECT_EQ(std::stoul(TextOf(Child(LastRecord(root.get()), 0x2137, 0x1040))),
              file.Data().size());
}

TEST_F(PgtoolMkdir, FillsMissingKeysOnDemand) {
    Write("A", InstanceFile().Patient("", "X"));
    Mkdir({});
    EXPECT_THAT(Hierarchy(), StartsWith("("));
    Mkdir({"--fill-missing"});
    EXPECT_THAT(Hierarchy(), StartsWith("ZORVA_PATID_000001("));
}

TEST_F(PgtoolMkdir, TakesADirectoryWithASlashAtItsEnd) {
    Write("A", Instance(1));
    const Finished run = RunProgram(PGKIT_PGTOOL, {"mkdir", Medium() + "/"});
    EXPECT_EQ(run.exitStatus, 0);
    std::ifstream list(directory_.Path("MEDIUM/dcmdir.lst"));
    const std::string text(std::istreambuf_iterator<char>(list), {});
    EXPECT_THAT(text, HasSubstr("\n0\tA\n"));
}

TEST_F(PgtoolMkdir, PutsTheDicomdirApartFromOffshoreFiles) {
    Write("A", Instance(1));
    Write("SUB/B", Instance(2));
    const std::filesystem::path target = directory_.Path("TARGET");
    std::filesystem::create_directory(target);
    const Finished run =
        RunProgram(PGKIT_PGTOOL, {"mkdir", target.string(), "--offshore", Medium() + "/"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "0 Dicom file accepted: 2\n");
    EXPECT_EQ(Hierarchy("TARGET"), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/DICOMDIR")));
    EXPECT_TRUE(std::filesystem::exists(directory_.Path("TARGET/dcmdir.lst")));

    const DataSet root(pgOpenDataSetFile(directory_.Path("TARGET/DICOMDIR").c_str(), kLoadAll));
    EXPECT_EQ(TextOf(Child(LastRecord(root.get()), 0x0004, 0x1500)), "SUB\\B ");
}

TEST_F(PgtoolMkdir, StaysOutOfSubdirectoriesOfOffshoreFilesOnDemand) {
    Write("A", Instance(1));
    Write("SUB/B", Instance(2));
    std::filesystem::create_directory(directory_.Path("TARGET"));
    EXPECT_EQ(RunProgram(PGKIT_PGTOOL, {"mkdir", directory_.Path("TARGET"), "--offshore", Medium(),
                                        "--no-recurse", "--no-list"})
                  .out,
              "0 Dicom file accepted: 1\n");
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("TARGET/dcmdir.lst")));
}

TEST_F(PgtoolMkdir, FailsWhereNothingCanBeWritten) {
    const std::string missing = directory_.Path("missing");
    const Finished run = RunProgram(PGKIT_PGTOOL, {"mkdir", missing});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err,
                HasSubstr("pgtool mkdir: " + missing + "/DICOMDIR: the file cannot be created\n"));
    EXPECT_EQ(Mkdir({"--offshore", missing}).exitStatus, 1);
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/DICOMDIR")));
}

// An empty DICOMDIR took its place.
TEST_F(PgtoolMkdir, LeavesTheDicomdirWhenNothingIsAccepted) {
    Write("A", Instance(1));
    EXPECT_EQ(Mkdir({}).exitStatus, 0);
    const Bytes before = ReadFile(directory_.Path("MEDIUM/DICOMDIR"));
    const Finished run = Mkdir({"--profile", "STD-DEN"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr("5 Profile restriction don't match file: 1\n"));
    EXPECT_EQ(run.err, "pgtool mkdir: nothing is accepted: no DICOMDIR is written\n");
    EXPECT_EQ(ReadFile(directory_.Path("MEDIUM/DICOMDIR")), before);
    EXPECT_EQ(Mkdir({"--profile", "STD-DEN", "--allow-empty"}).exitStatus, 0);
    EXPECT_EQ(Hierarchy(), "");
}

TEST_F(PgtoolMkdir, WritesNoDicomdirOfOffshoreFilesWhenNothingIsAccepted) {
    std::filesystem::create_directory(directory_.Path("TARGET"));
    const auto run = [&](std::vector<std::string> options) {
        options.insert(options.begin(),
                       {"mkdir", directory_.Path("TARGET"), "--offshore", Medium()});
        return RunProgram(PGKIT_PGTOOL, options).exitStatus;
    };
    EXPECT_EQ(run({}), 1);
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("TARGET/DICOMDIR")));
    EXPECT_EQ(run({"--allow-empty"}), 0);
    EXPECT_TRUE(std::filesystem::exists(directory_.Path("TARGET/DICOMDIR")));
}

TEST_F(PgtoolMkdir, RefusesUnknownProfilesBeforeItTouchesAnything) {
    Write("A", Instance(1));
    for (const char* command : {"mkdir", "check"}) {
        const Finished run = RunProgram(PGKIT_PGTOOL, {command, Medium(), "--profile", "STD-GEN"});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr(": unknown profile: STD-GEN"));
    }
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/dcmdir.lst")));
}

// The files that such names seem to lead to were read.
TEST_F(PgtoolMkdir, RefusesOffshoreNamesWithBackslashes) {
    if (std::filesystem::path::preferred_separator == '\\') GTEST_SKIP() << "there are none here";
    Write("SUB/B", Instance(1));
    Write("SUB\\B", Instance(2));
    std::filesystem::create_directory(directory_.Path("MEDIUM/C\\D"));
    Write("C\\D/E", Instance(3));
    std::filesystem::create_directory(directory_.Path("TARGET"));
    const Finished run =
        RunProgram(PGKIT_PGTOOL, {"mkdir", directory_.Path("TARGET"), "--offshore", Medium()});
    EXPECT_EQ(run.out, "0 Dicom file accepted: 1\n1 Invalid filename for file: 2\n");
    EXPECT_EQ(Hierarchy("TARGET"), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(PgtoolMkdir, ShowsNoProgressWhereNobodyLooks) {
    Write("A", Instance(1));
    EXPECT_THAT(Mkdir({}).err, IsEmpty());
}

TEST_F(PgtoolMkdir, ChecksItsCommandLine) {
    const auto complaint = [&](const std::vector<std::string>& options) {
        const Finished run = Mkdir(options);
        EXPECT_EQ(run.exitStatus, 2);
        return run.err.substr(0, run.err.find('\n'));
    };
    EXPECT_EQ(complaint({"--icons", "257"}), "pgtool mkdir: --icons: at most 256 pixels");
    EXPECT_EQ(complaint({"--series-icons"}), "pgtool mkdir: --series-icons needs --icons");
    EXPECT_EQ(complaint({"--file-set-id", "12345678901234567"}),
              "pgtool mkdir: --file-set-id: at most 16 characters");
    EXPECT_EQ(complaint({"--offshore", Medium(), "--profile", "STD-GEN-CD"}),
              "pgtool mkdir: --offshore knows no --profile");
    EXPECT_EQ(complaint({"--offshore", Medium(), "--fill-missing"}),
              "pgtool mkdir: --offshore knows no --fill-missing");
    EXPECT_EQ(complaint({"SECOND"}), "pgtool mkdir: a directory is expected");
    EXPECT_EQ(RunProgram(PGKIT_PGTOOL, {"mkdir"}).exitStatus, 2);
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/DICOMDIR")));
}

}  // namespace
