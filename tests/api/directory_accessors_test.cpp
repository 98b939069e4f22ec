#include <gtest/gtest.h>

#include <string>

#include "pgkit/accessors.h"
#include "pgkit/patient_list.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/instance_file.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::DirectoryBuilder;
using pgkit_test::InstanceFile;
using pgkit_test::LibraryPath;
using pgkit_test::Printed;
using pgkit_test::TempDir;

DirectoryBuilder TwoImages() {
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("4711", "DOE"), "1.2");
    const size_t series = directory.Series(study, "1.2.3", "CT");
    directory.Image(series, "1.2.3.4", 1);
    directory.Image(series, "1.2.3.5", 2);
    return directory;
}

int32_t CountLeaves(PGX_DicomDirCallbackReason*, const char*, void* userData) {
    ++*static_cast<int*>(userData);
    return 1;
}

TEST(DirectoryAccessors, WalkADicomdirByHandles) {
    const TempDir files;
    const std::string path = LibraryPath(files.Write("DICOMDIR", TwoImages().Build()));
    PGX_DicomDir* directory = pgKitOpenDicomDir(path.c_str(), 0x20000);
    ASSERT_NE(directory, nullptr);
    EXPECT_EQ(pgKitIsDicomDir(directory), 1);
    EXPECT_EQ(pgKitDirGetPatientList(directory), nullptr);

    int leaves = 0;
    PGX_List* patients = nullptr;
    CapturePrinted([&] { patients = pgKitDirBrowse(directory, CountLeaves, &leaves); });
    EXPECT_EQ(leaves, 2);
    EXPECT_EQ(pgKitDirGetPatientList(directory), patients);
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(pgKitListGetHead(patients));
    EXPECT_STREQ(pgKitDirGetPatientID(patient), "4711");
    EXPECT_NE(pgKitDirGetPatientNode(patient), nullptr);
    PGX_List* studies = pgKitDirGetStudyList(patient);
    auto* study = static_cast<PGX_DicomDirStudyNode*>(pgKitListGetHead(studies));
    EXPECT_STREQ(pgKitDirGetStudyUID(study), "1.2");
    PGX_List* allSeries = pgKitDirGetSeriesList(study);
    auto* series = static_cast<PGX_DicomDirSeriesNode*>(pgKitListGetHead(allSeries));
    EXPECT_STREQ(pgKitDirGetSeriesModality(series), "CT");
    PGX_List* images = pgKitDirGetLeafList(series);
    ASSERT_EQ(pgKitListGetCount(images), 2);
    auto* image = static_cast<PGX_DicomDirLeafNode*>(pgKitListGetElementAt(images, 1));
    EXPECT_EQ(pgKitDirGetLeafType(image), PG_LEAF_IMAGE);
    EXPECT_STREQ(pgKitDirGetLeafInstanceUID(image), "1.2.3.5");
    pgKitCloseDicomDir(directory);
}

TEST(DirectoryAccessors, RefuseAFileThatIsNoDicomdir) {
    const TempDir files;
    const std::string path = LibraryPath(files.Write("image", InstanceFile().Data()));
    EXPECT_EQ(pgKitOpenDicomDir(path.c_str(), 0x20000), nullptr);
}

TEST(DirectoryAccessors, ReportAFileThatCannotBeOpened) {
    const Printed printed =
        CapturePrinted([] { EXPECT_EQ(pgKitOpenDicomDir("missing\\DICOMDIR", 64), nullptr); });
    EXPECT_EQ(printed.out,
              "** PGX_DicomDir::OpenDicomDir file open failed... <missing\\DICOMDIR>\n");
}

TEST(DirectoryAccessors, ShowNoRecordsInADetachedHierarchy) {
    const TempDir files;
    const std::string path = LibraryPath(files.Write("DICOMDIR", TwoImages().Build()));
    PGX_List* patients = nullptr;
    CapturePrinted([&] { patients = pgGetPatientListFromFile(path.c_str()); });
    ASSERT_EQ(pgKitListGetCount(patients), 1);
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(pgKitListGetHead(patients));
    EXPECT_EQ(pgKitDirGetPatientNode(patient), nullptr);
    pgEmptyPatientList(patients);
    pgKitListDelete(patients);
}

}  // namespace
