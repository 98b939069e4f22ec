// README.TXT, several media, and their images.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pgkit/data_set.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/disc_fixture.h"
#include "tools/run_pgtool.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class PgtoolDiscMedia : public DiscFixture {
  protected:
    static uint64_t SizeOf(const std::string& medium) {
        uint64_t size = 0;
        for (const auto& entry : fs::recursive_directory_iterator(medium))
            if (entry.is_regular_file()) size += entry.file_size();
        return size;
    }
    std::vector<std::string> Media() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Target()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(PgtoolDiscMedia, TellsWithoutNamesWhatTheMediumIs) {
    Write("A", Complete(1));
    EXPECT_EQ(Disc({"--file-set-id", "WARD 7"}).exitStatus, 0);
    const std::string text = Text(Target() + "/README.TXT");
    EXPECT_THAT(text, HasSubstr("\r\nMedium:    1 of 1\r\nFile-set:  WARD 7\r\nHolds:     1 "
                                "patient, 1 study, 1 series, 1 instance\r\n"));
    EXPECT_THAT(text, Not(HasSubstr("DOE")));
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) {
        return c == '\r' || c == '\n' || (c >= ' ' && c <= '~');
    }));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\r'),
              std::count(text.begin(), text.end(), '\n'));
    EXPECT_EQ(pgkit::data_set::open(Target() + "/DICOMDIR")->find("FileSetID").text(), "WARD 7");
}

TEST_F(PgtoolDiscMedia, KeepsStudiesWhole) {
    for (int study = 1; study <= 3; ++study)
        for (int number = 1; number <= 4; ++number)
            Write(std::to_string(study) + "_" + std::to_string(number),
                  Large(InstanceOf(study, 1, number), 100000));
    const Finished run = Disc({"--size", "1M"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("DISC0001: 1 patient, 2 studies, 2 series, 8 instances, "));
    EXPECT_THAT(Media(), ElementsAre("DISC0001", "DISC0002"));
    EXPECT_THAT(HierarchyOf(Target() + "/DISC0001"), HasSubstr(" 1.2.2(1.2.2.1(1.2.2.1.1 "));
    EXPECT_THAT(HierarchyOf(Target() + "/DISC0002"), StartsWith("ID1(1.2.3(1.2.3.1(1.2.3.1.1 "));
    EXPECT_LE(SizeOf(Target() + "/DISC0001"), 1000000u);
    EXPECT_THAT(Text(Target() + "/DISC0002/README.TXT"), HasSubstr("Medium:    2 of 2\r\n"));
    const auto root = pgkit::data_set::open(Target() + "/DISC0002/DICOMDIR");
    EXPECT_EQ(root->find("FileSetID").text(), "DISC_2_OF_2");
}

TEST_F(PgtoolDiscMedia, DividesWhatIsLargerThanAMediumBySeriesAndThenByInstances) {
    for (int series = 1; series <= 2; ++series)
        for (int number = 1; number <= 3 * series; ++number)
            Write(std::to_string(series) + "_" + std::to_string(number),
                  Large(InstanceOf(1, series, number), 100000));
    Write("large", Large(InstanceOf(2, 1, 1), 600000));
    const Finished run = Disc({"--size", "500k"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("/large: not stored: it is larger than a medium\n"));
    EXPECT_THAT(Media(), ElementsAre("DISC0001", "DISC0002", "DISC0003"));
    EXPECT_THAT(HierarchyOf(Target() + "/DISC0001"),
                StartsWith("ID1(1.2.1(1.2.1.1(1.2.1.1.1 1.2.1.1.2 1.2.1.1.3)"));
    size_t instances = 0;
    for (const std::string& medium : Media()) {
        EXPECT_LE(SizeOf(Target() + "/" + medium), 500000u);
        for (const std::string& file : FilesOf(Target() + "/" + medium))
            instances += file.starts_with("DICOM/");
    }
    EXPECT_EQ(instances, 9u);
}

TEST_F(PgtoolDiscMedia, NeedsNoSecondMediumWhereOneIsEnough) {
    Write("A", Complete(1));
    EXPECT_EQ(Disc({"--size", "4.7G"}).exitStatus, 0);
    EXPECT_EQ(Files().size(), 3u);
}

// ---- Images -------------------------------------------------------------------------------------

TEST_F(PgtoolDiscMedia, SaysBeforeItCopiesThatNoProgramMakesImages) {
    if (kIsWindows) GTEST_SKIP() << "needs a PATH of its own";
    Write("A", Complete(1));
    const Finished run = RunProgram("/usr/bin/env", {"PATH=/nowhere", PGKIT_PGTOOL, "disc",
                                                     Source(), "-o", Target(), "--image", "D.iso"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "pgtool disc: --image: neither xorriso nor genisoimage is installed\n");
    EXPECT_TRUE(LeftNothing());
}

TEST_F(PgtoolDiscMedia, HasImagesMadeByAnotherProgram) {
    if (kIsWindows) GTEST_SKIP() << "needs a PATH of its own";
    Write("A", Large(InstanceOf(1, 1, 1), 100000));
    Write("B", Large(InstanceOf(2, 1, 1), 100000));
    fs::create_directory(directory_.Path("bin"));
    const std::string program =
        directory_.Write("bin/genisoimage",
                         "#!/bin/sh\nfor last; do :; done\nset -- \"$@\"\n"
                         "while [ \"$1\" != -o ]; do shift; done\necho \"$last\" >\"$2\"\n");
    fs::permissions(program, fs::perms::owner_all);
    const std::string image = directory_.Path("my disc.iso");
    const auto run = [&](const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"PATH=" + directory_.Path("bin") + ":/nowhere",
                                              PGKIT_PGTOOL,
                                              "disc",
                                              Source(),
                                              "-o",
                                              Target(),
                                              "--image",
                                              image};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return RunProgram("/usr/bin/env", arguments);
    };
    EXPECT_EQ(run({}).exitStatus, 0);
    EXPECT_EQ(Text(image), Target() + "\n");
    fs::remove_all(Target());
    EXPECT_EQ(run({"--size", "250k"}).exitStatus, 0);
    EXPECT_EQ(Text(directory_.Path("my disc0002.iso")), Target() + "/DISC0002\n");

    fs::remove_all(Target());
    directory_.Write("bin/genisoimage", "#!/bin/sh\nexit 3\n");
    const Finished failed = run({});
    EXPECT_EQ(failed.exitStatus, 1);
    EXPECT_THAT(failed.err, HasSubstr("my disc.iso: genisoimage failed with exit status 3\n"));
    EXPECT_EQ(Text(image), Target() + "\n");
}

}  // namespace
