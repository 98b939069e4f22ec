// Constructors for hosts of Microsoft's compilers, which expect the address of the object as their
// result. The module-definition file exports them under the names that those compilers give them;
// all other members can be called as they are, since they take and return single words.
#include <new>

#include "pgkit/pgkit.h"

extern "C" {

PGX_ListElement* PgkitConstructListElement(void* place) { return new (place) PGX_ListElement; }

PGX_List* PgkitConstructList(void* place) { return new (place) PGX_List; }

PGX_Node* PgkitConstructNode(void* place) { return new (place) PGX_Node; }
PGX_Node* PgkitConstructNodeOf(void* place, NodeType type, EndianType byteOrder, uint16_t group,
                               uint16_t element, uint8_t valueRep, uint32_t length) {
    return new (place) PGX_Node(type, byteOrder, group, element, valueRep, length);
}

PGX_DicomDirPatientNode* PgkitConstructPatient(void* place) {
    return new (place) PGX_DicomDirPatientNode;
}

PGX_DicomDirStudyNode* PgkitConstructStudy(void* place) {
    return new (place) PGX_DicomDirStudyNode;
}

PGX_DicomDirSeriesNode* PgkitConstructSeries(void* place) {
    return new (place) PGX_DicomDirSeriesNode;
}

PGX_DicomDirLeafNode* PgkitConstructLeaf(void* place) { return new (place) PGX_DicomDirLeafNode; }
PGX_DicomDirLeafNode* PgkitCopyLeaf(void* place, const PGX_DicomDirLeafNode& other) {
    return new (place) PGX_DicomDirLeafNode(other);
}

PGX_DicomDirImageNode* PgkitConstructImage(void* place) {
    return new (place) PGX_DicomDirImageNode;
}
PGX_DicomDirImageNode* PgkitCopyImage(void* place, const PGX_DicomDirImageNode& other) {
    return new (place) PGX_DicomDirImageNode(other);
}

PGX_DicomDirReportNode* PgkitConstructReport(void* place) {
    return new (place) PGX_DicomDirReportNode;
}
PGX_DicomDirReportNode* PgkitCopyReport(void* place, const PGX_DicomDirReportNode& other) {
    return new (place) PGX_DicomDirReportNode(other);
}

PGX_DicomDirKeyObjectNode* PgkitConstructKeyObject(void* place) {
    return new (place) PGX_DicomDirKeyObjectNode;
}
PGX_DicomDirKeyObjectNode* PgkitCopyKeyObject(void* place, const PGX_DicomDirKeyObjectNode& other) {
    return new (place) PGX_DicomDirKeyObjectNode(other);
}

PGX_DicomDirPresentationNode* PgkitConstructPresentation(void* place) {
    return new (place) PGX_DicomDirPresentationNode;
}
PGX_DicomDirPresentationNode* PgkitCopyPresentation(void* place,
                                                    const PGX_DicomDirPresentationNode& other) {
    return new (place) PGX_DicomDirPresentationNode(other);
}

PGX_DicomDirEncapsulatedDocNode* PgkitConstructEncapsulatedDoc(void* place) {
    return new (place) PGX_DicomDirEncapsulatedDocNode;
}
PGX_DicomDirEncapsulatedDocNode* PgkitCopyEncapsulatedDoc(
    void* place, const PGX_DicomDirEncapsulatedDocNode& other) {
    return new (place) PGX_DicomDirEncapsulatedDocNode(other);
}

PGX_DicomDirWaveformNode* PgkitConstructWaveform(void* place) {
    return new (place) PGX_DicomDirWaveformNode;
}
PGX_DicomDirWaveformNode* PgkitCopyWaveform(void* place, const PGX_DicomDirWaveformNode& other) {
    return new (place) PGX_DicomDirWaveformNode(other);
}

PGX_DicomDirRawDataNode* PgkitConstructRawData(void* place) {
    return new (place) PGX_DicomDirRawDataNode;
}
PGX_DicomDirRawDataNode* PgkitCopyRawData(void* place, const PGX_DicomDirRawDataNode& other) {
    return new (place) PGX_DicomDirRawDataNode(other);
}

PGX_DicomDir* PgkitConstructDirectory(void* place) { return new (place) PGX_DicomDir; }

}  // extern "C"
