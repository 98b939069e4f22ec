// pgkit, the C++ layer (data_set.hpp): visiting every element of a data set, at every depth.
#ifndef PGKIT_CPP_WALK_HPP
#define PGKIT_CPP_WALK_HPP

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include "pgkit/cpp/item.hpp"

namespace pgkit {
inline namespace v1 {

// What a walk does after an element was visited.
enum class visit {
    go_on,   // into its items, if it has some, then to the next element
    skip,    // to the next element, not into its items
    remove,  // removes the element with its items, and goes on
    stop     // ends the walk
};

// Visits every element of a data set or item and of all items within it, in the order of the file:
// a sequence, then what is in its items, then the element behind it. The visitor is called as
//
//     visitor(pgkit::element& element)   or   visitor(pgkit::element& element, std::size_t depth)
//
// with the depth counted from 0, and returns a pgkit::visit, or nothing to go on. It may change the
// element's value, and the items of a sequence, which are visited after it. To remove the element
// it returns visit::remove; beside that it must not add or remove anything in what is being walked.
// Returns false when the visitor ended the walk.
//
// Nesting is not limited: a walk takes no stack, but memory for each open level (two handles).
template <typename Visitor>
bool walk(const item& root, Visitor&& visitor);

// ---- Definitions --------------------------------------------------------------------------------

namespace detail {

// A data set or an item that is being walked through.
struct walk_level {
    item in;
    PGX_Node* character_set;
    PGX_Node* previous;  // the element before the next one, null at the beginning
    PGX_Node* next;      // the element to visit next
    PGX_Node* next_item;
};

template <typename Visitor>
visit call_visitor(Visitor& visitor, element& visited, std::size_t depth) {
    if constexpr (std::is_invocable_v<Visitor&, element&, std::size_t>) {
        if constexpr (std::is_same_v<std::invoke_result_t<Visitor&, element&, std::size_t>, void>) {
            visitor(visited, depth);
            return visit::go_on;
        } else {
            return visitor(visited, depth);
        }
    } else {
        if constexpr (std::is_same_v<std::invoke_result_t<Visitor&, element&>, void>) {
            visitor(visited);
            return visit::go_on;
        } else {
            return visitor(visited);
        }
    }
}

inline walk_level enter(PGX_Node* node, PGX_Node* inherited, PGX_Node* next_item) noexcept {
    const item in(node, inherited);
    return {in, in.character_set(), nullptr, pgKitGetFirst(node), next_item};
}

// Removes the element before the next one, which was just visited: without looking for it, since
// walks that remove most of a long data set would take too long.
inline void remove_visited(walk_level& level, PGX_Node* visited) noexcept {
    if (level.previous == nullptr) {
        pgKitSetFirst(level.in.node(), level.next);
    } else {
        pgKitSetNext(level.previous, level.next);
    }
    pgKitSetNext(visited, nullptr);
    pgFreeNodeHierarchy(visited);
    if (visited == level.character_set) level.character_set = level.in.character_set();
}

}  // namespace detail

template <typename Visitor>
bool walk(const item& root, Visitor&& visitor) {
    using namespace detail;
    std::vector<walk_level> outer;  // those that go on when the current one has ended
    walk_level level = enter(root.node(), root.inherited_character_set(), nullptr);
    while (true) {
        if (level.next == nullptr) {
            if (level.next_item != nullptr) {
                level = enter(level.next_item, level.in.inherited_character_set(),
                              pgKitGetNext(level.next_item));
            } else if (!outer.empty()) {
                level = outer.back();
                outer.pop_back();
            } else {
                return true;
            }
            continue;
        }
        element visited(level.next, level.character_set);
        const visit then = call_visitor(visitor, visited, outer.size());
        if (then == visit::stop) return false;
        level.next = pgKitGetNext(visited.node());
        if (then == visit::remove) {
            remove_visited(level, visited.node());
            continue;
        }
        level.previous = visited.node();
        if (then == visit::go_on && !visited.items().empty()) {
            PGX_Node* const first = (*visited.items().begin()).node();
            outer.push_back(level);
            level = enter(first, visited.character_set(), pgKitGetNext(first));
        }
    }
}

}  // namespace v1
}  // namespace pgkit

#endif
