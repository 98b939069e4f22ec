// Guards for trees that are not handed over yet.
#pragma once

#include <memory>

#include "pgkit/dataset.h"
#include "pgkit/node.h"

namespace pgkit {

struct FreeHierarchy {
    void operator()(PGX_Node* node) const { pgFreeNodeHierarchy(node); }
};

// Owns a node, the siblings that follow it, and all their descendants.
using NodeTree = std::unique_ptr<PGX_Node, FreeHierarchy>;

struct CloseOpened {
    void operator()(PGX_Node* root) const { pgCloseDataSet(root); }
};

// Owns the root of an opened data set, and its file.
using OpenedDataSet = std::unique_ptr<PGX_Node, CloseOpened>;

}  // namespace pgkit
