#include "codec/delimited_containers.h"

#include <vector>

#include "dataset/tree_walk.h"

namespace pgkit {

namespace {

class Collector {
  public:
    explicit Collector(NodeSet& containers) : containers_(containers) {}

    WalkStep Enter(PGX_Node& node, size_t depth) {
        path_.resize(depth);
        const bool isElement = node.nodeType == NT_DataElement;
        if (isElement && (node.encapsulated != 0 || node.group == 0x0002)) AddPath();
        if (isElement && node.valueRep != VR_SQ) return WalkStep::SkipChildren;
        path_.push_back(&node);
        return WalkStep::Continue;
    }

    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
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
