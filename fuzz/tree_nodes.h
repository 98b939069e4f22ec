// All nodes of a tree, and what a copy of it takes.
#pragma once

#include <pgkit/pgkit.h>

#include <vector>

namespace pgkit_fuzz {

// The root and everything below it, each node behind its parent and its elder siblings.
inline std::vector<PGX_Node*> NodesOf(PGX_Node& root) {
    std::vector<PGX_Node*> nodes{&root};
    for (size_t i = 0; i < nodes.size(); ++i) {
        for (PGX_Node* child = nodes[i]->first; child != nullptr; child = child->next)
            nodes.push_back(child);
    }
    return nodes;
}

// Copies and dumps make room for values at their full length, however little of it the file holds;
// nothing touches that memory, but a sanitizer marks it all. Whether that takes little time.
inline bool IsWorthCopying(PGX_Node& root) {
    uint64_t total = 0;
    for (const PGX_Node* node : NodesOf(root)) {
        if (node->nodeType == NT_DataElement && node->length != 0xFFFFFFFF) total += node->length;
    }
    return total < 1 << 20;
}

}  // namespace pgkit_fuzz
