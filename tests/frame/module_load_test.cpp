// What happens when a host program loads the module: each test runs a host of its own, from a
// directory of its own.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

using pgkit_test::TempDir;

constexpr const char* kQuestion = "0019 1010";
constexpr const char* kUnknown = "255 <Unknown Tag>\n";
constexpr const char* kKnown = "5 Name\n";
constexpr bool kIsWindows = fs::path::preferred_separator == '\\';
const std::string kLine = "(0019,\"X\",1010) LO Name 1\n";

struct HostRun {
    int exitCode = 0;
    std::string out;
    std::string err;
};

class ModuleLoad : public testing::Test {
  protected:
    // The module lies beside the host, as Windows demands. Elsewhere the host finds the module
    // where it was built.
    void SetUp() override {
        host_ = Copy(PGKIT_TEST_LOAD_PROBE);
        Copy(PGKIT_TEST_MODULE);
    }

    HostRun RunHost(const std::string& arguments) const { return RunHost(host_, arguments); }

    HostRun RunHost(const std::string& host, const std::string& arguments) const {
        const std::string out = directory_.Path("out.txt");
        const std::string err = directory_.Path("err.txt");
        // The Windows command interpreter takes the quotes off a line that begins with one.
        const std::string command =
            "cd . && " + Quoted(host) + " " + arguments + " >" + Quoted(out) + " 2>" + Quoted(err);
        HostRun run;
        run.exitCode = std::system(command.c_str());
        run.out = Text(out);
        run.err = Text(err);
        return run;
    }

    // Longer than the buffer in which the module asks for it.
    std::string CopyOfHostWithLongPath() const {
        fs::path directory = directory_.Path("");
        while (directory.string().size() < 1024)
            directory /= std::string(200, 'd');
        fs::create_directories(directory);
        const fs::path copy = directory / fs::path(host_).filename();
        fs::copy_file(host_, copy);
        return copy.string();
    }

    TempDir& Directory() { return directory_; }

  private:
    std::string Copy(const fs::path& file) const {
        const std::string copy = directory_.Path(file.filename().string());
        fs::copy_file(file, copy);
        return copy;
    }

    static std::string Quoted(const std::string& text) { return '"' + text + '"'; }

    // Without the carriage returns of Windows' text streams.
    static std::string Text(const std::string& path) {
        std::string text;
        for (const uint8_t byte : pgkit_test::ReadFile(path)) {
            if (byte != '\r') text += static_cast<char>(byte);
        }
        return text;
    }

    TempDir directory_;
    std::string host_;
};

TEST_F(ModuleLoad, IsSilentWithoutAPrivateDictionary) {
    const HostRun run = RunHost("");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(RunHost(kQuestion).out, kUnknown);
}

TEST_F(ModuleLoad, ReadsThePrivateDictionaryBesideTheHost) {
    Directory().Write("privdict.dic", kLine);
    const HostRun run = RunHost(kQuestion);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, kKnown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, DoesNotLookInTheCurrentDirectory) {
    fs::create_directory(Directory().Path("elsewhere"));
    Directory().Write("elsewhere/privdict.dic", kLine);
    const fs::path before = fs::current_path();
    fs::current_path(Directory().Path("elsewhere"));
    const HostRun run = RunHost(kQuestion);
    fs::current_path(before);
    EXPECT_EQ(run.out, kUnknown);
}

// A directory that is not known used to be C:\, which is the name of an entry there elsewhere.
TEST_F(ModuleLoad, DoesNotLookInTheCurrentDirectoryWhenTheHostsIsNotKnown) {
    if (kIsWindows) GTEST_SKIP() << "C:\\ is a directory of its own here";
    fs::create_directory(Directory().Path("C:"));
    Directory().Write("C:/privdict.dic", kLine);
    Directory().Write("C:/halvorix.xml", "<properties><broken</properties>");
    const std::string host = CopyOfHostWithLongPath();
    const fs::path before = fs::current_path();
    fs::current_path(Directory().Path(""));
    const HostRun run = RunHost(host, kQuestion);
    fs::current_path(before);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, kUnknown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, IsNotStoppedByADirectoryInPlaceOfTheFile) {
    fs::create_directory(Directory().Path("privdict.dic"));
    const HostRun run = RunHost(kQuestion);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, kUnknown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, IsNotStoppedByAnEmptyFile) {
    Directory().Write("privdict.dic", "");
    EXPECT_EQ(RunHost(kQuestion).out, kUnknown);
}

TEST_F(ModuleLoad, IsNotStoppedByGarbage) {
    std::minstd_rand random(1);
    std::string garbage;
    while (garbage.size() < 1'000'000) {
        garbage += static_cast<char>(random());
        // Now and then something that begins like an entry.
        if (random() % 50 == 0) garbage += "\n(0019,\"";
    }
    Directory().Write("privdict.dic", garbage + "\n" + kLine);
    const HostRun run = RunHost(kQuestion);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, kKnown);
    EXPECT_EQ(run.err, "");
}

TEST_F(ModuleLoad, IsNotStoppedByAHugeFile) {
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "(0021,\"C" + std::to_string(i) + "\",10) LO Name 1\n";
    text.append(30'000'000, '(');
    Directory().Write("privdict.dic", text + "\n" + kLine);
    const HostRun run = RunHost(kQuestion);
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, kKnown);
    EXPECT_EQ(run.err, "");
}

}  // namespace
