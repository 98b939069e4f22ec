// Accessors: native and encapsulated pixel data.
#include "api/handle_access.h"
#include "pgkit/accessors.h"

using pgkit::CallOn;

int32_t pgKitIsEncodedPixelData(PGX_Node* node) {
    return CallOn(node, &PGX_Node::IsEncodedPixelData);
}

int32_t pgKitGetPixelData(PGX_Node* node, uint32_t frameIndex, uint32_t frameSize, void* buffer) {
    return CallOn(node, &PGX_Node::GetPixelData, frameIndex, frameSize, buffer);
}

PGX_Node* pgKitInsertEncodedPixelDataNode(PGX_Node* dataSet, uint32_t count) {
    return CallOn(dataSet, &PGX_Node::InsertEncodedPixelDataNode, count);
}

int32_t pgKitSetEncodedPixelData(PGX_Node* node, uint32_t index, uint32_t size, const void* data) {
    return CallOn(node, &PGX_Node::SetEncodedPixelData, index, size, data);
}

int32_t pgKitGetEncodedPixelInfo(PGX_Node* node, uint32_t index, uint32_t* entryLength,
                                 uint32_t* entryOffset) {
    return CallOn(node, &PGX_Node::GetEncodedPixelInfo, index, entryLength, entryOffset);
}
