#include "dicomdir/create/new_records.h"

#include <new>
#include <string>

#include "dicomdir/create/element_insertion.h"
#include "dicomdir/create/icon_item.h"
#include "dicomdir/record_copy.h"
#include "dicomdir/record_table.h"

namespace pgkit {

namespace {

constexpr uint16_t kInUse = 0xFFFF;

NodeTree NewItem(const char* recordType) {
    NodeTree item(pgAllocateDataSetNode());
    if (item == nullptr) throw std::bad_alloc();
    PutNumber<uint32_t>(*item, 0x0004, kNextRecordLink, 0);
    PutNumber<uint16_t>(*item, 0x0004, 0x1410, kInUse);
    PutNumber<uint32_t>(*item, 0x0004, kLowerLevelLink, 0);
    PutText(*item, 0x0004, 0x1430, recordType);
    return item;
}

void PutCopy(PGX_Node& item, PGX_Node* sequence) {
    NodeTree copy = CopyForRecord(sequence);
    if (copy != nullptr) item.InsertNode(copy.release());
}

void PutIcon(PGX_Node& item, void* bitmap) {
    NodeTree icon = NewIconItem(bitmap);
    if (icon == nullptr) return;
    PutBytes(item, 0x0088, 0x0200, nullptr, 0);
    item.FindNode(0x0088, 0x0200)->SeqAddHead(icon.release());
}

template <typename Leaf>
void PutContentTimes(PGX_Node& item, const Leaf& leaf) {
    PutText(item, 0x0008, 0x0023, leaf.contentDate);
    PutText(item, 0x0008, 0x0033, leaf.contentTime);
}

template <typename Leaf>
void PutContent(PGX_Node& item, const Leaf& leaf) {
    PutContentTimes(item, leaf);
    PutCopy(item, leaf.conceptNameCodeSequence);
    PutCopy(item, leaf.contentSequence);
}

void PutKeys(PGX_Node& item, const PGX_DicomDirReportNode& report) {
    PutText(item, 0x0040, 0xA491, report.completionFlag);
    PutText(item, 0x0040, 0xA493, report.verificationFlag);
    PutContent(item, report);
    if (std::string_view(report.verificationFlag).starts_with("VERIFIED")) {
        PutText(item, 0x0040, 0xA030, report.verificationDateTime);
    }
}

void PutKeys(PGX_Node& item, const PGX_DicomDirKeyObjectNode& object) { PutContent(item, object); }

void PutKeys(PGX_Node& item, const PGX_DicomDirPresentationNode& presentation) {
    PutText(item, 0x0070, 0x0082, presentation.creationDate);
    PutText(item, 0x0070, 0x0083, presentation.creationTime);
    PutText(item, 0x0070, 0x0084, presentation.contentCreatorsName);
    PutText(item, 0x0070, 0x0080, presentation.contentLabel);
    PutText(item, 0x0070, 0x0081, presentation.contentDescription);
    PutCopy(item, presentation.referencedSeriesSequence);
}

void PutKeys(PGX_Node& item, const PGX_DicomDirEncapsulatedDocNode& document) {
    PutContentTimes(item, document);
    PutText(item, 0x0042, 0x0010, document.documentTitle);
    PutText(item, 0x0042, 0x0012, document.mimeType);
    PutCopy(item, document.conceptNameCodeSequence);
}

void PutKeys(PGX_Node& item, const PGX_DicomDirWaveformNode& waveform) {
    PutContentTimes(item, waveform);
}

void PutKeys(PGX_Node& item, const PGX_DicomDirImageNode& image) {
    PutText(item, 0x0008, 0x0008, image.imageType);
    PutNumber(item, 0x0028, 0x0010, static_cast<uint16_t>(image.rows));
    PutNumber(item, 0x0028, 0x0011, static_cast<uint16_t>(image.columns));
    PutText(item, 0x0028, 0x0008, std::to_string(image.numberOfFrames));
    PutIcon(item, image.icon);
}

void PutKeys(PGX_Node& item, const PGX_DicomDirRawDataNode& data) { PutContentTimes(item, data); }

template <typename Leaf>
NodeTree NewItemOf(const PGX_DicomDirLeafNode& leaf, const char* recordType) {
    NodeTree item = NewItem(recordType);
    PutKeys(*item, static_cast<const Leaf&>(leaf));
    return item;
}

// The type and the keys that only leaves of its kind have.
NodeTree NewItemOfKind(const PGX_DicomDirLeafNode& leaf) {
    switch (leaf.leafType) {
        case PG_LEAF_IMAGE:
            return NewItemOf<PGX_DicomDirImageNode>(leaf, "IMAGE");
        case PG_LEAF_REPORT:
            return NewItemOf<PGX_DicomDirReportNode>(leaf, "SR DOCUMENT");
        case PG_LEAF_KEY_OBJECT:
            return NewItemOf<PGX_DicomDirKeyObjectNode>(leaf, "KEY OBJECT DOC");
        case PG_LEAF_PRESENTATION:
            return NewItemOf<PGX_DicomDirPresentationNode>(leaf, "PRESENTATION");
        case PG_LEAF_WAVEFORM:
            return NewItemOf<PGX_DicomDirWaveformNode>(leaf, "WAVEFORM");
        case PG_LEAF_ENCAPSULATED_DOC:
            return NewItemOf<PGX_DicomDirEncapsulatedDocNode>(leaf, "ENCAP DOC");
        case PG_LEAF_RAW_DATA:
            return NewItemOf<PGX_DicomDirRawDataNode>(leaf, "RAW DATA");
        default:
            return NewItem(leaf.recordType);
    }
}

void PutFileSize(PGX_Node& item, int32_t size) {
    PutText(item, 0x2137, 0x0010, "ZORVA DICOMDIR");
    PutText(item, 0x2137, 0x1040, std::to_string(static_cast<uint32_t>(size)));
}

}  // namespace

NodeTree NewPatientRecord(const PGX_DicomDirPatientNode& patient) {
    NodeTree item = NewItem("PATIENT");
    PutText(*item, 0x0008, 0x0005, patient.specificCharacterSet);
    PutText(*item, 0x0010, 0x0010, patient.patientsName);
    PutText(*item, 0x0010, 0x0020, patient.patientId);
    PutText(*item, 0x0010, 0x0030, patient.birthDate);
    PutText(*item, 0x0010, 0x0040, patient.sex);
    return item;
}

NodeTree NewStudyRecord(const PGX_DicomDirStudyNode& study) {
    NodeTree item = NewItem("STUDY");
    PutText(*item, 0x0008, 0x0005, study.specificCharacterSet);
    PutText(*item, 0x0008, 0x0020, study.studyDate);
    PutText(*item, 0x0008, 0x0030, study.studyTime);
    PutText(*item, 0x0008, 0x0050, study.accessionNumber);
    PutText(*item, 0x0008, 0x0090, study.referringPhysiciansName);
    PutText(*item, 0x0008, 0x1030, study.studyDescription);
    PutText(*item, 0x0020, 0x000D, study.studyInstanceUid);
    PutText(*item, 0x0020, 0x0010, study.studyId);
    return item;
}

NodeTree NewSeriesRecord(const PGX_DicomDirSeriesNode& series) {
    NodeTree item = NewItem("SERIES");
    PutText(*item, 0x0008, 0x0005, series.specificCharacterSet);
    PutText(*item, 0x0008, 0x0060, series.modality);
    PutText(*item, 0x0008, 0x0080, series.institutionName);
    PutText(*item, 0x0008, 0x0081, series.institutionAddress);
    PutText(*item, 0x0008, 0x103E, series.seriesDescription);
    PutText(*item, 0x0008, 0x1050, series.performingPhysiciansName);
    PutText(*item, 0x0020, 0x000E, series.seriesInstanceUid);
    PutText(*item, 0x0020, 0x0011, series.seriesNumber);
    PutIcon(*item, series.icon);
    return item;
}

NodeTree NewLeafRecord(const PGX_DicomDirLeafNode& leaf, bool wantsFileSize) {
    NodeTree item = NewItemOfKind(leaf);
    PutText(*item, 0x0004, 0x1500, leaf.referencedFileId);
    PutText(*item, 0x0004, 0x1510, leaf.sopClassUid);
    PutText(*item, 0x0004, 0x1511, leaf.instanceUid);
    PutText(*item, 0x0004, 0x1512, leaf.transferSyntaxUid);
    PutText(*item, 0x0008, 0x0005, leaf.specificCharacterSet);
    PutText(*item, 0x0020, 0x0013, std::to_string(leaf.instanceNumber));
    if (wantsFileSize || leaf.referencedDataSetSize != 0) {
        PutFileSize(*item, leaf.referencedDataSetSize);
    }
    return item;
}

}  // namespace pgkit
