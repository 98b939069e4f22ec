// Accessors: patients, studies and series of a hierarchy.
#include "api/handle_access.h"
#include "api/shared_text.h"
#include "pgkit/accessors.h"

using pgkit::FieldOf;
using pgkit::ListOf;
using pgkit::SetField;
using pgkit::TextOf;

PGX_List* pgKitDirGetStudyList(PGX_DicomDirPatientNode* patient) {
    return ListOf(patient, &PGX_DicomDirPatientNode::studies);
}

PGX_Node* pgKitDirGetPatientNode(PGX_DicomDirPatientNode* patient) {
    return FieldOf(patient, &PGX_DicomDirPatientNode::record);
}

void* pgKitDirGetPatientClientData(PGX_DicomDirPatientNode* patient) {
    return FieldOf(patient, &PGX_DicomDirPatientNode::clientData);
}

void pgKitDirSetPatientClientData(PGX_DicomDirPatientNode* patient, void* clientData) {
    SetField(patient, &PGX_DicomDirPatientNode::clientData, clientData);
}

const char* pgKitDirGetPatientID(PGX_DicomDirPatientNode* patient) {
    return TextOf(patient, &PGX_DicomDirPatientNode::patientId);
}

const char* pgKitDirGetPatientsName(PGX_DicomDirPatientNode* patient) {
    return TextOf(patient, &PGX_DicomDirPatientNode::patientsName);
}

const char* pgKitDirGetPatientBirthDate(PGX_DicomDirPatientNode* patient) {
    return TextOf(patient, &PGX_DicomDirPatientNode::birthDate);
}

const char* pgKitDirGetPatientSex(PGX_DicomDirPatientNode* patient) {
    return TextOf(patient, &PGX_DicomDirPatientNode::sex);
}

uint32_t pgKitDirGetPatientFlags(PGX_DicomDirPatientNode* patient) {
    return FieldOf(patient, &PGX_DicomDirPatientNode::flags);
}

uint32_t pgKitDirGetPatientClientFlags(PGX_DicomDirPatientNode* patient) {
    return FieldOf(patient, &PGX_DicomDirPatientNode::clientFlags);
}

PGX_List* pgKitDirGetSeriesList(PGX_DicomDirStudyNode* study) {
    return ListOf(study, &PGX_DicomDirStudyNode::series);
}

PGX_Node* pgKitDirGetStudyNode(PGX_DicomDirStudyNode* study) {
    return FieldOf(study, &PGX_DicomDirStudyNode::record);
}

void* pgKitDirGetStudyClientData(PGX_DicomDirStudyNode* study) {
    return FieldOf(study, &PGX_DicomDirStudyNode::clientData);
}

void pgKitDirSetStudyClientData(PGX_DicomDirStudyNode* study, void* clientData) {
    SetField(study, &PGX_DicomDirStudyNode::clientData, clientData);
}

const char* pgKitDirGetStudyUID(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::studyInstanceUid);
}

const char* pgKitDirGetStudyID(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::studyId);
}

const char* pgKitDirGetStudyDate(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::studyDate);
}

const char* pgKitDirGetStudyTime(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::studyTime);
}

const char* pgKitDirGetStudyAccessionNumber(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::accessionNumber);
}

const char* pgKitDirGetStudyDesc(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::studyDescription);
}

const char* pgKitDirGetStudyManufacturer(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::manufacturer);
}

const char* pgKitDirGetStudyReferringPhysiciansName(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::referringPhysiciansName);
}

const char* pgKitDirGetStudyModality(PGX_DicomDirStudyNode* study) {
    return TextOf(study, &PGX_DicomDirStudyNode::modality);
}

uint32_t pgKitDirGetStudyFlags(PGX_DicomDirStudyNode* study) {
    return FieldOf(study, &PGX_DicomDirStudyNode::flags);
}

uint32_t pgKitDirGetStudyClientFlags(PGX_DicomDirStudyNode* study) {
    return FieldOf(study, &PGX_DicomDirStudyNode::clientFlags);
}

PGX_List* pgKitDirGetLeafList(PGX_DicomDirSeriesNode* series) {
    return ListOf(series, &PGX_DicomDirSeriesNode::leaves);
}

PGX_Node* pgKitDirGetSeriesNode(PGX_DicomDirSeriesNode* series) {
    return FieldOf(series, &PGX_DicomDirSeriesNode::record);
}

void* pgKitDirGetSeriesClientData(PGX_DicomDirSeriesNode* series) {
    return FieldOf(series, &PGX_DicomDirSeriesNode::clientData);
}

void pgKitDirSetSeriesClientData(PGX_DicomDirSeriesNode* series, void* clientData) {
    SetField(series, &PGX_DicomDirSeriesNode::clientData, clientData);
}

const char* pgKitDirGetSeriesUID(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::seriesInstanceUid);
}

const char* pgKitDirGetSeriesDesc(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::seriesDescription);
}

const char* pgKitDirGetSeriesNumber(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::seriesNumber);
}

const char* pgKitDirGetSeriesModality(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::modality);
}

const char* pgKitDirGetSeriesInstitutionName(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::institutionName);
}

const char* pgKitDirGetSeriesInstitutionAddress(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::institutionAddress);
}

const char* pgKitDirGetSeriesPerformingPhysiciansName(PGX_DicomDirSeriesNode* series) {
    return TextOf(series, &PGX_DicomDirSeriesNode::performingPhysiciansName);
}

void* pgKitDirGetSeriesIconHDib(PGX_DicomDirSeriesNode* series) {
    return FieldOf(series, &PGX_DicomDirSeriesNode::icon);
}

uint32_t pgKitDirGetSeriesFlags(PGX_DicomDirSeriesNode* series) {
    return FieldOf(series, &PGX_DicomDirSeriesNode::flags);
}

uint32_t pgKitDirGetSeriesClientFlags(PGX_DicomDirSeriesNode* series) {
    return FieldOf(series, &PGX_DicomDirSeriesNode::clientFlags);
}
