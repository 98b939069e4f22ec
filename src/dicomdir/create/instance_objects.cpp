#include "dicomdir/create/instance_objects.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/text.h"
#include "dicomdir/create/creation_flags.h"
#include "dicomdir/create/standard_leaves.h"
#include "dicomdir/leaf_kinds.h"
#include "dicomdir/level_keys.h"
#include "dicomdir/record_copy.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Empty components at the end of a name, and blanks, do not make another patient.
void CleanName(std::span<char> name) {
    size_t length = std::strlen(name.data());
    while (length > 0 && (name[length - 1] == ' ' || name[length - 1] == '^'))
        --length;
    name[length] = '\0';
    TrimField(name);
}

// What a record could not carry is left out. Of the items that are asked for there may be none.
PGX_Node* CopySequence(PGX_Node& dataSet, const SequenceKey& key) {
    NodeTree copy = CopyForRecord(FindElement(dataSet, key.tag), key.wantsItemOfInstance);
    if (key.wantsItemOfInstance != nullptr && copy != nullptr && copy->first == nullptr) {
        return nullptr;
    }
    return copy.release();
}

// The last time that somebody verified the report.
void ReadVerificationDateTime(PGX_Node& dataSet, PGX_DicomDirReportNode& report) {
    PGX_Node* const observers = FindElement(dataSet, tags::kVerifyingObserverSequence);
    if (observers == nullptr) return;
    for (PGX_Node* observer = observers->first; observer != nullptr; observer = observer->next) {
        char dateTime[sizeof report.verificationDateTime];
        ReadText(*observer, tags::kVerificationDateTime, dateTime);
        if (std::string_view(dateTime) > report.verificationDateTime) {
            CopyToField(report.verificationDateTime, dateTime);
        }
    }
}

void ReadKindsKeys(PGX_Node& dataSet, const LeafKind& kind, Leaf& leaf) {
    ReadInstanceTexts(dataSet, kind.texts, leaf);
    ReadNumbers(dataSet, kind.numbers, leaf);
    for (const SequenceKey& key : kind.sequences)
        key.field(leaf) = CopySequence(dataSet, key);
    if (kind.type != PG_LEAF_REPORT) return;
    auto& report = static_cast<PGX_DicomDirReportNode&>(leaf);
    if (IsVerified(report)) ReadVerificationDateTime(dataSet, report);
}

// 0 where it is unknown, or too much for the field.
int32_t FileSizeField(const char* path) {
    const uint64_t size = platform::FileSize(path).value_or(0);
    return size > UINT32_MAX ? 0 : static_cast<int32_t>(static_cast<uint32_t>(size));
}

}  // namespace

std::unique_ptr<Patient> NewPatient(PGX_Node& dataSet) {
    auto patient = std::make_unique<Patient>();
    ReadInstanceTexts(dataSet, kPatientKeys, *patient);
    CleanName(patient->patientsName);
    return patient;
}

std::unique_ptr<Study> NewStudy(PGX_Node& dataSet) {
    auto study = std::make_unique<Study>();
    ReadInstanceTexts(dataSet, kStudyKeys, *study);
    return study;
}

std::unique_ptr<Series> NewSeries(PGX_Node& dataSet) {
    auto series = std::make_unique<Series>();
    ReadInstanceTexts(dataSet, kSeriesKeys, *series);
    return series;
}

std::unique_ptr<Leaf> NewLeaf(const Candidate& candidate, const FileToAdd& file,
                              const PgDicomdirOptions& options) {
    PGX_Node& dataSet = *candidate.dataSet;
    const bool isStandard = Has(options, PG_DICOMDIR_STANDARD_RECORDS);
    const StandardKind* const standard =
        isStandard ? StandardKindOf(candidate.sopClassUid) : nullptr;
    const LeafKind& kind =
        standard != nullptr ? KindOfType(standard->leafType) : KindOfClass(candidate.sopClassUid);
    std::unique_ptr<Leaf> leaf =
        standard != nullptr ? NewStandardLeaf(dataSet, *standard) : kind.make();
    ReadKindsKeys(dataSet, kind, *leaf);
    ReadInstanceTexts(dataSet, kLeafKeys, *leaf);
    ReadNumbers(dataSet, kLeafNumbers, *leaf);
    CopyToField(leaf->fullPath, file.fullPath);
    CopyToField(leaf->referencedFileId, file.referencedName);
    CopyToField(leaf->instanceUid, candidate.instanceUid);
    CopyToField(leaf->sopClassUid, candidate.sopClassUid);
    CopyToField(leaf->transferSyntaxUid, candidate.transferSyntaxUid);
    if (options.storeFileSize != 0) leaf->referencedDataSetSize = FileSizeField(file.fullPath);
    return leaf;
}

}  // namespace pgkit
