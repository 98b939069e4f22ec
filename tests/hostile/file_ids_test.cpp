// File identifiers of a DICOMDIR that lead out of its medium, or to no file. A browse hands them on
// as they stand and opens nothing: who opens the paths has to look where they lead.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdint>
#include <string>

#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/failing_files.h"
#include "support/temp_dir.h"

namespace {

using namespace pgkit_test;

class HostileFileIds : public testing::Test {
  protected:
    // The full path of the image with this file ID, below the folder of the DICOMDIR.
    std::string PathOf(const std::string& fileId) {
        DirectoryBuilder builder;
        const size_t series =
            builder.Series(builder.Study(builder.Patient("1", "A"), "1.2"), "1.2.3", "CT");
        builder.Image(series, "1.2.3.4", 1, fileId);
        const std::string path = directory_.Write("DICOMDIR", builder.Build());
        PGX_DicomDir dicomDir;
        CapturePrinted([&] {
            EXPECT_EQ(dicomDir.OpenDicomDir(path.c_str(), 0x20000), 1);
            const FailingFiles counting(SIZE_MAX);
            dicomDir.Browse(nullptr, nullptr);
            EXPECT_EQ(FilesOpened(), 0u);
        });
        const auto* leaf = FirstLeaf(dicomDir.GetPatientList());
        const std::string folder = dicomDir.folder;
        const std::string full = leaf == nullptr ? "no leaf" : leaf->fullPath;
        return full.size() > folder.size() ? full.substr(folder.size()) : full;
    }

  private:
    template <typename Record>
    static Record* Head(PGX_List* list) {
        return list == nullptr ? nullptr : static_cast<Record*>(list->GetHead());
    }

    static PGX_DicomDirLeafNode* FirstLeaf(PGX_List* patients) {
        auto* patient = Head<PGX_DicomDirPatientNode>(patients);
        auto* study = patient ? Head<PGX_DicomDirStudyNode>(&patient->studies) : nullptr;
        auto* series = study ? Head<PGX_DicomDirSeriesNode>(&study->series) : nullptr;
        return series ? Head<PGX_DicomDirLeafNode>(&series->leaves) : nullptr;
    }

    TempDir directory_;
};

TEST_F(HostileFileIds, KeepTheirWayUp) {
    EXPECT_EQ(PathOf("..\\..\\ETC\\PASSWD"), "\\..\\..\\ETC\\PASSWD");
    EXPECT_EQ(PathOf(".."), "\\..");
    EXPECT_EQ(PathOf("A\\..\\..\\B "), "\\A\\..\\..\\B ");
}

// Below the folder they name no root.
TEST_F(HostileFileIds, OfAbsolutePathsAreBelowTheFolder) {
    EXPECT_EQ(PathOf("\\ETC\\X"), "\\ETC\\X");
    EXPECT_EQ(PathOf("\\\\SERVER\\X"), "\\\\SERVER\\X");
    EXPECT_EQ(PathOf("C:\\X"), "\\C:\\X");
}

TEST_F(HostileFileIds, OfDevicesAreNamesLikeOthers) {
    for (const char* name : {"CON ", "NUL ", "COM1", "AUX.DCM ", "PIPE\\X"})
        EXPECT_EQ(PathOf(name), std::string("\\") + name);
}

TEST_F(HostileFileIds, OfAnyLengthAreCut) {
    EXPECT_LE(PathOf(std::string(60000, 'X')).size(), 259u);
    EXPECT_LE(PathOf(std::string(30000, '\\')).size(), 259u);
}

TEST_F(HostileFileIds, MayHoldAnyBytes) {
    PathOf(std::string(64, '\xFF'));
    PathOf(std::string(64, '\0'));
    EXPECT_EQ(PathOf("%s%n%d%x"), "\\%S%N%D%X");
}

}  // namespace
