// Allocation and release of nodes and trees.
#include <cstdlib>
#include <new>

#include "dataset/node_memory.h"
#include "pgkit/dataset.h"
#include "pgkit/node.h"

namespace pgkit {

FragmentEntry* NewFragmentTable(size_t capacity) {
    return static_cast<FragmentEntry*>(
        std::calloc(capacity == 0 ? 1 : capacity, sizeof(FragmentEntry)));
}

void FreeFragmentTable(PGX_Node& node) {
    if (HasFragmentTable(node)) {
        for (uint32_t i = 0; i < node.fragmentCount; ++i)
            FreeValueBuffer(node.fragments[i].bytes);
        std::free(node.fragments);
    }
    node.fragments = nullptr;
    node.fragmentCount = 0;
    node.fragmentCapacity = 0;
}

}  // namespace pgkit

PGX_Node* pgAllocateDataSetNode() {
    return new (std::nothrow) PGX_Node(NT_DataSet, ET_LittleEndian, 0, 0, 0, 0);
}

void pgFreeNode(PGX_Node* node) { delete node; }

// Children go before their parent, without recursion and without memory of its own, however deep
// the tree: a node with children is put back behind them and comes up again when they are gone.
void pgFreeNodeHierarchy(PGX_Node* node) {
    while (node != nullptr) {
        PGX_Node* children = node->first;
        if (children == nullptr) {
            PGX_Node* following = node->next;
            delete node;
            node = following;
            continue;
        }
        PGX_Node* lastChild = children;
        while (lastChild->next != nullptr)
            lastChild = lastChild->next;
        lastChild->next = node;
        node->first = nullptr;
        node = children;
    }
}

void pgCloseDataSet(PGX_Node* root) {
    if (root == nullptr) return;
    if (root->file != nullptr) std::fclose(root->file);
    pgFreeNodeHierarchy(root);
}
