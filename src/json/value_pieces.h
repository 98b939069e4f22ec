// A value piece by piece, however long it is.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "dataset/value_source.h"
#include "pgkit/node.h"

namespace pgkit {

// A multiple of the size of every number, and of what base64 takes together; not more than a file
// is asked for without looking at its size first.
constexpr size_t kValuePiece = 0xC000;
static_assert(kValuePiece % 24 == 0);

// Bytes as they are kept: in the byte order of the node.
class ValuePieces {
  public:
    // buffer has room for kValuePiece bytes, for values that are not in memory.
    ValuePieces(const PGX_Node& node, uint8_t* buffer)
        : node_(node), buffer_(buffer), size_(AvailableLength(node)) {}

    // How many bytes there are.
    size_t Size() const { return size_; }

    // At most count bytes, itself at most kValuePiece, from an offset on; fewer where the value, or
    // its file, ends. Valid until the next call.
    std::span<const uint8_t> At(size_t offset, size_t count) const {
        count = std::min(count, size_ - std::min(offset, size_));
        if (count == 0) return {};
        if (node_.value != nullptr) return {node_.value + offset, count};
        return {buffer_, FetchValue(node_, offset, buffer_, count)};
    }

  private:
    const PGX_Node& node_;
    uint8_t* buffer_;
    size_t size_;
};

}  // namespace pgkit
