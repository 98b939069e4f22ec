#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/host_system.h"
#include "support/instance_file.h"
#include "support/patient_list.h"
#include "support/temp_dir.h"
#include "support/tree.h"
#include "tools/run_pgtool.h"

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
        return Pgtool(options);
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
    const Finished run = Pgtool({"mkdir", Medium() + "/"});
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
    const Finished run = Pgtool({"mkdir", target.string(), "--offshore", Medium() + "/"});
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
    EXPECT_EQ(Pgtool({"mkdir", directory_.Path("TARGET"), "--offshore", Medium(), "--no-recurse",
                      "--no-list"})
                  .out,
              "0 Dicom file accepted: 1\n");
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("TARGET/dcmdir.lst")));
}

TEST_F(PgtoolMkdir, FailsWhereNothingCanBeWritten) {
    const std::string missing = directory_.Path("missing");
    const Finished run = Pgtool({"mkdir", missing});
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
        return Pgtool(options).exitStatus;
    };
    EXPECT_EQ(run({}), 1);
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("TARGET/DICOMDIR")));
    EXPECT_EQ(run({"--allow-empty"}), 0);
    EXPECT_TRUE(std::filesystem::exists(directory_.Path("TARGET/DICOMDIR")));
}

TEST_F(PgtoolMkdir, RefusesUnknownProfilesBeforeItTouchesAnything) {
    Write("A", Instance(1));
    for (const char* command : {"mkdir", "check"}) {
        const Finished run = Pgtool({command, Medium(), "--profile", "STD-GEN"});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr(": unknown profile: STD-GEN"));
    }
    // Case does not matter to what is meant, but to what is taken.
    EXPECT_THAT(Mkdir({"--profile", "std-gen-cd"}).err,
                HasSubstr("unknown profile: std-gen-cd; did you mean STD-GEN-CD or STD-DEN-CD?"));
    EXPECT_THAT(Mkdir({"--profile", "NOTHING-LIKE-THAT"}).err,
                HasSubstr("unknown profile: NOTHING-LIKE-THAT\n"));
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/DICOMDIR")));
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/dcmdir.lst")));
}

// The files that such names seem to lead to were read.
TEST_F(PgtoolMkdir, RefusesOffshoreNamesWithBackslashes) {
    if (kIsWindows) GTEST_SKIP() << "there are none here";
    Write("SUB/B", Instance(1));
    Write("SUB\\B", Instance(2));
    std::filesystem::create_directory(directory_.Path("MEDIUM/C\\D"));
    Write("C\\D/E", Instance(3));
    std::filesystem::create_directory(directory_.Path("TARGET"));
    const Finished run = Pgtool({"mkdir", directory_.Path("TARGET"), "--offshore", Medium()});
    EXPECT_EQ(run.out, "0 Dicom file accepted: 1\n1 Invalid filename for file: 2\n");
    EXPECT_EQ(Hierarchy("TARGET"), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(PgtoolMkdir, WritesNothingUnderStrictWhereAFileIsRefused) {
    Write("A", Instance(1));
    EXPECT_EQ(Mkdir({"--strict"}).exitStatus, 0);
    // The DICOMDIR and the list, which are there now, are no reason.
    EXPECT_EQ(Mkdir({"--strict"}).exitStatus, 0);
    const Bytes before = ReadFile(directory_.Path("MEDIUM/DICOMDIR"));
    Write("B", Instance(1));
    directory_.Write("MEDIUM/SUB/TEXT", Bytes{'t', 'e', 'x', 't'});
    const Finished run = Mkdir({"--strict"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr("6 SOPInstanceUID already found and registered: 1\n"));
    EXPECT_EQ(run.err, "pgtool mkdir: refused files: 2; no DICOMDIR is written\n");
    EXPECT_EQ(ReadFile(directory_.Path("MEDIUM/DICOMDIR")), before);

    std::filesystem::create_directory(directory_.Path("TARGET"));
    const Finished offshore =
        Pgtool({"mkdir", directory_.Path("TARGET"), "--offshore", Medium(), "--strict"});
    EXPECT_EQ(offshore.exitStatus, 1);
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("TARGET/DICOMDIR")));
}

TEST_F(PgtoolMkdir, WarnsAboutNamesThatAreNoFileIds) {
    Write("A", Instance(1));
    Write("SUB/image.dcm", Instance(2));
    const Finished run = Mkdir({});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err,
              "pgtool mkdir: warning: 1 of the names are no File IDs (up to 8 components of 8 "
              "characters A-Z, 0-9, _), such as SUB\\image.dcm\n");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
}

TEST_F(PgtoolMkdir, RefusesNamesThatAreNoFileIdsOnDemand) {
    Write("A", Instance(1));
    Write("SUB/image.dcm", Instance(2));
    const Finished run = Mkdir({"--strict-names"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "0 Dicom file accepted: 1\n1 Invalid filename for file: 1\n" +
                           std::string(kNotPart10));
    EXPECT_THAT(run.err, IsEmpty());
    std::ifstream list(directory_.Path("MEDIUM/dcmdir.lst"));
    const std::string text(std::istreambuf_iterator<char>(list), {});
    EXPECT_THAT(text, HasSubstr("\n1\tSUB\\image.dcm\n"));
    EXPECT_EQ(Mkdir({"--strict-names", "--strict"}).exitStatus, 1);
}

TEST_F(PgtoolMkdir, ListsByTheRecordsOfTodaysStandardOnDemand) {
    Write("A", InstanceFile().SopClass("1.2.840.10008.5.1.4.1.1.481.2"));
    const auto recordType = [&] {
        const DataSet root = Open();
        return TextOf(Child(LastRecord(root.get()), 0x0004, 0x1430));
    };
    Mkdir({});
    EXPECT_EQ(recordType(), "IMAGE ");
    Mkdir({"--standard-records"});
    EXPECT_EQ(recordType(), "RT DOSE ");
}

// ---- Updates ------------------------------------------------------------------------------------

TEST_F(PgtoolMkdir, AddsFilesToTheDicomdirThatIsThere) {
    Write("A", Instance(1));
    Mkdir({});
    Write("SUB/B", Instance(2));
    Write("SUB/C", Instance(3).Study("1.9"));
    const Finished run = Mkdir({"--add", Medium() + "/SUB/B", Medium() + "/SUB/C"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(run.out, "0 Dicom file accepted: 2\n");
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)) 1.9(1.2.3.4(1.2.3.4.3)))");
}

TEST_F(PgtoolMkdir, AddsFilesOfDirectoriesAndNoneTwice) {
    Write("A", Instance(1));
    Mkdir({"--no-list"});
    Write("SUB/B", Instance(2));
    const Finished run = Mkdir({"--add", Medium() + "/", "--no-list"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(run.out,
              "0 Dicom file accepted: 1\n4 File is a DICOMDIR: 1\n"
              "6 SOPInstanceUID already found and registered: 1\n");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
    const Bytes before = ReadFile(directory_.Path("MEDIUM/DICOMDIR"));
    const Finished again = Mkdir({"--add", Medium() + "/SUB/B"});
    EXPECT_EQ(again.exitStatus, 1);
    EXPECT_EQ(again.err, "pgtool mkdir: nothing is accepted: the DICOMDIR stays as it is\n");
    EXPECT_EQ(ReadFile(directory_.Path("MEDIUM/DICOMDIR")), before);
}

TEST_F(PgtoolMkdir, RemovesStudies) {
    Write("A", Instance(1));
    Write("B", Instance(2).Study("1.9").Patient("ID2", "ROE"));
    Mkdir({});
    const Finished run = Mkdir({"--remove", "1.9", "1.9"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(run.out, "studies removed: 1\n");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
    EXPECT_TRUE(std::filesystem::exists(directory_.Path("MEDIUM/B")));

    const Finished last = Mkdir({"--remove", "1.2.3"});
    EXPECT_EQ(last.exitStatus, 1);
    EXPECT_EQ(last.err, "pgtool mkdir: nothing would be left: the DICOMDIR stays as it is\n");
    EXPECT_EQ(Mkdir({"--remove", "1.2.3", "--allow-empty"}).exitStatus, 0);
    EXPECT_EQ(Hierarchy(), "");
}

TEST_F(PgtoolMkdir, ChangesNothingWhenAnUpdateCannotBeDone) {
    Write("A", Instance(1));
    const auto errorOf = [&](const std::vector<std::string>& options) {
        const Finished run = Mkdir(options);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.out, IsEmpty());
        return run.err;
    };
    const std::string file = Medium() + "/A";
    EXPECT_EQ(errorOf({"--add", file}),
              "pgtool mkdir: cannot open " + Medium() + "/DICOMDIR: no such file\n");
    EXPECT_EQ(errorOf({"--remove", "1.2.3"}),
              "pgtool mkdir: cannot open " + Medium() + "/DICOMDIR: no such file\n");
    directory_.Write("MEDIUM/DICOMDIR", Bytes{'t', 'e', 'x', 't'});
    EXPECT_EQ(errorOf({"--add", file}), "pgtool mkdir: " + Medium() + "/DICOMDIR is no DICOMDIR\n");

    Mkdir({});
    Write("SUB/B", Instance(2));
    const Bytes before = ReadFile(directory_.Path("MEDIUM/DICOMDIR"));
    const std::string outside = directory_.Write("OUTSIDE", Instance(3).Data());
    EXPECT_EQ(errorOf({"--add", Medium() + "/SUB/B", outside}),
              "pgtool mkdir: " + outside + " is outside of " + Medium() + "\n");
    EXPECT_EQ(errorOf({"--add", Medium() + "/SUB/B", Medium() + "/missing"}),
              "pgtool mkdir: cannot open " + Medium() + "/missing: no such file\n");
    EXPECT_EQ(errorOf({"--remove", "1.2.3", "1.2.4"}), "pgtool mkdir: no such study: 1.2.4\n");
    EXPECT_EQ(ReadFile(directory_.Path("MEDIUM/DICOMDIR")), before);

    Bytes cut = before;
    cut.resize(cut.size() - 20);
    directory_.Write("MEDIUM/DICOMDIR", cut);
    EXPECT_EQ(errorOf({"--remove", "1.2.3"}),
              "pgtool mkdir: " + Medium() + "/DICOMDIR is damaged: make it anew\n");
    EXPECT_EQ(ReadFile(directory_.Path("MEDIUM/DICOMDIR")), cut);
}

TEST_F(PgtoolMkdir, AddsAllOrNothingUnderStrict) {
    Write("A", Instance(1));
    Mkdir({});
    Write("SUB/B", Instance(2));
    directory_.Write("MEDIUM/SUB/TEXT", Bytes{'t', 'e', 'x', 't'});
    const Finished run = Mkdir({"--add", Medium() + "/SUB", "--strict"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "pgtool mkdir: refused files: 1; the DICOMDIR stays as it is\n");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
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
    EXPECT_EQ(complaint({"--add"}), "pgtool mkdir: --add: a file is expected");
    EXPECT_EQ(complaint({"--remove"}), "pgtool mkdir: --remove: a UID is expected");
    EXPECT_EQ(complaint({"--add", "--remove", "X"}),
              "pgtool mkdir: --add and --remove are two commands");
    EXPECT_EQ(complaint({"--add", "X", "--offshore", "Y"}),
              "pgtool mkdir: --add and --remove know neither --offshore nor --file-set-id");
    EXPECT_EQ(Pgtool({"mkdir"}).exitStatus, 2);
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("MEDIUM/DICOMDIR")));
}

}  // namespace
