// Deep copies of nodes.
#include <new>
#include <vector>

#include "base/text.h"
#include "dataset/node_memory.h"
#include "dataset/node_ptr.h"
#include "dataset/value_source.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

// A chain of siblings still to be copied, and where the first copy is to be linked.
struct PendingChain {
    const PGX_Node* source;
    PGX_Node** link;
};

// The value goes into memory, with room for a terminator, even when it is empty. The buffer is
// zero: where the file holds less than the length says, nothing is touched.
void CopyValue(const PGX_Node& source, PGX_Node& copy) {
    const bool hasBuffer = source.nodeType == NT_DataElement && source.valueRep != VR_SQ &&
                           source.encapsulated == 0 && source.length != kUndefinedLength;
    if (!hasBuffer) return;
    copy.value = NewValueBuffer(size_t{source.length} + 2);
    if (copy.value == nullptr) throw std::bad_alloc();
    if (HasValue(source)) ReadValueIntoZeros(source, copy.value);
}

// Fragments that are loaded stay with the source: the copy has their offsets and lengths only. A
// table is never shared, since both nodes would free it.
void CopyFragmentTable(const PGX_Node& source, PGX_Node& copy) {
    copy.encapsulated = source.encapsulated;
    copy.fragmentCount = source.fragmentCount;
    copy.fragmentCapacity = source.fragmentCapacity;
    if (source.fragments == NotIndexedMarker()) copy.fragments = NotIndexedMarker();
    if (!HasFragmentTable(source) || source.fragmentCapacity == 0) return;
    copy.fragments = NewFragmentTable(source.fragmentCapacity);
    if (copy.fragments == nullptr) throw std::bad_alloc();
    for (uint32_t i = 0; i < source.fragmentCapacity; ++i) {
        copy.fragments[i].offset = source.fragments[i].offset;
        copy.fragments[i].length = source.fragments[i].length;
    }
}

void CopyNode(const PGX_Node& source, PGX_Node& copy, std::vector<PendingChain>& pending) {
    copy.nodeType = source.nodeType;
    copy.group = source.group;
    copy.element = source.element;
    copy.valueRep = source.valueRep;
    copy.length = source.length;
    copy.endian = source.endian;
    copy.bitsAllocated = source.bitsAllocated;
    copy.syntaxFlags = source.syntaxFlags;
    copy.offsetPending = source.offsetPending;
    copy.offsetTarget = source.offsetTarget;
    CopyValue(source, copy);
    if (source.contentFile != nullptr) copy.contentFile = NewText(source.contentFile);
    CopyFragmentTable(source, copy);
    if (source.first != nullptr) pending.push_back({source.first, &copy.first});
}

// Every copy is linked before it is filled: whoever owns the chain's head owns it from then on.
void CopyChain(PendingChain chain, std::vector<PendingChain>& pending) {
    for (const PGX_Node* source = chain.source; source != nullptr; source = source->next) {
        PGX_Node* copy = new PGX_Node;
        *chain.link = copy;
        chain.link = &copy->next;
        CopyNode(*source, *copy, pending);
    }
}

}  // namespace

}  // namespace pgkit

PGX_Node* PGX_Node::DuplicateNode(int32_t nodeOnly) {
    pgkit::NodeTree copy(new PGX_Node);
    std::vector<pgkit::PendingChain> pending;
    pgkit::CopyNode(*this, *copy, pending);
    if (nodeOnly == 0) pending.push_back({next, &copy->next});
    while (!pending.empty()) {
        const pgkit::PendingChain chain = pending.back();
        pending.pop_back();
        pgkit::CopyChain(chain, pending);
    }
    return copy.release();
}
