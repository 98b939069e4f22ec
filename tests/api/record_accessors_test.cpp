// The fields of record objects: no getter reads another one than its own.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <ostream>
#include <string>

#include "dicomdir/object_classes.h"
#include "pgkit/accessors.h"

namespace {

using namespace pgkit_test::object_classes;

// A getter and the field that it reads.
struct TextAccessor {
    std::string name;
    // What the getter gives of an object whose only text is this one in its field.
    std::function<std::string(const std::string& text)> read;
    size_t room;
};

void PrintTo(const TextAccessor& accessor, std::ostream* out) { *out << accessor.name; }

template <typename Handle, typename Object, size_t Size>
TextAccessor Text(const char* name, const char* (*getter)(Handle*), char (Object::*field)[Size]) {
    const auto read = [getter, field](const std::string& text) {
        Object object;
        std::strcpy(object.*field, text.c_str());
        return std::string(getter(&object));
    };
    return {name, read, Size - 1};
}

class TextOfRecord : public testing::TestWithParam<TextAccessor> {};

TEST_P(TextOfRecord, IsThatOfItsField) {
    const std::string text(GetParam().room, 'x');
    EXPECT_EQ(GetParam().read("a"), "a");
    EXPECT_EQ(GetParam().read(text), text.substr(0, 519));
}

INSTANTIATE_TEST_SUITE_P(
    Every, TextOfRecord,
    testing::Values(
        Text("PatientID", pgKitDirGetPatientID, &Patient::patientId),
        Text("PatientsName", pgKitDirGetPatientsName, &Patient::patientsName),
        Text("PatientBirthDate", pgKitDirGetPatientBirthDate, &Patient::birthDate),
        Text("PatientSex", pgKitDirGetPatientSex, &Patient::sex),
        Text("StudyUID", pgKitDirGetStudyUID, &Study::studyInstanceUid),
        Text("StudyID", pgKitDirGetStudyID, &Study::studyId),
        Text("StudyDate", pgKitDirGetStudyDate, &Study::studyDate),
        Text("StudyTime", pgKitDirGetStudyTime, &Study::studyTime),
        Text("StudyAccessionNumber", pgKitDirGetStudyAccessionNumber, &Study::accessionNumber),
        Text("StudyDesc", pgKitDirGetStudyDesc, &Study::studyDescription),
        Text("StudyManufacturer", pgKitDirGetStudyManufacturer, &Study::manufacturer),
        Text("StudyReferringPhysiciansName", pgKitDirGetStudyReferringPhysiciansName,
             &Study::referringPhysiciansName),
        Text("StudyModality", pgKitDirGetStudyModality, &Study::modality),
        Text("SeriesUID", pgKitDirGetSeriesUID, &Series::seriesInstanceUid),
        Text("SeriesDesc", pgKitDirGetSeriesDesc, &Series::seriesDescription),
        Text("SeriesNumber", pgKitDirGetSeriesNumber, &Series::seriesNumber),
        Text("SeriesModality", pgKitDirGetSeriesModality, &Series::modality),
        Text("SeriesInstitutionName", pgKitDirGetSeriesInstitutionName, &Series::institutionName),
        Text("SeriesInstitutionAddress", pgKitDirGetSeriesInstitutionAddress,
             &Series::institutionAddress),
        Text("SeriesPerformingPhysiciansName", pgKitDirGetSeriesPerformingPhysiciansName,
             &Series::performingPhysiciansName)),
    [](const auto& instance) { return instance.param.name; });

INSTANTIATE_TEST_SUITE_P(
    EveryLeaf, TextOfRecord,
    testing::Values(
        Text("LeafRecordType", pgKitDirGetLeafRecordType, &Leaf::recordType),
        Text("LeafInstanceUID", pgKitDirGetLeafInstanceUID, &Leaf::instanceUid),
        Text("LeafSOPClassUID", pgKitDirGetLeafSOPClassUID, &Leaf::sopClassUid),
        Text("LeafFullPath", pgKitDirGetLeafFullPath, &Leaf::fullPath),
        Text("LeafSpecificCharacterSet", pgKitDirGetLeafSpecificCharacterSet,
             &Leaf::specificCharacterSet),
        Text("ImagePhotoInterp", pgKitDirGetImagePhotoInterp, &Image::photometricInterpretation),
        Text("ImageType", pgKitDirGetImageType, &Image::imageType),
        Text("ImageCalibrationObject", pgKitDirGetImageCalibrationObject, &Image::calibrationImage),
        Text("ReportVerificationFlag", pgKitDirGetReportVerificationFlag,
             &Report::verificationFlag),
        Text("ReportCompletionFlag", pgKitDirGetReportCompletionFlag, &Report::completionFlag),
        Text("ReportContentDate", pgKitDirGetReportContentDate, &Report::contentDate),
        Text("ReportContentTime", pgKitDirGetReportContentTime, &Report::contentTime),
        Text("PresentationCreationDate", pgKitDirGetPresentationCreationDate,
             &Presentation::creationDate),
        Text("PresentationCreationTime", pgKitDirGetPresentationCreationTime,
             &Presentation::creationTime),
        Text("PresentationCreatorsName", pgKitDirGetPresentationCreatorsName,
             &Presentation::contentCreatorsName),
        Text("PresentationLabel", pgKitDirGetPresentationLabel, &Presentation::contentLabel),
        Text("PresentationDescription", pgKitDirGetPresentationDescription,
             &Presentation::contentDescription),
        Text("KeyObjectContentDate", pgKitDirGetKeyObjectContentDate, &KeyObject::contentDate),
        Text("KeyObjectContentTime", pgKitDirGetKeyObjectContentTime, &KeyObject::contentTime),
        Text("WaveformContentDate", pgKitDirGetWaveformContentDate, &Waveform::contentDate),
        Text("WaveformContentTime", pgKitDirGetWaveformContentTime, &Waveform::contentTime),
        Text("RawDataContentDate", pgKitDirGetRawDataContentDate, &RawData::contentDate),
        Text("RawDataContentTime", pgKitDirGetRawDataContentTime, &RawData::contentTime)),
    [](const auto& instance) { return instance.param.name; });

TEST(LeafAccessors, ReadTypeAndInstanceNumber) {
    Leaf leaf;
    leaf.instanceNumber = -7;
    EXPECT_EQ(pgKitDirGetLeafInstanceNumber(&leaf), -7);
    leaf.leafType = 42;
    EXPECT_EQ(pgKitDirGetLeafType(&leaf), 42);
}

TEST(LeafAccessors, ReadTheNumbersOfImages) {
    Image image;
    image.rows = 1;
    image.columns = -2;
    image.numberOfFrames = 3;
    EXPECT_EQ(pgKitDirGetImageRows(&image), 1);
    EXPECT_EQ(pgKitDirGetImageColumns(&image), -2);
    EXPECT_EQ(pgKitDirGetImageNumberOfFrames(&image), 3);
}

TEST(LeafAccessors, ReadTheIconOfImages) {
    Image image;
    EXPECT_EQ(pgKitDirGetImageIconHDib(&image), nullptr);
    image.icon = &image;
    EXPECT_EQ(pgKitDirGetImageIconHDib(&image), &image);
    image.icon = nullptr;
}

TEST(RecordAccessors, AnObjectIsTheListOfItsChildren) {
    Patient patient;
    Study study;
    Series series;
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
    ExpectCommonFields<Patient>({pgKitDirGetPatientNode, pgKitDirGetPatientClientData,
                                 pgKitDirSetPatientClientData, pgKitDirGetPatientFlags,
                                 pgKitDirGetPatientClientFlags});
    ExpectCommonFields<Study>({pgKitDirGetStudyNode, pgKitDirGetStudyClientData,
                               pgKitDirSetStudyClientData, pgKitDirGetStudyFlags,
                               pgKitDirGetStudyClientFlags});
    ExpectCommonFields<Series>({pgKitDirGetSeriesNode, pgKitDirGetSeriesClientData,
                                pgKitDirSetSeriesClientData, pgKitDirGetSeriesFlags,
                                pgKitDirGetSeriesClientFlags});
    ExpectCommonFields<Leaf>({pgKitDirGetLeafNode, pgKitDirGetLeafClientData,
                              pgKitDirSetLeafClientData, pgKitDirGetLeafFlags,
                              pgKitDirGetLeafClientFlags});
}

TEST(SeriesAccessors, ReadTheIcon) {
    Series series;
    EXPECT_EQ(pgKitDirGetSeriesIconHDib(&series), nullptr);
    series.icon = &series;
    EXPECT_EQ(pgKitDirGetSeriesIconHDib(&series), &series);
    series.icon = nullptr;
}

TEST(SharedText, IsOverwrittenByTheNextText) {
    Patient patient;
    std::strcpy(patient.patientId, "4711");
    std::strcpy(patient.sex, "F");
    const char* id = pgKitDirGetPatientID(&patient);
    EXPECT_STREQ(id, "4711");
    Series series;
    EXPECT_EQ(pgKitDirGetPatientSex(&patient), id);
    EXPECT_STREQ(id, "F");
    EXPECT_EQ(pgKitDirGetSeriesModality(&series), id);
    EXPECT_STREQ(id, "");
}

TEST(SharedText, IsNotTouchedByNullHandles) {
    Patient patient;
    std::strcpy(patient.patientId, "4711");
    const char* id = pgKitDirGetPatientID(&patient);
    EXPECT_STREQ(pgKitDirGetPatientID(nullptr), "");
    EXPECT_NE(pgKitDirGetPatientID(nullptr), id);
    EXPECT_EQ(pgKitDirGetPatientID(nullptr), pgKitDirGetLeafInstanceUID(nullptr));
    EXPECT_STREQ(id, "4711");
}

TEST(SharedText, Holds519Characters) {
    Series series;
    for (const size_t length : {518, 519, 520, 1024}) {
        const std::string address(length, 'x');
        std::strcpy(series.institutionAddress, address.c_str());
        EXPECT_EQ(pgKitDirGetSeriesInstitutionAddress(&series), address.substr(0, 519));
    }
}

}  // namespace
