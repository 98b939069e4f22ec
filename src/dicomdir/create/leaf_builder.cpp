#include "dicomdir/create/leaf_builder.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "base/text.h"
#include "dicomdir/class_uids.h"
#include "dicomdir/create/concept_modifiers.h"
#include "dicomdir/create/icon_making.h"
#include "dicomdir/create/instance_keys.h"
#include "dicomdir/record_copy.h"
#include "dicomdir/record_keys.h"
#include "pgkit/sopclass.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr std::string_view kEncapsulatedPdf = "1.2.840.10008.5.1.4.1.1.104.1";

PGX_Node* CopyOf(PGX_Node& dataSet, uint16_t group, uint16_t element) {
    return CopyForRecord(dataSet.FindNode(group, element)).release();
}

template <typename Leaf>
void ReadContent(PGX_Node& dataSet, Leaf& leaf) {
    ReadContentDateAndTime(dataSet, leaf);
    leaf.conceptNameCodeSequence = CopyOf(dataSet, 0x0040, 0xA043);
    leaf.contentSequence = CopyConceptModifiers(dataSet.FindNode(0x0040, 0xA730)).release();
}

// The last time that somebody verified the report.
void ReadVerificationDateTime(PGX_Node& dataSet, PGX_DicomDirReportNode& report) {
    PGX_Node* const observers = dataSet.FindNode(0x0040, 0xA073);
    if (observers == nullptr) return;
    for (PGX_Node* observer = observers->first; observer != nullptr; observer = observer->next) {
        char dateTime[27];
        ReadKey(*observer, {0x0040, 0xA030}, dateTime);
        if (std::string_view(dateTime) > report.verificationDateTime) {
            CopyToField(report.verificationDateTime, dateTime);
        }
    }
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirReportNode& report) {
    ReadKey(dataSet, {0x0040, 0xA491}, report.completionFlag);
    ReadKey(dataSet, {0x0040, 0xA493}, report.verificationFlag);
    ReadContent(dataSet, report);
    if (std::string_view(report.verificationFlag).starts_with("VERIFIED")) {
        ReadVerificationDateTime(dataSet, report);
    }
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirKeyObjectNode& object) {
    ReadContent(dataSet, object);
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirPresentationNode& presentation) {
    ReadPresentationKeys(dataSet, presentation);
    presentation.referencedSeriesSequence = CopyOf(dataSet, 0x0008, 0x1115);
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirWaveformNode& waveform) {
    ReadContentDateAndTime(dataSet, waveform);
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirEncapsulatedDocNode& document) {
    ReadDocumentKeys(dataSet, document);
    document.conceptNameCodeSequence = CopyOf(dataSet, 0x0040, 0xA043);
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirImageNode& image) {
    image.rows = ReadUnsignedShortKey(dataSet, {0x0028, 0x0010});
    image.columns = ReadUnsignedShortKey(dataSet, {0x0028, 0x0011});
    image.numberOfFrames = ReadIntegerKey(dataSet, {0x0028, 0x0008}, 1);
    ReadKey(dataSet, {0x0008, 0x0008}, image.imageType);
    ReadKey(dataSet, {0x0050, 0x0004}, image.calibrationImage);
}

void ReadKeys(PGX_Node& dataSet, PGX_DicomDirRawDataNode& data) {
    ReadContentDateAndTime(dataSet, data);
}

template <typename Leaf>
std::unique_ptr<PGX_DicomDirLeafNode> NewLeafOf(PGX_Node& dataSet) {
    auto leaf = std::make_unique<Leaf>();
    ReadKeys(dataSet, *leaf);
    return leaf;
}

// The first kind that fits.
std::unique_ptr<PGX_DicomDirLeafNode> NewLeafOfClass(PGX_Node& dataSet, const char* sopClass) {
    if (pgIsReportSOPClass(sopClass)) return NewLeafOf<PGX_DicomDirReportNode>(dataSet);
    if (pgIsKeyObjectSOPClass(sopClass)) return NewLeafOf<PGX_DicomDirKeyObjectNode>(dataSet);
    if (pgIsPresentationSOPClass(sopClass)) return NewLeafOf<PGX_DicomDirPresentationNode>(dataSet);
    if (pgIsWaveformSOPClass(sopClass)) return NewLeafOf<PGX_DicomDirWaveformNode>(dataSet);
    if (sopClass == kEncapsulatedPdf) return NewLeafOf<PGX_DicomDirEncapsulatedDocNode>(dataSet);
    if (sopClass != kRawDataStorage) return NewLeafOf<PGX_DicomDirImageNode>(dataSet);
    return NewLeafOf<PGX_DicomDirRawDataNode>(dataSet);
}

// 0 where it is unknown, or too much for the field.
int32_t FileSizeField(PGX_Node& dataSet) {
    const uint64_t size = dataSet.file == nullptr ? 0 : platform::StreamSize(dataSet.file);
    return size > UINT32_MAX ? 0 : static_cast<int32_t>(static_cast<uint32_t>(size));
}

}  // namespace

PGX_DicomDirImageNode* ImageOf(PGX_DicomDirLeafNode* leaf) {
    const bool isImage = leaf->leafType == PG_LEAF_IMAGE;
    return isImage ? static_cast<PGX_DicomDirImageNode*>(leaf) : nullptr;
}

std::unique_ptr<PGX_DicomDirLeafNode> NewLeaf(const Candidate& candidate, const FileToAdd& file,
                                              const PgDicomdirOptions& options) {
    PGX_Node& dataSet = *candidate.dataSet;
    std::unique_ptr<PGX_DicomDirLeafNode> leaf = NewLeafOfClass(dataSet, candidate.sopClassUid);
    leaf->instanceNumber = ReadIntegerKey(dataSet, {0x0020, 0x0013}, 0);
    CopyToField(leaf->fullPath, file.fullPath);
    CopyToField(leaf->referencedFileId, file.referencedName);
    CopyToField(leaf->instanceUid, candidate.instanceUid);
    CopyToField(leaf->sopClassUid, candidate.sopClassUid);
    CopyToField(leaf->transferSyntaxUid, candidate.transferSyntaxUid);
    ReadInstanceCharacterSet(dataSet, leaf->specificCharacterSet);
    if (PGX_DicomDirImageNode* const image = ImageOf(leaf.get())) {
        image->icon = NewImageIcon(file.fullPath, options.iconSize).release();
    }
    if (options.storeFileSize != 0) leaf->referencedDataSetSize = FileSizeField(dataSet);
    return leaf;
}

}  // namespace pgkit
