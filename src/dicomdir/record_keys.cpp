#include "dicomdir/record_keys.h"

#include <string_view>

#include "dicomdir/icon_bitmap.h"

namespace pgkit {

namespace {

constexpr size_t kCharacterSetLength = 50;

constexpr KeyTag kCharacterSet = {0x0008, 0x0005};
constexpr KeyTag kStudyDate = {0x0008, 0x0020};
constexpr KeyTag kStudyTime = {0x0008, 0x0030};
constexpr KeyTag kAccessionNumber = {0x0008, 0x0050};
constexpr KeyTag kModality = {0x0008, 0x0060};
constexpr KeyTag kManufacturer = {0x0008, 0x0070};
constexpr KeyTag kInstitutionName = {0x0008, 0x0080};
constexpr KeyTag kInstitutionAddress = {0x0008, 0x0081};
constexpr KeyTag kReferringPhysiciansName = {0x0008, 0x0090};
constexpr KeyTag kStudyDescription = {0x0008, 0x1030};
constexpr KeyTag kSeriesDescription = {0x0008, 0x103E};
constexpr KeyTag kPerformingPhysiciansName = {0x0008, 0x1050};
constexpr KeyTag kPatientsName = {0x0010, 0x0010};
constexpr KeyTag kPatientId = {0x0010, 0x0020};
constexpr KeyTag kBirthDate = {0x0010, 0x0030};
constexpr KeyTag kSex = {0x0010, 0x0040};
constexpr KeyTag kReferencedInstanceUid = {0x0004, 0x1511};
constexpr KeyTag kStudyInstanceUid = {0x0020, 0x000D};
constexpr KeyTag kSeriesInstanceUid = {0x0020, 0x000E};
constexpr KeyTag kStudyId = {0x0020, 0x0010};
constexpr KeyTag kSeriesNumber = {0x0020, 0x0011};
constexpr KeyTag kSeriesPurpose = {0x00E1, 0x1051};  // private

PGX_Node* FindKey(PGX_Node& record, KeyTag tag) { return record.FindNode(tag.group, tag.element); }

}  // namespace

bool ReadKeyText(PGX_Node& record, KeyTag tag, char* out, size_t maxLength) {
    PGX_Node* key = FindKey(record, tag);
    if (key == nullptr) return false;
    key->GetStringValue(out, static_cast<int32_t>(maxLength));
    return true;
}

int32_t ReadIntegerKey(PGX_Node& record, KeyTag tag, int32_t absent) {
    PGX_Node* key = FindKey(record, tag);
    return key == nullptr ? absent : key->GetDSIntValue();
}

int32_t ReadUnsignedShortKey(PGX_Node& record, KeyTag tag) {
    PGX_Node* key = FindKey(record, tag);
    return key == nullptr ? 0 : key->GetUSValue();
}

void ReadCharacterSet(PGX_Node& record, char (&field)[272]) {
    ReadKeyText(record, kCharacterSet, field, kCharacterSetLength);
}

void ReadPatientKeys(PGX_Node& record, PGX_DicomDirPatientNode& patient) {
    ReadTrimmedKey(record, kPatientId, patient.patientId);
    ReadTrimmedKey(record, kPatientsName, patient.patientsName);
    ReadKey(record, kSex, patient.sex);
    ReadKey(record, kBirthDate, patient.birthDate);
    ReadCharacterSet(record, patient.specificCharacterSet);
    patient.record = &record;
}

// Some writers give the study the UID that its record refers to: that one counts first.
void ReadStudyKeys(PGX_Node& record, PGX_DicomDirStudyNode& study) {
    ReadTrimmedKey(record, kReferencedInstanceUid, study.studyInstanceUid);
    if (study.studyInstanceUid[0] == '\0') {
        ReadTrimmedKey(record, kStudyInstanceUid, study.studyInstanceUid);
    }
    ReadTrimmedKey(record, kStudyId, study.studyId);
    ReadTrimmedKey(record, kStudyDate, study.studyDate);
    ReadTrimmedKey(record, kStudyTime, study.studyTime);
    ReadTrimmedKey(record, kAccessionNumber, study.accessionNumber);
    ReadTrimmedKey(record, kStudyDescription, study.studyDescription);
    ReadTrimmedKey(record, kManufacturer, study.manufacturer);
    ReadTrimmedKey(record, kReferringPhysiciansName, study.referringPhysiciansName);
    ReadCharacterSet(record, study.specificCharacterSet);
    TrimField(study.specificCharacterSet);
    study.record = &record;
}

void ReadSeriesKeys(PGX_Node& record, PGX_DicomDirSeriesNode& series) {
    char purpose[17];
    ReadTrimmedKey(record, kSeriesInstanceUid, series.seriesInstanceUid);
    ReadTrimmedKey(record, kSeriesDescription, series.seriesDescription);
    ReadTrimmedKey(record, kSeriesNumber, series.seriesNumber);
    ReadTrimmedKey(record, kModality, series.modality);
    ReadTrimmedKey(record, kInstitutionName, series.institutionName);
    ReadTrimmedKey(record, kInstitutionAddress, series.institutionAddress);
    ReadTrimmedKey(record, kPerformingPhysiciansName, series.performingPhysiciansName);
    ReadCharacterSet(record, series.specificCharacterSet);
    TrimField(series.specificCharacterSet);
    ReadTrimmedKey(record, kSeriesPurpose, purpose);
    if (std::string_view(purpose).starts_with("KEY_IMAGES")) series.flags |= PG_SERIES_KEY_IMAGES;
    series.record = &record;
}

void ReadPresentationKeys(PGX_Node& source, PGX_DicomDirPresentationNode& presentation) {
    ReadKey(source, {0x0070, 0x0082}, presentation.creationDate);
    ReadKey(source, {0x0070, 0x0083}, presentation.creationTime);
    ReadKey(source, {0x0070, 0x0084}, presentation.contentCreatorsName);
    ReadKey(source, {0x0070, 0x0080}, presentation.contentLabel);
    ReadKey(source, {0x0070, 0x0081}, presentation.contentDescription);
}

void ReadDocumentKeys(PGX_Node& source, PGX_DicomDirEncapsulatedDocNode& document) {
    ReadContentDateAndTime(source, document);
    ReadKey(source, {0x0042, 0x0010}, document.documentTitle);
    ReadKey(source, {0x0042, 0x0012}, document.mimeType);
}

BitmapHandle ReadIcon(PGX_Node& record, BrowseLimits& limits) {
    PGX_Node* sequence = record.FindNode(0x0088, 0x0200);
    if (sequence == nullptr || sequence->first == nullptr) return nullptr;
    const auto mayTake = [&](uint64_t bytes) { return limits.TakeMemory(bytes); };
    return NewIconBitmap(*sequence->first, mayTake);
}

}  // namespace pgkit
