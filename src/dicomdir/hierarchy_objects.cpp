// Construction, copies and destruction of the objects of a hierarchy.
#include "dicomdir/object_list.h"
#include "pgkit/dataset.h"
#include "pgkit/directory_records.h"
#include "platform/global_block.h"

namespace {

void FreeSequence(PGX_Node*& sequence) {
    pgFreeNodeHierarchy(sequence);
    sequence = nullptr;
}

}  // namespace

// ---- The upper three levels ---------------------------------------------------------------------

PGX_DicomDirPatientNode::PGX_DicomDirPatientNode() = default;

PGX_DicomDirPatientNode::~PGX_DicomDirPatientNode() {
    pgkit::DestroyObjects<PGX_DicomDirStudyNode>(studies);
}

PGX_DicomDirPatientNode& PGX_DicomDirPatientNode::operator=(const PGX_DicomDirPatientNode& other) =
    default;

PGX_DicomDirStudyNode::PGX_DicomDirStudyNode() = default;

PGX_DicomDirStudyNode::~PGX_DicomDirStudyNode() {
    pgkit::DestroyObjects<PGX_DicomDirSeriesNode>(series);
}

PGX_DicomDirStudyNode& PGX_DicomDirStudyNode::operator=(const PGX_DicomDirStudyNode& other) =
    default;

PGX_DicomDirSeriesNode::PGX_DicomDirSeriesNode() = default;

PGX_DicomDirSeriesNode::~PGX_DicomDirSeriesNode() {
    pgkit::platform::FreeGlobalBlock(icon);
    icon = nullptr;
    pgkit::DestroyObjects<PGX_DicomDirLeafNode>(leaves);
}

PGX_DicomDirSeriesNode& PGX_DicomDirSeriesNode::operator=(const PGX_DicomDirSeriesNode& other) =
    default;

// ---- Leaves -------------------------------------------------------------------------------------

PGX_DicomDirLeafNode::PGX_DicomDirLeafNode() = default;
PGX_DicomDirLeafNode::PGX_DicomDirLeafNode(const PGX_DicomDirLeafNode& other) = default;
PGX_DicomDirLeafNode& PGX_DicomDirLeafNode::operator=(const PGX_DicomDirLeafNode& other) = default;
PGX_DicomDirLeafNode::~PGX_DicomDirLeafNode() = default;

PGX_DicomDirImageNode::PGX_DicomDirImageNode() { leafType = PG_LEAF_IMAGE; }
PGX_DicomDirImageNode::PGX_DicomDirImageNode(const PGX_DicomDirImageNode& other) = default;
PGX_DicomDirImageNode& PGX_DicomDirImageNode::operator=(const PGX_DicomDirImageNode& other) =
    default;
PGX_DicomDirImageNode::~PGX_DicomDirImageNode() {
    pgkit::platform::FreeGlobalBlock(icon);
    icon = nullptr;
}

PGX_DicomDirReportNode::PGX_DicomDirReportNode() { leafType = PG_LEAF_REPORT; }
PGX_DicomDirReportNode::PGX_DicomDirReportNode(const PGX_DicomDirReportNode& other) = default;
PGX_DicomDirReportNode& PGX_DicomDirReportNode::operator=(const PGX_DicomDirReportNode& other) =
    default;
PGX_DicomDirReportNode::~PGX_DicomDirReportNode() {
    FreeSequence(conceptNameCodeSequence);
    FreeSequence(contentSequence);
}

PGX_DicomDirKeyObjectNode::PGX_DicomDirKeyObjectNode() { leafType = PG_LEAF_KEY_OBJECT; }
PGX_DicomDirKeyObjectNode::PGX_DicomDirKeyObjectNode(const PGX_DicomDirKeyObjectNode& other) =
    default;
PGX_DicomDirKeyObjectNode& PGX_DicomDirKeyObjectNode::operator=(
    const PGX_DicomDirKeyObjectNode& other) = default;
PGX_DicomDirKeyObjectNode::~PGX_DicomDirKeyObjectNode() {
    FreeSequence(conceptNameCodeSequence);
    FreeSequence(contentSequence);
}

PGX_DicomDirPresentationNode::PGX_DicomDirPresentationNode() { leafType = PG_LEAF_PRESENTATION; }
PGX_DicomDirPresentationNode::PGX_DicomDirPresentationNode(
    const PGX_DicomDirPresentationNode& other) = default;
PGX_DicomDirPresentationNode& PGX_DicomDirPresentationNode::operator=(
    const PGX_DicomDirPresentationNode& other) = default;
PGX_DicomDirPresentationNode::~PGX_DicomDirPresentationNode() {
    FreeSequence(referencedSeriesSequence);
}

PGX_DicomDirEncapsulatedDocNode::PGX_DicomDirEncapsulatedDocNode() {
    leafType = PG_LEAF_ENCAPSULATED_DOC;
}
PGX_DicomDirEncapsulatedDocNode::PGX_DicomDirEncapsulatedDocNode(
    const PGX_DicomDirEncapsulatedDocNode& other) = default;
PGX_DicomDirEncapsulatedDocNode& PGX_DicomDirEncapsulatedDocNode::operator=(
    const PGX_DicomDirEncapsulatedDocNode& other) = default;
PGX_DicomDirEncapsulatedDocNode::~PGX_DicomDirEncapsulatedDocNode() {
    FreeSequence(conceptNameCodeSequence);
}

PGX_DicomDirWaveformNode::PGX_DicomDirWaveformNode() { leafType = PG_LEAF_WAVEFORM; }
PGX_DicomDirWaveformNode::PGX_DicomDirWaveformNode(const PGX_DicomDirWaveformNode& other) = default;
PGX_DicomDirWaveformNode& PGX_DicomDirWaveformNode::operator=(
    const PGX_DicomDirWaveformNode& other) = default;
PGX_DicomDirWaveformNode::~PGX_DicomDirWaveformNode() = default;

PGX_DicomDirRawDataNode::PGX_DicomDirRawDataNode() { leafType = PG_LEAF_RAW_DATA; }
PGX_DicomDirRawDataNode::PGX_DicomDirRawDataNode(const PGX_DicomDirRawDataNode& other) = default;
PGX_DicomDirRawDataNode& PGX_DicomDirRawDataNode::operator=(const PGX_DicomDirRawDataNode& other) =
    default;
PGX_DicomDirRawDataNode::~PGX_DicomDirRawDataNode() = default;
