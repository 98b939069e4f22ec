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
    std::vector<PGX_Node*> ancestors;  // of the current node, from the start on
    bool unwinding = false;
    PGX_Node* node = &start;
    for (;;) {
        const WalkStep entered = visitor.Enter(*node, ancestors.size());
        if (entered == WalkStep::Continue && node->first != nullptr) {
            ancestors.push_back(node);
            node = node->first;
            continue;
        }
        if (entered == WalkStep::Unwind) unwinding = true;
        for (;;) {
            if (visitor.Leave(*node, ancestors.size()) == WalkStep::Unwind) unwinding = true;
            if (ancestors.empty()) return;
            if (!unwinding && node->next != nullptr) break;
            node = ancestors.back();
            ancestors.pop_back();
        }
        node = node->next;
    }
}

// Whether the predicate holds for a node or for anything below it.
template <typename Predicate>
bool AnyInTree(PGX_Node& start, Predicate predicate) {
    struct Search {
        Predicate predicate;
        bool found = false;

        WalkStep Enter(PGX_Node& node, size_t) {
            found = predicate(node);
            return found ? WalkStep::Unwind : WalkStep::Continue;
        }
        WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }
    };
    Search search{predicate};
    WalkTree(start, search);
    return search.found;
}

}  // namespace pgkit
