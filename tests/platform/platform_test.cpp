#include "platform/platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/host_system.h"
#include "support/stream.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
namespace platform = pgkit::platform;
using pgkit_test::Stream;
using pgkit_test::TempDir;

// The first line of a file, or "none" when it cannot be opened.
std::string LineOf(const std::string& path) {
    const Stream file(platform::OpenForReading(path.c_str()));
    if (!file) return "none";
    char line[64] = "";
    return std::fgets(line, sizeof line, file.get()) == nullptr ? "" : line;
}

size_t EntriesIn(const std::string& directory) {
    const fs::directory_iterator entries(directory);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

class Platform : public testing::Test {
  protected:
    Platform() {
        fs::create_directories(directory_.Path("Disc/Images"));
        directory_.Write("Disc/Images/Im0001.dcm", "here");
    }

    // A path of the directory, behind a backslash.
    std::string Path(const std::string& name) const { return directory_.Path("") + name; }

    TempDir directory_;
};

TEST_F(Platform, PathsMayHaveBackslashes) {
    EXPECT_EQ(LineOf(Path("Disc\\Images\\Im0001.dcm")), "here");
    EXPECT_TRUE(platform::PathExists(Path("Disc\\Images\\Im0001.dcm").c_str()));
    EXPECT_TRUE(platform::IsDirectory(Path("Disc\\Images").c_str()));
    EXPECT_EQ(platform::FileSize(Path("Disc\\Images\\Im0001.dcm").c_str()), 4u);
}

TEST_F(Platform, PathsMayHaveSlashesAndBothInOne) {
    EXPECT_EQ(LineOf(Path("Disc/Images/Im0001.dcm")), "here");
    EXPECT_EQ(LineOf(Path("Disc\\Images/Im0001.dcm")), "here");
    EXPECT_EQ(LineOf(Path("Disc\\\\Images//Im0001.dcm")), "here");
}

TEST_F(Platform, EveryComponentIsFoundWhateverItsCase) {
    EXPECT_EQ(LineOf(Path("DISC\\IMAGES\\IM0001.DCM")), "here");
    EXPECT_EQ(LineOf(Path("disc/images/im0001.dcm")), "here");
    EXPECT_EQ(LineOf(Path("Disc\\IMAGES\\Im0001.dcm")), "here");
    EXPECT_TRUE(platform::PathExists(Path("DISC\\IMAGES\\IM0001.DCM").c_str()));
    EXPECT_TRUE(platform::IsDirectory(Path("DISC\\IMAGES").c_str()));
    EXPECT_TRUE(platform::IsDirectory(Path("DISC\\IMAGES\\").c_str()));
    EXPECT_EQ(platform::FileSize(Path("DISC\\IMAGES\\IM0001.DCM").c_str()), 4u);
}

TEST_F(Platform, NameAsWrittenGoesBeforeOneOfAnotherCase) {
    directory_.Write("Disc/Images/IM0001.DCM", "capital");
    EXPECT_EQ(LineOf(Path("Disc\\Images\\IM0001.DCM")), "capital");
    EXPECT_EQ(LineOf(Path("DISC\\IMAGES\\IM0001.DCM")), "capital");
}

TEST_F(Platform, FileInTheWayOfADirectoryOfAnotherCaseIsPassedOver) {
    if (fs::exists(directory_.Path("DISC"))) GTEST_SKIP() << "this file system ignores case";
    directory_.Write("DISC", "a file");
    EXPECT_EQ(LineOf(Path("DISC")), "a file");
    EXPECT_EQ(LineOf(Path("DISC\\IMAGES\\IM0001.DCM")), "here");
    EXPECT_TRUE(platform::PathExists(Path("DISC\\IMAGES").c_str()));
}

TEST_F(Platform, OfSeveralOtherCasesTheFirstInByteOrderIsFound) {
    if (fs::exists(directory_.Path("DISC"))) GTEST_SKIP() << "this file system ignores case";
    for (const char* name : {"aBC", "ABc", "abC", "ABC", "Abc", "abc"})
        directory_.Write(name, name);
    EXPECT_EQ(LineOf(Path("AbC")), "ABC");
    EXPECT_EQ(LineOf(Path("abC")), "abC");
}

TEST_F(Platform, BlanksAtTheEndOfAPathDoNotCount) {
    EXPECT_EQ(LineOf(Path("Disc\\Images\\Im0001.dcm ")), "here");
    EXPECT_EQ(LineOf(Path("DISC\\IMAGES\\IM0001.DCM ")), "here");
    EXPECT_EQ(platform::FileSize(Path("DISC\\IMAGES\\IM0001.DCM  ").c_str()), 4u);
    EXPECT_FALSE(platform::PathExists(Path("Disc\\Images\\Im0002.dcm ").c_str()));
    EXPECT_FALSE(platform::PathExists(Path("Disc\\Images\\ Im0001.dcm").c_str()));
}

TEST_F(Platform, RelativePathsStartInTheCurrentDirectory) {
    const fs::path before = fs::current_path();
    fs::current_path(directory_.Path(""));
    EXPECT_EQ(LineOf("DISC\\IMAGES\\IM0001.DCM"), "here");
    EXPECT_EQ(LineOf(".\\DISC\\..\\disc\\IMAGES\\IM0001.DCM"), "here");
    fs::current_path(before);
}

TEST_F(Platform, MissingPathsAreMissing) {
    for (const char* name : {"Disc\\Images\\Im0002.dcm", "Disc\\Other\\Im0001.dcm", "Disk",
                             "Disc\\Images\\Im0001.dcm\\more"}) {
        const std::string path = Path(name);
        EXPECT_EQ(platform::OpenForReading(path.c_str()), nullptr) << name;
        EXPECT_EQ(platform::OpenForUpdate(path.c_str()), nullptr) << name;
        EXPECT_FALSE(platform::PathExists(path.c_str())) << name;
        EXPECT_FALSE(platform::IsDirectory(path.c_str())) << name;
        EXPECT_EQ(platform::FileSize(path.c_str()), std::nullopt) << name;
    }
}

TEST_F(Platform, NullAndEmptyPathsAreMissing) {
    for (const char* path : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(platform::OpenForReading(path), nullptr);
        EXPECT_EQ(platform::OpenForUpdate(path), nullptr);
        EXPECT_EQ(platform::CreateBinary(path), nullptr);
        EXPECT_EQ(platform::CreateText(path), nullptr);
        EXPECT_FALSE(platform::PathExists(path));
        EXPECT_FALSE(platform::IsDirectory(path));
        EXPECT_EQ(platform::FileSize(path), std::nullopt);
    }
}

TEST_F(Platform, DirectoriesExistButAreNoFiles) {
    const std::string path = Path("DISC\\Images");
    EXPECT_TRUE(platform::PathExists(path.c_str()));
    EXPECT_TRUE(platform::IsDirectory(path.c_str()));
    EXPECT_EQ(platform::OpenForReading(path.c_str()), nullptr);
    EXPECT_EQ(platform::OpenForUpdate(path.c_str()), nullptr);
    EXPECT_EQ(platform::CreateBinary(path.c_str()), nullptr);
    EXPECT_EQ(platform::FileSize(path.c_str()), std::nullopt);
}

TEST_F(Platform, DevicesAreNoFiles) {
    EXPECT_EQ(platform::OpenForReading("/dev/null"), nullptr);
    EXPECT_EQ(platform::OpenForReading("NUL"), nullptr);
}

// Opening a pipe waits for its other end, which nobody here will open.
TEST_F(Platform, PipesAreNoFilesAndAreNotWaitedFor) {
    const std::string path = directory_.Path("pipe");
    const std::string command = "mkfifo \"" + path + "\"";
    if (std::system(command.c_str()) != 0) GTEST_SKIP() << "no pipes in directories here";
    EXPECT_EQ(platform::OpenForReading(path.c_str()), nullptr);
    EXPECT_EQ(platform::OpenForUpdate(path.c_str()), nullptr);
    EXPECT_EQ(platform::CreateBinary(path.c_str()), nullptr);
    EXPECT_EQ(platform::CreateText(path.c_str()), nullptr);
    EXPECT_EQ(platform::AppendText(path.c_str()), nullptr);
}

TEST_F(Platform, OpeningTellsTheSize) {
    uint64_t size = 0;
    const Stream file(platform::OpenForReading(Path("Disc\\Images\\Im0001.dcm").c_str(), size));
    ASSERT_TRUE(file);
    EXPECT_EQ(size, 4u);
}

TEST_F(Platform, FilesAreNoDirectories) {
    EXPECT_FALSE(platform::IsDirectory(Path("Disc\\Images\\Im0001.dcm").c_str()));
}

// A file of another case, or in a directory of another case, used to be overwritten.
TEST_F(Platform, FilesAreCreatedUnderTheNameThatIsGiven) {
    if (fs::exists(directory_.Path("DISC"))) GTEST_SKIP() << "this file system ignores case";
    for (const auto create : {platform::CreateBinary, platform::CreateText, platform::AppendText}) {
        const Stream file(create(Path("Disc\\Images\\IM0001.DCM").c_str()));
        EXPECT_TRUE(file);
        EXPECT_EQ(create(Path("DISC\\IMAGES\\New.dcm").c_str()), nullptr);
    }
    EXPECT_EQ(EntriesIn(directory_.Path("Disc/Images")), 2u);
    EXPECT_EQ(LineOf(Path("Disc\\Images\\Im0001.dcm")), "here");
    EXPECT_EQ(EntriesIn(directory_.Path("")), 1u);
}

TEST_F(Platform, TellsWhichNamesAPathLeadsTo) {
    EXPECT_TRUE(platform::IsReachableName("A"));
    EXPECT_EQ(platform::IsReachableName("A\\B"), pgkit_test::kIsWindows);
    EXPECT_EQ(platform::PathsIgnoreCase(), pgkit_test::kIsWindows);
}

TEST_F(Platform, CutsTheEndOfAFileOff) {
    const std::string path = Path("file");
    const Stream file(platform::AppendText(path.c_str()));
    std::fputs("first", file.get());
    EXPECT_TRUE(platform::CutTo(file.get(), 2));
    std::fputs("last", file.get());
    EXPECT_EQ(LineOf(path), "filast");
}

TEST_F(Platform, NothingIsCreatedInAMissingDirectory) {
    EXPECT_EQ(platform::CreateBinary(Path("Other\\New.dcm").c_str()), nullptr);
    EXPECT_EQ(platform::CreateText(Path("Other\\New.txt").c_str()), nullptr);
    EXPECT_EQ(EntriesIn(directory_.Path("")), 1u);
}

TEST_F(Platform, BinaryFilesKeepTheirBytesAndTextFilesTheirLines) {
    const std::string binary = Path("binary");
    std::fputs("a\r\n\x1A\n", Stream(platform::CreateBinary(binary.c_str())).get());
    EXPECT_EQ(pgkit_test::ReadFile(binary), (pgkit_test::Bytes{'a', '\r', '\n', 0x1A, '\n'}));

    const std::string text = Path("text");
    std::fputs("a\nb\n", Stream(platform::CreateText(text.c_str())).get());
    std::ifstream lines(text);
    std::string first;
    std::string second;
    EXPECT_TRUE(lines >> first >> second);
    EXPECT_EQ(first + second, "ab");
}

TEST_F(Platform, UpdateWritesIntoTheFile) {
    const std::string path = Path("DISC\\IMAGES\\IM0001.DCM");
    {
        const Stream file(platform::OpenForUpdate(path.c_str()));
        ASSERT_TRUE(file);
        ASSERT_TRUE(platform::Seek(file.get(), 1));
        std::fputs("ov", file.get());
    }
    EXPECT_EQ(LineOf(path), "hove");
}

TEST_F(Platform, StreamsTellTheirPositionAndSize) {
    const Stream file(platform::OpenForReading(Path("Disc\\Images\\Im0001.dcm").c_str()));
    ASSERT_TRUE(file);
    EXPECT_EQ(platform::Tell(file.get()), 0u);
    EXPECT_TRUE(platform::Seek(file.get(), 3));
    EXPECT_EQ(platform::Tell(file.get()), 3u);
    EXPECT_EQ(std::fgetc(file.get()), 'e');
    EXPECT_EQ(platform::StreamSize(file.get()), 4u);
    EXPECT_TRUE(platform::SeekToEnd(file.get()));
    EXPECT_EQ(platform::Tell(file.get()), 4u);
    EXPECT_FALSE(platform::Seek(file.get(), UINT64_MAX));
    EXPECT_FALSE(platform::Seek(file.get(), uint64_t{1} << 63));
}

TEST_F(Platform, ReadsAtAPositionWhatIsThere) {
    const Stream file(platform::OpenForReading(Path("Disc\\Images\\Im0001.dcm").c_str()));
    ASSERT_TRUE(file);
    const auto textAt = [&](uint64_t position, size_t needed, size_t room) {
        std::array<uint8_t, 8> bytes = {};
        const size_t got = platform::ReadAt(file.get(), position, bytes.data(), needed, room);
        EXPECT_LE(got, room);
        return std::string(reinterpret_cast<const char*>(bytes.data()), got);
    };
    const std::string whole = textAt(0, 4, 8);
    EXPECT_EQ(whole.size(), 4u);
    EXPECT_EQ(textAt(1, 2, 2), whole.substr(1, 2));
    EXPECT_EQ(textAt(2, 8, 8), whole.substr(2));
    EXPECT_EQ(textAt(4, 1, 8), "");
    EXPECT_EQ(textAt(UINT64_MAX, 1, 8), "");
    EXPECT_EQ(textAt(uint64_t{1} << 63, 1, 8), "");
}

// What the host's stream holds back is there to be read, too.
TEST_F(Platform, ReadsAtAPositionWhatWasWrittenBefore) {
    const TempDir folder;
    const Stream file = pgkit_test::OpenStream(folder.Path("written"), "w+b");
    ASSERT_TRUE(file);
    ASSERT_GE(std::fputs("written", file.get()), 0);
    std::array<uint8_t, 4> bytes = {};
    ASSERT_EQ(platform::ReadAt(file.get(), 2, bytes.data(), 4, 4), 4u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "itte");
}

// Only one byte is written: the rest of the file is a hole.
TEST_F(Platform, PositionsAndSizesGoBeyondFourGibibytes) {
    constexpr uint64_t kFar = (uint64_t{5} << 30) + 3;
    const std::string path = Path("large");
    {
        const Stream file(platform::CreateBinary(path.c_str()));
        ASSERT_TRUE(file);
        ASSERT_TRUE(platform::Seek(file.get(), kFar));
        ASSERT_EQ(std::fputc('x', file.get()), 'x');
        EXPECT_EQ(platform::Tell(file.get()), kFar + 1);
    }
    EXPECT_EQ(platform::FileSize(path.c_str()), kFar + 1);
    const Stream file(platform::OpenForReading(path.c_str()));
    ASSERT_TRUE(file);
    EXPECT_EQ(platform::StreamSize(file.get()), kFar + 1);
    ASSERT_TRUE(platform::Seek(file.get(), kFar));
    EXPECT_EQ(std::fgetc(file.get()), 'x');
    EXPECT_EQ(std::fgetc(file.get()), EOF);
    EXPECT_TRUE(platform::SeekToEnd(file.get()));
    EXPECT_EQ(platform::Tell(file.get()), kFar + 1);
}

TEST(HostProgramDirectory, IsThatOfThisProgramWithBackslashes) {
    const std::string directory = platform::HostProgramDirectory();
    EXPECT_EQ(directory.find('/'), std::string::npos);
    EXPECT_TRUE(directory.ends_with('\\')) << directory;
    const auto entries = platform::ListDirectory((directory + ".").c_str());
    EXPECT_TRUE(std::any_of(entries.begin(), entries.end(), [](const auto& entry) {
        return entry.name.starts_with("pgkit_unit_tests");
    })) << directory;
}

TEST(CompareNames, GivesTheOrder) {
    EXPECT_EQ(platform::CompareNames("doe^john", "DOE JOHN"), 0);
    EXPECT_EQ(platform::CompareNames("a", "b"), -1);
    EXPECT_EQ(platform::CompareNames("b", "a"), 1);
    EXPECT_EQ(platform::CompareNames("", ""), 0);
}

class Replacement : public Platform {
  protected:
    const std::string path_ = Path("Disc\\Images\\Im0001.dcm");
    std::string replacement_;
};

TEST_F(Replacement, IsCreatedBesideTheFileUnderAnUnusedName) {
    directory_.Write("Disc/Images/Im0001.dcm.new0", "taken");
    const Stream file(platform::CreateReplacement(path_.c_str(), replacement_, nullptr));
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(replacement_.ends_with("Im0001.dcm.new1")) << replacement_;
    EXPECT_EQ(platform::FileSize(replacement_.c_str()), 0u);
    EXPECT_EQ(LineOf(Path("Disc\\Images\\Im0001.dcm.new0")), "taken");
}

TEST_F(Replacement, PassesOverDirectoriesAndLinksThatLeadNowhere) {
    fs::create_directory(directory_.Path("Disc/Images/Im0001.dcm.new0"));
    std::error_code noLinksHere;
    fs::create_symlink(directory_.Path("nothing"), directory_.Path("Disc/Images/Im0001.dcm.new1"),
                       noLinksHere);
    const Stream file(platform::CreateReplacement(path_.c_str(), replacement_, nullptr));
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(replacement_.ends_with(noLinksHere ? ".new1" : ".new2")) << replacement_;
    EXPECT_FALSE(fs::exists(directory_.Path("nothing")));
}

TEST_F(Replacement, IsNobodyElsesToReadBeforeItIsInPlace) {
    using fs::perms;
    const fs::path file = directory_.Path("Disc/Images/Im0001.dcm");
    fs::permissions(file, perms::owner_read | perms::owner_write | perms::others_read);
    const perms before = fs::status(file).permissions();
    if ((before & perms::group_read) != perms::none) GTEST_SKIP() << "no permissions here";
    Stream(platform::CreateReplacement(path_.c_str(), replacement_, nullptr)).reset();
    EXPECT_EQ(fs::status(replacement_).permissions(), perms::owner_read | perms::owner_write);
    EXPECT_TRUE(platform::ReplaceWith(path_.c_str(), replacement_.c_str()));
    EXPECT_EQ(fs::status(file).permissions(), before);
}

TEST_F(Replacement, HasNoPathWhenItCannotBeCreated) {
    replacement_ = "before";
    EXPECT_EQ(platform::CreateReplacement(Path("Other\\New.dcm").c_str(), replacement_, nullptr),
              nullptr);
    EXPECT_EQ(replacement_, "");
}

TEST_F(Replacement, OfANewFileHasThePermissionsOfANewFile) {
    const std::string path = Path("Disc\\Images\\New");
    directory_.Write("Disc/Images/Other", "");
    Stream(platform::CreateReplacement(path.c_str(), replacement_, nullptr)).reset();
    EXPECT_TRUE(platform::ReplaceWith(path.c_str(), replacement_.c_str()));
    EXPECT_EQ(fs::status(directory_.Path("Disc/Images/New")).permissions(),
              fs::status(directory_.Path("Disc/Images/Other")).permissions());
    EXPECT_EQ(EntriesIn(directory_.Path("Disc/Images")), 3u);
}

TEST_F(Replacement, MayHaveTheNameOfAnotherFile) {
    const Stream file(platform::CreateReplacement(path_.c_str(), replacement_, "DICOMDIR"));
    EXPECT_TRUE(fs::exists(directory_.Path("Disc/Images/DICOMDIR.new0")));
}

TEST_F(Replacement, IsOfRegularFilesThatMayBeWrittenAndOfNewOnes) {
    EXPECT_TRUE(platform::CanBeReplaced(path_.c_str()));
    EXPECT_TRUE(platform::CanBeReplaced(Path("Disc\\Images\\New").c_str()));
    EXPECT_FALSE(platform::CanBeReplaced(Path("Disc\\Images").c_str()));
    EXPECT_FALSE(platform::CanBeReplaced(nullptr));
}

// Nobody writes it any more: its process was killed.
TEST_F(Replacement, IsRemovedWhenItIsAStray) {
    for (const char* name : {"Im0001.dcm.new0", "Im0001.dcm.new12"})
        directory_.Write(std::string("Disc/Images/") + name, "stray");
    const char* const others[] = {"Im0001.dcm.new", "Im0001.dcm.new1x", "im0001.dcm.new1",
                                  "Im0001.dcm.old1", "Im0002.dcm.new1"};
    for (const char* name : others)
        directory_.Write(std::string("Disc/Images/") + name, "somebody's");
    fs::create_directory(directory_.Path("Disc/Images/Im0001.dcm.new3"));
    platform::RemoveStrayReplacements(path_.c_str());
    EXPECT_FALSE(fs::exists(directory_.Path("Disc/Images/Im0001.dcm.new0")));
    EXPECT_FALSE(fs::exists(directory_.Path("Disc/Images/Im0001.dcm.new12")));
    EXPECT_TRUE(fs::exists(directory_.Path("Disc/Images/Im0001.dcm.new3")));
    EXPECT_EQ(LineOf(path_), "here");
    for (const char* name : others)
        EXPECT_EQ(LineOf(Path(std::string("Disc\\Images\\") + name)), "somebody's") << name;
}

TEST_F(Replacement, IsNoStrayWhileItIsWritten) {
    Stream file(platform::CreateReplacement(path_.c_str(), replacement_, nullptr));
    platform::RemoveStrayReplacements(path_.c_str());
    EXPECT_TRUE(fs::exists(replacement_));
    file.reset();
    platform::RemoveStrayReplacements(path_.c_str());
    EXPECT_FALSE(fs::exists(replacement_));
}

TEST_F(Replacement, OfALinkStaysALink) {
    const fs::path link = directory_.Path("link");
    std::error_code noLinksHere;
    fs::create_symlink("Disc/Images/Im0001.dcm", link, noLinksHere);
    if (noLinksHere || pgkit_test::kIsWindows) GTEST_SKIP() << "no links here";
    Stream(platform::CreateReplacement(link.string().c_str(), replacement_, nullptr)).reset();
    EXPECT_TRUE(platform::ReplaceWith(link.string().c_str(), replacement_.c_str()));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(platform::FileSize(path_.c_str()), 0u);
}

// "name", with a slash behind directories.
std::string NamesIn(const std::string& directory) {
    std::string names;
    for (const platform::DirectoryEntry& entry : platform::ListDirectory(directory.c_str()))
        names += entry.name + (entry.isDirectory ? "/ " : " ");
    return names;
}

TEST(PlatformDirectory, ListsItsEntriesInTheByteOrderOfTheirNames) {
    const TempDir directory;
    for (const char* name : {"b", "C", ".hidden", "a1"})
        directory.Write(name, "");
    fs::create_directories(directory.Path("a/inner"));
    EXPECT_EQ(NamesIn(directory.Path(".")), ".hidden C a/ a1 b ");
    EXPECT_EQ(NamesIn(directory.Path(".") + "\\a"), "inner/ ");
}

TEST(PlatformDirectory, IsEmptyWhereThereIsNone) {
    const TempDir directory;
    directory.Write("file", "");
    EXPECT_EQ(NamesIn(directory.Path("missing")), "");
    EXPECT_EQ(NamesIn(directory.Path("file")), "");
}

TEST(PlatformDirectory, TellsLinksAndWhatTheyLeadTo) {
    const TempDir directory;
    fs::create_directory(directory.Path("real"));
    std::error_code error;
    fs::create_directory_symlink(directory.Path("real"), directory.Path("link"), error);
    if (error) GTEST_SKIP() << "no links here";
    fs::create_symlink(directory.Path("nothing"), directory.Path("dangling"), error);
    const auto entries = platform::ListDirectory(directory.Path(".").c_str());
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_TRUE(entries[0].isLink && !entries[0].isDirectory);
    EXPECT_TRUE(entries[1].isLink && entries[1].isDirectory);
    EXPECT_FALSE(entries[2].isLink);
}

TEST(PlatformFiles, AreAppendedTo) {
    const TempDir directory;
    const std::string path = directory.Path("list");
    for (const char* text : {"first ", "second"}) {
        const Stream file(platform::AppendText(path.c_str()));
        ASSERT_NE(file, nullptr);
        std::fputs(text, file.get());
    }
    EXPECT_EQ(LineOf(path), "first second");
    EXPECT_EQ(platform::AppendText(directory.Path("missing/list").c_str()), nullptr);
}

}  // namespace
