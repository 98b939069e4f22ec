// The file that a leaf refers to, as it is on the medium.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::DirectoryBuilder;
using pgkit_test::LibraryPath;
using pgkit_test::TempDir;

class LeafFile : public testing::Test {
  protected:
    // A file below the directory of the medium.
    void MakeFile(const char* folder, const char* name) {
        std::filesystem::create_directories(medium_.Path(folder));
        medium_.Write(std::string(folder) + "/" + name, "content");
    }

    // The file of a leaf with this referenced file ID.
    std::string FileOf(const char* fileId, const char* folder) {
        std::snprintf(leaf_.referencedFileId, sizeof leaf_.referencedFileId, "%s", fileId);
        char path[1024];
        const size_t length = pgxLeafFile(&leaf_, folder, path, sizeof path);
        EXPECT_EQ(length, std::strlen(path));
        return path;
    }
    std::string FileOf(const char* fileId) { return FileOf(fileId, medium_.Path("").c_str()); }

    bool Names(const std::string& found, const char* folder, const char* name) {
        const std::string file = medium_.Path(folder) + "/" + name;
        return !found.empty() && std::filesystem::path(found).filename() == name &&
               std::filesystem::equivalent(found, file);
    }

    TempDir medium_;
    PGX_DicomDirLeafNode leaf_;
};

TEST_F(LeafFile, IsTheOneThatTheIdNames) {
    MakeFile("IMG", "X1");
    EXPECT_TRUE(Names(FileOf("IMG\\X1"), "IMG", "X1"));
    EXPECT_TRUE(Names(FileOf("IMG/X1"), "IMG", "X1"));
    EXPECT_TRUE(Names(FileOf("\\IMG\\\\X1"), "IMG", "X1"));
}

TEST_F(LeafFile, IsFoundWhateverItsCaseAndPadding) {
    MakeFile("Img", "x1.dcm");
    EXPECT_TRUE(Names(FileOf("IMG\\X1.DCM"), "Img", "x1.dcm"));
    EXPECT_TRUE(Names(FileOf("IMG\\X1.DCM "), "Img", "x1.dcm"));
    EXPECT_TRUE(Names(FileOf("img \\x1.dcm"), "Img", "x1.dcm"));
}

TEST_F(LeafFile, IsNoneWhereThereIsNoRegularFile) {
    MakeFile("IMG", "X1");
    for (const char* fileId : {"IMG\\X2", "X1", "IMG", "IMG\\X1\\X2", "", "No.ReferencedFileID"})
        EXPECT_EQ(FileOf(fileId), "") << fileId;
}

TEST_F(LeafFile, IsNoneWhereTheIdLeadsAway) {
    MakeFile("IMG", "X1");
    const std::string inside = medium_.Path("IMG");
    ASSERT_NE(FileOf("X1", inside.c_str()), "");
    for (const char* fileId : {"..\\IMG\\X1", "../IMG/X1", ".\\X1", "..", ".. \\IMG\\X1", "C:X1"})
        EXPECT_EQ(FileOf(fileId, inside.c_str()), "") << fileId;
}

TEST_F(LeafFile, OfABrowsedLeafNeedsNoFolder) {
    MakeFile("Img", "x1");
    DirectoryBuilder builder;
    const size_t study = builder.Study(builder.Patient("4711", "DOE"), "1.2");
    builder.Image(builder.Series(study, "1.2.3", "CT"), "1.2.3.4", 1, "IMG\\X1");
    const std::string path = LibraryPath(medium_.Write("DICOMDIR", builder.Build()));
    PGX_DicomDir directory;
    CapturePrinted([&] {
        ASSERT_EQ(directory.OpenDicomDir(path.c_str(), 64), 1);
        directory.Browse(nullptr, nullptr);
    });
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(directory.patientList->GetHead());
    auto* study1 = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
    auto* series = static_cast<PGX_DicomDirSeriesNode*>(study1->series.GetHead());
    auto* leaf = static_cast<PGX_DicomDirLeafNode*>(series->leaves.GetHead());
    char file[1024];
    EXPECT_NE(pgxLeafFile(leaf, nullptr, file, sizeof file), 0u);
    EXPECT_TRUE(Names(file, "Img", "x1"));
    EXPECT_NE(pgxLeafFile(leaf, directory.folder, file, sizeof file), 0u);
    EXPECT_TRUE(Names(file, "Img", "x1"));
}

TEST_F(LeafFile, IsCutToTheRoomThereIs) {
    MakeFile("IMG", "X1");
    const std::string whole = FileOf("IMG\\X1");
    char path[8];
    std::memset(path, 'p', sizeof path);
    EXPECT_EQ(pgxLeafFile(&leaf_, medium_.Path("").c_str(), path, 4), whole.size());
    EXPECT_EQ(std::string(path, 5), whole.substr(0, 3) + '\0' + 'p');
    EXPECT_EQ(pgxLeafFile(&leaf_, medium_.Path("").c_str(), nullptr, 0), whole.size());
    EXPECT_EQ(pgxLeafFile(&leaf_, medium_.Path("").c_str(), path, 0), whole.size());
}

TEST_F(LeafFile, IsNoneWithoutALeaf) {
    char path[8] = "before";
    EXPECT_EQ(pgxLeafFile(nullptr, "folder", path, sizeof path), 0u);
    EXPECT_STREQ(path, "");
}

TEST(FileIds, AreThoseOfTheStandard) {
    for (const char* const id : {"A", "IM_00001", "A\\B", "A/B", "1\\2\\3\\4\\5\\6\\7\\8"})
        EXPECT_EQ(pgxIsFileId(id), 1) << id;
    for (const char* const id : {"", "a", "IM.DCM", "A B", "A-B", "IM_000001", "A\\", "\\A",
                                 "A\\\\B", "A\\..\\B", "1\\2\\3\\4\\5\\6\\7\\8\\9", "\xC3\x84"})
        EXPECT_EQ(pgxIsFileId(id), 0) << id;
    EXPECT_EQ(pgxIsFileId(nullptr), 0);
}

}  // namespace
