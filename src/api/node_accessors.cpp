// Accessors: fields of nodes, data sets, and the editing of trees.
#include <new>

#include "api/handle_access.h"
#include "dataset/long_lists.h"
#include "pgkit/accessors.h"

using pgkit::CallOn;
using pgkit::FieldOf;
using pgkit::Guarded;
using pgkit::SetField;

namespace {

// Before the tag or the next of a node changes. Without a next it is in no list, or the last of
// one, where every walk comes by.
void NoteChange(const PGX_Node* node) {
    if (node != nullptr && node->next != nullptr) pgkit::ForgetLongLists();
}

template <typename Value>
void SetNoted(PGX_Node* node, Value PGX_Node::*field, Value value) {
    NoteChange(node);
    SetField(node, field, value);
}

}  // namespace

uint32_t pgKitGetNodeType(PGX_Node* node) {
    return Guarded([=] { return static_cast<uint32_t>(FieldOf(node, &PGX_Node::nodeType)); });
}

void pgKitSetNodeType(PGX_Node* node, uint32_t nodeType) {
    SetField(node, &PGX_Node::nodeType, static_cast<NodeType>(nodeType));
}

uint32_t pgKitGetValueRep(PGX_Node* node) { return FieldOf(node, &PGX_Node::valueRep); }

void pgKitSetValueRep(PGX_Node* node, uint32_t valueRep) {
    SetField(node, &PGX_Node::valueRep, valueRep);
}

uint16_t pgKitGetGroup(PGX_Node* node) { return FieldOf(node, &PGX_Node::group); }

void pgKitSetGroup(PGX_Node* node, uint16_t group) {
    Guarded([=] { SetNoted(node, &PGX_Node::group, group); });
}

uint16_t pgKitGetElement(PGX_Node* node) { return FieldOf(node, &PGX_Node::element); }

void pgKitSetElement(PGX_Node* node, uint16_t element) {
    Guarded([=] { SetNoted(node, &PGX_Node::element, element); });
}

uint32_t pgKitGetLength(PGX_Node* node) { return FieldOf(node, &PGX_Node::length); }

void pgKitSetLength(PGX_Node* node, uint32_t length) { SetField(node, &PGX_Node::length, length); }

PGX_Node* pgKitGetNext(PGX_Node* node) { return FieldOf(node, &PGX_Node::next); }

void pgKitSetNext(PGX_Node* node, PGX_Node* next) {
    Guarded([=] { SetNoted(node, &PGX_Node::next, next); });
}

PGX_Node* pgKitGetFirst(PGX_Node* node) { return FieldOf(node, &PGX_Node::first); }

void pgKitSetFirst(PGX_Node* node, PGX_Node* first) { SetField(node, &PGX_Node::first, first); }

PGX_Node* pgKitOpenDataSetFile(const char* path, uint32_t maxLoadLength) {
    return pgOpenDataSetFile(path, maxLoadLength);
}

void pgKitCloseDataSet(PGX_Node* root) { pgCloseDataSet(root); }

PGX_Node* pgKitAllocateDataSetNode() { return pgAllocateDataSetNode(); }

PGX_Node* pgKitFindNodeWithGroupElement(PGX_Node* dataSet, uint16_t group, uint16_t element) {
    return pgFindNodeWithGroupElement(dataSet, group, element);
}

PGX_Node* pgKitFindNodeWithElementId(PGX_Node* dataSet, uint32_t elementId) {
    return pgFindNodeWithElementId(dataSet, elementId);
}

PGX_Node* pgKitAllocEmptyNode() {
    return Guarded([] { return new (std::nothrow) PGX_Node; });
}

PGX_Node* pgKitAllocNode(uint32_t nodeType, uint16_t group, uint16_t element, uint8_t valueRep,
                         uint32_t length) {
    return Guarded([=] {
        return new (std::nothrow) PGX_Node(static_cast<NodeType>(nodeType), ET_LittleEndian, group,
                                           element, valueRep, length);
    });
}

void pgKitFreeNode(PGX_Node* node) { pgFreeNode(node); }

void pgKitFreeNodeHierarchy(PGX_Node* node) { pgFreeNodeHierarchy(node); }

void pgKitSeqAddTail(PGX_Node* sequence, PGX_Node* item) {
    CallOn(sequence, &PGX_Node::SeqAddTail, item);
}

void pgKitSeqAddHead(PGX_Node* sequence, PGX_Node* item) {
    CallOn(sequence, &PGX_Node::SeqAddHead, item);
}

PGX_Node* pgKitSeqGetHead(PGX_Node* sequence) { return CallOn(sequence, &PGX_Node::SeqGetHead); }

void pgKitRemoveNode(PGX_Node* parent, PGX_Node* child) {
    CallOn(parent, &PGX_Node::RemoveNode, child);
}

PGX_Node* pgKitInsertNodeWithGroupElement(PGX_Node* parent, uint16_t group, uint16_t element,
                                          const void* data, uint32_t size) {
    return Guarded([=] {
        return parent == nullptr ? nullptr : parent->InsertNode(group, element, data, size);
    });
}

PGX_Node* pgKitInsertNodeWithElementId(PGX_Node* parent, uint32_t elementId, const void* data,
                                       uint32_t size) {
    return Guarded(
        [=] { return parent == nullptr ? nullptr : parent->InsertNode(elementId, data, size); });
}
