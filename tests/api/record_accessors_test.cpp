// The fields of record objects. Every field gets a text or number of its own, so that a getter that
// reads another one is found out.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "pgkit/accessors.h"

namespace {

// Fills the field with a text as long as fits, unlike that of any other field, and reads it.
template <typename Handle, size_t Size>
void ExpectText(const char* (*getter)(Handle*), Handle& handle, char (&field)[Size]) {
    static char next = 'a';
    SCOPED_TRACE(next);
    const std::string text(Size - 1, next++);
    std::memcpy(field, text.c_str(), Size);
    EXPECT_EQ(getter(&handle), text.substr(0, 519));
}

TEST(PatientAccessors, ReadEveryKey) {
    PGX_DicomDirPatientNode patient;
    ExpectText(pgKitDirGetPatientID, patient, patient.patientId);
    ExpectText(pgKitDirGetPatientsName, patient, patient.patientsName);
    ExpectText(pgKitDirGetPatientBirthDate, patient, patient.birthDate);
    ExpectText(pgKitDirGetPatientSex, patient, patient.sex);
}

TEST(StudyAccessors, ReadEveryKey) {
    PGX_DicomDirStudyNode study;
    ExpectText(pgKitDirGetStudyUID, study, study.studyInstanceUid);
    ExpectText(pgKitDirGetStudyID, study, study.studyId);
    ExpectText(pgKitDirGetStudyDate, study, study.studyDate);
    ExpectText(pgKitDirGetStudyTime, study, study.studyTime);
    ExpectText(pgKitDirGetStudyAccessionNumber, study, study.accessionNumber);
    ExpectText(pgKitDirGetStudyDesc, study, study.studyDescription);
    ExpectText(pgKitDirGetStudyManufacturer, study, study.manufacturer);
    ExpectText(pgKitDirGetStudyReferringPhysiciansName, study, study.referringPhysiciansName);
    ExpectText(pgKitDirGetStudyModality, study, study.modality);
}

TEST(SeriesAccessors, ReadEveryKey) {
    PGX_DicomDirSeriesNode series;
    ExpectText(pgKitDirGetSeriesUID, series, series.seriesInstanceUid);
    ExpectText(pgKitDirGetSeriesDesc, series, series.seriesDescription);
    ExpectText(pgKitDirGetSeriesNumber, series, series.seriesNumber);
    ExpectText(pgKitDirGetSeriesModality, series, series.modality);
    ExpectText(pgKitDirGetSeriesInstitutionName, series, series.institutionName);
    ExpectText(pgKitDirGetSeriesInstitutionAddress, series, series.institutionAddress);
    ExpectText(pgKitDirGetSeriesPerformingPhysiciansName, series, series.performingPhysiciansName);
}

TEST(LeafAccessors, ReadEveryCommonKey) {
    PGX_DicomDirLeafNode leaf;
    ExpectText(pgKitDirGetLeafRecordType, leaf, leaf.recordType);
    ExpectText(pgKitDirGetLeafInstanceUID, leaf, leaf.instanceUid);
    ExpectText(pgKitDirGetLeafSOPClassUID, leaf, leaf.sopClassUid);
    ExpectText(pgKitDirGetLeafFullPath, leaf, leaf.fullPath);
    ExpectText(pgKitDirGetLeafSpecificCharacterSet, leaf, leaf.specificCharacterSet);
    leaf.instanceNumber = -7;
    EXPECT_EQ(pgKitDirGetLeafInstanceNumber(&leaf), -7);
    leaf.leafType = 42;
    EXPECT_EQ(pgKitDirGetLeafType(&leaf), 42);
}

TEST(LeafAccessors, ReadTheKeysOfImages) {
    PGX_DicomDirImageNode image;
    PGX_DicomDirLeafNode& leaf = image;
    ExpectText(pgKitDirGetImagePhotoInterp, leaf, image.photometricInterpretation);
    ExpectText(pgKitDirGetImageType, leaf, image.imageType);
    ExpectText(pgKitDirGetImageCalibrationObject, leaf, image.calibrationImage);
    image.rows = 1;
    image.columns = -2;
    image.numberOfFrames = 3;
    EXPECT_EQ(pgKitDirGetImageRows(&image), 1);
    EXPECT_EQ(pgKitDirGetImageColumns(&image), -2);
    EXPECT_EQ(pgKitDirGetImageNumberOfFrames(&image), 3);
    EXPECT_EQ(pgKitDirGetImageIconHDib(&image), nullptr);
    image.icon = &leaf;
    EXPECT_EQ(pgKitDirGetImageIconHDib(&image), &leaf);
    image.icon = nullptr;
}

TEST(LeafAccessors, ReadTheKeysOfReports) {
    PGX_DicomDirReportNode report;
    PGX_DicomDirLeafNode& leaf = report;
    ExpectText(pgKitDirGetReportVerificationFlag, leaf, report.verificationFlag);
    ExpectText(pgKitDirGetReportCompletionFlag, leaf, report.completionFlag);
    ExpectText(pgKitDirGetReportContentDate, leaf, report.contentDate);
    ExpectText(pgKitDirGetReportContentTime, leaf, report.contentTime);
}

TEST(LeafAccessors, ReadTheKeysOfPresentations) {
    PGX_DicomDirPresentationNode state;
    PGX_DicomDirLeafNode& leaf = state;
    ExpectText(pgKitDirGetPresentationCreationDate, leaf, state.creationDate);
    ExpectText(pgKitDirGetPresentationCreationTime, leaf, state.creationTime);
    ExpectText(pgKitDirGetPresentationCreatorsName, leaf, state.contentCreatorsName);
    ExpectText(pgKitDirGetPresentationLabel, leaf, state.contentLabel);
    ExpectText(pgKitDirGetPresentationDescription, leaf, state.contentDescription);
}

TEST(LeafAccessors, ReadDateAndTimeOfTheOtherTypes) {
    PGX_DicomDirKeyObjectNode keyObject;
    PGX_DicomDirLeafNode& keyObjectLeaf = keyObject;
    ExpectText(pgKitDirGetKeyObjectContentDate, keyObjectLeaf, keyObject.contentDate);
    ExpectText(pgKitDirGetKeyObjectContentTime, keyObjectLeaf, keyObject.contentTime);
    PGX_DicomDirWaveformNode waveform;
    PGX_DicomDirLeafNode& waveformLeaf = waveform;
    ExpectText(pgKitDirGetWaveformContentDate, waveformLeaf, waveform.contentDate);
    ExpectText(pgKitDirGetWaveformContentTime, waveformLeaf, waveform.contentTime);
    PGX_DicomDirRawDataNode rawData;
    PGX_DicomDirLeafNode& rawDataLeaf = rawData;
    ExpectText(pgKitDirGetRawDataContentDate, rawDataLeaf, rawData.contentDate);
    ExpectText(pgKitDirGetRawDataContentTime, rawDataLeaf, rawData.contentTime);
}

TEST(RecordAccessors, AnObjectIsTheListOfItsChildren) {
    PGX_DicomDirPatientNode patient;
    PGX_DicomDirStudyNode study;
    PGX_DicomDirSeriesNode series;
    EXPECT_EQ(static_cast<void*>(pgKitDirGetStudyList(&patient)), &patient);
    EXPECT_EQ(static_cast<void*>(pgKitDirGetSeriesList(&study)), &study);
    EXPECT_EQ(static_cast<void*>(pgKitDirGetLeafList(&series)), &series);
}

// What all four levels have, by the accessors of one of them.
template <typename Object>
struct Level {
    PGX_Node* (*record)(Object*);
    void* (*clientData)(Object*);
    void (*setClientData)(Object*, void*);
    uint32_t (*flags)(Object*);
    uint32_t (*clientFlags)(Object*);
};

template <typename Object>
void ExpectCommonFields(const Level<Object>& level) {
    Object object;
    PGX_Node record;
    int data = 0;
    object.record = &record;
    object.flags = 0x80000001;
    object.clientFlags = 0x7FFFFFFE;
    EXPECT_EQ(level.record(&object), &record);
    EXPECT_EQ(level.clientData(&object), nullptr);
    level.setClientData(&object, &data);
    EXPECT_EQ(object.clientData, &data);
    EXPECT_EQ(level.clientData(&object), &data);
    EXPECT_EQ(level.flags(&object), 0x80000001);
    EXPECT_EQ(level.clientFlags(&object), 0x7FFFFFFEu);
}

TEST(RecordAccessors, ReachRecordClientDataAndFlagsOnEveryLevel) {
    ExpectCommonFields<PGX_DicomDirPatientNode>(
        {pgKitDirGetPatientNode, pgKitDirGetPatientClientData, pgKitDirSetPatientClientData,
         pgKitDirGetPatientFlags, pgKitDirGetPatientClientFlags});
    ExpectCommonFields<PGX_DicomDirStudyNode>({pgKitDirGetStudyNode, pgKitDirGetStudyClientData,
                                               pgKitDirSetStudyClientData, pgKitDirGetStudyFlags,
                                               pgKitDirGetStudyClientFlags});
    ExpectCommonFields<PGX_DicomDirSeriesNode>({pgKitDirGetSeriesNode, pgKitDirGetSeriesClientData,
                                                pgKitDirSetSeriesClientData, pgKitDirGetSeriesFlags,
                                                pgKitDirGetSeriesClientFlags});
    ExpectCommonFields<PGX_DicomDirLeafNode>({pgKitDirGetLeafNode, pgKitDirGetLeafClientData,
                                              pgKitDirSetLeafClientData, pgKitDirGetLeafFlags,
                                              pgKitDirGetLeafClientFlags});
}

TEST(SeriesAccessors, ReadTheIcon) {
    PGX_DicomDirSeriesNode series;
    EXPECT_EQ(pgKitDirGetSeriesIconHDib(&series), nullptr);
    series.icon = &series;
    EXPECT_EQ(pgKitDirGetSeriesIconHDib(&series), &series);
    series.icon = nullptr;
}

TEST(SharedText, IsOverwrittenByTheNextText) {
    PGX_DicomDirPatientNode patient;
    std::strcpy(patient.patientId, "4711");
    std::strcpy(patient.sex, "F");
    const char* id = pgKitDirGetPatientID(&patient);
    EXPECT_STREQ(id, "4711");
    PGX_DicomDirSeriesNode series;
    EXPECT_EQ(pgKitDirGetPatientSex(&patient), id);
    EXPECT_STREQ(id, "F");
    EXPECT_EQ(pgKitDirGetSeriesModality(&series), id);
    EXPECT_STREQ(id, "");
}

TEST(SharedText, IsNotTouchedByNullHandles) {
    PGX_DicomDirPatientNode patient;
    std::strcpy(patient.patientId, "4711");
    const char* id = pgKitDirGetPatientID(&patient);
    EXPECT_STREQ(pgKitDirGetPatientID(nullptr), "");
    EXPECT_NE(pgKitDirGetPatientID(nullptr), id);
    EXPECT_STREQ(id, "4711");
}

TEST(SharedText, Holds519Characters) {
    PGX_DicomDirSeriesNode series;
    for (const size_t length : {518, 519, 520, 1024}) {
        const std::string address(length, 'x');
        std::strcpy(series.institutionAddress, address.c_str());
        EXPECT_EQ(pgKitDirGetSeriesInstitutionAddress(&series), address.substr(0, 519));
    }
}

}  // namespace
