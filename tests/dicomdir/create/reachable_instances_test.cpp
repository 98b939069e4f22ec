// Every file that is accepted is found again by a browse of the DICOMDIR, as what was accepted.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdio>
#include <string>

#include "dicomdir/create/medium.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/patient_list.h"

namespace {

using namespace pgkit_test;

class ReachableInstances : public testing::Test {
  protected:
    ReachableInstances() { options_.flags = PG_DICOMDIR_NO_LIST; }

    // The codes of the files in the order of their names: "006".
    std::string Create() {
        codes_.clear();
        CapturePrinted([&] {
            EXPECT_EQ(pgCreateDicomdirEx(medium_.Directory().c_str(), "", &options_, Note, this),
                      0u);
        });
        return codes_;
    }

    PatientList Browsed() {
        PatientList patients;
        printed_ = CapturePrinted([&] {
                       patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str()));
                   }).out;
        return patients;
    }

    std::string Hierarchy() { return Outline(Browsed().get()); }

    void Build(PGX_List& patients) {
        EXPECT_EQ(pgBuildDicomdir(&patients, medium_.Directory().c_str()), 0u);
    }

    Medium medium_;
    PgDicomdirOptions options_ = {};
    std::string printed_;

  private:
    static int32_t Note(const PgDicomdirScanReason* reason) {
        static_cast<ReachableInstances*>(reason->userData)->codes_ +=
            std::to_string(reason->acceptanceCode);
        return 0;
    }

    std::string codes_;
};

TEST_F(ReachableInstances, OneUidInTwoSeriesGivesTwo) {
    medium_.Write("A", Instance(1));
    medium_.Write("B",
                  Instance(1).Series("1.2.3.5").InstanceNumber(7).Set(0x0020, 0x0011, "IS", "2"));
    medium_.Write("C", Instance(1).Study("1.3").SopClass("1.2.840.10008.5.1.4.1.1.88.11"));
    medium_.Write("D", Instance(1).Patient("ID2", "ROE"));
    EXPECT_EQ(Create(), "0000");
    const PatientList patients = Browsed();
    EXPECT_EQ(Outline(patients.get()),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1) 1.2.3.5(1.2.3.4.1)) 1.3(1.2.3.4(1.2.3.4.1))) "
              "ID2(1.2.3(1.2.3.4(1.2.3.4.1)))");
    EXPECT_EQ(printed_.find("Instance already found"), std::string::npos);
    // Each is the file that was accepted.
    const auto leafOf = [&](int32_t study, int32_t series) {
        auto& patient = *static_cast<PGX_DicomDirPatientNode*>(patients->GetAt(0));
        auto& inStudy = *static_cast<PGX_DicomDirStudyNode*>(patient.studies.GetAt(study));
        auto& inSeries = *static_cast<PGX_DicomDirSeriesNode*>(inStudy.series.GetAt(series));
        return static_cast<PGX_DicomDirLeafNode*>(inSeries.leaves.GetAt(0));
    };
    EXPECT_STREQ(leafOf(0, 0)->referencedFileId, "A ");
    EXPECT_STREQ(leafOf(0, 1)->referencedFileId, "B ");
    EXPECT_EQ(leafOf(0, 1)->instanceNumber, 7);
    EXPECT_STREQ(leafOf(1, 0)->referencedFileId, "C ");
    EXPECT_EQ(leafOf(1, 0)->leafType, PG_LEAF_REPORT);
}

// ---- Padding of UIDs ----------------------------------------------------------------------------

// A UID whose VR is another one keeps its padding, which a browse does not see: the second of two
// instances, or the second of two series with all that it had, was accepted and not found again.
class PaddedUids : public ReachableInstances, public testing::WithParamInterface<std::string> {};

TEST_P(PaddedUids, MakeNoOtherInstance) {
    medium_.Write("A", Instance(1));
    medium_.Write("B", Instance(1).Set(0x0008, 0x0018, "LO", GetParam()));
    EXPECT_EQ(Create(), "06");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_P(PaddedUids, MakeNoOtherInstanceOfThemselves) {
    medium_.Write("A", Instance(1).Set(0x0008, 0x0018, "LO", GetParam()));
    medium_.Write("B", Instance(1));
    EXPECT_EQ(Create(), "06");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_P(PaddedUids, MakeNoOtherSeries) {
    medium_.Write("A", Instance(1).Series("1.2.3.4.1"));
    medium_.Write("B", Instance(1).Set(0x0020, 0x000E, "LO", GetParam()));
    medium_.Write("C", Instance(2).Set(0x0020, 0x000E, "LO", GetParam()));
    EXPECT_EQ(Create(), "060");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4.1(1.2.3.4.1 1.2.3.4.2)))");
}

TEST_P(PaddedUids, MakeNoOtherStudy) {
    medium_.Write("A", Instance(1).Study("1.2.3.4.1"));
    medium_.Write("B", Instance(1).Set(0x0020, 0x000D, "LO", GetParam()));
    medium_.Write("C", Instance(2).Set(0x0020, 0x000D, "LO", GetParam()));
    EXPECT_EQ(Create(), "060");
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3.4.1(1.2.3.4(1.2.3.4.1 1.2.3.4.2)))");
}

// The same through the lists that hosts extend.
TEST_P(PaddedUids, MakeNoOtherInstanceOfOneThatWasBrowsed) {
    medium_.Write("A", Instance(1));
    Create();
    const PatientList patients = Browsed();
    const std::string path = medium_.Write("B", Instance(1).Set(0x0008, 0x0018, "LO", GetParam()));
    EXPECT_EQ(pgAddFile(patients.get(), medium_.Directory().c_str(), path.c_str(), "", &options_),
              6u);
}

INSTANTIATE_TEST_SUITE_P(Every, PaddedUids,
                         testing::Values("1.2.3.4.1 ", "1.2.3.4.1   ", " 1.2.3.4.1",
                                         std::string("1.2.3.4.1\0", 10),
                                         std::string("1.2.3.4.1 \0\0", 12),
                                         std::string("1.2.3.4.1\0 ", 11)));

TEST_F(ReachableInstances, UidsOfPaddingAloneAreNone) {
    medium_.Write("A", Instance(1).Set(0x0008, 0x0018, "LO", "   "));
    medium_.Write("B", Instance(1).Set(0x0020, 0x000D, "LO", "   "));
    medium_.Write("C", Instance(1).Set(0x0020, 0x000E, "LO", "   "));
    medium_.Write("D", Instance(1).Set(0x0008, 0x0016, "LO", "  ").Set(0x0002, 0x0002, "LO", "  "));
    EXPECT_EQ(Create(), "7983");
}

// Behind its padding this is the class of a DICOMDIR, whose records a browse passes over.
TEST_F(ReachableInstances, ThePaddingOfASopClassDoesNotHideIt) {
    medium_.Write("A", Instance(1).Set(0x0002, 0x0002, "LO", " 1.2.840.10008.1.3.10"));
    medium_.Write("B", Instance(2).Set(0x0002, 0x0002, "LO", "1.2.840.10008.5.1.4.1.1.88.11 "));
    EXPECT_EQ(Create(), "40");
    const PatientList patients = Browsed();
    EXPECT_EQ(Outline(patients.get()), "ID1(1.2.3(1.2.3.4(1.2.3.4.2)))");
    EXPECT_NE(printed_.find("Patient created"), std::string::npos);
    const DataSet written = medium_.Open();
    EXPECT_EQ(TextOf(Child(RecordsOf(written.get()).at(3), 0x0004, 0x1430)), "SR DOCUMENT ");
}

// ---- Objects without children -------------------------------------------------------------------

// The first record whose link to the level below leads nowhere ends that level when it is browsed,
// and stays as an object without children. Written again it hid all that had been added behind it.
class WithoutChildren : public ReachableInstances {
  protected:
    WithoutChildren() {
        const size_t patient = directory_.Patient("ID1", "DOE^JOHN");
        const size_t study = directory_.Study(patient, "1.2.3");
        const size_t series = directory_.Series(study, "1.2.3.4", "CT");
        directory_.Image(series, "1.2.3.4.8", 8, "OLD");
    }

    PatientList BrowsedWith(const InstanceFile& file) {
        medium_.Write("DICOMDIR", directory_.Build());
        PatientList patients = Browsed();
        const std::string path = medium_.Write("NEW", file);
        EXPECT_EQ(
            pgAddFile(patients.get(), medium_.Directory().c_str(), path.c_str(), "", &options_),
            0u);
        return patients;
    }

    DirectoryBuilder directory_;
};

TEST_F(WithoutChildren, APatientHidesNoOther) {
    directory_.Patient("ID2", "EMPTY");
    const PatientList patients = BrowsedWith(Instance(1).Patient("ID3", "NEW"));
    ASSERT_EQ(Outline(patients.get()),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.8))) ID2() ID3(1.2.3(1.2.3.4(1.2.3.4.1)))");
    Build(*patients);
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.8))) ID3(1.2.3(1.2.3.4(1.2.3.4.1))) ID2()");
    // The last record of the root is the last of its chain.
    const DataSet written = medium_.Open();
    PGX_Node* const last = RecordsOf(written.get()).back();
    EXPECT_EQ(TextOf(Child(last, 0x0010, 0x0020)), "ID2 ");
    EXPECT_EQ(Child(written.get(), 0x0004, 0x1202)->GetULValue() + 8, last->fileOffset);
}

TEST_F(WithoutChildren, AStudyHidesNoOther) {
    directory_.Study(0, "1.9");
    const PatientList patients = BrowsedWith(Instance(1).Study("1.4"));
    ASSERT_EQ(Outline(patients.get()),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.8)) 1.9() 1.4(1.2.3.4(1.2.3.4.1)))");
    Build(*patients);
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.8)) 1.4(1.2.3.4(1.2.3.4.1)) 1.9())");
}

TEST_F(WithoutChildren, ASeriesHidesNoOther) {
    directory_.Series(1, "1.9", "CT");
    const PatientList patients =
        BrowsedWith(Instance(1).Series("1.4").Set(0x0020, 0x0011, "IS", "5"));
    ASSERT_EQ(Outline(patients.get()), "ID1(1.2.3(1.2.3.4(1.2.3.4.8) 1.9() 1.4(1.2.3.4.1)))");
    Build(*patients);
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.8) 1.4(1.2.3.4.1) 1.9()))");
}

// ---- Keys that are made up ----------------------------------------------------------------------

// The ID that a patient got was that of another one: a browse made one of the two, and the instance
// that both have was found once.
TEST_F(ReachableInstances, APatientIdThatIsMadeUpIsNobodyElses) {
    options_.fillMissingKeys = 1;
    medium_.Write("A", Instance(1).Patient("", "DOE"));
    Create();
    const std::string last = static_cast<PGX_DicomDirPatientNode*>(Browsed()->GetAt(0))->patientId;
    char next[32];
    std::snprintf(next, sizeof next, "ZORVA_PATID_%06d", std::stoi(last.substr(12)) + 1);
    medium_.Write("B", Instance(1).Patient(next, "DOE"));
    EXPECT_EQ(Create(), "004");
    const PatientList patients = Browsed();
    ASSERT_EQ(patients->count, 2);
    const auto* first = static_cast<PGX_DicomDirPatientNode*>(patients->GetAt(0));
    EXPECT_EQ(std::string(first->patientId).substr(0, 12), "ZORVA_PATID_");
    EXPECT_STRNE(first->patientId, next);
}

}  // namespace
