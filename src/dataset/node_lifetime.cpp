// Allocation and release of nodes and trees.
#include <cstdio>
#include <new>
#include <utility>

#include "base/firewall.h"
#include "dataset/node_memory.h"
#include "pgkit/dataset.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

// Children go before their parent, without recursion and without memory of its own, however deep
// the tree: a node with children is put back behind them and comes up again when they are gone.
// Siblings go from the last to the first, so that a tree goes in the opposite of the order in which
// it was read: allocators hand out first what they got back last, and the next tree that is read
// lies in memory in its own order again.
void DestroyHierarchy(PGX_Node* node) {
    while (node != nullptr) {
        if (node->first == nullptr) {
            PGX_Node* following = node->next;
            DestroyNode(node);
            node = following;
            continue;
        }
        PGX_Node* child = std::exchange(node->first, nullptr);
        while (child != nullptr)
            node = std::exchange(child, std::exchange(child->next, node));
    }
}

void CloseDataSet(PGX_Node* root) {
    if (root == nullptr) return;
    if (root->file != nullptr) std::fclose(root->file);
    DestroyHierarchy(root);
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;

PGX_Node* pgAllocateDataSetNode() {
    return Guarded(
        [] { return new (std::nothrow) PGX_Node(NT_DataSet, ET_LittleEndian, 0, 0, 0, 0); });
}

void pgFreeNode(PGX_Node* node) {
    Guarded([=] { pgkit::DestroyNode(node); });
}

void pgFreeNodeHierarchy(PGX_Node* node) {
    Guarded([=] { pgkit::DestroyHierarchy(node); });
}

void pgCloseDataSet(PGX_Node* root) {
    Guarded([=] { pgkit::CloseDataSet(root); });
}
