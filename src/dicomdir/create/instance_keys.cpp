#include "dicomdir/create/instance_keys.h"

#include <cstring>

#include "dicomdir/record_keys.h"

namespace pgkit {

namespace {

// Empty components at the end of a name, and blanks, do not make another patient.
void CleanName(char (&name)[195]) {
    size_t length = std::strlen(name);
    while (length > 0 && (name[length - 1] == ' ' || name[length - 1] == '^'))
        --length;
    name[length] = '\0';
    TrimField(name);
}

}  // namespace

std::unique_ptr<PGX_DicomDirPatientNode> NewPatient(PGX_Node& dataSet) {
    auto patient = std::make_unique<PGX_DicomDirPatientNode>();
    ReadTrimmedKey(dataSet, {0x0010, 0x0020}, patient->patientId);
    ReadKey(dataSet, {0x0010, 0x0010}, patient->patientsName);
    CleanName(patient->patientsName);
    ReadKey(dataSet, {0x0010, 0x0030}, patient->birthDate);
    ReadKey(dataSet, {0x0010, 0x0040}, patient->sex);
    ReadInstanceCharacterSet(dataSet, patient->specificCharacterSet);
    return patient;
}

std::unique_ptr<PGX_DicomDirStudyNode> NewStudy(PGX_Node& dataSet) {
    auto study = std::make_unique<PGX_DicomDirStudyNode>();
    ReadTrimmedKey(dataSet, {0x0020, 0x000D}, study->studyInstanceUid);
    ReadKey(dataSet, {0x0020, 0x0010}, study->studyId);
    ReadKey(dataSet, {0x0008, 0x0020}, study->studyDate);
    ReadKey(dataSet, {0x0008, 0x0030}, study->studyTime);
    ReadKey(dataSet, {0x0008, 0x0050}, study->accessionNumber);
    ReadKey(dataSet, {0x0008, 0x1030}, study->studyDescription);
    ReadKey(dataSet, {0x0008, 0x0070}, study->manufacturer);
    ReadKey(dataSet, {0x0008, 0x0090}, study->referringPhysiciansName);
    ReadInstanceCharacterSet(dataSet, study->specificCharacterSet);
    return study;
}

std::unique_ptr<PGX_DicomDirSeriesNode> NewSeries(PGX_Node& dataSet) {
    auto series = std::make_unique<PGX_DicomDirSeriesNode>();
    ReadTrimmedKey(dataSet, {0x0020, 0x000E}, series->seriesInstanceUid);
    ReadKey(dataSet, {0x0008, 0x0060}, series->modality);
    ReadKey(dataSet, {0x0020, 0x0011}, series->seriesNumber, "0");
    ReadKey(dataSet, {0x0008, 0x103E}, series->seriesDescription);
    ReadKey(dataSet, {0x0008, 0x0080}, series->institutionName);
    ReadKey(dataSet, {0x0008, 0x0081}, series->institutionAddress);
    ReadKey(dataSet, {0x0008, 0x1050}, series->performingPhysiciansName);
    ReadInstanceCharacterSet(dataSet, series->specificCharacterSet);
    return series;
}

void ReadInstanceCharacterSet(PGX_Node& dataSet, char (&field)[272]) {
    ReadKey(dataSet, {0x0008, 0x0005}, field, "ISO_IR 100");
}

}  // namespace pgkit
