#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/patient_list.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::CapturePrinted;
using pgkit_test::DirectoryBuilder;
using pgkit_test::LibraryPath;
using pgkit_test::Outline;
using pgkit_test::PatientList;
using pgkit_test::Printed;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;

DirectoryBuilder OneImage() {
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("4711", "DOE"), "1.2");
    directory.Image(directory.Series(study, "1.2.3", "CT"), "1.2.3.4", 1, "img\\x1");
    return directory;
}

using PgDataSetPointer = std::unique_ptr<PGX_Node, void (*)(PGX_Node*)>;

class OpenDirectory : public testing::Test {
  protected:
    std::string Write(const char* name, const Bytes& content) {
        return LibraryPath(files_.Write(name, content));
    }
    std::string Path(const char* name) { return LibraryPath(files_.Path(name)); }
    PGX_DicomDirLeafNode& FirstLeaf() {
        CapturePrinted([&] { directory_.Browse(nullptr, nullptr); });
        auto* patient = static_cast<PGX_DicomDirPatientNode*>(directory_.patientList->GetHead());
        auto* study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
        auto* series = static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
        return *static_cast<PGX_DicomDirLeafNode*>(series->leaves.GetHead());
    }
    std::string FirstFullPath() { return FirstLeaf().fullPath; }

    TempDir files_;
    PGX_DicomDir directory_;
};

TEST_F(OpenDirectory, HoldsNothingAtFirst) {
    EXPECT_EQ(directory_.dataSet, nullptr);
    EXPECT_EQ(directory_.patientList, nullptr);
    EXPECT_EQ(directory_.GetPatientList(), nullptr);
    EXPECT_EQ(directory_.leafCount, 0);
}

TEST_F(OpenDirectory, GivesOneAndTheFolder) {
    const std::string path = Write("DICOMDIR", OneImage().Build());
    EXPECT_EQ(directory_.OpenDicomDir(path.c_str(), 0x20000), 1);
    EXPECT_NE(directory_.dataSet, nullptr);
    EXPECT_EQ(directory_.folder, path.substr(0, path.rfind('\\')));
}

TEST_F(OpenDirectory, NullOrEmptyPathFailsWithoutAMessage) {
    const Printed printed = CapturePrinted([&] {
        EXPECT_EQ(directory_.OpenDicomDir(nullptr, 0x20000), 0);
        EXPECT_EQ(directory_.OpenDicomDir("", 0x20000), 0);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

TEST_F(OpenDirectory, MissingFileIsReported) {
    const std::string path = Path("NOTHING");
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(directory_.OpenDicomDir(path.c_str(), 0x20000), 0); });
    EXPECT_EQ(printed.out, "** PGX_DicomDir::OpenDicomDir file open failed... <" + path + ">\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(directory_.dataSet, nullptr);
}

TEST_F(OpenDirectory, LoadLimitDecidesWhichValuesAreLoaded) {
    const std::string path = Write("DICOMDIR", OneImage().Build());
    directory_.OpenDicomDir(path.c_str(), 0);
    EXPECT_EQ(directory_.dataSet->FindNode(0x0004, 0x1200)->value, nullptr);
    directory_.OpenDicomDir(path.c_str(), 64);
    EXPECT_NE(directory_.dataSet->FindNode(0x0004, 0x1200)->value, nullptr);
}

// Paths below a bare name used to begin with it, as if it were a folder, and led to no file.
TEST_F(OpenDirectory, ABareNameIsInTheCurrentFolder) {
    const auto before = std::filesystem::current_path();
    Write("DICOMDIR", OneImage().Build());
    std::filesystem::create_directory(files_.Path("IMG"));
    Write("IMG/X1", OneImage().Build());
    std::filesystem::current_path(files_.Path(""));
    EXPECT_EQ(directory_.OpenDicomDir("DICOMDIR", 0x20000), 1);
    EXPECT_STREQ(directory_.folder, ".");
    EXPECT_EQ(FirstFullPath(), ".\\IMG\\X1");
    const PgDataSetPointer opened(pgOpenDataSetFile(FirstLeaf().fullPath, 64), pgCloseDataSet);
    EXPECT_NE(opened, nullptr);
    directory_.OpenDicomDir(nullptr, 0);
    std::filesystem::current_path(before);
}

// A path with slashes alone used to be the folder as a whole.
TEST_F(OpenDirectory, SlashesSeparateTooAndStayInTheFolder) {
    std::filesystem::create_directories(files_.Path("disc/IMG"));
    const std::string path = files_.Write("disc/DICOMDIR", OneImage().Build());
    files_.Write("disc/IMG/X1", OneImage().Build());
    for (const char* separator : {"/", "\\"}) {
        const std::string folder = path.substr(0, path.size() - 9);
        EXPECT_EQ(directory_.OpenDicomDir((folder + separator + "DICOMDIR").c_str(), 0x20000), 1);
        EXPECT_EQ(directory_.folder, folder);
        EXPECT_EQ(FirstFullPath(), pgkit_test::Upper(folder) + "\\IMG\\X1");
        const PgDataSetPointer opened(pgOpenDataSetFile(FirstLeaf().fullPath, 64), pgCloseDataSet);
        EXPECT_NE(opened, nullptr);
    }
}

TEST_F(OpenDirectory, TakesAPathOutOfTheListThatItDiscards) {
    directory_.OpenDicomDir(Write("DICOMDIR", OneImage().Build()).c_str(), 0x20000);
    std::filesystem::create_directory(files_.Path("IMG"));
    Write("IMG/X1", OneImage().Build());
    EXPECT_EQ(directory_.OpenDicomDir(FirstLeaf().fullPath, 0x20000), 1);
    EXPECT_EQ(directory_.folder, pgkit_test::Upper(Path("IMG")));
}

TEST_F(OpenDirectory, DiscardsWhatWasOpen) {
    const std::string path = Write("DICOMDIR", OneImage().Build());
    directory_.OpenDicomDir(path.c_str(), 0x20000);
    CapturePrinted([&] { directory_.Browse(nullptr, nullptr); });
    EXPECT_EQ(directory_.leafCount, 1);
    EXPECT_EQ(directory_.OpenDicomDir("", 0), 0);
    EXPECT_EQ(directory_.GetPatientList(), nullptr);
    EXPECT_EQ(directory_.dataSet, nullptr);
    EXPECT_EQ(directory_.IsDicomDir(), 0);
}

// The folder of a long path is cut at its last backslash first and to 259 characters then.
TEST_F(OpenDirectory, FolderIsCutToFit) {
    directory_.RelocateOffshoreDicomdir((std::string(300, 'F') + "\\DICOMDIR").c_str());
    EXPECT_EQ(directory_.folder, std::string(259, 'F'));
    directory_.RelocateOffshoreDicomdir(
        (std::string(250, 'F') + "\\" + std::string(50, 'N')).c_str());
    EXPECT_EQ(directory_.folder, std::string(250, 'F'));
}

class Recognition : public OpenDirectory {
  protected:
    int32_t IsDicomDir(const Bytes& content) {
        EXPECT_EQ(directory_.OpenDicomDir(Write("FILE", content).c_str(), 0x20000), 1);
        return directory_.IsDicomDir();
    }
};

TEST_F(Recognition, NothingOpenIsNone) { EXPECT_EQ(directory_.IsDicomDir(), 0); }

TEST_F(Recognition, TheMediaStorageSopClassTells) {
    DirectoryBuilder directory = OneImage();
    EXPECT_EQ(IsDicomDir(directory.Build()), 1);
    for (const char* uid :
         {"1.2.840.10008.5.1.4.1.1.2", "1.2.840.10008.1.3.1", "1.2.840.10008.1.3.101", ""}) {
        directory.sopClassUid = uid;
        EXPECT_EQ(IsDicomDir(directory.Build()), 0) << uid;
    }
}

TEST_F(Recognition, FileWithoutMediaStorageSopClassIsNone) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").ElementUL(0x0004, 0x1200, 0);
    EXPECT_EQ(IsDicomDir(stream.Data()), 0);
}

class Relocation : public OpenDirectory {
  protected:
    void SetUp() override {
        directory_.OpenDicomDir(Write("DICOMDIR", OneImage().Build()).c_str(), 0x20000);
    }
};

TEST_F(Relocation, NullChangesNothing) {
    const std::string folder = directory_.folder;
    EXPECT_EQ(directory_.RelocateOffshoreDicomdir(nullptr), 0);
    EXPECT_EQ(directory_.folder, folder);
}

TEST_F(Relocation, AnExistingFolderIsTaken) {
    const std::string folder = Path("MEDIA");
    std::filesystem::create_directory(files_.Path("MEDIA"));
    EXPECT_EQ(directory_.RelocateOffshoreDicomdir(folder.c_str()), 1);
    EXPECT_EQ(directory_.folder, folder);
    EXPECT_EQ(FirstFullPath(), pgkit_test::Upper(folder) + "\\IMG\\X1");
}

TEST_F(Relocation, TheFolderOfAFileIsTaken) {
    std::filesystem::create_directory(files_.Path("MEDIA"));
    const std::string file = LibraryPath(files_.Write("MEDIA/FILE", "content"));
    EXPECT_EQ(directory_.RelocateOffshoreDicomdir(file.c_str()), 1);
    EXPECT_EQ(directory_.folder, Path("MEDIA"));
    EXPECT_EQ(FirstFullPath(), pgkit_test::Upper(Path("MEDIA")) + "\\IMG\\X1");
}

TEST_F(Relocation, SlashesSeparateToo) {
    EXPECT_EQ(directory_.RelocateOffshoreDicomdir("no/such\\other/place"), 1);
    EXPECT_STREQ(directory_.folder, "no/such\\other");
    EXPECT_EQ(FirstFullPath(), "NO/SUCH\\OTHER\\IMG\\X1");
}

TEST_F(Relocation, APathThatDoesNotExistIsCutAtItsLastBackslash) {
    EXPECT_EQ(directory_.RelocateOffshoreDicomdir("Q:\\no\\such\\place"), 1);
    EXPECT_STREQ(directory_.folder, "Q:\\no\\such");
    EXPECT_EQ(FirstFullPath(), "Q:\\NO\\SUCH\\IMG\\X1");
    EXPECT_EQ(directory_.RelocateOffshoreDicomdir("nowhere"), 1);
    EXPECT_STREQ(directory_.folder, "nowhere");
}

TEST_F(Relocation, ReferencedFileIdsStay) {
    directory_.RelocateOffshoreDicomdir("Q:\\no\\such\\place");
    FirstFullPath();
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(directory_.patientList->GetHead());
    auto* study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
    auto* series = static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
    EXPECT_STREQ(static_cast<PGX_DicomDirLeafNode*>(series->leaves.GetHead())->referencedFileId,
                 "img\\x1");
}

class Browsing : public OpenDirectory {
  protected:
    void Open(DirectoryBuilder builder) {
        directory_.OpenDicomDir(Write("DICOMDIR", builder.Build()).c_str(), 0x20000);
    }
    PGX_List* BrowseQuietly() {
        PGX_List* patients = nullptr;
        CapturePrinted([&] { patients = directory_.Browse(nullptr, nullptr); });
        return patients;
    }
};

TEST_F(Browsing, WithNothingOpenGivesNullAndAMessage) {
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(directory_.Browse(nullptr, nullptr), nullptr); });
    EXPECT_EQ(printed.out, "** PGX_DicomDir::Patient list is empty (no DICOMDIR file)\n");
    EXPECT_EQ(printed.err, "");
}

TEST_F(Browsing, GivesTheListThatTheObjectKeeps) {
    Open(OneImage());
    PGX_List* patients = BrowseQuietly();
    EXPECT_EQ(Outline(patients), "4711(1.2(1.2.3(1.2.3.4)))");
    EXPECT_EQ(directory_.GetPatientList(), patients);
}

TEST_F(Browsing, AgainBuildsTheListAnew) {
    Open(OneImage());
    BrowseQuietly();
    PGX_List* patients = BrowseQuietly();
    EXPECT_EQ(Outline(patients), "4711(1.2(1.2.3(1.2.3.4)))");
    EXPECT_EQ(directory_.leafCount, 1);
}

TEST_F(Browsing, AListThatWasGivenAwayLivesOn) {
    Open(OneImage());
    PGX_List* first = BrowseQuietly();
    const PatientList patients(directory_.GiveAndForgetPatientList());
    EXPECT_EQ(patients.get(), first);
    EXPECT_EQ(directory_.GetPatientList(), nullptr);
    EXPECT_EQ(directory_.leafCount, 0);
    EXPECT_EQ(directory_.GiveAndForgetPatientList(), nullptr);

    PGX_List* second = BrowseQuietly();
    EXPECT_NE(second, patients.get());
    EXPECT_EQ(Outline(patients.get()), "4711(1.2(1.2.3(1.2.3.4)))");
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(patients->GetHead());
    EXPECT_NE(patient->record->FindNode(0x0010, 0x0020), nullptr);
}

TEST_F(Browsing, AnImageFileGivesAnEmptyList) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").ElementUS(0x0028, 0x0010, 1);
    directory_.OpenDicomDir(Write("IMAGE", stream.Data()).c_str(), 0x20000);
    PGX_List* patients = nullptr;
    const Printed printed = CapturePrinted([&] { patients = directory_.Browse(nullptr, nullptr); });
    ASSERT_NE(patients, nullptr);
    EXPECT_EQ(patients->GetCount(), 0);
    EXPECT_EQ(printed.out,
              "ResolveDicomdirLinks DICOMDIR parsing error: DirectoryRecordSequence not found\n"
              "DICOMDIR parsing error: DirectoryRecordSequence not found\n");
}

TEST_F(Browsing, AnEmptySequenceGivesAnEmptyList) {
    Open(DirectoryBuilder());
    PGX_List* patients = nullptr;
    const Printed printed = CapturePrinted([&] { patients = directory_.Browse(nullptr, nullptr); });
    ASSERT_NE(patients, nullptr);
    EXPECT_EQ(patients->GetCount(), 0);
    EXPECT_EQ(printed.out,
              "DICOMDIR parsing error: First patient not found (firstPatientOffset + 8 = 8)\n");
}

struct Call {
    int32_t reason;
    std::string path;
    std::string message;
    void* userData;
};

TEST_F(Browsing, CallsBackOncePerLeaf) {
    DirectoryBuilder builder = OneImage();
    builder.Image(2, "1.2.3.5", 2, "IMG\\X2");
    builder.Image(2, "1.2.3.4", 3, "IMG\\DUPLICATE");
    Open(builder);
    std::vector<Call> calls;
    const PGX_DicomDirCallback note = [](PGX_DicomDirCallbackReason* reason, const char* message,
                                         void* userData) -> int32_t {
        static_cast<std::vector<Call>*>(userData)->push_back(
            {reason->reason, reason->path, message, userData});
        return -1;  // is ignored
    };
    CapturePrinted([&] { directory_.Browse(note, &calls); });
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].reason, 0);
    EXPECT_EQ(calls[0].path, pgkit_test::Upper(directory_.folder) + "\\IMG\\X1");
    EXPECT_EQ(calls[0].message, "1 image found");
    EXPECT_EQ(calls[0].userData, &calls);
    EXPECT_EQ(calls[1].path, pgkit_test::Upper(directory_.folder) + "\\IMG\\X2");
    EXPECT_EQ(calls[1].message, "2 images found");
    EXPECT_EQ(directory_.leafCount, 2);
}

TEST_F(Browsing, CountsLeavesFromZeroEachTime) {
    Open(OneImage());
    std::string message;
    const PGX_DicomDirCallback note = [](PGX_DicomDirCallbackReason*, const char* text,
                                         void* userData) -> int32_t {
        *static_cast<std::string*>(userData) = text;
        return 0;
    };
    CapturePrinted([&] {
        directory_.Browse(note, &message);
        directory_.Browse(note, &message);
    });
    EXPECT_EQ(message, "1 image found");
}

}  // namespace
