// Accessors: leaves of a hierarchy.
#include "api/handle_access.h"
#include "api/shared_text.h"
#include "pgkit/accessors.h"

using pgkit::FieldOf;
using pgkit::SetField;
using pgkit::TextOf;

PGX_Node* pgKitDirGetLeafNode(PGX_DicomDirLeafNode* leaf) {
    return FieldOf(leaf, &PGX_DicomDirLeafNode::record);
}

void* pgKitDirGetLeafClientData(PGX_DicomDirLeafNode* leaf) {
    return FieldOf(leaf, &PGX_DicomDirLeafNode::clientData);
}

void pgKitDirSetLeafClientData(PGX_DicomDirLeafNode* leaf, void* clientData) {
    SetField(leaf, &PGX_DicomDirLeafNode::clientData, clientData);
}

int32_t pgKitDirGetLeafType(PGX_DicomDirLeafNode* leaf) {
    return FieldOf(leaf, &PGX_DicomDirLeafNode::leafType);
}

const char* pgKitDirGetLeafRecordType(PGX_DicomDirLeafNode* leaf) {
    return TextOf(leaf, &PGX_DicomDirLeafNode::recordType);
}

const char* pgKitDirGetLeafInstanceUID(PGX_DicomDirLeafNode* leaf) {
    return TextOf(leaf, &PGX_DicomDirLeafNode::instanceUid);
}

const char* pgKitDirGetLeafSOPClassUID(PGX_DicomDirLeafNode* leaf) {
    return TextOf(leaf, &PGX_DicomDirLeafNode::sopClassUid);
}

const char* pgKitDirGetLeafFullPath(PGX_DicomDirLeafNode* leaf) {
    return TextOf(leaf, &PGX_DicomDirLeafNode::fullPath);
}

int32_t pgKitDirGetLeafInstanceNumber(PGX_DicomDirLeafNode* leaf) {
    return FieldOf(leaf, &PGX_DicomDirLeafNode::instanceNumber);
}

const char* pgKitDirGetLeafSpecificCharacterSet(PGX_DicomDirLeafNode* leaf) {
    return TextOf(leaf, &PGX_DicomDirLeafNode::specificCharacterSet);
}

uint32_t pgKitDirGetLeafFlags(PGX_DicomDirLeafNode* leaf) {
    return FieldOf(leaf, &PGX_DicomDirLeafNode::flags);
}

uint32_t pgKitDirGetLeafClientFlags(PGX_DicomDirLeafNode* leaf) {
    return FieldOf(leaf, &PGX_DicomDirLeafNode::clientFlags);
}

int32_t pgKitDirGetImageRows(PGX_DicomDirLeafNode* image) {
    return FieldOf(image, &PGX_DicomDirImageNode::rows);
}

int32_t pgKitDirGetImageColumns(PGX_DicomDirLeafNode* image) {
    return FieldOf(image, &PGX_DicomDirImageNode::columns);
}

int32_t pgKitDirGetImageNumberOfFrames(PGX_DicomDirLeafNode* image) {
    return FieldOf(image, &PGX_DicomDirImageNode::numberOfFrames);
}

const char* pgKitDirGetImagePhotoInterp(PGX_DicomDirLeafNode* image) {
    return TextOf(image, &PGX_DicomDirImageNode::photometricInterpretation);
}

const char* pgKitDirGetImageType(PGX_DicomDirLeafNode* image) {
    return TextOf(image, &PGX_DicomDirImageNode::imageType);
}

const char* pgKitDirGetImageCalibrationObject(PGX_DicomDirLeafNode* image) {
    return TextOf(image, &PGX_DicomDirImageNode::calibrationImage);
}

void* pgKitDirGetImageIconHDib(PGX_DicomDirLeafNode* image) {
    return FieldOf(image, &PGX_DicomDirImageNode::icon);
}

const char* pgKitDirGetReportVerificationFlag(PGX_DicomDirLeafNode* report) {
    return TextOf(report, &PGX_DicomDirReportNode::verificationFlag);
}

const char* pgKitDirGetReportCompletionFlag(PGX_DicomDirLeafNode* report) {
    return TextOf(report, &PGX_DicomDirReportNode::completionFlag);
}

const char* pgKitDirGetReportContentDate(PGX_DicomDirLeafNode* report) {
    return TextOf(report, &PGX_DicomDirReportNode::contentDate);
}

const char* pgKitDirGetReportContentTime(PGX_DicomDirLeafNode* report) {
    return TextOf(report, &PGX_DicomDirReportNode::contentTime);
}

const char* pgKitDirGetKeyObjectContentDate(PGX_DicomDirLeafNode* keyObject) {
    return TextOf(keyObject, &PGX_DicomDirKeyObjectNode::contentDate);
}

const char* pgKitDirGetKeyObjectContentTime(PGX_DicomDirLeafNode* keyObject) {
    return TextOf(keyObject, &PGX_DicomDirKeyObjectNode::contentTime);
}

const char* pgKitDirGetPresentationCreationDate(PGX_DicomDirLeafNode* presentation) {
    return TextOf(presentation, &PGX_DicomDirPresentationNode::creationDate);
}

const char* pgKitDirGetPresentationCreationTime(PGX_DicomDirLeafNode* presentation) {
    return TextOf(presentation, &PGX_DicomDirPresentationNode::creationTime);
}

const char* pgKitDirGetPresentationCreatorsName(PGX_DicomDirLeafNode* presentation) {
    return TextOf(presentation, &PGX_DicomDirPresentationNode::contentCreatorsName);
}

const char* pgKitDirGetPresentationLabel(PGX_DicomDirLeafNode* presentation) {
    return TextOf(presentation, &PGX_DicomDirPresentationNode::contentLabel);
}

const char* pgKitDirGetPresentationDescription(PGX_DicomDirLeafNode* presentation) {
    return TextOf(presentation, &PGX_DicomDirPresentationNode::contentDescription);
}

const char* pgKitDirGetWaveformContentDate(PGX_DicomDirLeafNode* waveform) {
    return TextOf(waveform, &PGX_DicomDirWaveformNode::contentDate);
}

const char* pgKitDirGetWaveformContentTime(PGX_DicomDirLeafNode* waveform) {
    return TextOf(waveform, &PGX_DicomDirWaveformNode::contentTime);
}

const char* pgKitDirGetRawDataContentDate(PGX_DicomDirLeafNode* rawData) {
    return TextOf(rawData, &PGX_DicomDirRawDataNode::contentDate);
}

const char* pgKitDirGetRawDataContentTime(PGX_DicomDirLeafNode* rawData) {
    return TextOf(rawData, &PGX_DicomDirRawDataNode::contentTime);
}
