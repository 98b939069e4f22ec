#include "dicomdir/create/file_gate.h"

#include <string_view>

#include "base/paths.h"
#include "base/text.h"
#include "codec/open.h"
#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/directory_file.h"
#include "dicomdir/create/standard_kinds.h"
#include "dicomdir/elements.h"
#include "dicomdir/leaf_kinds.h"
#include "pgkit/directory_records.h"

namespace pgkit {

namespace {

// Keys of the hierarchy are short: what is longer is rarely asked for and read then.
constexpr uint32_t kLoadLimit = 64;

// The Media Storage Directory class and those of its kind.
bool IsDirectoryClass(std::string_view uid) { return uid.starts_with(kMediaStorageDirectory); }

PgAcceptanceCode Open(const char* path, bool skipChecks, OpenedDataSet& dataSet) {
    constexpr uint32_t kFlags = PG_OPEN_SKIP_FRAGMENTS;
    if (skipChecks) {
        dataSet.reset(OpenDataSet(OpenInput(path), kLoadLimit, kFlags));
    } else {
        bool isDicom;
        dataSet.reset(OpenIfDicom(OpenToTest(path), kLoadLimit, kFlags, isDicom));
        if (!isDicom) return PG_NOT_DICOM_PART_10;
    }
    return dataSet != nullptr ? PG_ACCEPTED : PG_NOT_A_DATA_SET;
}

// The File Meta Information says what the file is. Some writers put a DICOMDIR's class there by
// mistake: a caller who wants every file has the data set's own class instead.
void ReadSopClass(PGX_Node& dataSet, bool skipChecks, char (&sopClass)[65]) {
    char own[65];
    ReadTrimmedText(dataSet, tags::kMediaStorageSopClassUid, sopClass);
    ReadTrimmedText(dataSet, tags::kSopClassUid, own);
    const bool isMistaken = skipChecks && IsDirectoryClass(sopClass) && own[0] != '\0';
    if (sopClass[0] == '\0' || isMistaken) CopyToField(sopClass, own);
}

// A browse drops the blanks around UIDs, whatever their VR: padding must not make two of one.
PgAcceptanceCode ReadIdentifiers(const GateRules& rules, Candidate& candidate) {
    PGX_Node& dataSet = *candidate.dataSet;
    ReadSopClass(dataSet, rules.skipChecks, candidate.sopClassUid);
    if (candidate.sopClassUid[0] == '\0') return PG_NOT_A_DATA_SET;
    if (IsDirectoryClass(candidate.sopClassUid)) return PG_IS_A_DICOMDIR;
    ReadTrimmedText(dataSet, tags::kSopInstanceUid, candidate.instanceUid);
    ReadTrimmedText(dataSet, tags::kStudyInstanceUid, candidate.studyInstanceUid);
    ReadTrimmedText(dataSet, tags::kSeriesInstanceUid, candidate.seriesInstanceUid);
    ReadTrimmedText(dataSet, tags::kTransferSyntaxUid, candidate.transferSyntaxUid);
    if (candidate.instanceUid[0] == '\0') return PG_NO_SOP_INSTANCE_UID;
    if (rules.admitsRootObjects && StandsAtRoot(candidate.sopClassUid)) return PG_ACCEPTED;
    if (candidate.studyInstanceUid[0] == '\0') return PG_NO_STUDY_INSTANCE_UID;
    if (candidate.seriesInstanceUid[0] == '\0') return PG_NO_SERIES_INSTANCE_UID;
    return PG_ACCEPTED;
}

bool IsAllowed(const Candidate& candidate, const char* profile) {
    char photometricInterpretation[17];
    char modality[17];
    ReadText(*candidate.dataSet, tags::kPhotometricInterpretation, photometricInterpretation,
             "no Photo. info");
    ReadText(*candidate.dataSet, tags::kModality, modality);
    return pgDirAcceptDataset2(candidate.transferSyntaxUid, candidate.sopClassUid,
                               photometricInterpretation, modality, profile) != 0;
}

// Whether a name fits the field of a leaf and leads to a file of the medium: there is one, and no
// component goes back up.
bool IsFileId(std::string_view name) {
    if (name.empty() || name.size() >= sizeof(PGX_DicomDirLeafNode::referencedFileId)) return false;
    while (!name.empty()) {
        if (TakeComponent(name) == "..") return false;
    }
    return true;
}

PgAcceptanceCode Judge(const FileToAdd& file, const GateRules& rules, Candidate& candidate) {
    if (!IsFileId(file.referencedName)) return PG_INVALID_FILE_NAME;
    const std::string_view name = file.referencedName;
    if (ToUpper(name) == kDicomdirName) return PG_IS_A_DICOMDIR;
    // The creation of the DICOMDIR would remove it.
    if (IsReplacementOfDicomdir(name)) return PG_IS_A_DICOMDIR;
    if (rules.wantsStrictNames && !IsStandardFileId(name) && !IsOwnFile(name)) {
        return PG_INVALID_FILE_NAME;
    }
    PgAcceptanceCode code = Open(file.fullPath, rules.skipChecks, candidate.dataSet);
    if (code == PG_ACCEPTED) code = ReadIdentifiers(rules, candidate);
    if (code != PG_ACCEPTED) return code;
    const bool isAllowed = rules.skipChecks || IsAllowed(candidate, rules.profile);
    return isAllowed ? PG_ACCEPTED : PG_PROFILE_REFUSES;
}

}  // namespace

bool IsOwnFile(std::string_view name) {
    return ToUpper(name) == kDicomdirName || name == kAcceptanceListName ||
           IsReplacementOfDicomdir(name);
}

PgAcceptanceCode PassFileGate(const FileToAdd& file, const GateRules& rules, Candidate& candidate) {
    const PgAcceptanceCode code = Judge(file, rules, candidate);
    if (code != PG_ACCEPTED) candidate.dataSet.reset();
    return code;
}

}  // namespace pgkit
