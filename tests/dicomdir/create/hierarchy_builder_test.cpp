// Where files go in the hierarchy.
#include "dicomdir/create/hierarchy_builder.h"

#include <fstream>
#include <iterator>

#include "base/text.h"
#include "dicomdir/create/creation_fixture.h"
#include "dicomdir/object_list.h"

namespace {

using namespace pgkit_test;
using pgkit::AddedObjects;
using pgkit::AllSeries;
using pgkit::Leaves;

using HierarchyBuilder = HierarchyBuilding;

std::string SeriesNumbers(PGX_DicomDirStudyNode& study) {
    std::string numbers;
    for (PGX_DicomDirSeriesNode& series : AllSeries(study.series))
        numbers += "[" + std::string(series.seriesNumber) + "]";
    return numbers;
}

std::string InstanceUids(PGX_DicomDirSeriesNode& series) {
    std::string uids;
    for (PGX_DicomDirLeafNode& leaf : Leaves(series.leaves))
        uids += "[" + std::string(leaf.instanceUid) + "]";
    return uids;
}

TEST_F(HierarchyBuilder, MakesOneObjectOfEachLevelForAFile) {
    const AddedObjects added = Add(InstanceFile());
    EXPECT_EQ(added.code, PG_ACCEPTED);
    ASSERT_EQ(patients_.count, 1);
    EXPECT_EQ(patients_.GetHead(), added.patient);
    ASSERT_EQ(added.patient->studies.count, 1);
    EXPECT_EQ(added.patient->studies.GetHead(), added.study);
    ASSERT_EQ(added.study->series.count, 1);
    EXPECT_EQ(added.study->series.GetHead(), added.series);
    ASSERT_EQ(added.series->leaves.count, 1);
    EXPECT_EQ(added.series->leaves.GetHead(), added.leaf);
}

TEST_F(HierarchyBuilder, ReturnsNoObjectsForARefusedFile) {
    const AddedObjects added = Add(InstanceFile().Remove(0x0020, 0x000E));
    EXPECT_EQ(added.code, PG_NO_SERIES_INSTANCE_UID);
    EXPECT_EQ(added.patient, nullptr);
    EXPECT_EQ(added.leaf, nullptr);
    EXPECT_EQ(patients_.count, 0);
}

TEST_F(HierarchyBuilder, HandsTheProfileToTheGate) {
    profile_ = "STD-GEN-MIME";
    EXPECT_EQ(Add(InstanceFile()).code, PG_PROFILE_REFUSES);
}

TEST_F(HierarchyBuilder, SkipsChecksOnDemand) {
    profile_ = "STD-GEN-MIME";
    options_.flags = PG_DICOMDIR_SKIP_CHECKS;
    EXPECT_EQ(Add(InstanceFile()).code, PG_ACCEPTED);
}

TEST_F(HierarchyBuilder, ReadsThePatientsKeys) {
    const PGX_DicomDirPatientNode& patient = *Add(InstanceFile()
                                                      .Patient("  ID 7 ", "DOE^JOHN^^^ ")
                                                      .Set(0x0010, 0x0030, "DA", "19610203")
                                                      .Set(0x0010, 0x0040, "CS", "M")
                                                      .Set(0x0008, 0x0005, "CS", "ISO_IR 192"))
                                                  .patient;
    EXPECT_STREQ(patient.patientId, "ID 7");
    EXPECT_STREQ(patient.patientsName, "DOE^JOHN");
    EXPECT_STREQ(patient.birthDate, "19610203");
    EXPECT_STREQ(patient.sex, "M ");
    EXPECT_STREQ(patient.specificCharacterSet, "ISO_IR 192");
    EXPECT_EQ(patient.record, nullptr);
}

TEST_F(HierarchyBuilder, HasDefaultsForTheCharacterSetAndTheSeriesNumberAlone) {
    const AddedObjects added = Add(InstanceFile()
                                       .Remove(0x0008, 0x0060)
                                       .Remove(0x0010, 0x0010)
                                       .Remove(0x0010, 0x0020)
                                       .Remove(0x0020, 0x0011));
    EXPECT_STREQ(added.patient->patientId, "");
    EXPECT_STREQ(added.patient->patientsName, "");
    EXPECT_STREQ(added.patient->specificCharacterSet, "ISO_IR 100");
    EXPECT_STREQ(added.study->specificCharacterSet, "ISO_IR 100");
    EXPECT_STREQ(added.series->specificCharacterSet, "ISO_IR 100");
    EXPECT_STREQ(added.series->modality, "");
    EXPECT_STREQ(added.series->seriesNumber, "0");
    EXPECT_STREQ(added.leaf->specificCharacterSet, "ISO_IR 100");
}

TEST_F(HierarchyBuilder, TakesAnEmptyKeyAsItIs) {
    const AddedObjects added =
        Add(InstanceFile().Set(0x0008, 0x0005, "CS", "").Set(0x0020, 0x0011, "IS", ""));
    EXPECT_STREQ(added.patient->specificCharacterSet, "");
    EXPECT_STREQ(added.series->seriesNumber, "");
}

TEST_F(HierarchyBuilder, ReadsTheStudysKeys) {
    const PGX_DicomDirStudyNode& study = *Add(InstanceFile()
                                                  .Set(0x0020, 0x0010, "SH", "STUDY1")
                                                  .Set(0x0008, 0x0020, "DA", "20200102")
                                                  .Set(0x0008, 0x0030, "TM", "101112")
                                                  .Set(0x0008, 0x0050, "SH", "ACC1")
                                                  .Set(0x0008, 0x1030, "LO", "Thorax")
                                                  .Set(0x0008, 0x0070, "LO", "Maker!")
                                                  .Set(0x0008, 0x0090, "PN", "REF^DR"))
                                              .study;
    EXPECT_STREQ(study.studyInstanceUid, "1.2.3");
    EXPECT_STREQ(study.studyId, "STUDY1");
    EXPECT_STREQ(study.studyDate, "20200102");
    EXPECT_STREQ(study.studyTime, "101112");
    EXPECT_STREQ(study.accessionNumber, "ACC1");
    EXPECT_STREQ(study.studyDescription, "Thorax");
    EXPECT_STREQ(study.manufacturer, "Maker!");
    EXPECT_STREQ(study.referringPhysiciansName, "REF^DR");
}

TEST_F(HierarchyBuilder, ReadsTheSeriesKeys) {
    const PGX_DicomDirSeriesNode& series = *Add(InstanceFile()
                                                    .Set(0x0020, 0x0011, "IS", "12")
                                                    .Set(0x0008, 0x103E, "LO", "Axial!")
                                                    .Set(0x0008, 0x0080, "LO", "Clinic")
                                                    .Set(0x0008, 0x0081, "ST", "Street 1")
                                                    .Set(0x0008, 0x1050, "PN", "PERF^D"))
                                                .series;
    EXPECT_STREQ(series.seriesInstanceUid, "1.2.3.4");
    EXPECT_STREQ(series.modality, "CT");
    EXPECT_STREQ(series.seriesNumber, "12");
    EXPECT_STREQ(series.seriesDescription, "Axial!");
    EXPECT_STREQ(series.institutionName, "Clinic");
    EXPECT_STREQ(series.institutionAddress, "Street 1");
    EXPECT_STREQ(series.performingPhysiciansName, "PERF^D");
}

TEST_F(HierarchyBuilder, CutsKeysToTheirFields) {
    const AddedObjects added = Add(InstanceFile()
                                       .Set(0x0010, 0x0020, "LO", std::string(70, 'I'))
                                       .Set(0x0008, 0x0081, "ST", std::string(1100, 'A'))
                                       .Set(0x0020, 0x0010, "SH", std::string(20, 'S')));
    EXPECT_EQ(std::string(added.patient->patientId), std::string(64, 'I'));
    EXPECT_EQ(std::string(added.series->institutionAddress), std::string(1024, 'A'));
    EXPECT_EQ(std::string(added.study->studyId), std::string(16, 'S'));
}

TEST_F(HierarchyBuilder, TellsPatientsApartByIdAndName) {
    Add(NextInstance().Patient("ID1", "DOE^JOHN"));
    Add(NextInstance().Patient("ID1", "DOE^JANE"));
    Add(NextInstance().Patient("ID2", "DOE^JOHN"));
    Add(NextInstance().Patient("id1", "DOE^JOHN"));
    EXPECT_EQ(patients_.count, 4);
}

TEST_F(HierarchyBuilder, KnowsAPatientWhoseNameDiffersInBlanksAndCaretsOnly) {
    PGX_DicomDirPatientNode* const first = Add(NextInstance().Patient("ID1", "DOE^JOHN")).patient;
    for (const char* name : {"DOE^JOHN^^", "DOE^JOHN  ", "doe^john", " DOE^JOHN"})
        EXPECT_EQ(Add(NextInstance().Patient("ID1", name)).patient, first) << name;
    EXPECT_EQ(patients_.count, 1);
    EXPECT_STREQ(first->patientsName, "DOE^JOHN");
}

TEST_F(HierarchyBuilder, PutsNewPatientsAndStudiesAtTheEnd) {
    for (const char* id : {"B", "A", "C"})
        Add(NextInstance().Patient(id, "X"));
    Add(NextInstance().Patient("B", "X").Study("9"));
    PGX_DicomDirPatientNode* const last = Add(NextInstance().Patient("B", "X").Study("5")).patient;
    EXPECT_EQ(patients_.GetHead(), last);
    EXPECT_STREQ(static_cast<PGX_DicomDirPatientNode*>(patients_.GetTail())->patientId, "C");
    ASSERT_EQ(last->studies.count, 3);
    EXPECT_STREQ(static_cast<PGX_DicomDirStudyNode*>(last->studies.GetTail())->studyInstanceUid,
                 "5");
}

TEST_F(HierarchyBuilder, FindsTheStudyAndSeriesOfALaterFile) {
    const AddedObjects first = Add(NextInstance());
    Add(NextInstance().Study("7").Series("8"));
    const AddedObjects third = Add(NextInstance());
    EXPECT_EQ(third.study, first.study);
    EXPECT_EQ(third.series, first.series);
    EXPECT_EQ(first.series->leaves.count, 2);
}

TEST_F(HierarchyBuilder, KeepsTheSameStudyUidOfTwoPatientsApart) {
    const AddedObjects first = Add(NextInstance().Patient("A", "A"));
    const AddedObjects second = Add(NextInstance().Patient("B", "B"));
    EXPECT_NE(second.study, first.study);
    EXPECT_NE(second.series, first.series);
}

TEST_F(HierarchyBuilder, KeepsTheKeysOfTheFirstFile) {
    Add(NextInstance().Set(0x0008, 0x1030, "LO", "first."));
    const AddedObjects second = Add(NextInstance().Set(0x0008, 0x1030, "LO", "second"));
    EXPECT_STREQ(second.study->studyDescription, "first.");
}

TEST_F(HierarchyBuilder, OrdersSeriesByTheirNumbers) {
    Add(NextInstance().Series("1").Set(0x0020, 0x0011, "IS", "10"));
    Add(NextInstance().Series("2").Set(0x0020, 0x0011, "IS", "2 "));
    const AddedObjects last = Add(NextInstance().Series("3").Set(0x0020, 0x0011, "IS", ""));
    EXPECT_EQ(SeriesNumbers(*last.study), "[][2 ][10]");
}

TEST_F(HierarchyBuilder, PutsASeriesInFrontOfThoseWithTheSameNumber) {
    Add(NextInstance().Series("1"));
    const AddedObjects second = Add(NextInstance().Series("2"));
    EXPECT_EQ(second.study->series.GetHead(), second.series);
}

TEST_F(HierarchyBuilder, OrdersLeavesByTheirNumbers) {
    for (const int number : {3, -1, 7, 5})
        Add(InstanceFile().Instance("1." + std::to_string(number + 1)).InstanceNumber(number));
    const AddedObjects last = Add(InstanceFile().Instance("9").Remove(0x0020, 0x0013));
    EXPECT_EQ(InstanceUids(*last.series), "[1.0][9][1.4][1.6][1.8]");
}

TEST_F(HierarchyBuilder, PutsALeafInFrontOfThoseWithTheSameNumber) {
    Add(InstanceFile().Instance("1").InstanceNumber(5));
    const AddedObjects second = Add(InstanceFile().Instance("2").InstanceNumber(5));
    EXPECT_EQ(InstanceUids(*second.series), "[2][1]");
}

TEST_F(HierarchyBuilder, RefusesAnInstanceThatItsSeriesHas) {
    const AddedObjects first = Add(InstanceFile());
    const AddedObjects second = Add(InstanceFile(), "COPY");
    EXPECT_EQ(second.code, PG_INSTANCE_KNOWN);
    EXPECT_EQ(second.leaf, nullptr);
    EXPECT_EQ(first.series->leaves.count, 1);
    EXPECT_EQ(Add(InstanceFile(), "COPY2").code, PG_INSTANCE_KNOWN);
}

TEST_F(HierarchyBuilder, DoesNotSeeAnInstanceOfAnotherSeries) {
    Add(InstanceFile());
    EXPECT_EQ(Add(InstanceFile().Series("8"), "COPY").code, PG_ACCEPTED);
}

TEST_F(HierarchyBuilder, GoesOnWithAHierarchyThatIsThere) {
    const AddedObjects first = Add(NextInstance().InstanceNumber(2));
    for (int i = 0; i < 3; ++i) {
        StartAnew();
        const AddedObjects next = Add(NextInstance().InstanceNumber(i));
        EXPECT_EQ(next.series, first.series);
        EXPECT_EQ(Add(InstanceFile().Instance("1.2.3.4.1")).code, PG_INSTANCE_KNOWN);
        EXPECT_EQ(Add(NextInstance().InstanceNumber(9)).patient, first.patient);
    }
    EXPECT_EQ(patients_.count, 1);
    EXPECT_EQ(InstanceUids(*first.series),
              "[1.2.3.4.2][1.2.3.4.4][1.2.3.4.6][1.2.3.4.1][1.2.3.4.7][1.2.3.4.5][1.2.3.4.3]");
}

TEST_F(HierarchyBuilder, TakesTheFirstOfSeveralEqualPatients) {
    for (int i = 0; i < 2; ++i) {
        auto* patient = new PGX_DicomDirPatientNode;
        pgkit::CopyToField(patient->patientId, "ID1");
        pgkit::CopyToField(patient->patientsName, i == 0 ? "doe john" : "DOE^JOHN");
        patients_.AddTail(patient);
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Add(NextInstance()).patient, patients_.GetHead());
}

TEST_F(HierarchyBuilder, AppendsRefusalsToTheList) {
    refusals_ = std::make_unique<pgkit::AcceptanceList>(directory_.Path("."));
    Add(InstanceFile());
    Add(InstanceFile(), "COPY");
    Add(InstanceFile().Remove(0x0008, 0x0018), "BROKEN");
    std::ifstream list(directory_.Path("dcmdir.lst"));
    const std::string lines(std::istreambuf_iterator<char>(list), {});
    EXPECT_EQ(lines, "6\t" + directory_.Path("COPY") + "\n7\t" + directory_.Path("BROKEN") + "\n");
}

}  // namespace
