// Visits a node and everything below it in list order, without recursion: the path from the start
// to the current node is data, so the depth of a tree costs memory and no stack.
#pragma once

#include <cstddef>
#include <vector>

#include "pgkit/node.h"

namespace pgkit {

enum class WalkStep {
    Continue,
    SkipChildren,  // from Enter: go on behind this node's children
    Unwind         // enter no further node, but still leave those that are open
};

// The visitor has two operations. depth is 0 at the start; children lie one deeper.
//
//     WalkStep Enter(PGX_Node& node, size_t depth);  // before the node's children
//     WalkStep Leave(PGX_Node& node, size_t depth);  // after them
//
// Every node that is entered is left, inner nodes first, also while unwinding. The start's siblings
// are not visited. Links are followed only after the visitor has returned, so Enter may still give
// a node children or change which ones it has.
template <typename Visitor>
void WalkTree(PGX_Node& start, Visitor& visitor) {
    std::vector<PGX_Node*> path{&start};
    WalkStep step = visitor.Enter(start, 0);
    const auto enter = [&](PGX_Node* node) {
        path.push_back(node);
        step = visitor.Enter(*node, path.size() - 1);
    };
    for (;;) {
        PGX_Node* node = path.back();
        if (step == WalkStep::Continue && node->first != nullptr) {
            enter(node->first);
            continue;
        }
        const WalkStep left = visitor.Leave(*node, path.size() - 1);
        path.pop_back();
        if (path.empty()) return;
        if (step == WalkStep::Unwind || left == WalkStep::Unwind) {
            step = WalkStep::Unwind;
        } else if (node->next != nullptr) {
            enter(node->next);
        } else {
            step = WalkStep::SkipChildren;
        }
    }
}

}  // namespace pgkit
