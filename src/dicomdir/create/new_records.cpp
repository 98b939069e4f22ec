#include "dicomdir/create/new_records.h"

#include <new>
#include <string>

#include "dicomdir/create/icon_item.h"
#include "dicomdir/create/standard_leaves.h"
#include "dicomdir/leaf_kinds.h"
#include "dicomdir/level_keys.h"
#include "dicomdir/record_copy.h"

namespace pgkit {

namespace {

constexpr uint16_t kInUse = 0xFFFF;

NodeTree NewRecord(std::string_view type) {
    NodeTree record(pgAllocateDataSetNode());
    if (record == nullptr) throw std::bad_alloc();
    PutNumber<uint32_t>(*record, tags::kNextRecordLink, 0);
    PutNumber<uint16_t>(*record, tags::kRecordInUse, kInUse);
    PutNumber<uint32_t>(*record, tags::kLowerLevelLink, 0);
    PutText(*record, tags::kRecordType, type);
    return record;
}

template <typename Object>
void PutTexts(PGX_Node& record, TextKeysOf<Object> keys, Object& object) {
    for (const TextKey<Object>& key : keys) {
        if ((key.ways & kIntoRecord) != 0) PutText(record, key.tag, key.field(object).data());
    }
}

void PutNumbers(PGX_Node& record, std::span<const NumberKey> keys, Leaf& leaf) {
    for (const NumberKey& key : keys) {
        const int32_t number = key.field(leaf);
        if (key.form == NumberKey::Form::Text) {
            PutText(record, key.tag, std::to_string(number));
        } else {
            PutNumber(record, key.tag, static_cast<uint16_t>(number));
        }
    }
}

void PutSequence(PGX_Node& record, PGX_Node* sequence) {
    NodeTree copy = CopyForRecord(sequence);
    if (copy != nullptr) record.InsertNode(copy.release());
}

void PutIcon(PGX_Node& record, void* bitmap) {
    NodeTree icon = NewIconItem(bitmap);
    if (icon == nullptr) return;
    PutBytes(record, tags::kIconImageSequence, nullptr, 0);
    FindElement(record, tags::kIconImageSequence)->SeqAddHead(icon.release());
}

void PutKindsKeys(PGX_Node& record, const LeafKind& kind, Leaf& leaf) {
    PutTexts(record, kind.texts, leaf);
    PutNumbers(record, kind.numbers, leaf);
    for (const SequenceKey& key : kind.sequences)
        PutSequence(record, key.field(leaf));
    if (kind.icon != nullptr) PutIcon(record, kind.icon(leaf));
    if (kind.type != PG_LEAF_REPORT) return;
    const auto& report = static_cast<const PGX_DicomDirReportNode&>(leaf);
    if (!IsVerified(report)) return;
    PutText(record, tags::kVerificationDateTime, report.verificationDateTime);
}

void PutFileSize(PGX_Node& record, int32_t size) {
    PutText(record, tags::kDataSetSizeCreator, "ZORVA DICOMDIR");
    PutText(record, tags::kWrittenDataSetSize, std::to_string(static_cast<uint32_t>(size)));
}

}  // namespace

NodeTree NewPatientRecord(Patient& patient) {
    NodeTree record = NewRecord("PATIENT");
    PutTexts(*record, kPatientKeys, patient);
    return record;
}

NodeTree NewStudyRecord(Study& study) {
    NodeTree record = NewRecord("STUDY");
    PutTexts(*record, kStudyKeys, study);
    return record;
}

NodeTree NewSeriesRecord(Series& series) {
    NodeTree record = NewRecord("SERIES");
    PutTexts(*record, kSeriesKeys, series);
    PutIcon(*record, series.icon);
    return record;
}

NodeTree NewLeafRecord(Leaf& leaf, bool wantsFileSize) {
    const LeafKind& kind = KindOf(leaf);
    const bool isPlain = kind.type == PG_LEAF_OTHER;
    NodeTree record = NewRecord(isPlain ? std::string_view(leaf.recordType) : kind.recordType);
    PutKindsKeys(*record, kind, leaf);
    PutOwnKeys(*record, leaf);
    PutTexts(*record, kLeafKeys, leaf);
    PutNumbers(*record, kLeafNumbers, leaf);
    if (wantsFileSize || leaf.referencedDataSetSize != 0) {
        PutFileSize(*record, leaf.referencedDataSetSize);
    }
    return record;
}

}  // namespace pgkit
