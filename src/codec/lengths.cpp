#include "codec/lengths.h"

#include <algorithm>
#include <vector>

#include "base/diagnostics.h"
#include "codec/part10_format.h"
#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"

namespace pgkit {

namespace {

void PrintMisuse() { PrintOut("pgComputeLengths: can only work with NT_DataSet type\n"); }

class LengthComputation {
  public:
    explicit LengthComputation(uint32_t mode) : explicitVr_((mode & PG_EXPLICIT_VR) != 0) {}

    WalkStep Enter(PGX_Node& node, size_t) {
        const bool isItem = !open_.empty() && open_.back().node->nodeType == NT_DataElement;
        if (isItem && node.nodeType != NT_DataSet) {
            PrintMisuse();
            open_.back().total += kItemHeaderSize;
            return WalkStep::SkipChildren;
        }
        // Such an element is not written.
        const bool isElement = node.nodeType == NT_DataElement;
        if (isElement && !IsElementTag(node.group, node.element)) return WalkStep::SkipChildren;
        if (!isElement || node.valueRep == VR_SQ) {
            open_.push_back({&node, 0});
            return WalkStep::Continue;
        }
        open_.back().total += ElementSize(node);
        return WalkStep::SkipChildren;
    }

    WalkStep Leave(PGX_Node& node, size_t) {
        if (open_.back().node != &node) return WalkStep::Continue;
        const uint64_t total = open_.back().total;
        node.length = static_cast<uint32_t>(std::min<uint64_t>(total, kUndefinedLength));
        open_.pop_back();
        if (open_.empty()) return WalkStep::Continue;
        const bool isItem = node.nodeType == NT_DataSet;
        open_.back().total +=
            total + (isItem ? kItemHeaderSize : HeaderSize(node.valueRep, explicitVr_));
        return WalkStep::Continue;
    }

  private:
    // A data set or a sequence, and what has been counted in it.
    struct Container {
        PGX_Node* node;
        uint64_t total;
    };

    // An undefined length counts as the number it is written as, in 32 bits. What is around such
    // an element is written without the length that comes of it.
    uint64_t ElementSize(const PGX_Node& element) const {
        const uint32_t headerSize = HeaderSize(element.valueRep, explicitVr_);
        if (element.length == kUndefinedLength) return headerSize - 1;
        return uint64_t{element.length} + headerSize;
    }

    bool explicitVr_;
    std::vector<Container> open_;
};

}  // namespace

uint32_t ComputeLengths(PGX_Node& dataSet, uint32_t mode) {
    if (dataSet.nodeType != NT_DataSet) {
        PrintMisuse();
        return 0;
    }
    LengthComputation computation(mode);
    WalkTree(dataSet, computation);
    return dataSet.length;
}

}  // namespace pgkit
