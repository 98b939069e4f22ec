// The item list of a sequence.
#include "base/diagnostics.h"
#include "dataset/long_lists.h"
#include "pgkit/node.h"

using pgkit::PrintOut;

PGX_Node* PGX_Node::SeqGetHead() {
    if (nodeType != NT_DataElement) {
        PrintOut("pgSeqGetHead: can only deal with NT_DataElement type\n");
        return nullptr;
    }
    return first;
}

void PGX_Node::SeqAddHead(PGX_Node* item) {
    if (item == nullptr) return;
    if (item->nodeType != NT_DataSet) {
        PrintOut("pgSeqAddHead: can only insert in a NT_DataSet type\n");
        return;
    }
    item->next = first;
    first = item;
}

// The first item of an empty sequence keeps its next: it may bring further items along.
void PGX_Node::SeqAddTail(PGX_Node* item) {
    if (item == nullptr) return;
    if (item->nodeType != NT_DataSet) {
        PrintOut("pgSeqAddTail: can only insert in a NT_DataSet type\n");
        return;
    }
    if (first == nullptr) {
        first = item;
        return;
    }
    PGX_Node** const end = pgkit::FindInsertionLink(*this, UINT64_MAX);
    *end = item;
    item->next = nullptr;
}
