#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "pgkit/dataset.h"
#include "pgkit/directory_records.h"

namespace {

using Patient = PGX_DicomDirPatientNode;
using Study = PGX_DicomDirStudyNode;
using Series = PGX_DicomDirSeriesNode;
using Leaf = PGX_DicomDirLeafNode;
using Image = PGX_DicomDirImageNode;
using Report = PGX_DicomDirReportNode;
using KeyObject = PGX_DicomDirKeyObjectNode;
using Presentation = PGX_DicomDirPresentationNode;
using Document = PGX_DicomDirEncapsulatedDocNode;
using Waveform = PGX_DicomDirWaveformNode;
using RawData = PGX_DicomDirRawDataNode;

// Where a field lies in its object. offsetof is not for polymorphic classes.
template <typename Object, typename Field>
ptrdiff_t Place(const Object& object, const Field& field) {
    return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&object);
}

// A leaf that counts how often it is destroyed.
class CountedLeaf : public Leaf {
  public:
    explicit CountedLeaf(int* destroyed) : destroyed_(destroyed) {}
    ~CountedLeaf() override { ++*destroyed_; }

  private:
    int* destroyed_;
};

PGX_Node* SmallSequence() {
    PGX_Node* sequence = new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0040, 0xA043, VR_SQ, 0);
    sequence->first = pgAllocateDataSetNode();
    sequence->first->first = new PGX_Node;
    return sequence;
}

TEST(Patient, IsEmptyAtFirst) {
    Patient patient;
    EXPECT_EQ(patient.studies.GetCount(), 0);
    EXPECT_EQ(patient.record, nullptr);
    EXPECT_EQ(patient.clientData, nullptr);
    for (const char* text : {patient.patientId, patient.patientsName, patient.birthDate,
                             patient.sex, patient.specificCharacterSet})
        EXPECT_STREQ(text, "");
    EXPECT_EQ(patient.flags, 0u);
    EXPECT_EQ(patient.clientFlags, 0u);
}

TEST(Patient, TextsHaveRoomForTheirKeys) {
    Patient patient;
    EXPECT_EQ(sizeof patient.patientId, 65u);
    EXPECT_EQ(sizeof patient.patientsName, 195u);
    EXPECT_EQ(sizeof patient.birthDate, 9u);
    EXPECT_EQ(sizeof patient.sex, 17u);
    EXPECT_EQ(sizeof patient.specificCharacterSet, 272u);
}

TEST(Study, IsEmptyAtFirst) {
    Study study;
    EXPECT_EQ(study.series.GetCount(), 0);
    EXPECT_EQ(study.record, nullptr);
    EXPECT_EQ(study.clientData, nullptr);
    for (const char* text :
         {study.studyInstanceUid, study.studyId, study.studyDate, study.studyTime,
          study.accessionNumber, study.studyDescription, study.manufacturer,
          study.referringPhysiciansName, study.modality, study.specificCharacterSet})
        EXPECT_STREQ(text, "");
    EXPECT_EQ(study.flags, 0u);
    EXPECT_EQ(study.clientFlags, 0u);
}

TEST(Study, TextsHaveRoomForTheirKeys) {
    Study study;
    EXPECT_EQ(sizeof study.studyInstanceUid, 65u);
    EXPECT_EQ(sizeof study.studyId, 17u);
    EXPECT_EQ(sizeof study.studyDate, 9u);
    EXPECT_EQ(sizeof study.studyTime, 17u);
    EXPECT_EQ(sizeof study.accessionNumber, 17u);
    EXPECT_EQ(sizeof study.studyDescription, 65u);
    EXPECT_EQ(sizeof study.manufacturer, 65u);
    EXPECT_EQ(sizeof study.referringPhysiciansName, 195u);
    EXPECT_EQ(sizeof study.modality, 17u);
    EXPECT_EQ(sizeof study.specificCharacterSet, 272u);
}

TEST(Series, IsEmptyAtFirst) {
    Series series;
    EXPECT_EQ(series.leaves.GetCount(), 0);
    EXPECT_EQ(series.record, nullptr);
    EXPECT_EQ(series.clientData, nullptr);
    for (const char* text :
         {series.seriesInstanceUid, series.seriesDescription, series.seriesNumber, series.modality,
          series.institutionName, series.institutionAddress, series.performingPhysiciansName,
          series.specificCharacterSet})
        EXPECT_STREQ(text, "");
    EXPECT_EQ(series.icon, nullptr);
    EXPECT_EQ(series.flags, 0u);
    EXPECT_EQ(series.clientFlags, 0u);
}

TEST(Series, TextsHaveRoomForTheirKeys) {
    Series series;
    EXPECT_EQ(sizeof series.seriesInstanceUid, 65u);
    EXPECT_EQ(sizeof series.seriesDescription, 65u);
    EXPECT_EQ(sizeof series.seriesNumber, 17u);
    EXPECT_EQ(sizeof series.modality, 17u);
    EXPECT_EQ(sizeof series.institutionName, 65u);
    EXPECT_EQ(sizeof series.institutionAddress, 1025u);
    EXPECT_EQ(sizeof series.performingPhysiciansName, 195u);
    EXPECT_EQ(sizeof series.specificCharacterSet, 272u);
}

TEST(UpperLevels, AreNotCopiedByConstruction) {
    EXPECT_FALSE(std::is_copy_constructible_v<Patient>);
    EXPECT_FALSE(std::is_copy_constructible_v<Study>);
    EXPECT_FALSE(std::is_copy_constructible_v<Series>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Patient>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Study>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Series>);
}

template <typename Object>
int32_t TypeOfNew() {
    Object object;
    EXPECT_EQ(object.record, nullptr);
    EXPECT_EQ(object.clientData, nullptr);
    for (const char* text :
         {object.recordType, object.fullPath, object.referencedFileId, object.instanceUid,
          object.sopClassUid, object.transferSyntaxUid, object.specificCharacterSet})
        EXPECT_STREQ(text, "");
    EXPECT_EQ(object.instanceNumber, 0);
    EXPECT_EQ(object.referencedDataSetSize, 0);
    EXPECT_EQ(object.flags, 0u);
    EXPECT_EQ(object.clientFlags, 0u);
    EXPECT_TRUE(std::has_virtual_destructor_v<Object>);
    EXPECT_TRUE(std::is_copy_constructible_v<Object>);
    EXPECT_TRUE(std::is_copy_assignable_v<Object>);
    return object.leafType;
}

TEST(Leaf, IsEmptyAtFirstApartFromTheTypeOfItsClass) {
    EXPECT_EQ(TypeOfNew<Leaf>(), 0);
    EXPECT_EQ(TypeOfNew<Image>(), 1);
    EXPECT_EQ(TypeOfNew<Report>(), 2);
    EXPECT_EQ(TypeOfNew<KeyObject>(), 3);
    EXPECT_EQ(TypeOfNew<Presentation>(), 4);
    EXPECT_EQ(TypeOfNew<Waveform>(), 5);
    EXPECT_EQ(TypeOfNew<Document>(), 6);
    EXPECT_EQ(TypeOfNew<RawData>(), 7);
}

TEST(Leaf, FieldsFollowTheVirtualTableInOrder) {
    Leaf leaf;
    EXPECT_EQ(Place(leaf, leaf.record), 8);
    EXPECT_EQ(Place(leaf, leaf.clientData), 16);
    EXPECT_EQ(Place(leaf, leaf.leafType), 24);
    EXPECT_EQ(Place(leaf, leaf.recordType), 28);
    EXPECT_EQ(Place(leaf, leaf.fullPath), 45);
    EXPECT_EQ(Place(leaf, leaf.referencedFileId), 305);
    EXPECT_EQ(Place(leaf, leaf.instanceUid), 565);
    EXPECT_EQ(Place(leaf, leaf.sopClassUid), 630);
    EXPECT_EQ(Place(leaf, leaf.transferSyntaxUid), 695);
    EXPECT_EQ(Place(leaf, leaf.instanceNumber), 760);
    EXPECT_EQ(Place(leaf, leaf.specificCharacterSet), 764);
    EXPECT_EQ(Place(leaf, leaf.referencedDataSetSize), 1036);
    EXPECT_EQ(Place(leaf, leaf.flags), 1040);
    EXPECT_EQ(Place(leaf, leaf.clientFlags), 1044);
}

TEST(Image, FieldsFollowThoseOfTheLeaf) {
    Image image;
    EXPECT_EQ(Place(image, image.record), 8);
    EXPECT_EQ(Place(image, image.rows), 1048);
    EXPECT_EQ(Place(image, image.columns), 1052);
    EXPECT_EQ(Place(image, image.numberOfFrames), 1056);
    EXPECT_EQ(Place(image, image.photometricInterpretation), 1060);
    EXPECT_EQ(Place(image, image.imageType), 1077);
    EXPECT_EQ(Place(image, image.calibrationImage), 1349);
    EXPECT_EQ(Place(image, image.icon), 1368);
}

TEST(Report, FieldsFollowThoseOfTheLeaf) {
    Report report;
    EXPECT_EQ(Place(report, report.completionFlag), 1048);
    EXPECT_EQ(Place(report, report.verificationFlag), 1065);
    EXPECT_EQ(Place(report, report.contentDate), 1082);
    EXPECT_EQ(Place(report, report.contentTime), 1091);
    EXPECT_EQ(Place(report, report.verificationDateTime), 1108);
    EXPECT_EQ(Place(report, report.conceptNameCodeSequence), 1136);
    EXPECT_EQ(Place(report, report.contentSequence), 1144);
}

TEST(KeyObject, FieldsFollowThoseOfTheLeaf) {
    KeyObject object;
    EXPECT_EQ(Place(object, object.contentDate), 1048);
    EXPECT_EQ(Place(object, object.contentTime), 1057);
    EXPECT_EQ(Place(object, object.conceptNameCodeSequence), 1080);
    EXPECT_EQ(Place(object, object.contentSequence), 1088);
}

TEST(Presentation, FieldsFollowThoseOfTheLeaf) {
    Presentation state;
    EXPECT_EQ(Place(state, state.creationDate), 1048);
    EXPECT_EQ(Place(state, state.creationTime), 1057);
    EXPECT_EQ(Place(state, state.contentCreatorsName), 1074);
    EXPECT_EQ(Place(state, state.contentLabel), 1269);
    EXPECT_EQ(Place(state, state.contentDescription), 1286);
    EXPECT_EQ(Place(state, state.referencedSeriesSequence), 1352);
}

TEST(EncapsulatedDocument, FieldsFollowThoseOfTheLeaf) {
    Document document;
    EXPECT_EQ(Place(document, document.contentDate), 1048);
    EXPECT_EQ(Place(document, document.contentTime), 1057);
    EXPECT_EQ(Place(document, document.documentTitle), 1074);
    EXPECT_EQ(Place(document, document.mimeType), 2099);
    EXPECT_EQ(Place(document, document.conceptNameCodeSequence), 2168);
}

TEST(WaveformAndRawData, FieldsFollowThoseOfTheLeaf) {
    Waveform waveform;
    EXPECT_EQ(Place(waveform, waveform.contentDate), 1048);
    EXPECT_EQ(Place(waveform, waveform.contentTime), 1057);
    RawData data;
    EXPECT_EQ(Place(data, data.contentDate), 1048);
    EXPECT_EQ(Place(data, data.contentTime), 1057);
}

TEST(Image, IsEmptyAtFirst) {
    Image image;
    EXPECT_EQ(image.rows, 0);
    EXPECT_EQ(image.columns, 0);
    EXPECT_EQ(image.numberOfFrames, 0);
    EXPECT_STREQ(image.photometricInterpretation, "");
    EXPECT_STREQ(image.imageType, "");
    EXPECT_STREQ(image.calibrationImage, "");
    EXPECT_EQ(image.icon, nullptr);
}

TEST(OtherLeaves, AreEmptyAtFirst) {
    Report report;
    KeyObject object;
    Presentation state;
    Document document;
    Waveform waveform;
    RawData data;
    for (const char* text : {report.completionFlag,
                             report.verificationFlag,
                             report.contentDate,
                             report.contentTime,
                             report.verificationDateTime,
                             object.contentDate,
                             object.contentTime,
                             state.creationDate,
                             state.creationTime,
                             state.contentCreatorsName,
                             state.contentLabel,
                             state.contentDescription,
                             document.contentDate,
                             document.contentTime,
                             document.documentTitle,
                             document.mimeType,
                             waveform.contentDate,
                             waveform.contentTime,
                             data.contentDate,
                             data.contentTime})
        EXPECT_STREQ(text, "");
    EXPECT_EQ(report.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(report.contentSequence, nullptr);
    EXPECT_EQ(object.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(object.contentSequence, nullptr);
    EXPECT_EQ(state.referencedSeriesSequence, nullptr);
    EXPECT_EQ(document.conceptNameCodeSequence, nullptr);
}

// Leaks and double frees in these tests show in the sanitized build.
TEST(Ownership, APatientDestroysItsStudiesSeriesAndLeaves) {
    int destroyed = 0;
    auto* series = new Series;
    series->leaves.AddTail(new CountedLeaf(&destroyed));
    series->leaves.AddTail(new CountedLeaf(&destroyed));
    auto* study = new Study;
    study->series.AddTail(series);
    study->series.AddTail(new Series);
    {
        Patient patient;
        patient.studies.AddTail(study);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(Ownership, ASeriesDestroysLeavesOfAllClassesEachByItsOwn) {
    Series series;
    auto* report = new Report;
    report->conceptNameCodeSequence = SmallSequence();
    report->contentSequence = SmallSequence();
    auto* object = new KeyObject;
    object->conceptNameCodeSequence = SmallSequence();
    object->contentSequence = SmallSequence();
    auto* state = new Presentation;
    state->referencedSeriesSequence = SmallSequence();
    auto* document = new Document;
    document->conceptNameCodeSequence = SmallSequence();
    for (Leaf* leaf :
         {static_cast<Leaf*>(report), static_cast<Leaf*>(object), static_cast<Leaf*>(state),
          static_cast<Leaf*>(document), static_cast<Leaf*>(new Image),
          static_cast<Leaf*>(new Waveform), static_cast<Leaf*>(new RawData), new Leaf})
        series.leaves.AddTail(leaf);
    EXPECT_EQ(series.leaves.GetCount(), 8);
}

TEST(Ownership, RecordsAreNotDestroyedWithTheirObjects) {
    PGX_Node record;
    {
        Patient patient;
        patient.record = &record;
        Image image;
        image.record = &record;
    }
    EXPECT_EQ(record.nodeType, NT_DataSet);
}

TEST(Copies, OfAPatientShareItsStudies) {
    Study study;
    Patient patient;
    std::strcpy(patient.patientId, "4711");
    patient.studies.AddTail(&study);
    patient.clientFlags = 5;
    Patient copy;
    EXPECT_EQ(&(copy = patient), &copy);
    EXPECT_STREQ(copy.patientId, "4711");
    EXPECT_EQ(copy.clientFlags, 5u);
    EXPECT_EQ(copy.studies.GetFirstPosition(), patient.studies.GetFirstPosition());
    // Only one may free the shared cell, and none the study.
    copy.studies = PGX_List();
    patient.studies.RemoveHead();
}

TEST(Copies, OfStudiesAndSeriesAreMemberwise) {
    Study study;
    std::strcpy(study.modality, "...");
    Study studyCopy;
    studyCopy = study;
    EXPECT_STREQ(studyCopy.modality, "...");

    Series series;
    std::strcpy(series.modality, "CT");
    Series seriesCopy;
    seriesCopy = series;
    EXPECT_STREQ(seriesCopy.modality, "CT");
}

TEST(Copies, OfALeafShareItsSequences) {
    Report report;
    report.leafType = PG_LEAF_REPORT;
    std::strcpy(report.instanceUid, "1.2.3");
    report.contentSequence = SmallSequence();
    Report copy(report);
    EXPECT_STREQ(copy.instanceUid, "1.2.3");
    EXPECT_EQ(copy.contentSequence, report.contentSequence);
    Report assigned;
    assigned = report;
    EXPECT_EQ(assigned.contentSequence, report.contentSequence);
    copy.contentSequence = nullptr;
    assigned.contentSequence = nullptr;
}

TEST(Leaves, CanBeToldApartByTheirRunTimeType) {
    const std::type_info& image = typeid(Image);
    Image object;
    Leaf& leaf = object;
    EXPECT_EQ(typeid(leaf), image);
    EXPECT_NE(dynamic_cast<Image*>(&leaf), nullptr);
    EXPECT_EQ(dynamic_cast<Report*>(&leaf), nullptr);
}

TEST(UpperLevels, CanBeUsedAsTheirList) {
    Patient patient;
    EXPECT_EQ(static_cast<void*>(&patient), static_cast<void*>(&patient.studies));
    Study study;
    EXPECT_EQ(static_cast<void*>(&study), static_cast<void*>(&study.series));
    Series series;
    EXPECT_EQ(static_cast<void*>(&series), static_cast<void*>(&series.leaves));
}

}  // namespace
