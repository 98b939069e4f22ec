#include "dataset/tree_size.h"

#include <algorithm>
#include <cstring>

#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// The copies of a chain wait in a vector that doubles: the chain's entry of 16 bytes, three times.
constexpr uint64_t kPendingChain = 48;

template <typename SizeOf>
uint64_t SumOverTree(PGX_Node& tree, SizeOf sizeOf) {
    struct Sum {
        SizeOf sizeOf;
        uint64_t total = 0;

        WalkStep Enter(PGX_Node& node, size_t) {
            total += sizeOf(node);
            return WalkStep::Continue;
        }
        WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }
    };
    Sum sum{sizeOf};
    WalkTree(tree, sum);
    return sum.total;
}

uint64_t TextSize(const char* text) {
    return text == nullptr ? 0 : HeapBlock(std::strlen(text) + 1);
}

uint64_t ValueSize(const PGX_Node& node) {
    if (node.value == nullptr) return 0;
    if (!LacksMuch(node)) return HeapBlock(uint64_t{node.length} + 2);
    return std::min<uint64_t>(node.length, platform::StreamSize(node.file));
}

uint64_t FragmentsSize(const PGX_Node& node) {
    if (!HasFragmentTable(node)) return 0;
    uint64_t size = HeapBlock(node.fragmentCapacity * sizeof(FragmentEntry));
    for (uint32_t i = 0; i < node.fragmentCount; ++i) {
        if (node.fragments[i].bytes != nullptr) size += HeapBlock(node.fragments[i].length);
    }
    return size;
}

uint64_t NodeSize(const PGX_Node& node) {
    const bool hasOwnName = node.tagName != nullptr && node.tagName != unknownTagName;
    return HeapBlock(sizeof node) + ValueSize(node) + (hasOwnName ? TextSize(node.tagName) : 0) +
           TextSize(node.contentFile) + FragmentsSize(node);
}

// Values are copied at the length that they claim, but for those that are a mere claim: copies for
// records are without them.
uint64_t NodeCopySize(const PGX_Node& node) {
    uint64_t size = HeapBlock(sizeof node) + TextSize(node.contentFile);
    if (node.length != kUndefinedLength && node.valueRep != VR_SQ && !LacksMuch(node)) {
        size += HeapBlock(uint64_t{node.length} + 2);
    }
    if (HasFragmentTable(node)) size += HeapBlock(node.fragmentCapacity * sizeof(FragmentEntry));
    return node.first == nullptr ? size : size + kPendingChain;
}

}  // namespace

uint64_t TreeSize(PGX_Node& tree) { return SumOverTree(tree, NodeSize); }

uint64_t CopySize(PGX_Node& tree) { return SumOverTree(tree, NodeCopySize); }

}  // namespace pgkit
