// Where insertion goes on in a long list of children, so that a list which grows at its end costs
// the same for each element, however long it is.
//
// Nodes have no room for such a thing, and hosts may change any link of a tree. So a list is walked
// as ever, and for one that took long the walk leaves a mark well before the place that was looked
// for; the next walk begins there. A mark holds as long as
// - the parent and the two nodes of the mark live: every node's destructor takes its marks away, in
//   whichever thread, before the memory can be freed or used again. A mark is looked up by the
//   parent and never followed otherwise;
// - the parent's first child is the same, and the two nodes of the mark follow each other;
// - nobody has changed a link or a tag inside of a list through the flat functions since;
// - the place that is found is kSeenChildren behind it: where a list has become shorter, the next
//   mark is left earlier.
// What lies behind the mark is walked each time: whatever happened there counts. Before it a host
// that writes links itself can still do what no check in constant time could see: cut the list
// there and keep the nodes behind the cut, or put an element in that sorts behind the mark. The
// public header says so. Lists that never had more than kAlwaysWalked children are exempt.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "pgkit/node.h"

namespace pgkit {

// As many children in front of the place that is looked for are walked at least.
constexpr size_t kSeenChildren = 256;
// A mark is left so far before it,
constexpr size_t kMarkDistance = 2 * kSeenChildren;
// when as many had to be walked.
constexpr size_t kAlwaysWalked = 2 * kMarkDistance;

// The link in the list of parent's children that leads to the first child with a greater key (see
// TagKey), or that ends it. With UINT64_MAX as the key it is the one that ends it.
PGX_Node** FindInsertionLink(PGX_Node& parent, uint64_t key);

// Takes all marks away: links or tags may have been changed anywhere.
void ForgetLongLists();

// Counts the marks that a node is part of, for a few addresses together: nearly every node's
// destructor has nothing to do but look here.
constexpr size_t kMarkCounters = 256;
inline constinit std::array<std::atomic<uint16_t>, kMarkCounters> markCounters{};

inline std::atomic<uint16_t>& MarkCounterOf(const PGX_Node* node) {
    constexpr uint64_t kSpread = 0x9E3779B97F4A7C15;
    return markCounters[(reinterpret_cast<uintptr_t>(node) * kSpread) >> 56];
}

inline bool MayBeMarked(const PGX_Node* node) {
    return MarkCounterOf(node).load(std::memory_order_relaxed) != 0;
}

// Takes the marks of a node away that is about to be destroyed.
void ForgetMarksOf(const PGX_Node* node);

}  // namespace pgkit
