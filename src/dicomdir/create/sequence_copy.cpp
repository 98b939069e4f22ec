#include "dicomdir/create/sequence_copy.h"

#include <string_view>

#include "base/byte_order.h"
#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dicomdir/record_keys.h"
#include "dictionary/vr_properties.h"

namespace pgkit {

namespace {

// One file must not spoil the directory of all: whether an element could not be written, or not
// read again.
bool IsUnfitForRecord(const PGX_Node& node) {
    if (node.nodeType != NT_DataElement || node.valueRep == VR_SQ) return false;
    if (node.length == kUndefinedLength) return node.encapsulated == 0;
    if (node.length >= kFirstTooLongForShortHeader && !HasLongHeader(node.valueRep)) return true;
    return LacksMuch(node);
}

// Copies have their values in host order and say what the original had.
struct SetsHostOrder {
    WalkStep Enter(PGX_Node& node, size_t) {
        node.endian = kHostByteOrder == ByteOrder::Big ? ET_BigEndian : ET_LittleEndian;
        return WalkStep::Continue;
    }
    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }
};

bool ModifiesConcept(PGX_Node& item) {
    char relationship[17];
    ReadKey(item, {0x0040, 0xA010}, relationship);
    return std::string_view(relationship).starts_with("HAS CONCEPT MOD");
}

}  // namespace

NodeTree CopyForRecord(PGX_Node* node) {
    if (node == nullptr || AnyInTree(*node, IsUnfitForRecord)) return nullptr;
    NodeTree copy(node->DuplicateNode(1));
    SetsHostOrder setter;
    WalkTree(*copy, setter);
    return copy;
}

NodeTree CopyConceptModifiers(PGX_Node* contentSequence) {
    if (contentSequence == nullptr) return nullptr;
    NodeTree sequence(new PGX_Node(NT_DataElement, ET_LittleEndian, contentSequence->group,
                                   contentSequence->element, VR_SQ, 0));
    PGX_Node** end = &sequence->first;
    for (PGX_Node* item = contentSequence->first; item != nullptr; item = item->next) {
        if (!ModifiesConcept(*item)) continue;
        *end = CopyForRecord(item).release();
        if (*end != nullptr) end = &(*end)->next;
    }
    return sequence->first != nullptr ? std::move(sequence) : nullptr;
}

}  // namespace pgkit
