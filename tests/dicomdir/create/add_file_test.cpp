// Single files that join a hierarchy of the caller's.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "dicomdir/create/scan_fixture.h"
#include "pgkit/pgkit.h"
#include "support/browsed_directory.h"
#include "support/deflated.h"
#include "support/host_system.h"
#include "support/save_modes.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

class AddFile : public ScanTest {
  protected:
    ~AddFile() override { pgEmptyPatientList(&patients_); }

    uint32_t Add(const std::string& path, const char* profile = nullptr) {
        return AddTo(Directory(), path, profile);
    }
    uint32_t AddTo(const std::string& directory, const std::string& path,
                   const char* profile = nullptr) {
        return pgAddFile(&patients_, directory.c_str(), path.c_str(), profile, &options_);
    }

    PGX_DicomDirLeafNode& Leaf() {
        auto* patient = static_cast<PGX_DicomDirPatientNode*>(patients_.GetHead());
        auto* study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
        auto* series = static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
        return *static_cast<PGX_DicomDirLeafNode*>(series->leaves.GetHead());
    }

    // Empties the hierarchy for another try.
    void StartAnew() { pgEmptyPatientList(&patients_); }

    PGX_List patients_;
};

TEST_F(AddFile, AddsALeafThatRefersToItByItsPathBelowTheDirectory) {
    Write("ST1/SE1/IM1", Instance(1));
    EXPECT_EQ(Add(Directory() + "\\ST1\\SE1\\IM1"), 0u);
    EXPECT_EQ(Outline(&patients_), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
    EXPECT_STREQ(Leaf().referencedFileId, "ST1\\SE1\\IM1");
    EXPECT_EQ(Leaf().fullPath, Directory() + "\\ST1\\SE1\\IM1");
}

TEST_F(AddFile, OfTheDirectoryItselfHasABareName) {
    Write("IM1", Instance(1));
    EXPECT_EQ(Add(Directory() + "\\IM1"), 0u);
    EXPECT_STREQ(Leaf().referencedFileId, "IM1");
    EXPECT_EQ(Leaf().fullPath, Directory() + "\\IM1");
}

TEST_F(AddFile, TakesSlashesForBackslashes) {
    Write("ST1/SE1/IM1", Instance(1));
    EXPECT_EQ(Add(Directory() + "/ST1/SE1\\IM1"), 0u);
    EXPECT_STREQ(Leaf().referencedFileId, "ST1\\SE1\\IM1");
    EXPECT_EQ(Leaf().fullPath, Directory() + "\\ST1\\SE1\\IM1");
}

TEST_F(AddFile, DropsASecondSeparatorInFrontOfABareName) {
    Write("IM1", Instance(1));
    EXPECT_EQ(Add(Directory() + "\\/IM1"), 0u);
    EXPECT_STREQ(Leaf().referencedFileId, "IM1");
    EXPECT_EQ(Leaf().fullPath, Directory() + "\\IM1");
}

TEST_F(AddFile, ToleratesADirectoryThatEndsWithASeparator) {
    Write("SUB/IM1", Instance(1));
    for (const char* separator : {"\\", "/"}) {
        StartAnew();
        EXPECT_EQ(AddTo(Directory() + separator, Directory() + "\\SUB\\IM1"), 0u);
        EXPECT_STREQ(Leaf().referencedFileId, "SUB\\IM1");
        EXPECT_EQ(Leaf().fullPath, Directory() + "\\SUB\\IM1");
    }
    EXPECT_EQ(AddTo(Directory() + "\\", Directory() + "\\missing"), 2u);
    EXPECT_EQ(ListFile(), "2\tmissing\n");
}

// On POSIX a directory of another case is another one.
TEST_F(AddFile, FindsTheDirectoryInThePathAsTheSystemComparesIt) {
    Write("SUB/IM1", Instance(1));
    std::string path = LibraryPath(Directory() + "/SUB/IM1");
    const size_t last = LibraryPath(Directory()).rfind('\\');
    std::transform(path.begin() + static_cast<ptrdiff_t>(last),
                   path.begin() + static_cast<ptrdiff_t>(Directory().size()),
                   path.begin() + static_cast<ptrdiff_t>(last),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    if (!kIsWindows) {
        EXPECT_EQ(Add(path), 1u);
        path.replace(0, Directory().size(), LibraryPath(Directory()));
    }
    EXPECT_EQ(Add(path), 0u);
    EXPECT_STREQ(Leaf().referencedFileId, "SUB\\IM1");
}

// The file of a neighbouring directory became one of the medium.
TEST_F(AddFile, RefusesPathsThatLeadOutOfTheDirectoryAgain) {
    outside_.Write("IM1", Instance(1).Data());
    Write("SUB/IM1", Instance(2));
    const std::string up =
        "\\..\\..\\" + std::filesystem::path(outside_.Path("")).parent_path().filename().string();
    EXPECT_EQ(Add(Directory() + up + "\\IM1"), 1u);
    EXPECT_EQ(Add(Directory() + "/SUB/../SUB/IM1"), 1u);
    EXPECT_EQ(patients_.count, 0);
}

TEST_F(AddFile, RefusesNullArguments) {
    Write("IM1", Instance(1));
    const std::string directory = Directory();
    const std::string path = directory + "\\IM1";
    EXPECT_EQ(pgAddFile(nullptr, directory.c_str(), path.c_str(), "", &options_), 1u);
    EXPECT_EQ(pgAddFile(&patients_, nullptr, path.c_str(), "", &options_), 1u);
    EXPECT_EQ(pgAddFile(&patients_, directory.c_str(), nullptr, "", &options_), 1u);
    EXPECT_EQ(patients_.count, 0);
    EXPECT_FALSE(Exists("dcmdir.lst"));
}

TEST_F(AddFile, RefusesPathsThatAreNotInTheDirectory) {
    Write("IM1", Instance(1));
    const std::string elsewhere = outside_.Write("MEDIUM2", Instance(1).Data());
    EXPECT_EQ(Add(elsewhere), 1u);
    EXPECT_EQ(Add(Directory()), 1u);
    EXPECT_EQ(Add(Directory() + "\\"), 1u);
    EXPECT_EQ(Add("IM1"), 1u);
    EXPECT_EQ(Add(""), 1u);
    EXPECT_EQ(patients_.count, 0);
}

TEST_F(AddFile, NeedsNeitherProfileNorOptions) {
    Write("IM1", Instance(1));
    EXPECT_EQ(pgAddFile(&patients_, Directory().c_str(), (Directory() + "\\IM1").c_str(), nullptr,
                        nullptr),
              0u);
    EXPECT_EQ(Leaf().referencedDataSetSize, 0);
}

TEST_F(AddFile, HoldsFilesAgainstTheProfile) {
    Write("IM1", Instance(1).TransferSyntax("1.2.840.10008.1.2.4.50"));
    EXPECT_EQ(Add(Directory() + "\\IM1", "STD-GEN-CD"), 5u);
    EXPECT_EQ(Add(Directory() + "\\IM1", "STD-GEN-DVD-JPEG"), 0u);
    options_.flags = PG_DICOMDIR_SKIP_CHECKS;
    StartAnew();
    EXPECT_EQ(Add(Directory() + "\\IM1", "STD-GEN-CD"), 0u);
}

TEST_F(AddFile, StoresTheFileSizeOnDemand) {
    const InstanceFile file = Instance(1);
    Write("IM1", file);
    options_.storeFileSize = 1;
    EXPECT_EQ(Add(Directory() + "\\IM1"), 0u);
    EXPECT_EQ(Leaf().referencedDataSetSize, static_cast<int32_t>(file.Data().size()));
}

// It was that of the temporary file into which the file is inflated.
TEST_F(AddFile, StoresTheSizeOfADeflatedFileItself) {
    Write("PLAIN", Instance(1));
    const std::string path = Directory() + "/DEFLATED";
    {
        const DataSet root(pgOpenDataSetFile((Directory() + "/PLAIN").c_str(), kLoadAll));
        root->AddOrReplaceNode(0x0002, 0x0010, kDeflatedSyntax, sizeof kDeflatedSyntax - 1);
        const std::string text(1000, 'A');
        root->AddOrReplaceNode(0x0010, 0x21B0, text.data(), 1000);
        ASSERT_EQ(root->SaveDataSetAsEx(path.c_str(), kPart10Explicit), 0u);
    }
    const size_t size = ReadFile(path).size();
    ASSERT_LT(size, 1000u);
    options_.storeFileSize = 1;
    EXPECT_EQ(Add(path), 0u);
    EXPECT_EQ(Leaf().referencedDataSetSize, static_cast<int32_t>(size));
}

TEST_F(AddFile, KnowsADicomdirByItsNameInTheDirectoryItself) {
    Write("Dicomdir", Instance(1));
    Write("SUB/DICOMDIR", Instance(1));
    EXPECT_EQ(Add(Directory() + "/Dicomdir"), 4u);
    EXPECT_EQ(Add(Directory() + "/SUB/DICOMDIR"), 0u);
}

TEST_F(AddFile, KnowsAnInstanceOfAnEarlierCall) {
    Write("A", Instance(1));
    Write("SUB/B", Instance(1));
    EXPECT_EQ(Add(Directory() + "\\A"), 0u);
    EXPECT_EQ(Add(Directory() + "\\SUB\\B"), 6u);
    EXPECT_EQ(Outline(&patients_), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(AddFile, OrdersLeavesOverSeveralCalls) {
    for (int number : {5, 2, 9}) {
        const std::string name = "IM" + std::to_string(number);
        Write(name, Instance(number));
        EXPECT_EQ(Add(Directory() + "\\" + name), 0u);
    }
    EXPECT_EQ(Outline(&patients_), "ID1(1.2.3(1.2.3.4(1.2.3.4.2 1.2.3.4.5 1.2.3.4.9)))");
}

TEST_F(AddFile, AppendsRefusalsToTheListAndStartsNone) {
    Write("SUB/A", Bytes{1});
    Write("IM1", Instance(1));
    Add(Directory() + "/IM1");
    EXPECT_FALSE(Exists("dcmdir.lst"));
    Add(Directory() + "/SUB/A");
    Add(Directory() + "/IM1");
    EXPECT_EQ(ListFile(), "2\tSUB\\A\n6\tIM1\n");
}

TEST_F(AddFile, WritesNoListOnDemand) {
    Write("A", Bytes{1});
    options_.flags = PG_DICOMDIR_NO_LIST;
    EXPECT_EQ(Add(Directory() + "\\A"), 2u);
    EXPECT_FALSE(Exists("dcmdir.lst"));
}

TEST_F(AddFile, FillsNoMissingKeys) {
    Write("A", InstanceFile().Patient("", "X"));
    options_.fillMissingKeys = 1;
    EXPECT_EQ(Add(Directory() + "\\A"), 0u);
    EXPECT_STREQ(static_cast<PGX_DicomDirPatientNode*>(patients_.GetHead())->patientId, "");
}

TEST_F(AddFile, MakesAHierarchyThatCanBeWritten) {
    Write("SUB/A", Instance(1));
    Add(Directory() + "/SUB/A");
    EXPECT_EQ(pgBuildDicomdirEx(&patients_, Directory().c_str(), "DISC 1"), 0u);
    EXPECT_EQ(TextOf(Child(Open().get(), 0x0004, 0x1130)), "DISC 1");
    EXPECT_EQ(ListFile(), "0\tSUB\\A\n");
}

}  // namespace
