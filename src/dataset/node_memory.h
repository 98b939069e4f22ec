// Who allocates nodes and what they own. Values and fragments come from here, texts from NewText;
// in large trees nodes, short values and names are cells of TreeMemory. What frees them must know
// both.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "dataset/tree_memory.h"
#include "pgkit/node.h"

namespace pgkit {

constexpr uint32_t kUndefinedLength = 0xFFFFFFFF;

// Stands in fileOffset for a position that does not fit 32 bits; nothing is ever read from there.
constexpr uint32_t kUnreadablePosition = 0xFFFFFFFF;

// Stands in syntaxFlags of a node that is no root of an opened file.
constexpr uint32_t kNoSyntaxFlags = 0xFFFFFFFF;

constexpr uint32_t ToFileOffset(uint64_t position) {
    return position < kUnreadablePosition ? static_cast<uint32_t>(position) : kUnreadablePosition;
}

// Value and fragment buffers come from calloc: a large zeroed buffer costs only the pages that are
// written, so a length that a damaged file merely claims costs nothing. Null when memory runs out.
inline uint8_t* NewValueBuffer(size_t size) {
    return static_cast<uint8_t*>(std::calloc(size == 0 ? 1 : size, 1));
}

// The same with any content, for a value that is read into it at once.
inline uint8_t* NewUnfilledValueBuffer(size_t size) {
    return static_cast<uint8_t*>(std::malloc(size == 0 ? 1 : size));
}

inline void FreeValueBuffer(uint8_t* buffer) {
    if (IsTreeMemory(buffer)) {
        FreeTreeMemory(buffer);
    } else {
        std::free(buffer);
    }
}

struct FreeBuffer {
    void operator()(uint8_t* buffer) const { FreeValueBuffer(buffer); }
};

// A value buffer that no node owns yet.
using ValueBuffer = std::unique_ptr<uint8_t, FreeBuffer>;

// The address that stands in PGX_Node::fragments for a table that was deliberately not built.
inline FragmentEntry* NotIndexedMarker() { return std::bit_cast<FragmentEntry*>(uintptr_t{1}); }

// Whether the node has a fragment table of its own: neither none nor the marker.
inline bool HasFragmentTable(const PGX_Node& node) {
    return node.encapsulated != 0 && node.fragments != nullptr &&
           node.fragments != NotIndexedMarker();
}

// The name of all elements that nothing has a name for: a tagName that is not freed.
inline char unknownTagName[] = "<unknown tag>";

inline void FreeTagName(char* name) {
    if (name == unknownTagName) return;
    if (IsTreeMemory(name)) {
        FreeTreeMemory(name);
    } else {
        delete[] name;
    }
}

// Destroys a node and what it owns, wherever its memory is from.
inline void DestroyNode(PGX_Node* node) {
    if (IsTreeMemory(node)) {
        node->~PGX_Node();
        FreeTreeMemory(node);
    } else {
        delete node;
    }
}

// A table of zeroed entries; null when memory runs out.
FragmentEntry* NewFragmentTable(size_t capacity);

// Frees the table with its loaded fragments, if the node has one, and leaves it without: null,
// count and capacity 0.
void FreeFragmentTable(PGX_Node& node);

}  // namespace pgkit
