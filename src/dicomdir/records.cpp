// Construction, copies and destruction of the objects of the upper three levels.
#include "dicomdir/record_list.h"
#include "pgkit/directory_records.h"
#include "platform/global_block.h"

PGX_DicomDirPatientNode::PGX_DicomDirPatientNode() = default;

PGX_DicomDirPatientNode::~PGX_DicomDirPatientNode() {
    pgkit::DestroyRecords<PGX_DicomDirStudyNode>(studies);
}

PGX_DicomDirPatientNode& PGX_DicomDirPatientNode::operator=(const PGX_DicomDirPatientNode& other) =
    default;

PGX_DicomDirStudyNode::PGX_DicomDirStudyNode() = default;

PGX_DicomDirStudyNode::~PGX_DicomDirStudyNode() {
    pgkit::DestroyRecords<PGX_DicomDirSeriesNode>(series);
}

PGX_DicomDirStudyNode& PGX_DicomDirStudyNode::operator=(const PGX_DicomDirStudyNode& other) =
    default;

PGX_DicomDirSeriesNode::PGX_DicomDirSeriesNode() = default;

PGX_DicomDirSeriesNode::~PGX_DicomDirSeriesNode() {
    pgkit::platform::FreeGlobalBlock(icon);
    icon = nullptr;
    pgkit::DestroyRecords<PGX_DicomDirLeafNode>(leaves);
}

PGX_DicomDirSeriesNode& PGX_DicomDirSeriesNode::operator=(const PGX_DicomDirSeriesNode& other) =
    default;
