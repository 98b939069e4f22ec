// Finding, inserting and removing the elements of a data set.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "base/diagnostics.h"
#include "base/firewall.h"
#include "dataset/long_lists.h"
#include "dataset/new_element.h"
#include "dictionary/element_table.h"
#include "dictionary/tags.h"
#include "pgkit/dataset.h"
#include "pgkit/dictionary.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

// The number in host byte order that a caller passes as a value; missing bytes count as zero.
uint16_t FirstNumber(const void* data, uint32_t size) {
    uint16_t number = 0;
    std::memcpy(&number, data, std::min<size_t>(size, sizeof number));
    return number;
}

bool RefuseUnlessDataSet(const PGX_Node& node) {
    if (node.nodeType == NT_DataSet) return false;
    PrintOut("pgInsertNode: can only insert in a NT_DataSet type\n");
    return true;
}

// Behind every element with a lower or equal tag that comes before the first higher one.
void LinkInOrder(PGX_Node& dataSet, PGX_Node& node) {
    PGX_Node** const link = FindInsertionLink(dataSet, TagKey(node.group, node.element));
    node.next = *link;
    *link = &node;
}

}  // namespace

PGX_Node* NewElement(PGX_Node& dataSet, uint16_t group, uint16_t element, const void* data,
                     uint32_t size) {
    const uint32_t valueRep = pgFindValueRepresentation(group, element);
    std::unique_ptr<PGX_Node> node(new (std::nothrow) PGX_Node(
        NT_DataElement, ET_LittleEndian, group, element, static_cast<uint8_t>(valueRep), 0));
    if (node == nullptr) {
        PrintOut("pgInsertNode: node allocation error\n");
        return nullptr;
    }
    if (IsPixelData(group, element)) {
        node->bitsAllocated = dataSet.bitsAllocated;
        if (node->bitsAllocated == 8) node->valueRep = VR_OB;
    }
    if (node->SetValue(data, size) == 0) return nullptr;
    if (IsBitsAllocated(group, element) && data != nullptr) {
        dataSet.bitsAllocated = FirstNumber(data, size);
    }
    return node.release();
}

}  // namespace pgkit

using pgkit::ElementEntry;
using pgkit::kElementCount;
using pgkit::PrintError;
using pgkit::RefuseUnlessDataSet;

PGX_Node* PGX_Node::FindNode(uint16_t tagGroup, uint16_t tagElement) {
    PGX_Node* child = first;
    while (child != nullptr && (child->group != tagGroup || child->element != tagElement)) {
        child = child->next;
    }
    return child;
}

PGX_Node* PGX_Node::FindNode(uint32_t elementId) {
    if (elementId >= kElementCount) return nullptr;
    return FindNode(ElementEntry(elementId).group, ElementEntry(elementId).element);
}

PGX_Node* PGX_Node::InsertNode(uint16_t tagGroup, uint16_t tagElement, const void* data,
                               uint32_t size) {
    if (RefuseUnlessDataSet(*this)) return nullptr;
    PGX_Node* node = pgkit::NewElement(*this, tagGroup, tagElement, data, size);
    if (node != nullptr) pgkit::LinkInOrder(*this, *node);
    return node;
}

PGX_Node* PGX_Node::InsertNode(uint32_t elementId, const void* data, uint32_t size) {
    if (RefuseUnlessDataSet(*this)) return nullptr;
    if (elementId >= kElementCount) {
        PrintError("pgInsertNode () : Element Id unknown (%d)\n", static_cast<int32_t>(elementId));
        return nullptr;
    }
    return InsertNode(ElementEntry(elementId).group, ElementEntry(elementId).element, data, size);
}

PGX_Node* PGX_Node::InsertNode(PGX_Node* node) {
    if (RefuseUnlessDataSet(*this) || node == nullptr) return nullptr;
    pgkit::LinkInOrder(*this, *node);
    return node;
}

PGX_Node* PGX_Node::AddOrReplaceNode(uint16_t tagGroup, uint16_t tagElement, const void* data,
                                     uint32_t size) {
    PGX_Node* present = FindNode(tagGroup, tagElement);
    if (present == nullptr) return InsertNode(tagGroup, tagElement, data, size);
    present->SetValue(data, size);
    return present;
}

PGX_Node* PGX_Node::AddOrReplaceNode(uint32_t elementId, const void* data, uint32_t size) {
    PGX_Node* present = FindNode(elementId);
    if (present == nullptr) return InsertNode(elementId, data, size);
    present->SetValue(data, size);
    return present;
}

void PGX_Node::RemoveNode(PGX_Node* child) {
    if (child == nullptr) return;
    PGX_Node** link = &first;
    while (*link != nullptr && *link != child)
        link = &(*link)->next;
    if (*link == nullptr) return;
    *link = child->next;
    child->next = nullptr;
    pgFreeNodeHierarchy(child);
}

PGX_Node* pgFindNodeWithGroupElement(PGX_Node* dataSet, uint16_t group, uint16_t element) {
    return pgkit::Guarded(
        [=] { return dataSet == nullptr ? nullptr : dataSet->FindNode(group, element); });
}

PGX_Node* pgFindNodeWithElementId(PGX_Node* dataSet, uint32_t elementId) {
    return pgkit::Guarded(
        [=] { return dataSet == nullptr ? nullptr : dataSet->FindNode(elementId); });
}
