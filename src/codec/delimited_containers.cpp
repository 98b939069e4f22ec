#include "codec/delimited_containers.h"

#include <vector>

#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dictionary/tags.h"

namespace pgkit {

namespace {

class Collector {
  public:
    explicit Collector(NodeSet& containers) : containers_(containers) {}

    WalkStep Enter(PGX_Node& node, size_t depth) {
        path_.resize(depth);
        const bool isElement = node.nodeType == NT_DataElement;
        if (isElement && HasUncountedSize(node)) AddPath();
        if (isElement && node.valueRep != VR_SQ) return WalkStep::SkipChildren;
        path_.push_back(&node);
        return WalkStep::Continue;
    }

    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
    // Elements whose written size no computed length counts.
    static bool HasUncountedSize(const PGX_Node& element) {
        const bool isUndefined = element.valueRep != VR_SQ && element.length == kUndefinedLength;
        return element.encapsulated != 0 || element.group == kMetaGroup || isUndefined;
    }

    // What is in the set already is so with all that is around it.
    void AddPath() {
        for (auto container = path_.rbegin(); container != path_.rend(); ++container) {
            if (!containers_.insert(*container).second) return;
        }
    }

    NodeSet& containers_;
    std::vector<const PGX_Node*> path_;
};

}  // namespace

void CollectDelimitedContainers(PGX_Node& sequence, NodeSet& containers) {
    Collector collector(containers);
    WalkTree(sequence, collector);
}

}  // namespace pgkit
