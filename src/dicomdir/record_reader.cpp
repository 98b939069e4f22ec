#include "dicomdir/record_reader.h"

#include <string>

#include "base/text.h"
#include "dataset/tree_size.h"
#include "dicomdir/icon_bitmap.h"
#include "dicomdir/level_keys.h"
#include "dicomdir/record_copy.h"

namespace pgkit {

namespace {

// The list cell of a leaf and its share of the indexes, at most.
constexpr uint64_t kIndexMemory = 384;

// What another record could not carry is left out here already: the leaf shows what it has when the
// hierarchy is written again. Null also when the browse may not take so much: many leaves may share
// the record, and each has copies of its own.
PGX_Node* CopySequence(PGX_Node& record, Tag tag, BrowseLimits& limits) {
    PGX_Node* const sequence = FindElement(record, tag);
    if (sequence == nullptr || !limits.TakeMemory(CopySize(*sequence))) return nullptr;
    return CopyForRecord(sequence).release();
}

void ReadKindsKeys(PGX_Node& record, const LeafKind& kind, Leaf& leaf, BrowseLimits& limits) {
    ReadRecordTexts(record, kind.texts, leaf);
    ReadNumbers(record, kind.numbers, leaf);
    for (const SequenceKey& key : kind.sequences)
        key.field(leaf) = CopySequence(record, key.tag, limits);
    if (kind.icon != nullptr) kind.icon(leaf) = ReadIcon(record, limits).release();
}

void ReadFileId(PGX_Node& record, std::string_view folder, Leaf& leaf) {
    char buffer[512];
    ReadText(record, tags::kReferencedFileId, buffer, kNoReferencedFileId);
    std::string_view fileId(buffer);
    if (fileId.starts_with('\\')) fileId.remove_prefix(1);
    CopyToField(leaf.referencedFileId, fileId);
    std::string path;
    path.reserve(sizeof buffer + sizeof leaf.fullPath);
    path.append(folder).append("\\").append(fileId);
    CopyToField(leaf.fullPath, path);
    for (char& c : leaf.fullPath)
        c = ToUpper(c);
}

bool IsMarked(PGX_Node& record) {
    char text[17];
    ReadText(record, tags::kLeafMark, text);
    return text[0] == 'Y';
}

}  // namespace

void ReadPatient(PGX_Node& record, Patient& patient) {
    ReadRecordTexts(record, kPatientKeys, patient);
    patient.record = &record;
}

// Some writers have the UID of the study where a record refers to an instance: it counts first.
void ReadStudy(PGX_Node& record, Study& study) {
    ReadRecordTexts(record, kStudyKeys, study);
    char referencedUid[sizeof study.studyInstanceUid];
    ReadTrimmedText(record, tags::kReferencedSopInstanceUid, referencedUid);
    if (referencedUid[0] != '\0') CopyToField(study.studyInstanceUid, referencedUid);
    study.record = &record;
}

void ReadSeries(PGX_Node& record, Series& series) {
    ReadRecordTexts(record, kSeriesKeys, series);
    char purpose[17];
    ReadTrimmedText(record, tags::kSeriesPurpose, purpose);
    if (std::string_view(purpose).starts_with("KEY_IMAGES")) series.flags |= PG_SERIES_KEY_IMAGES;
    series.record = &record;
}

BitmapHandle ReadIcon(PGX_Node& record, BrowseLimits& limits) {
    PGX_Node* const sequence = FindElement(record, tags::kIconImageSequence);
    if (sequence == nullptr || sequence->first == nullptr) return nullptr;
    const auto mayTake = [&](uint64_t bytes) { return limits.TakeMemory(bytes); };
    return NewIconBitmap(*sequence->first, mayTake);
}

std::unique_ptr<Leaf> ReadLeaf(PGX_Node& record, const LeafKind& kind, std::string_view recordType,
                               std::string_view instanceUid, std::string_view folder,
                               BrowseLimits& limits) {
    if (!limits.TakeMemory(HeapBlock(kind.size) + kIndexMemory)) return nullptr;
    std::unique_ptr<Leaf> leaf = kind.make();
    ReadKindsKeys(record, kind, *leaf, limits);
    if (limits.AreExhausted()) return nullptr;
    leaf->record = &record;
    CopyToField(leaf->recordType, recordType);
    CopyToField(leaf->instanceUid, instanceUid);
    ReadRecordTexts(record, kLeafKeys, *leaf);
    ReadNumbers(record, kLeafNumbers, *leaf);
    ReadFileId(record, folder, *leaf);
    if (IsMarked(record)) leaf->flags |= PG_LEAF_MARKED;
    leaf->referencedDataSetSize = ReadInteger(record, tags::kReferencedDataSetSize, 0);
    return leaf;
}

}  // namespace pgkit
