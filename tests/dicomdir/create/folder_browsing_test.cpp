// Hierarchies of what a directory holds.
#include <gtest/gtest.h>

#include <string>

#include "dicomdir/create/scan_fixture.h"
#include "pgkit/pgkit.h"
#include "support/browsed_directory.h"
#include "support/patient_list.h"

namespace {

using namespace pgkit_test;

class BrowseDisk : public ScanTest {
  protected:
    ~BrowseDisk() override { pgEmptyPatientList(&patients_); }

    int32_t Browse(const char* profile = nullptr) {
        return pgBrowseDisk(Directory().c_str(), profile, &options_, &patients_, Note, this);
    }

    PGX_DicomDirPatientNode& Patient() {
        return *static_cast<PGX_DicomDirPatientNode*>(patients_.GetHead());
    }
    PGX_DicomDirStudyNode& Study() {
        return *static_cast<PGX_DicomDirStudyNode*>(Patient().studies.GetHead());
    }
    PGX_DicomDirSeriesNode& Series() {
        return *static_cast<PGX_DicomDirSeriesNode*>(Study().series.GetHead());
    }

    PGX_List patients_;
};

TEST_F(BrowseDisk, OfAnEmptyDirectoryGivesNothingButTheList) {
    EXPECT_EQ(Browse(), 0);
    EXPECT_EQ(patients_.count, 0);
    EXPECT_TRUE(Exists("dcmdir.lst"));
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n");
    EXPECT_EQ(seen_, "dcmdir.lst||2;");
}

TEST_F(BrowseDisk, GivesTheHierarchyAndWritesNoDicomdir) {
    Write("S1/A", Instance(1));
    Write("S1/B", Instance(2));
    Write("S2/C", Instance(3).Patient("ID2", "ROE^JANE"));
    EXPECT_EQ(Browse(), 2);
    EXPECT_EQ(Outline(&patients_),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2))) ID2(1.2.3(1.2.3.4(1.2.3.4.3)))");
    EXPECT_FALSE(Exists("DICOMDIR"));
    auto* leaf = static_cast<PGX_DicomDirLeafNode*>(Series().leaves.GetHead());
    EXPECT_STREQ(leaf->referencedFileId, "S1\\A");
    EXPECT_EQ(leaf->fullPath, Directory() + "\\S1\\A");
    EXPECT_EQ(leaf->record, nullptr);
}

TEST_F(BrowseDisk, TellsTheCallbackOfEveryFile) {
    Write("B", Instance(1));
    Write("A", Bytes{1});
    Write("SUB/DEEP/C", Instance(2));
    Write("SUB/D", Instance(1));
    options_.flags = PG_DICOMDIR_NO_LIST;
    EXPECT_EQ(Browse(), 1);
    EXPECT_EQ(seen_, "A||2;B||0;D|SUB|6;C|SUB\\DEEP|0;");
}

TEST_F(BrowseDisk, StopsWhenTheCallbackSaysSo) {
    Write("A", Instance(1));
    Write("B", Instance(2));
    Write("SUB/C", Instance(3));
    options_.flags = PG_DICOMDIR_NO_LIST;
    options_.fillMissingKeys = 1;
    stopAfter_ = 1;
    EXPECT_EQ(Browse(), 1);
    EXPECT_EQ(seen_, "A||0;");
    EXPECT_EQ(Outline(&patients_), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
    EXPECT_STRNE(Study().studyId, "");
}

TEST_F(BrowseDisk, NeedsNoCallbackNoProfileAndNoOptions) {
    Write("SUB/A", Instance(1));
    EXPECT_EQ(pgBrowseDisk(Directory().c_str(), nullptr, nullptr, &patients_, nullptr, nullptr), 1);
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n");
}

TEST_F(BrowseDisk, HoldsFilesAgainstTheProfile) {
    Write("A", Instance(1));
    Write("B", Instance(2).TransferSyntax("1.2.840.10008.1.2.4.50"));
    EXPECT_EQ(Browse("STD-GEN-CD"), 1);
    EXPECT_EQ(Outline(&patients_), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
    EXPECT_EQ(ListLines(), "5\tB\n2\tdcmdir.lst\n");
}

TEST_F(BrowseDisk, StaysOutOfSubdirectoriesOnDemand) {
    Write("A", Instance(1));
    Write("SUB/B", Instance(2));
    options_.flags = PG_DICOMDIR_NO_RECURSION | PG_DICOMDIR_NO_LIST;
    EXPECT_EQ(Browse(), 1);
    EXPECT_EQ(seen_, "A||0;");
}

TEST_F(BrowseDisk, WritesNoListOnDemand) {
    options_.flags = PG_DICOMDIR_NO_LIST;
    EXPECT_EQ(Browse(), 0);
    EXPECT_FALSE(Exists("dcmdir.lst"));
}

TEST_F(BrowseDisk, StartsTheListAnew) {
    Write("A", Bytes{1});
    Browse();
    Browse();
    EXPECT_EQ(ListLines(), "2\tA\n2\tdcmdir.lst\n");
}

TEST_F(BrowseDisk, AddsToWhatTheListHas) {
    Write("A", Instance(1));
    EXPECT_EQ(Browse(), 1);
    Write("B", Instance(2));
    Write("C", Instance(3).Patient("ID2", "ROE^JANE"));
    seen_ = "";
    options_.flags = PG_DICOMDIR_NO_LIST;
    std::filesystem::remove(medium_.Path("dcmdir.lst"));
    EXPECT_EQ(Browse(), 2);
    EXPECT_EQ(seen_, "A||6;B||0;C||0;");
    EXPECT_EQ(Outline(&patients_),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2))) ID2(1.2.3(1.2.3.4(1.2.3.4.3)))");
}

TEST_F(BrowseDisk, FillsMissingKeysInTheWholeListOnDemand) {
    auto* patient = new PGX_DicomDirPatientNode;
    patients_.AddTail(patient);
    Write("A", InstanceFile().Set(0x0020, 0x0011, "IS", ""));
    EXPECT_EQ(Browse(), 2);
    EXPECT_STREQ(patient->patientId, "");
    options_.fillMissingKeys = 1;
    Browse();
    EXPECT_EQ(std::string(patient->patientId).substr(0, 12), "ZORVA_PATID_");
    auto* second = static_cast<PGX_DicomDirPatientNode*>(patients_.tail->data);
    auto* study = static_cast<PGX_DicomDirStudyNode*>(second->studies.GetHead());
    EXPECT_STREQ(second->patientId, "ID1");
    EXPECT_EQ(std::string(study->studyId).substr(0, 11), "ZORVA_STID_");
    auto* series = static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
    EXPECT_GT(std::stoi(series->seriesNumber), 0);
}

TEST_F(BrowseDisk, DropsOneTrailingBackslash) {
    Write("A", Instance(1));
    EXPECT_EQ(
        pgBrowseDisk((Directory() + "\\").c_str(), nullptr, nullptr, &patients_, nullptr, nullptr),
        1);
    auto* leaf = static_cast<PGX_DicomDirLeafNode*>(Series().leaves.GetHead());
    EXPECT_EQ(leaf->fullPath, Directory() + "\\A");
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n");
}

TEST_F(BrowseDisk, AddsNothingWithoutADirectoryOrAList) {
    EXPECT_EQ(pgBrowseDisk(Directory().c_str(), nullptr, &options_, nullptr, Note, this), 0);
    patients_.AddTail(new PGX_DicomDirPatientNode);
    EXPECT_EQ(pgBrowseDisk(nullptr, nullptr, &options_, &patients_, Note, this), 1);
    EXPECT_EQ(
        pgBrowseDisk(outside_.Path("missing").c_str(), nullptr, &options_, &patients_, Note, this),
        1);
    EXPECT_EQ(seen_, "");
    EXPECT_FALSE(Exists("dcmdir.lst"));
}

class BrowsePatientList : public ScanTest {
  protected:
    PGX_List* Browse(const std::string& directory, const char* profile = nullptr) {
        patients_.reset(pgBrowsePatientListEx(directory.c_str(), profile, &options_, Note, this));
        return patients_.get();
    }

    PatientList patients_;
};

TEST_F(BrowsePatientList, GivesANewListOfTheHierarchy) {
    Write("S1/A", Instance(1));
    Write("S2/B", Instance(2).Patient("ID2", "ROE^JANE"));
    Write("S2/C", Bytes{1});
    Browse(Directory());
    EXPECT_EQ(Outline(patients_.get()),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1))) ID2(1.2.3(1.2.3.4(1.2.3.4.2)))");
    EXPECT_EQ(seen_, "dcmdir.lst||2;A|S1|0;B|S2|0;C|S2|2;");
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n2\tS2\\C\n");
    EXPECT_FALSE(Exists("DICOMDIR"));
}

TEST_F(BrowsePatientList, LeavesTheObjectsAsTheScanMadeThem) {
    Write("A", Instance(1));
    Browse(Directory());
    auto* patient = static_cast<PGX_DicomDirPatientNode*>(patients_->GetHead());
    auto* study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.GetHead());
    auto* series = static_cast<PGX_DicomDirSeriesNode*>(study->series.GetHead());
    auto* leaf = static_cast<PGX_DicomDirLeafNode*>(series->leaves.GetHead());
    EXPECT_EQ(patient->record, nullptr);
    EXPECT_EQ(study->record, nullptr);
    EXPECT_EQ(series->record, nullptr);
    EXPECT_EQ(leaf->record, nullptr);
    EXPECT_EQ(patient->flags + study->flags + series->flags + leaf->flags, 0u);
    EXPECT_EQ(leaf->clientData, nullptr);
}

TEST_F(BrowsePatientList, HasTheOptionsOfAScan) {
    Write("A", InstanceFile().Patient("", "X"));
    Write("B", Instance(2).TransferSyntax("1.2.840.10008.1.2.4.50"));
    Write("SUB/C", Instance(3));
    options_.flags = PG_DICOMDIR_NO_RECURSION | PG_DICOMDIR_NO_LIST;
    options_.fillMissingKeys = 1;
    options_.storeFileSize = 1;
    stopAfter_ = 2;
    Browse(Directory(), "STD-GEN-CD");
    EXPECT_EQ(seen_, "A||0;B||5;");
    EXPECT_FALSE(Exists("dcmdir.lst"));
    ASSERT_EQ(patients_->count, 1);
    const std::string id = static_cast<PGX_DicomDirPatientNode*>(patients_->GetHead())->patientId;
    EXPECT_EQ(id.substr(0, 12), "ZORVA_PATID_");
}

TEST_F(BrowsePatientList, IsEmptyWhereNothingCanBeRead) {
    ASSERT_NE(Browse(outside_.Path("missing")), nullptr);
    EXPECT_EQ(patients_->count, 0);
}

TEST_F(BrowsePatientList, NeedsADirectory) {
    EXPECT_EQ(pgBrowsePatientListEx(nullptr, nullptr, &options_, Note, this), nullptr);
    EXPECT_EQ(seen_, "");
}

}  // namespace
