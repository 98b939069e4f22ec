// Creation over trees that nobody would make on purpose: files that are none, links in circles,
// trees that change meanwhile, and targets that cannot be written.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>

#include "dicomdir/create/medium.h"
#include "support/captured.h"
#include "support/host_system.h"
#include "support/patient_list.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;

class HostileMedia : public testing::Test {
  protected:
    HostileMedia() {
        options_.flags = PG_DICOMDIR_NO_LIST;
        options_.iconSize = 16;
        options_.seriesIcons = 1;
    }

    // The result; what is seen of the files goes to seen_.
    uint32_t Create() {
        seen_.clear();
        uint32_t result = 0;
        printed_ = CapturePrinted([&] {
            result = pgCreateDicomdirEx(medium_.Directory().c_str(), "", &options_, Record, this);
        });
        return result;
    }

    size_t CountRecords() { return RecordsOf(medium_.Open().get()).size(); }

    bool LinkDirectory(const std::string& target, const std::string& name) {
        std::error_code error;
        fs::create_directory_symlink(medium_.Path(target), medium_.Path(name), error);
        return !error;
    }
    bool LinkFile(const std::string& target, const std::string& name) {
        std::error_code error;
        fs::create_symlink(target, medium_.Path(name), error);
        return !error;
    }
    bool MakePipe(const std::string& name) {
        return std::system(("mkfifo \"" + medium_.Path(name) + "\"").c_str()) == 0;
    }

    Medium medium_;
    PgDicomdirOptions options_ = {};
    std::string seen_;  // "NAME|SUBDIRECTORY|CODE;" for every file
    Printed printed_;
    // What else happens when a file has been judged; anything but 0 ends the scan.
    std::function<int32_t(const std::string& name)> whenSeen_;

  private:
    static int32_t Record(const PgDicomdirScanReason* reason) {
        auto& self = *static_cast<HostileMedia*>(reason->userData);
        self.seen_ += std::string(reason->fileName) + "|" + reason->subdirectory + "|" +
                      std::to_string(reason->acceptanceCode) + ";";
        return self.whenSeen_ ? self.whenSeen_(reason->fileName) : 0;
    }
};

TEST_F(HostileMedia, FilesThatAreNoDicomAreRefused) {
    medium_.Write("A_TEXT", Bytes{'t', 'e', 'x', 't'});
    medium_.Write("B_EMPTY", Bytes{});
    medium_.Write("C_ZEROS", Bytes(100000));
    medium_.Write("D_PREAMBLE", StreamBuilder().Preamble().Data());
    medium_.Write("E_GARBAGE", StreamBuilder().Preamble().Append(Bytes(500, 0xFF)).Data());
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A_TEXT||2;B_EMPTY||2;C_ZEROS||2;D_PREAMBLE||3;E_GARBAGE||3;");
    EXPECT_EQ(printed_.out + printed_.err, "");
    EXPECT_EQ(CountRecords(), 0u);
}

TEST_F(HostileMedia, BadSamplesAreJudgedWithoutHarm) {
    for (const auto& entry : fs::directory_iterator(TestData("bad"))) {
        if (entry.is_regular_file()) {
            medium_.Write("BAD/" + entry.path().filename().string(),
                          ReadFile(entry.path().string()));
        }
    }
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(printed_.err, "");
    ASSERT_NE(medium_.Open(), nullptr);
}

TEST_F(HostileMedia, EveryPrefixOfAFileIsJudged) {
    const Bytes whole =
        Instance(1).SetUS(0x0028, 0x0100, 8).Set(0x7FE0, 0x0010, "OB", "sixpix").Data();
    for (size_t size = 0; size <= whole.size(); ++size) {
        medium_.Write("P" + std::to_string(10000 + size),
                      Bytes(whole.begin(), whole.begin() + static_cast<int>(size)));
    }
    EXPECT_EQ(Create(), 0u);
    EXPECT_TRUE(seen_.ends_with("|6;")) << "the whole file: a prefix of it was there before";
    // Identifiers that are cut make studies and series of their own, in a directory that is sound.
    PatientList patients;
    const Printed printed = CapturePrinted(
        [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
    EXPECT_EQ(printed.out, "Patient created DOE^JOHN\n");
    EXPECT_NE(patients, nullptr);
}

TEST_F(HostileMedia, FilesThatCannotBeReadAreRefused) {
    const std::string path = medium_.Write("A", Instance(1));
    fs::permissions(path, fs::perms::none);
    if (std::ifstream(path).good()) GTEST_SKIP() << "this user may read every file";
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||2;");
    fs::permissions(path, fs::perms::owner_all);
}

// A regular file whose first byte nobody can read, whoever asks.
TEST_F(HostileMedia, FilesWhoseReadsFailAreRefused) {
    if (!fs::exists("/proc/self/mem") || !LinkFile("/proc/self/mem", "A")) {
        GTEST_SKIP() << "no such file here";
    }
    medium_.Write("B", Instance(1));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||2;B||0;");
}

TEST_F(HostileMedia, LinksThatLeadNowhereAreNoDicomFiles) {
    if (!LinkFile("nothing", "A") || !LinkFile("B", "B")) GTEST_SKIP() << "no links here";
    medium_.Write("C", Instance(1));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||2;B||2;C||0;");
}

TEST_F(HostileMedia, PipesAreNoDicomFilesAndNotWaitedFor) {
    if (!MakePipe("A")) GTEST_SKIP() << "no pipes in directories here";
    fs::create_directory(medium_.Path("SUB"));
    ASSERT_TRUE(MakePipe("SUB/B"));
    ASSERT_TRUE(LinkFile("A", "LINK"));
    medium_.Write("C", Instance(1));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||2;C||0;LINK||2;B|SUB|2;");
}

TEST_F(HostileMedia, PipesInThePlaceOfTheOutputAreNotWaitedFor) {
    if (!MakePipe("DICOMDIR")) GTEST_SKIP() << "no pipes in directories here";
    ASSERT_TRUE(MakePipe("dcmdir.lst"));
    options_.flags = 0;
    medium_.Write("A", Instance(1));
    EXPECT_EQ(Create(), 1u);
    EXPECT_EQ(seen_, "A||0;DICOMDIR||4;dcmdir.lst||2;");
}

TEST_F(HostileMedia, LinksInCirclesAreFollowedOnce) {
    medium_.Write("A/1", Instance(1));
    medium_.Write("B/2", Instance(2));
    if (!LinkDirectory("B", "A/TO_B") || !LinkDirectory("A", "B/TO_A")) {
        GTEST_SKIP() << "no links here";
    }
    ASSERT_TRUE(LinkDirectory("A", "A/SELF") && LinkDirectory(".", "B/ROOT"));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "1|A|0;2|B|0;");
    EXPECT_EQ(CountRecords(), 5u);
}

TEST_F(HostileMedia, DirectoriesAreKnownByTheirOwnPaths) {
    medium_.Write("M/DEEP/1", Instance(1));
    if (!LinkDirectory("M/DEEP", "A") || !LinkDirectory("M", "B")) {
        GTEST_SKIP() << "no links here";
    }
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "1|M\\DEEP|0;");
}

TEST_F(HostileMedia, WhatLinksLeadToComesLast) {
    const TempDir elsewhere;
    elsewhere.Write("1", Instance(1).Data());
    std::error_code error;
    fs::create_directory_symlink(elsewhere.Path("."), medium_.Path("A"), error);
    if (error) GTEST_SKIP() << "no links here";
    medium_.Write("B/2", Instance(2));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "2|B|0;1|A|0;");
}

// Two links to each next directory: as many paths as powers of two.
TEST_F(HostileMedia, SharedDirectoriesDoNotMultiply) {
    constexpr int kLevels = 30;
    for (int level = 0; level < kLevels; ++level) {
        const std::string name = "LEVELS" + std::to_string(level);
        fs::create_directory(medium_.Path(name));
        const std::string next = "LEVELS" + std::to_string(level + 1);
        if (!LinkDirectory(next, name + "/L") || !LinkDirectory(next, name + "/R")) {
            GTEST_SKIP() << "no links here";
        }
    }
    medium_.Write("LEVELS30/A", Instance(1));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(CountRecords(), 4u);
}

TEST_F(HostileMedia, ADicomdirInASubdirectoryIsRefusedByItsContent) {
    medium_.Write("SUB/A", Instance(1));
    ASSERT_EQ(pgCreateDicomdir(medium_.Path("SUB").c_str(), "", nullptr, nullptr), 0u);
    fs::remove(medium_.Path("SUB/dcmdir.lst"));
    medium_.Write("OTHER/DICOMDIR", Instance(2));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "DICOMDIR|OTHER|0;A|SUB|0;DICOMDIR|SUB|4;");
}

TEST_F(HostileMedia, WhateverIsNamedDicomdirAtTheTopIsRefused) {
    medium_.Write("DicomDir", Instance(1));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "DicomDir||4;");
}

TEST_F(HostileMedia, AnInstanceCountsOnceInItsSeries) {
    medium_.Write("A", Instance(1));
    medium_.Write("B", Instance(1));
    medium_.Write("C", Instance(1).Series("1.2.3.5"));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||0;B||6;C||0;");
    EXPECT_EQ(CountRecords(), 6u);
}

TEST_F(HostileMedia, FilesMayVanishDuringTheScan) {
    for (const char* name : {"A", "B", "C", "SUB/D"})
        medium_.Write(name, Instance(name[0] == 'S' ? 9 : name[0]));
    whenSeen_ = [&](const std::string& name) {
        if (name == "A") fs::remove(medium_.Path("B"));
        if (name == "C") fs::remove_all(medium_.Path("SUB"));
        return 0;
    };
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||0;B||2;C||0;");
    EXPECT_EQ(CountRecords(), 5u);
}

TEST_F(HostileMedia, FilesMayVanishBeforeTheDicomdirIsWritten) {
    medium_.Write("A", Instance(1));
    whenSeen_ = [&](const std::string& name) {
        fs::remove(medium_.Path(name));
        return 0;
    };
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(CountRecords(), 4u);
}

TEST_F(HostileMedia, FilesMayGrowAndAppearDuringTheScan) {
    medium_.Write("A", Instance(1));
    medium_.Write("B", Bytes{});
    whenSeen_ = [&](const std::string& name) {
        if (name != "A") return 0;
        medium_.Write("B", Instance(2));
        medium_.Write("AA", Instance(3));
        medium_.Write("NEW/C", Instance(4));
        return 0;
    };
    EXPECT_EQ(Create(), 0u);
    // The directory was listed before.
    EXPECT_EQ(seen_, "A||0;B||0;");
    EXPECT_EQ(CountRecords(), 5u);
}

TEST_F(HostileMedia, FilesMayTurnIntoDirectories) {
    medium_.Write("A", Instance(1));
    medium_.Write("B", Instance(2));
    whenSeen_ = [&](const std::string& name) {
        if (name == "A") {
            fs::remove(medium_.Path("B"));
            fs::create_directory(medium_.Path("B"));
        }
        return 0;
    };
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||0;B||2;");
}

TEST_F(HostileMedia, ACallbackInASubdirectoryEndsTheWholeScan) {
    for (const char* name : {"A/1", "A/2", "A/DEEP/3", "B/4"})
        medium_.Write(name, Instance(name[std::string(name).size() - 1]));
    whenSeen_ = [](const std::string& name) { return name == "1" ? -1 : 0; };
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "1|A|0;");
    EXPECT_EQ(CountRecords(), 4u);
}

TEST_F(HostileMedia, ADirectoryInThePlaceOfTheDicomdirMakesTheBuildFail) {
    medium_.Write("A", Instance(1));
    fs::create_directory(medium_.Path("DICOMDIR"));
    EXPECT_EQ(Create(), 1u);
    EXPECT_EQ(printed_.err,
              "pgSaveDataSetAsEx : unable to open " + medium_.Directory() + "\\DICOMDIR\n");
}

TEST_F(HostileMedia, ADirectoryInThePlaceOfTheListIsPassedOver) {
    medium_.Write("A", Instance(1));
    fs::create_directory(medium_.Path("dcmdir.lst"));
    options_.flags = 0;
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(printed_.err, "");
    EXPECT_EQ(CountRecords(), 4u);
}

TEST_F(HostileMedia, ADicomdirThatMayNotBeWrittenMakesTheBuildFail) {
    const std::string path = medium_.Write("DICOMDIR", Bytes{1});
    fs::permissions(path, fs::perms::owner_read);
    if (std::ofstream(path, std::ios::app).good()) {
        GTEST_SKIP() << "this user may write every file";
    }
    EXPECT_EQ(Create(), 1u);
    EXPECT_EQ(fs::file_size(path), 1u);
    fs::permissions(path, fs::perms::owner_all);
}

TEST_F(HostileMedia, AFullDiscMakesTheBuildFail) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no such device";
    ASSERT_TRUE(LinkFile("/dev/full", "DICOMDIR"));
    ASSERT_TRUE(LinkFile("/dev/full", "dcmdir.lst"));
    medium_.Write("A", Instance(1));
    options_.flags = 0;
    EXPECT_NE(Create(), 0u);
}

TEST_F(HostileMedia, NamesMayHoldAnything) {
    int number = 0;
    for (const char* name : {"a b", "\xC3\xA9", "%s%n", "..x", "A;1", "[x]"})
        medium_.Write(name, Instance(++number));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(CountRecords(), 9u);
}

TEST_F(HostileMedia, ABackslashInANameIsNoSeparatorThatLeadsToTheFile) {
    if (kIsWindows) GTEST_SKIP() << "names have no backslashes here";
    medium_.Write("A\\B", Instance(1));
    medium_.Write("A/B", Instance(2));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A\\B||1;B|A|0;");
}

// Their IDs were cut, and led nowhere.
TEST_F(HostileMedia, FilesWhosePathsDoNotFitALeafAreRefused) {
    if (kIsWindows) GTEST_SKIP() << "paths are shorter here";
    std::string name;
    for (int level = 0; level < 30; ++level)
        name += "DIRECTORY" + std::to_string(level % 10) + "/";
    medium_.Write(name + "A", Instance(1));
    EXPECT_EQ(Create(), 0u);
    EXPECT_TRUE(seen_.ends_with("DIRECTORY9|1;")) << seen_;
    EXPECT_EQ(CountRecords(), 0u);
}

// The number is the last component of the instance UID.
TEST_F(HostileMedia, DicomdirsAreNumberedFrom100To32000) {
    PGX_List patients;
    const auto number = [&] {
        EXPECT_EQ(pgBuildDicomdir(&patients, medium_.Directory().c_str()), 0u);
        const std::string uid = TextOf(Child(medium_.Open().get(), 0x0002, 0x0003)).c_str();
        return std::stoi(uid.substr(uid.rfind('.') + 1));
    };
    const int first = number();
    // Those that cannot be written count too, and cost less.
    CapturePrinted([&] {
        for (int i = first + 1; i < 32000; ++i)
            pgBuildDicomdir(&patients, medium_.Path("missing").c_str());
    });
    EXPECT_EQ(number(), 32000);
    EXPECT_EQ(number(), 100);
    EXPECT_EQ(number(), 101);
}

}  // namespace
