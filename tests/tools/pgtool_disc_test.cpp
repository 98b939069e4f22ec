#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/deflated.h"
#include "support/tree_comparison.h"
#include "tools/disc_fixture.h"
#include "tools/run_pgtool.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class PgtoolDisc : public DiscFixture {};

TEST_F(PgtoolDisc, StoresInstancesUnderNamesOfTheirOwn) {
    Write("brain scan, the second.dcm", InstanceOf(3, 4, 1));
    Write("SUB/a", InstanceOf(3, 4, 2));
    Write("SUB/b", InstanceOf(3, 5, 1));
    Write("SUB/c", InstanceOf(6, 1, 1).Patient("ID2", "ROE^RICHARD"));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_THAT(run.out, StartsWith("stored: 2 patients, 2 studies, 3 series, 4 instances, "));
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1);
    EXPECT_THAT(Files(),
                ElementsAre("DICOM/PAT00001/STU00001/SER00001/IM000001",
                            "DICOM/PAT00001/STU00001/SER00001/IM000002",
                            "DICOM/PAT00001/STU00001/SER00002/IM000001",
                            "DICOM/PAT00002/STU00001/SER00001/IM000001", "DICOMDIR", "README.TXT"));
    EXPECT_EQ(HierarchyOf(Target()),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2) 1.2.3.5(1.2.3.5.1))) "
              "ID2(1.2.6(1.2.6.1(1.2.6.1.1)))");
}

TEST_F(PgtoolDisc, CopiesFilesByteForByte) {
    Write("A", Large(Complete(1), 3 << 20));
    EXPECT_EQ(Disc().exitStatus, 0);
    EXPECT_TRUE(Stored(kSeries + std::string("IM000001")) == ReadFile(Source() + "/A"));
}

TEST_F(PgtoolDisc, LeavesOutWhatIsNoInstanceAndCountsIt) {
    Write("A", Complete(1));
    directory_.Write("SOURCE/notes.txt", "no DICOM at all, only words about the patient");
    directory_.Write("SOURCE/SUB/empty", "");
    fs::copy_file(TestData("dicomdir/DICOMDIR_implicit"), Source() + "/DICOMDIR");
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_THAT(run.out, HasSubstr("\nleft out: 2 files that are no DICOM, 1 DICOMDIR\n"));
    EXPECT_EQ(Files().size(), 3u);
}

TEST_F(PgtoolDisc, TakesOtherMediaAndFilesTogether) {
    Write("A", Complete(1));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    const std::string single = directory_.Write("single", Complete(2).Data());
    const Finished run = Run({Target(), single, "-o", directory_.Path("SECOND")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(HierarchyOf(directory_.Path("SECOND")), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
}

TEST_F(PgtoolDisc, StoresDuplicatesOnceInWhateverEncoding) {
    Write("A", Complete(1));
    Write("SUB/again", Complete(1));
    for (const char* name : {"mr_explicit_be.dcm", "mr_implicit_le.dcm"})
        fs::copy_file(TestData(std::string("native/") + name), Source() + "/" + name);
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("left out: 2 duplicates\n"));
}

TEST_F(PgtoolDisc, NamesInstancesOfTheSameUidAndOtherContent) {
    Write("A", Complete(1));
    Write("B", Complete(1).Set(0x0008, 0x103E, "LO", "changed"));
    Write("C", Complete(1).Study("1.2.99"));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 1);
    for (const char* name : {"B", "C"}) {
        EXPECT_THAT(run.err, HasSubstr("pgtool disc: " + Source() + "/" + name +
                                       ": not stored: it has the SOP Instance UID of " + Source() +
                                       "/A, and other content\n"));
    }
    EXPECT_TRUE(Stored(kSeries + std::string("IM000001")) == ReadFile(Source() + "/A"));
    EXPECT_EQ(HierarchyOf(Target()), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(PgtoolDisc, StoresTheRestWhenASourceIsMissing) {
    Write("A", Complete(1));
    const std::string missing = directory_.Path("missing");
    const Finished run = Run({missing, Source(), "-o", Target()});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "pgtool disc: cannot open " + missing + ": no such file\n");
    EXPECT_EQ(HierarchyOf(Target()), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(PgtoolDisc, MakesNothingOfNothing) {
    directory_.Write("SOURCE/text", "only words, and of these not many");
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, "left out: 1 file that is no DICOM\n");
    EXPECT_EQ(run.err, "pgtool disc: there is nothing to store: no disc is made\n");
    EXPECT_TRUE(LeftNothing());
}

TEST_F(PgtoolDisc, NamesWhatLacksItsIdentifiers) {
    Write("A", Complete(1));
    Write("B", Complete(2).Remove(0x0020, 0x000D));
    Write("C", Complete(3).Remove(0x0008, 0x0018));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("/B: not stored: it has no Study Instance UID\n"));
    EXPECT_THAT(run.err, HasSubstr("/C: not stored: it has no SOP Instance UID\n"));
    EXPECT_EQ(Files().size(), 3u);
}

// What is cut short is all that there is of it: somebody may want it.
TEST_F(PgtoolDisc, StoresDamagedFilesAsTheyAreAndNamesThem) {
    Bytes data = Large(Complete(1), 1000).Data();
    data.resize(data.size() - 500);
    directory_.Write("SOURCE/A", data);
    const Finished run = Disc({"--transfer-syntax", "explicit"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("/A: it is cut short at byte "));
    EXPECT_TRUE(Stored(kSeries + std::string("IM000001")) == data);
}

// ---- Where it comes to --------------------------------------------------------------------------

TEST_F(PgtoolDisc, FillsAnEmptyDirectoryAndNoOther) {
    Write("A", Complete(1));
    fs::create_directory(Target());
    EXPECT_EQ(Disc().exitStatus, 0);
    EXPECT_EQ(Files().size(), 3u);
    const Bytes before = Stored("DICOMDIR");
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "pgtool disc: " + fs::path(Target()).generic_string() + " is not empty\n");
    EXPECT_EQ(Stored("DICOMDIR"), before);
    EXPECT_EQ(Files().size(), 3u);
}

TEST_F(PgtoolDisc, ReplacesNoFileAndNoUnfinishedDisc) {
    Write("A", Complete(1));
    directory_.Write("DISC", "a file of somebody's");
    EXPECT_THAT(Disc().err, HasSubstr("DISC exists, and is no directory\n"));
    EXPECT_EQ(Text(Target()), "a file of somebody's");
    fs::create_directories(directory_.Path("OTHER/PGTOOL.NEW"));
    EXPECT_THAT(Run({Source(), "-o", directory_.Path("OTHER")}).err,
                HasSubstr("PGTOOL.NEW is what a disc that was not finished has left\n"));
}

TEST_F(PgtoolDisc, MakesTheDirectoriesAboveIt) {
    Write("A", Complete(1));
    const std::string deep = directory_.Path("NEW/DEEPER/DISC");
    EXPECT_EQ(Run({Source(), "-o", deep + "/"}).exitStatus, 0);
    EXPECT_EQ(FilesOf(deep).size(), 3u);
}

// The system kills a program that writes more than it may: here in the middle of the second file.
TEST_F(PgtoolDisc, LeavesNothingThatLooksFinishedWhenItIsKilled) {
    if (kIsWindows) GTEST_SKIP() << "needs limits of POSIX";
    Write("A", Complete(1));
    Write("B", Large(Complete(2), 3 << 20));
    for (const bool isEmptyDirectory : {false, true}) {
        if (isEmptyDirectory) fs::create_directory(Target());
        const Finished run =
            RunProgram("/bin/sh", {"-c", "ulimit -f 1024; \"$0\" disc \"$1\" -o \"$2\"",
                                   PGKIT_PGTOOL, Source(), Target()});
        EXPECT_NE(run.exitStatus, 0);
        EXPECT_EQ(fs::exists(Target()), isEmptyDirectory);
        size_t parts = 0;
        for (const std::string& file : FilesOf(directory_.Path(""))) {
            EXPECT_THAT(file, Not(HasSubstr("DICOMDIR")));
            parts += file.ends_with("/IM000001");
        }
        EXPECT_EQ(parts, isEmptyDirectory ? 2u : 1u) << "it was not killed in the middle";
    }
}

TEST_F(PgtoolDisc, LeavesNothingWhenThereIsNoRoom) {
    if (kIsWindows) GTEST_SKIP() << "needs limits of POSIX";
    Write("A", Complete(1));
    Write("B", Large(Complete(2), 3 << 20));
    const Finished run =
        RunProgram("/bin/sh", {"-c", "trap \"\" XFSZ; ulimit -f 1024; \"$0\" disc \"$1\" -o \"$2\"",
                               PGKIT_PGTOOL, Source(), Target()});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("/IM000002: writing failed: File too large\n"));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(PgtoolDisc, TakesWhateverNamesFilesHave) {
    std::vector<std::string> names = {"-o", "a b", "&lt;i&gt;", "%s%n", "..x", "\xC3\xA4.dcm"};
    if (!kIsWindows) {
        names.insert(names.end(), {"back\\slash", "SUB\\b", "line\nend", "<script>", "\"", "'"});
        names.emplace_back(200, 'x');
    }
    int number = 0;
    for (const std::string& name : names)
        Write(name, Complete(++number));
    // Not what the name of the other one seems to lead to.
    Write("SUB/b", Complete(++number));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out,
                HasSubstr("1 series, " + std::to_string(names.size() + 1) + " instances, "));
    EXPECT_THAT(run.out, Not(HasSubstr("left out")));
}

TEST_F(PgtoolDisc, TakesSourcesFromAList) {
    Write("SUB/A", Complete(1));
    const std::string list = directory_.Write("LIST", Source() + "\n");
    EXPECT_EQ(Run({"--files-from", list, "-o", Target()}).exitStatus, 0);
    EXPECT_EQ(Files().size(), 3u);
}

// ---- What becomes of data sets ------------------------------------------------------------------

TEST_F(PgtoolDisc, GivesDataSetsMetaInformationThatHaveNone) {
    for (const char* name : {"explicit_le_no_meta.dcm", "explicit_be_no_meta.dcm"})
        fs::copy_file(TestData(std::string("headerless/") + name), Source() + "/" + name);
    directory_.Write("SOURCE/nopreamble", Complete(1).DataWithoutPreamble());
    const Finished run = Disc();
    EXPECT_THAT(run.out, HasSubstr("given file meta information: "));
    for (const std::string& file : Files()) {
        if (!file.starts_with("DICOM/")) continue;
        const Bytes stored = Stored(file);
        EXPECT_EQ(std::string(stored.begin() + 128, stored.begin() + 132), "DICM") << file;
        EXPECT_THAT(TransferSyntaxOf(file), StartsWith("1.2.840.10008.1.2"));
        const auto root = pgkit::data_set::open(Target() + "/" + file);
        EXPECT_EQ(root->find("MediaStorageSOPInstanceUID").text(),
                  root->find("SOPInstanceUID").text());
    }
}

TEST_F(PgtoolDisc, WritesNativeDataSetsAsExplicitOnDemand) {
    fs::copy_file(TestData("native/mr_implicit_le.dcm"), Source() + "/implicit");
    fs::copy_file(TestData("encapsulated/rtdose_rle_15frames_no_bot.dcm"), Source() + "/rle");
    EXPECT_EQ(Disc().exitStatus, 0);
    EXPECT_EQ(TransferSyntaxOf(kSeries + std::string("IM000001")), "1.2.840.10008.1.2");
    fs::remove_all(Target());

    const Finished run = Disc({"--transfer-syntax", "explicit"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("re-encoded as explicit VR little endian: 1 file\n"));
    const std::string file = kSeries + std::string("IM000001");
    EXPECT_EQ(TransferSyntaxOf(file), "1.2.840.10008.1.2.1");
    auto original = pgkit::data_set::open(Source() + "/implicit");
    auto stored = pgkit::data_set::open(Target() + "/" + file);
    EXPECT_EQ(FirstDifference(*original->node(), *stored->node()), "");
    EXPECT_TRUE(Stored("DICOM/PAT00002/STU00001/SER00001/IM000001") == ReadFile(Source() + "/rle"));
}

// Saving one deflates it again unless it is told otherwise.
TEST_F(PgtoolDisc, InflatesDeflatedDataSetsOnDemand) {
    StreamBuilder dataSet;
    dataSet.Element(0x0008, 0x0016, "UI", PaddedUid("1.2.840.10008.5.1.4.1.1.2"))
        .Element(0x0008, 0x0018, "UI", PaddedUid("1.2.3.4.5"))
        .Element(0x0020, 0x000D, "UI", PaddedUid("1.2.3"))
        .Element(0x0020, 0x000E, "UI", PaddedUid("1.2.3.4"));
    directory_.Write("SOURCE/A", DeflatedFile(Deflated(dataSet)));
    EXPECT_EQ(Disc({"--transfer-syntax", "explicit"}).exitStatus, 0);
    const std::string file = kSeries + std::string("IM000001");
    EXPECT_EQ(TransferSyntaxOf(file), "1.2.840.10008.1.2.1");
    const Bytes stored = Stored(file);
    EXPECT_NE(
        std::search(stored.begin(), stored.end(), dataSet.Data().begin(), dataSet.Data().end()),
        stored.end());
    // Both hold the same instance.
    EXPECT_THAT(Run({Source(), Target(), "-o", directory_.Path("BOTH")}).out,
                HasSubstr("1 duplicate\n"));
}

TEST_F(PgtoolDisc, StoresWhatTheProfileAllows) {
    Write("A", Complete(1));
    Write("B", Complete(2).TransferSyntax("1.2.840.10008.1.2.4.50"));
    fs::copy_file(TestData("native/mr_implicit_le.dcm"), Source() + "/implicit");
    const Finished run = Disc({"--profile", "STD-GEN-CD"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("/B: not stored: STD-GEN-CD does not allow it\n"));
    EXPECT_THAT(run.err, HasSubstr("/implicit: not stored: STD-GEN-CD does not allow it (perhaps "
                                   "with --transfer-syntax explicit)\n"));
    EXPECT_EQ(HierarchyOf(Target()), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
    fs::remove_all(Target());
    EXPECT_THAT(Disc({"--profile", "STD-GEN-CD", "--transfer-syntax", "explicit"}).out,
                StartsWith("stored: 2 patients"));
}

TEST_F(PgtoolDisc, SaysWhichKeysAreMadeUp) {
    Write("A", Instance(1).Patient("", "X").Remove(0x0020, 0x0011));
    const Finished run = Disc();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("made up in the DICOMDIR: 1 Patient ID, 1 Study ID, 1 Study "
                                   "Date, 1 Study Time, 1 Series Number\n"));
    EXPECT_THAT(HierarchyOf(Target()), StartsWith("ZORVA_PATID_000001("));
    EXPECT_TRUE(Stored(kSeries + std::string("IM000001")) == ReadFile(Source() + "/A"));
}

TEST_F(PgtoolDisc, MakesIconsOnDemand) {
    Write("A", Large(Complete(1), 6)
                   .SetUS(0x0028, 0x0002, 1)
                   .SetUS(0x0028, 0x0100, 8)
                   .SetUS(0x0028, 0x0101, 8)
                   .SetUS(0x0028, 0x0102, 7));
    const auto icons = [&] {
        size_t count = 0;
        {
            const auto root = pgkit::data_set::open(Target() + "/DICOMDIR");
            for (const pgkit::item record : root->find("DirectoryRecordSequence").items())
                count += record.contains("IconImageSequence");
        }
        fs::remove_all(Target());
        return count;
    };
    EXPECT_EQ(Disc().exitStatus, 0);
    EXPECT_EQ(icons(), 0u);
    EXPECT_EQ(Disc({"--icons", "32"}).exitStatus, 0);
    EXPECT_EQ(icons(), 1u);
}

TEST_F(PgtoolDisc, ChecksItsCommandLine) {
    Write("A", Complete(1));
    const auto complaint = [&](const std::vector<std::string>& arguments) {
        const Finished run = Run(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        return run.err.substr(0, run.err.find('\n'));
    };
    const auto about = [&](const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {Source(), "-o", Target()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return complaint(arguments);
    };
    EXPECT_EQ(complaint({"-o", Target()}), "pgtool disc: a source is expected");
    EXPECT_EQ(complaint({Source()}), "pgtool disc: -o DIR is expected");
    EXPECT_EQ(complaint({"-", "-o", Target()}), "pgtool disc: -: a disc is no stream");
    EXPECT_EQ(about({"--icons", "257"}), "pgtool disc: --icons: at most 256 pixels");
    EXPECT_EQ(about({"--profile", "STD-GEN-CDD"}),
              "pgtool disc: unknown profile: STD-GEN-CDD; did you mean STD-GEN-CD or STD-DEN-CD?");
    for (const char* id : {"12345678901234567", "lower", " ", "A-B"}) {
        EXPECT_EQ(about({"--file-set-id", id}),
                  "pgtool disc: --file-set-id: at most 16 characters, of A to Z, 0 to 9, _ and "
                  "blanks");
    }
    for (const char* size : {"0", "0.0M", "M", "5X", "5MB", "-5M", "1.2.3M", "99999999G", "5.M"})
        EXPECT_THAT(about({"--size", size}), StartsWith("pgtool disc: --size: ")) << size;
    EXPECT_TRUE(LeftNothing());
}

}  // namespace
