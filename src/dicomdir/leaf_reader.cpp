#include "dicomdir/leaf_reader.h"

#include <string>
#include <string_view>

#include "base/text.h"
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

// What another record could not carry is left out here already: the leaf shows what it has when the
// hierarchy is written again.
PGX_Node* CopySequence(PGX_Node& record, KeyTag tag) {
    return CopyForRecord(record.FindNode(tag.group, tag.element)).release();
}

void ReadFields(PGX_Node& record, PGX_DicomDirImageNode& image) {
    image.rows = ReadUnsignedShortKey(record, {0x0028, 0x0010});
    image.columns = ReadUnsignedShortKey(record, {0x0028, 0x0011});
    image.numberOfFrames = ReadIntegerKey(record, {0x0028, 0x0008}, 1);
    ReadKey(record, {0x0028, 0x0004}, image.photometricInterpretation, "??");
    ReadKey(record, {0x0008, 0x0008}, image.imageType);
    ReadKey(record, {0x0050, 0x0004}, image.calibrationImage);
    image.icon = ReadIcon(record).release();
}

void ReadFields(PGX_Node& record, PGX_DicomDirReportNode& report) {
    ReadContentDateAndTime(record, report);
    ReadKey(record, {0x0040, 0xA493}, report.verificationFlag);
    ReadKey(record, {0x0040, 0xA491}, report.completionFlag);
    ReadKey(record, {0x0040, 0xA030}, report.verificationDateTime);
    report.conceptNameCodeSequence = CopySequence(record, kConceptNameCodeSequence);
    report.contentSequence = CopySequence(record, kContentSequence);
}

void ReadFields(PGX_Node& record, PGX_DicomDirKeyObjectNode& object) {
    ReadContentDateAndTime(record, object);
    object.conceptNameCodeSequence = CopySequence(record, kConceptNameCodeSequence);
    object.contentSequence = CopySequence(record, kContentSequence);
}

void ReadFields(PGX_Node& record, PGX_DicomDirPresentationNode& state) {
    ReadPresentationKeys(record, state);
    state.referencedSeriesSequence = CopySequence(record, kReferencedSeriesSequence);
}

void ReadFields(PGX_Node& record, PGX_DicomDirEncapsulatedDocNode& document) {
    ReadDocumentKeys(record, document);
    document.conceptNameCodeSequence = CopySequence(record, kConceptNameCodeSequence);
}

void ReadFields(PGX_Node& record, PGX_DicomDirWaveformNode& waveform) {
    ReadContentDateAndTime(record, waveform);
}

void ReadFields(PGX_Node& record, PGX_DicomDirRawDataNode& data) {
    ReadContentDateAndTime(record, data);
}

void ReadFields(PGX_Node&, PGX_DicomDirLeafNode&) {}

template <typename Leaf>
std::unique_ptr<PGX_DicomDirLeafNode> NewLeaf(PGX_Node& record) {
    auto leaf = std::make_unique<Leaf>();
    ReadFields(record, *leaf);
    return leaf;
}

std::unique_ptr<PGX_DicomDirLeafNode> NewLeafOfType(PGX_Node& record, PgLeafType type) {
    switch (type) {
        case PG_LEAF_IMAGE:
            return NewLeaf<PGX_DicomDirImageNode>(record);
        case PG_LEAF_REPORT:
            return NewLeaf<PGX_DicomDirReportNode>(record);
        case PG_LEAF_KEY_OBJECT:
            return NewLeaf<PGX_DicomDirKeyObjectNode>(record);
        case PG_LEAF_PRESENTATION:
            return NewLeaf<PGX_DicomDirPresentationNode>(record);
        case PG_LEAF_WAVEFORM:
            return NewLeaf<PGX_DicomDirWaveformNode>(record);
        case PG_LEAF_ENCAPSULATED_DOC:
            return NewLeaf<PGX_DicomDirEncapsulatedDocNode>(record);
        case PG_LEAF_RAW_DATA:
            return NewLeaf<PGX_DicomDirRawDataNode>(record);
        case PG_LEAF_OTHER:
            break;
    }
    return NewLeaf<PGX_DicomDirLeafNode>(record);
}

void ReadFileId(PGX_Node& record, const char* folder, PGX_DicomDirLeafNode& leaf) {
    char buffer[512];
    ReadKey(record, {0x0004, 0x1500}, buffer, "No.ReferencedFileID");
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
                                               const char* folder) {
    std::unique_ptr<PGX_DicomDirLeafNode> leaf = NewLeafOfType(record, type);
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
