#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/patient_list.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::DirectoryBuilder;
using pgkit_test::LibraryPath;
using pgkit_test::Outline;
using pgkit_test::PatientList;
using pgkit_test::Printed;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;

class PatientListFile : public testing::Test {
  protected:
    std::string WriteDirectory() {
        DirectoryBuilder directory;
        const size_t study = directory.Study(directory.Patient("P", "DOE"), "S");
        directory.Image(directory.Series(study, "E", "CT"), "1", 1, "img\\x1");
        return LibraryPath(files_.Write("DICOMDIR", directory.Build()));
    }

    std::string Read(const std::string& path) {
        return CapturePrinted([&] { patients_.reset(pgGetPatientListFromFile(path.c_str())); }).out;
    }
    std::string ReadOffshore(const std::string& path, const char* location) {
        return CapturePrinted([&] {
                   patients_.reset(pgGetPatientListFromOffshoreFile(path.c_str(), location));
               })
            .out;
    }

    PGX_DicomDirPatientNode* Patient() {
        return static_cast<PGX_DicomDirPatientNode*>(patients_->GetHead());
    }
    PGX_DicomDirStudyNode* Study() {
        return static_cast<PGX_DicomDirStudyNode*>(Patient()->studies.GetHead());
    }
    PGX_DicomDirSeriesNode* Series() {
        return static_cast<PGX_DicomDirSeriesNode*>(Study()->series.GetHead());
    }
    PGX_DicomDirLeafNode* Leaf() {
        return static_cast<PGX_DicomDirLeafNode*>(Series()->leaves.GetHead());
    }

    TempDir files_;
    PatientList patients_;
};

TEST_F(PatientListFile, GivesTheHierarchy) {
    EXPECT_EQ(Read(WriteDirectory()), "Patient created DOE\n");
    EXPECT_EQ(Outline(patients_.get()), "P(S(E(1)))");
}

TEST_F(PatientListFile, ThatIsMissingGivesNull) {
    const std::string path = LibraryPath(files_.Path("NOTHING"));
    EXPECT_EQ(Read(path), "** PGX_DicomDir::OpenDicomDir file open failed... <" + path + ">\n");
    EXPECT_EQ(patients_, nullptr);
    EXPECT_EQ(pgGetPatientListFromFile(nullptr), nullptr);
    EXPECT_EQ(pgGetPatientListFromFile(""), nullptr);
}

TEST_F(PatientListFile, ThatIsAnImageGivesAnEmptyList) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").ElementUS(0x0028, 0x0010, 1);
    Read(files_.Write("IMAGE", stream.Data()));
    ASSERT_NE(patients_, nullptr);
    EXPECT_EQ(patients_->GetCount(), 0);
}

TEST_F(PatientListFile, GivesObjectsWithoutRecords) {
    Read(WriteDirectory());
    EXPECT_EQ(Patient()->record, nullptr);
    EXPECT_EQ(Study()->record, nullptr);
    EXPECT_EQ(Series()->record, nullptr);
    EXPECT_EQ(Leaf()->record, nullptr);
}

TEST_F(PatientListFile, IsClosedAgain) {
    const std::string path = WriteDirectory();
    Read(path);
    EXPECT_TRUE(std::filesystem::remove(files_.Path("DICOMDIR")));
    EXPECT_STREQ(Leaf()->instanceUid, "1");
}

TEST_F(PatientListFile, FullPathsBeginWithItsFolder) {
    const std::string path = WriteDirectory();
    Read(path);
    EXPECT_EQ(Leaf()->fullPath, pgkit_test::Upper(path.substr(0, path.rfind('\\'))) + "\\IMG\\X1");
}

TEST_F(PatientListFile, OffshorePathsBeginWithAnExistingFolder) {
    const std::string path = WriteDirectory();
    std::filesystem::create_directory(files_.Path("MEDIA"));
    const std::string folder = LibraryPath(files_.Path("MEDIA"));
    ReadOffshore(path, folder.c_str());
    EXPECT_EQ(Leaf()->fullPath, pgkit_test::Upper(folder) + "\\IMG\\X1");
    EXPECT_STREQ(Leaf()->referencedFileId, "img\\x1");
    EXPECT_EQ(Leaf()->record, nullptr);
}

TEST_F(PatientListFile, OffshorePathsBeginWithTheFolderOfAFile) {
    const std::string path = WriteDirectory();
    std::filesystem::create_directory(files_.Path("MEDIA"));
    const std::string file = LibraryPath(files_.Write("MEDIA/FILE", "content"));
    ReadOffshore(path, file.c_str());
    EXPECT_EQ(Leaf()->fullPath, pgkit_test::Upper(LibraryPath(files_.Path("MEDIA"))) + "\\IMG\\X1");
}

TEST_F(PatientListFile, OffshorePathsBeginWithAMissingLocationCut) {
    ReadOffshore(WriteDirectory(), "Q:\\no\\such");
    EXPECT_STREQ(Leaf()->fullPath, "Q:\\NO\\IMG\\X1");
}

TEST_F(PatientListFile, WithoutALocationItsOwnFolderCounts) {
    const std::string path = WriteDirectory();
    ReadOffshore(path, nullptr);
    EXPECT_EQ(Leaf()->fullPath, pgkit_test::Upper(path.substr(0, path.rfind('\\'))) + "\\IMG\\X1");
}

TEST_F(PatientListFile, OffshoreThatIsMissingGivesNull) {
    ReadOffshore(LibraryPath(files_.Path("NOTHING")), "Q:\\");
    EXPECT_EQ(patients_, nullptr);
}

TEST_F(PatientListFile, ListsCanBeEmptiedAndUsedAgain) {
    Read(WriteDirectory());
    pgEmptyPatientList(patients_.get());
    EXPECT_EQ(patients_->GetCount(), 0);
    EXPECT_EQ(patients_->GetFirstPosition(), nullptr);
    patients_->AddTail(new PGX_DicomDirPatientNode);
    EXPECT_EQ(patients_->GetCount(), 1);
}

TEST_F(PatientListFile, EmptyingNullDoesNothing) {
    const Printed printed = CapturePrinted([] { pgEmptyPatientList(nullptr); });
    EXPECT_EQ(printed.out + printed.err, "");
}

}  // namespace
