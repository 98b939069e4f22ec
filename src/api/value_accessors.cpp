// Accessors: values, and the ways in which a tree leaves memory: dumping and writing.
#include "api/handle_access.h"
#include "codec/write_result.h"
#include "pgkit/accessors.h"

using pgkit::CallOn;
using pgkit::Guarded;
using pgkit::kOutOfMemory;

namespace {

// What the writing operations give for a null node.
constexpr uint32_t kNoNode = 0xFFFFFFFF;

}  // namespace

int32_t pgKitGetValue(PGX_Node* node, void* buffer) {
    return CallOn(node, &PGX_Node::GetValue, buffer);
}

int32_t pgKitGetStringValue(PGX_Node* node, char* buffer, int32_t size) {
    return CallOn(node, &PGX_Node::GetStringValue, buffer, size);
}

uint16_t pgKitGetUSValue(PGX_Node* node) { return CallOn(node, &PGX_Node::GetUSValue); }

uint32_t pgKitGetULValue(PGX_Node* node) { return CallOn(node, &PGX_Node::GetULValue); }

int16_t pgKitGetSSValue(PGX_Node* node) { return CallOn(node, &PGX_Node::GetSSValue); }

int32_t pgKitGetDSIntValue(PGX_Node* node) { return CallOn(node, &PGX_Node::GetDSIntValue); }

double pgKitGetDSDoubleValue(PGX_Node* node) { return CallOn(node, &PGX_Node::GetDSDoubleValue); }

int32_t pgKitGetFileData(PGX_Node* dataSet, void* buffer, uint32_t offset, uint32_t count) {
    return CallOn(dataSet, &PGX_Node::GetFileData, buffer, offset, count);
}

int32_t pgKitSetValue(PGX_Node* node, const void* data, uint32_t size) {
    return CallOn(node, &PGX_Node::SetValue, data, size);
}

int32_t pgKitDumpToStream(PGX_Node* node, FILE* stream, const char* prefix) {
    return Guarded([=] { return node == nullptr ? 0 : node->Dump(stream, prefix); });
}

int32_t pgKitDumpToFile(PGX_Node* node, const char* path) {
    return Guarded([=] { return node == nullptr ? 0 : node->Dump(path); });
}

int32_t pgKitDump(PGX_Node* node, const char* path) { return pgKitDumpToFile(node, path); }

void pgKitSaveDataSetAs(PGX_Node* root, const char* path, int32_t mode) {
    Guarded([=] {
        if (root != nullptr) root->SaveDataSetAs(path, mode);
    });
}

uint32_t pgKitSaveDataSetAsEx(PGX_Node* root, const char* path, int32_t mode) {
    return Guarded([=] { return root == nullptr ? kNoNode : root->SaveDataSetAsEx(path, mode); },
                   kOutOfMemory);
}

void pgKitWriteNode(PGX_Node* node, FILE* stream, uint32_t mode) {
    CallOn(node, &PGX_Node::WriteNode, stream, mode);
}

uint32_t pgKitWriteNodeEx(PGX_Node* node, FILE* stream, uint32_t mode) {
    return Guarded([=] { return node == nullptr ? kNoNode : node->WriteNodeEx(stream, mode); },
                   kOutOfMemory);
}

int32_t pgKitAddGroupLengths(PGX_Node* dataSet, uint32_t mode) {
    return CallOn(dataSet, &PGX_Node::AddGroupLengths, mode);
}

int32_t pgKitUpdateGroupLengths(PGX_Node* dataSet, uint32_t mode) {
    return CallOn(dataSet, &PGX_Node::UpdateGroupLengths, mode);
}

int32_t pgKitAddPart10Elements(PGX_Node* dataSet, const char* transferSyntaxUid) {
    return CallOn(dataSet, &PGX_Node::AddPart10Elements, transferSyntaxUid);
}
