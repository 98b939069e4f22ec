// Saving a tree to the file that its values are still read from.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>

#include "codec/encoded.h"
#include "support/captured.h"
#include "support/save_modes.h"
#include "support/stream.h"
#include "support/stream_builder.h"
#include "support/tree.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;
namespace fs = std::filesystem;

class SaveOverSource : public testing::Test {
  protected:
    // A tree whose value is in the file that it is going to be saved to.
    void OpenSource() {
        path_ = directory_.Write(
            "source.dcm",
            StreamBuilder(VrMode::Implicit).Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
        root_.reset(pgOpenDataSetFile(path_.c_str(), 0));
        ASSERT_NE(root_, nullptr);
        ASSERT_EQ(root_->first->value, nullptr);
    }

    size_t FilesInDirectory() {
        return static_cast<size_t>(
            std::distance(fs::directory_iterator(directory_.Path("")), fs::directory_iterator()));
    }

    const Bytes explicitFile_ = StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data();
    TempDir directory_;
    std::string path_;
    DataSet root_;
};

TEST_F(SaveOverSource, WritesTheNewFileAndKeepsTheValuesOfTheTree) {
    OpenSource();
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_), explicitFile_);
    EXPECT_EQ(TextOf(root_->first), "DOE^JOHN");
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_), explicitFile_);
    root_.reset();
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(SaveOverSource, KnowsTheFileByAnyOfItsPaths) {
    OpenSource();
    const std::string detour =
        (fs::path(path_).parent_path() / "." / fs::path(path_).filename()).string();
    EXPECT_EQ(root_->SaveDataSetAsEx(detour.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_), explicitFile_);
    EXPECT_EQ(TextOf(root_->first), "DOE^JOHN");
}

TEST_F(SaveOverSource, LeavesTheFileAsItWasWhenWritingFails) {
    OpenSource();
    const Bytes before = ReadFile(path_);
    NewElement(*root_, 0x0011, 0x1001, VR_LO, std::string(65536, 'x'));
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), kValueTooLong);
    EXPECT_EQ(ReadFile(path_), before);
    EXPECT_EQ(TextOf(root_->FindNode(0x0010, 0x0010)), "DOE^JOHN");
    EXPECT_EQ(FilesInDirectory(), 1u);
}

TEST_F(SaveOverSource, WorksWithTheOlderFormToo) {
    OpenSource();
    root_->SaveDataSetAs(0, path_.c_str());
    EXPECT_EQ(ReadFile(path_), StreamBuilder(VrMode::Implicit, Order::Big)
                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                   .Data());
    EXPECT_EQ(TextOf(root_->first), "DOE^JOHN");
}

TEST_F(SaveOverSource, PatchesOffsetsBeforeTheFileIsInPlace) {
    OpenSource();
    const uint32_t none = 0;
    PGX_Node* offset = root_->InsertNode(0x0004, 0x1200, &none, 4);
    offset->offsetPending = 1;
    offset->offsetTarget = AddItem(*root_->InsertNode(0x0004, 0x1220, nullptr, 0));
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder()
                                   .ElementUL(0x0004, 0x1200, 24)
                                   .Sequence(0x0004, 0x1220, 8)
                                   .Item(0)
                                   .Append(explicitFile_)
                                   .Data());
}

// Anyone who may write into the directory can have put it there.
TEST_F(SaveOverSource, DoesNotWriteThroughALinkUnderTheNameOfTheNewFile) {
    OpenSource();
    std::error_code error;
    const fs::path elsewhere = directory_.Path("elsewhere");
    fs::create_symlink(elsewhere, path_ + ".new0", error);
    if (error) GTEST_SKIP() << "no links here";
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path_)));
    EXPECT_EQ(ReadFile(path_), explicitFile_);
    EXPECT_FALSE(fs::exists(elsewhere));
    EXPECT_TRUE(fs::is_symlink(path_ + ".new0"));
}

TEST_F(SaveOverSource, LeavesOtherFilesAlone) {
    OpenSource();
    for (const char* number : {"0", "1", "2"})
        directory_.Write(std::string("source.dcm.new") + number, number);
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_), explicitFile_);
    root_.reset();
    for (const char* number : {"0", "1", "2"})
        EXPECT_EQ(ReadFile(path_ + ".new" + number), Bytes{static_cast<uint8_t>(number[0])});
    EXPECT_EQ(FilesInDirectory(), 4u);
}

TEST_F(SaveOverSource, KeepsThePermissionsOfTheFile) {
    OpenSource();
    constexpr fs::perms kOwnAndGroup =
        fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(path_, kOwnAndGroup);
    const fs::perms before = fs::status(path_).permissions();
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(fs::status(path_).permissions(), before);
}

TEST_F(SaveOverSource, SparesAContentFileToo) {
    DataSet root(pgAllocateDataSetNode());
    const std::string path = directory_.Write("content", "abcd");
    NewElement(*root, 0x0009, 0x1001, VR_OB, "")->SetFileContentValue(path.c_str());
    EXPECT_EQ(root->SaveDataSetAsEx(path.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path), StreamBuilder().Element(0x0009, 0x1001, "OB", "abcd").Data());
}

// A stream that the host has opened itself cannot be replaced under it on every system. Whether it
// can or not, nothing is lost.
TEST_F(SaveOverSource, OfAStreamOfTheHostLosesNothing) {
    const Bytes before =
        StreamBuilder(VrMode::Implicit).Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data();
    const std::string path = directory_.Write("host.dcm", before);
    DataSet root(pgOpenDataSetFileHandle(std::fopen(path.c_str(), "rb"), 0));
    ASSERT_NE(root, nullptr);
    uint32_t result = 0;
    const Printed printed =
        CapturePrinted([&] { result = root->SaveDataSetAsEx(path.c_str(), kExplicitLittle); });
    if (result == 0) {
        EXPECT_EQ(ReadFile(path), explicitFile_);
    } else {
        EXPECT_EQ(result, kCannotCreate);
        EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open " + path + "\n");
        EXPECT_EQ(ReadFile(path), before);
    }
    EXPECT_EQ(TextOf(root->first), "DOE^JOHN");
    EXPECT_EQ(FilesInDirectory(), 1u);
}

// ---- In place -----------------------------------------------------------------------------------

class SaveInPlace : public SaveOverSource {
  protected:
    // A Part 10 file with a second name, opened with all its values in memory: but for those of the
    // File Meta Information, which no open function loads.
    void OpenLoaded() {
        path_ = directory_.Write("source.dcm", StreamBuilder()
                                                   .Part10("1.2.840.10008.1.2.1")
                                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                                   .Data());
        fs::create_hard_link(path_, other_);
        root_.reset(pgOpenDataSetFile(path_.c_str(), kLoadAll));
        ASSERT_NE(root_, nullptr);
        ASSERT_EQ(root_->FindNode(0x0002, 0x0010)->value, nullptr);
    }

    bool IsInPlace() { return fs::equivalent(path_, other_); }

    const std::string other_ = directory_.Path("other.dcm");
};

// Any file of the tree was replaced, whether something was still to be read from it or not: other
// names of it kept the old content.
TEST_F(SaveInPlace, HappensToAFileThatNothingIsReadFromAnyMore) {
    OpenLoaded();
    root_->AddOrReplaceNode(0x0010, 0x0010, "DOE^JANE", 8);
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kAsRead), 0u);
        EXPECT_TRUE(IsInPlace());
        const DataSet reread(pgOpenDataSetFile(other_.c_str(), kLoadAll));
        EXPECT_EQ(TextOf(reread->FindNode(0x0010, 0x0010)), "DOE^JANE");
        EXPECT_EQ(TextOf(reread->FindNode(0x0002, 0x0010)), PaddedUid("1.2.840.10008.1.2.1"));
        EXPECT_EQ(TextOf(root_->FindNode(0x0002, 0x0010)), PaddedUid("1.2.840.10008.1.2.1"));
    }
}

TEST_F(SaveInPlace, NeedsNoOtherFileInTheDirectory) {
    OpenLoaded();
    const size_t before = FilesInDirectory();
    fs::permissions(directory_.Path(""), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kAsRead), 0u);
    fs::permissions(directory_.Path(""), fs::perms::owner_all);
    EXPECT_EQ(FilesInDirectory(), before);
}

TEST_F(SaveInPlace, LeavesOutWhatTheOlderFormDoes) {
    OpenLoaded();
    root_->SaveDataSetAs(0, path_.c_str());
    EXPECT_TRUE(IsInPlace());
    EXPECT_EQ(ReadFile(path_), StreamBuilder(VrMode::Implicit, Order::Big)
                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                   .Data());
    EXPECT_EQ(TextOf(root_->FindNode(0x0002, 0x0010)), PaddedUid("1.2.840.10008.1.2.1"));
}

TEST_F(SaveInPlace, DoesNotHappenWhileAValueIsUnread) {
    OpenLoaded();
    root_.reset(pgOpenDataSetFile(path_.c_str(), 8));
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kAsRead), 0u);
    EXPECT_FALSE(IsInPlace());
    EXPECT_EQ(TextOf(root_->FindNode(0x0010, 0x0010)), "DOE^JOHN");
}

TEST_F(SaveInPlace, DoesNotHappenWhileAFragmentIsUnread) {
    for (const uint32_t flags : {0u, uint32_t{PG_OPEN_SKIP_FRAGMENTS}}) {
        StreamBuilder file;
        file.Part10("1.2.840.10008.1.2.4.70").Header(0x7FE0, 0x0010, "OB", kUndefined);
        file.Item(0).Item(4).Text("abcd").EndSequence();
        path_ = directory_.Write("source.dcm", file.Data());
        fs::remove(other_);
        fs::create_hard_link(path_, other_);
        root_.reset(pgOpenDataSetFileEx(path_.c_str(), kLoadAll, flags));
        EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kAsRead), 0u);
        EXPECT_FALSE(IsInPlace());
        EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kAsRead), 0u);
        root_.reset();
        const OpenedStream reread(ReadFile(path_));
        EXPECT_EQ(reread->FindNode(0x7FE0, 0x0010)->fragmentCount, 1u);
    }
}

// A value of the File Meta Information that is not there in full cannot be read first.
TEST_F(SaveInPlace, DoesNotHappenToAFileWhoseMetaInformationIsCut) {
    const Bytes before = StreamBuilder()
                             .Part10("1.2.840.10008.1.2.1")
                             .Header(0x0002, 0x0100, "OB", 1000)
                             .Text("abcd")
                             .Data();
    path_ = directory_.Write("source.dcm", before);
    root_.reset(pgAllocateDataSetNode());
    const Stream source = OpenStream(path_, "rb");
    root_->AddPart10Elements(nullptr);
    SetSource(*root_->InsertNode(0x0002, 0x0100, nullptr, 0), source.get(), 178, 1000);
    EXPECT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kPart10Explicit), kReadFailed);
    EXPECT_EQ(ReadFile(path_), before);
}

}  // namespace
