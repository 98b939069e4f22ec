#include "dicomdir/leaf_reader.h"

#include <string>
#include <string_view>

#include "base/text.h"
#include "dataset/tree_size.h"
#include "dicomdir/class_uids.h"
#include "dicomdir/record_copy.h"
#include "dicomdir/record_keys.h"
#include "pgkit/sopclass.h"

namespace pgkit {

namespace {

constexpr std::string_view kKeyObjectSelection = "1.2.840.10008.5.1.4.1.1.88.59";
constexpr std::string_view kGrayscalePresentationState = "1.2.840.10008.5.1.4.1.1.11.1";

constexpr KeyTag kSopClassUid = {0x0004, 0x1510};
constexpr KeyTag kReferencedSeriesSequence = {0x0008, 0x1115};
constexpr KeyTag kConceptNameCodeSequence = {0x0040, 0xA043};
constexpr KeyTag kContentSequence = {0x0040, 0xA730};

constexpr char kNoSopClass[] = "No.SOPClass.UID";

// Writers that know no other type call everything an image; the SOP class tells what it is.
std::optional<LeafKind> ClassifyImage(PGX_Node& record) {
    char buffer[65];
    ReadTrimmedKey(record, kSopClassUid, buffer, kNoSopClass);
    const std::string_view sopClass(buffer);
    if (pgIsReportSOPClass(buffer)) return LeafKind{PG_LEAF_REPORT, "SR"};
    if (sopClass == kKeyObjectSelection) return LeafKind{PG_LEAF_KEY_OBJECT, "KO"};
    if (sopClass == kRawDataStorage) return LeafKind{PG_LEAF_RAW_DATA};
    if (sopClass == kGrayscalePresentationState) return LeafKind{PG_LEAF_PRESENTATION, "PR"};
    if (sopClass == kMediaStorageDirectory) return std::nullopt;
    return LeafKind{PG_LEAF_IMAGE};
}

struct NamedType {
    std::string_view beginning;
    PgLeafType type;
};

constexpr NamedType kNamedTypes[] = {
    {"SR DOCUMENT", PG_LEAF_REPORT},        {"PRESENTATION", PG_LEAF_PRESENTATION},
    {"KEY OBJECT DOC", PG_LEAF_KEY_OBJECT}, {"ENCAP DOC", PG_LEAF_ENCAPSULATED_DOC},
    {"WAVEFORM", PG_LEAF_WAVEFORM},         {"RAW DATA", PG_LEAF_RAW_DATA},
};

// The list cell of a leaf and its share of the indexes, at most.
constexpr uint64_t kIndexMemory = 384;

// What another record could not carry is left out here already: the leaf shows what it has when the
// hierarchy is written again. Null also when the browse may not take so much: many leaves may share
// the record, and each has copies of its own.
PGX_Node* CopySequence(PGX_Node& record, KeyTag tag, BrowseLimits& limits) {
    PGX_Node* sequence = record.FindNode(tag.group, tag.element);
    if (sequence == nullptr || !limits.TakeMemory(CopySize(*sequence))) return nullptr;
    return CopyForRecord(sequence).release();
}

void ReadFields(PGX_Node& record, PGX_DicomDirImageNode& image, BrowseLimits& limits) {
    image.rows = ReadUnsignedShortKey(record, {0x0028, 0x0010});
    image.columns = ReadUnsignedShortKey(record, {0x0028, 0x0011});
    image.numberOfFrames = ReadIntegerKey(record, {0x0028, 0x0008}, 1);
    ReadKey(record, {0x0028, 0x0004}, image.photometricInterpretation, "??");
    ReadKey(record, {0x0008, 0x0008}, image.imageType);
    ReadKey(record, {0x0050, 0x0004}, image.calibrationImage);
    image.icon = ReadIcon(record, limits).release();
}

void ReadFields(PGX_Node& record, PGX_DicomDirReportNode& report, BrowseLimits& limits) {
    ReadContentDateAndTime(record, report);
    ReadKey(record, {0x0040, 0xA493}, report.verificationFlag);
    ReadKey(record, {0x0040, 0xA491}, report.completionFlag);
    ReadKey(record, {0x0040, 0xA030}, report.verificationDateTime);
    report.conceptNameCodeSequence = CopySequence(record, kConceptNameCodeSequence, limits);
    report.contentSequence = CopySequence(record, kContentSequence, limits);
}

void ReadFields(PGX_Node& record, PGX_DicomDirKeyObjectNode& object, BrowseLimits& limits) {
    ReadContentDateAndTime(record, object);
    object.conceptNameCodeSequence = CopySequence(record, kConceptNameCodeSequence, limits);
    object.contentSequence = CopySequence(record, kContentSequence, limits);
}

void ReadFields(PGX_Node& record, PGX_DicomDirPresentationNode& state, BrowseLimits& limits) {
    ReadPresentationKeys(record, state);
    state.referencedSeriesSequence = CopySequence(record, kReferencedSeriesSequence, limits);
}

void ReadFields(PGX_Node& record, PGX_DicomDirEncapsulatedDocNode& document, BrowseLimits& limits) {
    ReadDocumentKeys(record, document);
    document.conceptNameCodeSequence = CopySequence(record, kConceptNameCodeSequence, limits);
}

void ReadFields(PGX_Node& record, PGX_DicomDirWaveformNode& waveform, BrowseLimits&) {
    ReadContentDateAndTime(record, waveform);
}

void ReadFields(PGX_Node& record, PGX_DicomDirRawDataNode& data, BrowseLimits&) {
    ReadContentDateAndTime(record, data);
}

void ReadFields(PGX_Node&, PGX_DicomDirLeafNode&, BrowseLimits&) {}

template <typename Leaf>
std::unique_ptr<PGX_DicomDirLeafNode> NewLeaf(PGX_Node& record, BrowseLimits& limits) {
    if (!limits.TakeMemory(HeapBlock(sizeof(Leaf)) + kIndexMemory)) return nullptr;
    auto leaf = std::make_unique<Leaf>();
    ReadFields(record, *leaf, limits);
    if (limits.AreExhausted()) return nullptr;
    return leaf;
}

std::unique_ptr<PGX_DicomDirLeafNode> NewLeafOfType(PGX_Node& record, PgLeafType type,
                                                    BrowseLimits& limits) {
    switch (type) {
        case PG_LEAF_IMAGE:
            return NewLeaf<PGX_DicomDirImageNode>(record, limits);
        case PG_LEAF_REPORT:
            return NewLeaf<PGX_DicomDirReportNode>(record, limits);
        case PG_LEAF_KEY_OBJECT:
            return NewLeaf<PGX_DicomDirKeyObjectNode>(record, limits);
        case PG_LEAF_PRESENTATION:
            return NewLeaf<PGX_DicomDirPresentationNode>(record, limits);
        case PG_LEAF_WAVEFORM:
            return NewLeaf<PGX_DicomDirWaveformNode>(record, limits);
        case PG_LEAF_ENCAPSULATED_DOC:
            return NewLeaf<PGX_DicomDirEncapsulatedDocNode>(record, limits);
        case PG_LEAF_RAW_DATA:
            return NewLeaf<PGX_DicomDirRawDataNode>(record, limits);
        case PG_LEAF_OTHER:
            break;
    }
    return NewLeaf<PGX_DicomDirLeafNode>(record, limits);
}

void ReadFileId(PGX_Node& record, const char* folder, PGX_DicomDirLeafNode& leaf) {
    char buffer[512];
    ReadKey(record, {0x0004, 0x1500}, buffer, kNoReferencedFileId);
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
    ReadKey(record, {0x07A1, 0x102B}, text, "N");
    return text[0] == 'Y';
}

}  // namespace

std::optional<LeafKind> ClassifyLeaf(PGX_Node& record, const char* recordType) {
    const std::string_view type(recordType);
    if (type.starts_with("IMAGE")) return ClassifyImage(record);
    for (const NamedType& named : kNamedTypes) {
        if (type.starts_with(named.beginning)) return LeafKind{named.type};
    }
    if (type.starts_with("PRIVATE")) return std::nullopt;
    return LeafKind{PG_LEAF_OTHER};
}

std::unique_ptr<PGX_DicomDirLeafNode> ReadLeaf(PGX_Node& record, PgLeafType type,
                                               const char* recordType, const char* instanceUid,
                                               const char* folder, BrowseLimits& limits) {
    std::unique_ptr<PGX_DicomDirLeafNode> leaf = NewLeafOfType(record, type, limits);
    if (leaf == nullptr) return nullptr;
    leaf->record = &record;
    CopyToField(leaf->recordType, recordType);
    CopyToField(leaf->instanceUid, instanceUid);
    leaf->instanceNumber = ReadIntegerKey(record, {0x0020, 0x0013}, 0);
    ReadKey(record, kSopClassUid, leaf->sopClassUid, kNoSopClass);
    ReadKey(record, {0x0004, 0x1512}, leaf->transferSyntaxUid, "No.TransferSyntax.UID");
    ReadFileId(record, folder, *leaf);
    ReadCharacterSet(record, leaf->specificCharacterSet);
    if (IsMarked(record)) leaf->flags |= PG_LEAF_MARKED;
    leaf->referencedDataSetSize = ReadIntegerKey(record, {0x0859, 0x1040}, 0);
    return leaf;
}

}  // namespace pgkit
