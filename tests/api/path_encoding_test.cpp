// Paths with letters of many scripts.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "support/captured.h"
#include "support/instance_file.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::InstanceFile;
using pgkit_test::TempDir;
using DataSet = std::unique_ptr<PGX_Node, void (*)(PGX_Node*)>;

// "Ünï-中" and "фаил", in UTF-8.
constexpr char kFolder[] = "\xC3\x9Cn\xC3\xAF-\xE4\xB8\xAD";
constexpr char kFile[] = "\xD1\x84\xD0\xB0\xD0\xB8\xD0\xBB";

std::filesystem::path SystemPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

class PathEncoding : public testing::Test {
  protected:
    PathEncoding() {
        pgxSetPathEncoding(PGX_PATHS_UTF8);
        std::filesystem::create_directory(SystemPath(folder_));
    }
    ~PathEncoding() override { pgxSetPathEncoding(PGX_PATHS_SYSTEM); }

    std::string InFolder(const std::string& name) const { return folder_ + "\\" + name; }

    TempDir directory_;
    std::string folder_ = directory_.Path("") + kFolder;
};

TEST(PathEncodingSwitch, IsThatOfTheSystemAtFirstAndGivesTheFormerValue) {
    EXPECT_EQ(pgxGetPathEncoding(), PGX_PATHS_SYSTEM);
    EXPECT_EQ(pgxSetPathEncoding(PGX_PATHS_UTF8), PGX_PATHS_SYSTEM);
    EXPECT_EQ(pgxGetPathEncoding(), PGX_PATHS_UTF8);
    EXPECT_EQ(pgxSetPathEncoding(7), PGX_PATHS_UTF8);
    EXPECT_EQ(pgxSetPathEncoding(PGX_PATHS_SYSTEM), PGX_PATHS_UTF8);
}

TEST_F(PathEncoding, FilesAreWrittenReadAndExportedByUtf8) {
    const DataSet made(pgAllocateDataSetNode(), pgFreeNodeHierarchy);
    PGX_Node* name = made->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const std::string path = InFolder(kFile);
    ASSERT_EQ(made->SaveDataSetAsEx(path.c_str(), PG_EXPLICIT_VR | PG_LITTLE_ENDIAN), 0u);
    EXPECT_TRUE(std::filesystem::exists(SystemPath(folder_) / SystemPath(kFile)));
    const DataSet read(pgOpenDataSetFile(path.c_str(), 64), pgCloseDataSet);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->Dump(InFolder("dump").c_str()), 1);
    EXPECT_EQ(name->GetFileContentValue(InFolder("value").c_str()), 1);
    EXPECT_TRUE(std::filesystem::exists(SystemPath(folder_) / "dump"));
    EXPECT_TRUE(std::filesystem::exists(SystemPath(folder_) / "value"));
}

TEST_F(PathEncoding, MediaAreMadeAndBrowsedByUtf8) {
    const auto data = InstanceFile().Data();
    std::ofstream(SystemPath(folder_) / "IM1", std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size()));
    EXPECT_EQ(pgCreateDicomdir(folder_.c_str(), "", nullptr, nullptr), 0u);
    PGX_DicomDir directory;
    ASSERT_EQ(directory.OpenDicomDir(InFolder("DICOMDIR").c_str(), 64), 1);
    pgkit_test::CapturePrinted([&] { directory.Browse(nullptr, nullptr); });
    ASSERT_EQ(directory.leafCount, 1);
    PGX_DicomDirLeafNode leaf;
    std::string("IM1").copy(leaf.referencedFileId, 3);
    char file[1024];
    pgxLeafFile(&leaf, directory.folder, file, sizeof file);
    EXPECT_TRUE(std::filesystem::equivalent(SystemPath(file), SystemPath(folder_) / "IM1"));
}

}  // namespace
