#include "codec/delimited_containers.h"

#include <vector>

#include "codec/syntax_agreement.h"
#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dictionary/tags.h"

namespace pgkit {

namespace {

class Collector {
  public:
    Collector(uint32_t mode, NodeSet& containers)
        : leavesMetaOut_((mode & kMetaModes) == 0), containers_(containers) {}

    WalkStep Enter(PGX_Node& node, size_t depth) {
        path_.resize(depth);
        const bool isElement = node.nodeType == NT_DataElement;
        if (isElement && !IsElementTag(node.group, node.element)) return WalkStep::SkipChildren;
        if (isElement && HasUncountedSize(node)) AddPath();
        if (isElement && node.valueRep != VR_SQ) return WalkStep::SkipChildren;
        path_.push_back(&node);
        return WalkStep::Continue;
    }

    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
    // Elements whose written size no computed length counts.
    bool HasUncountedSize(const PGX_Node& element) const {
        const bool isUndefined = element.valueRep != VR_SQ && element.length == kUndefinedLength;
        const bool isLeftOut = leavesMetaOut_ && element.group == kMetaGroup;
        return element.encapsulated != 0 || isLeftOut || isUndefined;
    }

    // What is in the set already is so with all that is around it.
    void AddPath() {
        for (auto container = path_.rbegin(); container != path_.rend(); ++container) {
            if (!containers_.insert(*container).second) return;
        }
    }

    const bool leavesMetaOut_;
    NodeSet& containers_;
    std::vector<const PGX_Node*> path_;
};

}  // namespace

void CollectDelimitedContainers(PGX_Node& sequence, uint32_t mode, NodeSet& containers) {
    Collector collector(mode, containers);
    WalkTree(sequence, collector);
}

bool IsUncounted(const PGX_Node& container) {
    if (container.file == nullptr) return false;
    if (container.nodeType == NT_DataSet) return container.length == 0;
    const PGX_Node* item = container.first;
    while (item != nullptr && item->length == 0)
        item = item->next;
    return item == nullptr;
}

}  // namespace pgkit
