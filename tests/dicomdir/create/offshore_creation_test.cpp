// A DICOMDIR made of files that the caller names one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "dicomdir/create/scan_fixture.h"
#include "pgkit/pgkit.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/patient_list.h"
#include "support/temp_dir.h"

namespace {

using namespace pgkit_test;

constexpr uint32_t kNoHandle = 0xFFFFFFFF;

class OffshoreCreation : public ScanTest {
  protected:
    ~OffshoreCreation() override { End(); }

    void Start(const char* profile = nullptr) {
        handle_ = pgStartCreateOffshoreDicomdir(Directory().c_str(), profile, &options_);
        ASSERT_NE(handle_, nullptr);
    }
    // The file lies outside of the medium.
    uint32_t Add(const std::string& name, const InstanceFile& file) {
        return AddPath(name, outside_.Write("source" + std::to_string(++sources_), file.Data()));
    }
    uint32_t AddPath(const std::string& name, const std::string& path) {
        return pgAddFileToOffshoreDicomdir(handle_, name.c_str(), path.c_str());
    }
    uint32_t End() {
        void* const handle = handle_;
        handle_ = nullptr;
        return pgEndCreateOffshoreDicomdir(handle);
    }

    std::string Hierarchy() {
        PatientList patients;
        CapturePrinted(
            [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
        return Outline(patients.get());
    }

    std::string FileSetId() { return TextOf(Child(Open().get(), 0x0004, 0x1130)); }

    PGX_Node* FirstRecord(PGX_Node* root) { return Child(root, 0x0004, 0x1220)->first; }
    PGX_Node* LastRecord(PGX_Node* root) {
        PGX_Node* record = FirstRecord(root);
        while (record->next != nullptr)
            record = record->next;
        return record;
    }

    void* handle_ = nullptr;

  private:
    int sources_ = 0;
};

TEST_F(OffshoreCreation, WritesTheFilesThatWereAdded) {
    Start();
    EXPECT_EQ(Add("ST1\\IM1", Instance(1)), 0u);
    EXPECT_EQ(Add("ST1\\IM2", Instance(2)), 0u);
    EXPECT_EQ(Add("ST2\\IM1", Instance(3).Patient("ID2", "ROE^JANE")), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Hierarchy(),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2))) ID2(1.2.3(1.2.3.4(1.2.3.4.3)))");
}

// Its lines, without the header.
std::string ListAt(const std::string& path) {
    if (!std::filesystem::exists(path)) return "no list";
    const Bytes bytes = pgkit_test::ReadFile(path);
    std::string text(bytes.begin(), bytes.end());
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    const size_t headerEnd = text.find("\n\n");
    return headerEnd == std::string::npos ? text : text.substr(headerEnd + 2);
}

TEST_F(OffshoreCreation, ListsFilesAlsoWhenTheListIsTakenAway) {
    options_.flags = 0;
    Start();
    EXPECT_EQ(AddPath("missing", "missing"), 2u);
    EXPECT_EQ(ListAt(medium_.Path("dcmdir.lst")), "2\tmissing\n");
    std::filesystem::remove(medium_.Path("dcmdir.lst"));
    EXPECT_EQ(ListAt(medium_.Path("dcmdir.lst")), "no list");
    EXPECT_EQ(AddPath("missing", "missing"), 2u);
    EXPECT_EQ(ListAt(medium_.Path("dcmdir.lst")), "2\tmissing\n");
}

TEST_F(OffshoreCreation, RefersToFilesByTheNamesThatWereGiven) {
    Start();
    Add("Sub dir\\a.dcm", Instance(1));
    End();
    const DataSet root = Open();
    EXPECT_EQ(TextOf(Child(LastRecord(root.get()), 0x0004, 0x1500)), "Sub dir\\a.dcm ");
}

TEST_F(OffshoreCreation, NeedsADirectory) {
    EXPECT_EQ(pgStartCreateOffshoreDicomdir(nullptr, "STD-GEN-CD", &options_), nullptr);
}

TEST_F(OffshoreCreation, GivesNoCodeAndNoResultWithoutAHandle) {
    EXPECT_EQ(pgAddFileToOffshoreDicomdir(nullptr, "A", Directory().c_str()), kNoHandle);
    EXPECT_EQ(pgAddFileToOffshoreDicomdir(nullptr, nullptr, nullptr), kNoHandle);
    EXPECT_EQ(pgEndCreateOffshoreDicomdir(nullptr), kNoHandle);
}

TEST_F(OffshoreCreation, RefusesNullNames) {
    Start();
    EXPECT_EQ(pgAddFileToOffshoreDicomdir(handle_, nullptr, Directory().c_str()), 1u);
    EXPECT_EQ(pgAddFileToOffshoreDicomdir(handle_, "A", nullptr), 1u);
    EXPECT_EQ(ListLines(), "");
}

// The DICOMDIR referred to files that nobody reaches.
TEST_F(OffshoreCreation, RefusesAndListsNamesThatCannotBeFileIds) {
    options_.flags = 0;
    Start();
    const std::string path = outside_.Write("A", Instance(1).Data());
    std::string lines;
    for (const std::string& name :
         {std::string(), std::string(".."), std::string("..\\A"), std::string("A\\..\\..\\A"),
          std::string("A/../A"), std::string(260, 'A')}) {
        EXPECT_EQ(AddPath(name, path), 1u) << name;
        lines += "1\t" + path + "\n";
    }
    EXPECT_EQ(ListLines(), lines);
    EXPECT_EQ(AddPath(std::string(259, 'A'), path), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(ListLines(), lines + "0\t" + std::string(259, 'A') + "\n");
}

TEST_F(OffshoreCreation, HoldsNoFileAgainstAProfile) {
    for (const char* profile : {"STD-GEN-MIME", "NO-PROFILE", ""}) {
        Start(profile);
        EXPECT_EQ(Add("A", Instance(1).TransferSyntax("1.2.840.10008.1.2.4.50")), 0u);
        End();
    }
}

TEST_F(OffshoreCreation, KnowsAnInstanceThatWasAdded) {
    Start();
    EXPECT_EQ(Add("A", Instance(1)), 0u);
    EXPECT_EQ(Add("B", Instance(1)), 6u);
    EXPECT_EQ(Add("C", Instance(1).Series("1.2.9")), 0u);
    End();
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.9(1.2.3.4.1) 1.2.3.4(1.2.3.4.1)))");
}

TEST_F(OffshoreCreation, GivesTheCodesOfTheGate) {
    Start();
    EXPECT_EQ(Add("dicomdir", Instance(1)), 4u);
    EXPECT_EQ(Add("SUB\\DICOMDIR", Instance(1)), 0u);
    EXPECT_EQ(Add("A", Instance(2).SopClass("1.2.840.10008.1.3.10")), 4u);
    EXPECT_EQ(Add("A", Instance(2).Remove(0x0008, 0x0018)), 7u);
    EXPECT_EQ(Add("A", Instance(2).Remove(0x0020, 0x000E)), 8u);
    EXPECT_EQ(Add("A", Instance(2).Remove(0x0020, 0x000D).Remove(0x0020, 0x000E)), 9u);
    EXPECT_EQ(AddPath("A", outside_.Write("text", "no DICOM at all")), 2u);
    EXPECT_EQ(AddPath("A", outside_.Path("missing")), 2u);
    EXPECT_EQ(AddPath("A", outside_.Path("")), 2u);
}

TEST_F(OffshoreCreation, TakesFilesWithoutPreambleWhenChecksAreSkipped) {
    const std::string path = outside_.Write("bare", InstanceFile().DataWithoutPreamble());
    Start();
    EXPECT_EQ(AddPath("A", path), 2u);
    End();
    options_.flags = PG_DICOMDIR_SKIP_CHECKS;
    Start();
    EXPECT_EQ(AddPath("A", path), 0u);
}

TEST_F(OffshoreCreation, StartsTheAcceptanceListAtOnce) {
    std::ofstream(medium_.Path("dcmdir.lst")) << "what was there\n\n";
    Start();
    EXPECT_EQ(ListLines(), "");
    EXPECT_EQ(ListFile().substr(0, 32), ";*** DICOMDIR CODES SUMMARY ***\n");
}

TEST_F(OffshoreCreation, ListsRefusedFilesAtOnceAndAcceptedOnesAtTheEnd) {
    Write("IM1", Instance(1));
    Start();
    AddPath("IM1", Directory() + "\\IM1");
    AddPath("IM1", Directory() + "\\IM1");
    const std::string outside = outside_.Path("missing");
    AddPath("X", outside);
    EXPECT_EQ(ListLines(), "6\tIM1\n2\t" + outside + "\n");
    const std::string elsewhere = outside_.Write("elsewhere", Instance(2).Data());
    AddPath("IM2", elsewhere);
    End();
    EXPECT_EQ(ListLines(), "6\tIM1\n2\t" + outside + "\n0\tIM1\n0\tIM2\n");
}

TEST_F(OffshoreCreation, WritesNoListOnDemand) {
    options_.flags = PG_DICOMDIR_NO_LIST;
    Start();
    Add("A", Instance(1));
    Add("A", Instance(1));
    End();
    EXPECT_FALSE(Exists("dcmdir.lst"));
    EXPECT_TRUE(Exists("DICOMDIR"));
}

TEST_F(OffshoreCreation, WithoutFilesWritesAnEmptyDicomdir) {
    Start();
    EXPECT_EQ(End(), 0u);
    const DataSet root = Open();
    EXPECT_EQ(FirstRecord(root.get()), nullptr);
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1200)->GetULValue(), 0u);
}

TEST_F(OffshoreCreation, WritesNothingBeforeItsEnd) {
    Start();
    Add("A", Instance(1));
    EXPECT_FALSE(Exists("DICOMDIR"));
}

TEST_F(OffshoreCreation, KeepsACopyOfTheOptions) {
    std::copy_n("DISC 1", 7, options_.fileSetId);
    options_.storeFileSize = 1;
    Start();
    options_ = {};
    const InstanceFile file = Instance(1);
    Add("A", file);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(FileSetId(), "DISC 1");
    const DataSet root = Open();
    EXPECT_EQ(std::stoul(TextOf(Child(LastRecord(root.get()), 0x2137, 0x1040))),
              file.Data().size());
}

TEST_F(OffshoreCreation, NeedsNoOptions) {
    handle_ = pgStartCreateOffshoreDicomdir(Directory().c_str(), nullptr, nullptr);
    EXPECT_EQ(Add("A", Instance(1)), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(FileSetId(), "KIT_ZORVA_2865");
    EXPECT_EQ(Tags(LastRecord(Open().get())).find("2137,"), std::string::npos);
    EXPECT_TRUE(Exists("dcmdir.lst"));
}

TEST_F(OffshoreCreation, NeverFillsMissingKeys) {
    options_.fillMissingKeys = 1;
    Start();
    Add("A", InstanceFile().Patient("", "X"));
    End();
    EXPECT_EQ(Child(FirstRecord(Open().get()), 0x0010, 0x0020)->length, 0u);
}

TEST_F(OffshoreCreation, DropsOneTrailingBackslash) {
    Write("IM1", Instance(1));
    handle_ = pgStartCreateOffshoreDicomdir((Directory() + "\\").c_str(), nullptr, nullptr);
    EXPECT_EQ(AddPath("IM1", Directory() + "\\IM1"), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(ListLines(), "0\tIM1\n");
}

TEST_F(OffshoreCreation, CutsADirectoryThatIsTooLong) {
    std::string directory = Directory() + "\\";
    directory.append(511 - directory.size(), 'x');
    handle_ = pgStartCreateOffshoreDicomdir((directory + "yz").c_str(), nullptr, nullptr);
    uint32_t result = 0;
    const Printed printed = CapturePrinted([&] { result = End(); });
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open " + directory + "\\DICOMDIR\n");
}

TEST_F(OffshoreCreation, FailsAtItsEndWhereItCannotWrite) {
    const std::string missing = outside_.Path("missing");
    handle_ = pgStartCreateOffshoreDicomdir(missing.c_str(), nullptr, nullptr);
    ASSERT_NE(handle_, nullptr);
    EXPECT_EQ(Add("A", Instance(1)), 0u);
    uint32_t result = 0;
    const Printed printed = CapturePrinted([&] { result = End(); });
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open " + missing + "\\DICOMDIR\n");
}

TEST_F(OffshoreCreation, KeepsSeveralCreationsApart) {
    std::filesystem::create_directory(outside_.Path("OTHER"));
    Start();
    void* const other =
        pgStartCreateOffshoreDicomdir(outside_.Path("OTHER").c_str(), nullptr, nullptr);
    EXPECT_EQ(Add("A", Instance(1)), 0u);
    const std::string path = outside_.Write("again", Instance(1).Data());
    EXPECT_EQ(pgAddFileToOffshoreDicomdir(other, "A", path.c_str()), 0u);
    EXPECT_EQ(pgEndCreateOffshoreDicomdir(other), 0u);
    EXPECT_EQ(Add("B", Instance(2)), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
}

TEST_F(OffshoreCreation, IsReadBackWithTheLocationOfItsFiles) {
    std::filesystem::create_directory(outside_.Path("ARCHIVE"));
    outside_.Write("ARCHIVE/A", Instance(1).Data());
    Start();
    AddPath("A", LibraryPath(outside_.Path("ARCHIVE/A")));
    EXPECT_EQ(End(), 0u);
    PatientList patients;
    const std::string location = LibraryPath(outside_.Path("ARCHIVE"));
    CapturePrinted([&] {
        patients.reset(
            pgGetPatientListFromOffshoreFile(medium_.Path("DICOMDIR").c_str(), location.c_str()));
    });
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(patients->GetHead());
    auto* study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
    auto* series = static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
    auto* leaf = static_cast<PGX_DicomDirLeafNode*>(series->leaves.GetHead());
    // The name is padded, and the file is found all the same.
    EXPECT_STREQ(leaf->referencedFileId, "A ");
    EXPECT_EQ(pgIsDicomFile(leaf->fullPath), 1);
}

}  // namespace
