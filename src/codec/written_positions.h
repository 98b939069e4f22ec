// Where chosen nodes were written. Parsed nodes keep the position they were read from in
// fileOffset, so the links between directory records need the positions of the output from
// elsewhere.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "pgkit/node.h"

namespace pgkit {

class WrittenPositions {
  public:
    bool Empty() const { return positions_.empty(); }

    // Asks for the position of a node: of an element's value, of a data set's first element.
    // Nothing is read of it: it need not exist any more.
    void Want(const PGX_Node* node) { positions_.try_emplace(node); }

    void Record(const PGX_Node& node, std::optional<uint64_t> position) {
        if (positions_.empty()) return;
        const auto wanted = positions_.find(&node);
        if (wanted != positions_.end()) wanted->second = position;
    }

    // Nothing for a node that was not asked for or not written.
    std::optional<uint64_t> Find(const PGX_Node* node) const {
        const auto found = positions_.find(node);
        return found == positions_.end() ? std::nullopt : found->second;
    }

  private:
    std::unordered_map<const PGX_Node*, std::optional<uint64_t>> positions_;
};

}  // namespace pgkit
