// What happens when a host program loads the module: each test runs a host of its own, from a
// directory of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "support/host_directory.h"
#include "support/host_system.h"

namespace {

namespace fs = std::filesystem;

using pgkit_test::Finished;
using pgkit_test::HostDirectory;

const std::vector<std::string> kQuestion = {"0019", "1010"};
constexpr const char* kUnknown = "255 <Unknown Tag>\n";
constexpr const char* kKnown = "5 Name\n";
const std::string kLine = "(0019,\"X\",1010) LO Name 1\n";

class ModuleLoad : public testing::Test {
  protected:
    // A copy of the host whose path is longer than the buffer in which the module asks for it.
    std::string CopyOfHostWithLongPath() const {
        std::string name;
        while (host_.Path(name).size() < 1024)
            name += std::string(200, 'd') + "/";
        name += pgkit_test::FileName(PGKIT_TEST_LOAD_PROBE);
        host_.Copy(PGKIT_TEST_LOAD_PROBE, name);
        return host_.Path(name);
    }

    const HostDirectory host_{PGKIT_TEST_LOAD_PROBE};
};

TEST_F(ModuleLoad, IsSilentWithoutAPrivateDictionary) {
    const Finished run = host_.Run({});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(host_.Run(kQuestion).out, kUnknown);
}

TEST_F(ModuleLoad, ReadsThePrivateDictionaryBesideTheHost) {
    host_.Write("privdict.dic", kLine);
    const Finished run = host_.Run(kQuestion);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, kKnown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, DoesNotLookInTheCurrentDirectory) {
    fs::create_directory(host_.Path("elsewhere"));
    host_.Write("elsewhere/privdict.dic", kLine);
    const fs::path before = fs::current_path();
    fs::current_path(host_.Path("elsewhere"));
    const Finished run = host_.Run(kQuestion);
    fs::current_path(before);
    EXPECT_EQ(run.out, kUnknown);
}

// A directory that is not known used to be C:\, which is the name of an entry there elsewhere.
TEST_F(ModuleLoad, DoesNotLookInTheCurrentDirectoryWhenTheHostsIsNotKnown) {
    if (pgkit_test::kIsWindows) GTEST_SKIP() << "C:\\ is a directory of its own here";
    fs::create_directory(host_.Path("C:"));
    host_.Write("C:/privdict.dic", kLine);
    host_.Write("C:/halvorix.xml", "<properties><broken</properties>");
    const std::string host = CopyOfHostWithLongPath();
    const fs::path before = fs::current_path();
    fs::current_path(host_.Path(""));
    const Finished run = pgkit_test::RunProgram(host, kQuestion);
    fs::current_path(before);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, kUnknown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, IsNotStoppedByADirectoryInPlaceOfTheFile) {
    fs::create_directory(host_.Path("privdict.dic"));
    const Finished run = host_.Run(kQuestion);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, kUnknown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, IsNotStoppedByAnEmptyFile) {
    host_.Write("privdict.dic", "");
    EXPECT_EQ(host_.Run(kQuestion).out, kUnknown);
}

TEST_F(ModuleLoad, IsNotStoppedByGarbage) {
    std::minstd_rand random(1);
    std::string garbage;
    while (garbage.size() < 1'000'000) {
        garbage += static_cast<char>(random());
        // Now and then something that begins like an entry.
        if (random() % 50 == 0) garbage += "\n(0019,\"";
    }
    host_.Write("privdict.dic", garbage + "\n" + kLine);
    const Finished run = host_.Run(kQuestion);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, kKnown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, IsNotStoppedByAHugeFile) {
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "(0021,\"C" + std::to_string(i) + "\",10) LO Name 1\n";
    text.append(30'000'000, '(');
    host_.Write("privdict.dic", text + "\n" + kLine);
    const Finished run = host_.Run(kQuestion);
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, kKnown);
    EXPECT_EQ(run.err, "");
}

}  // namespace
