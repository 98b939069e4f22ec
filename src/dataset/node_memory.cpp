#include "dataset/node_memory.h"

namespace pgkit {

FragmentEntry* NewFragmentTable(size_t capacity) {
    return static_cast<FragmentEntry*>(
        std::calloc(capacity == 0 ? 1 : capacity, sizeof(FragmentEntry)));
}

void FreeFragmentTable(PGX_Node& node) {
    if (HasFragmentTable(node)) {
        for (uint32_t i = 0; i < node.fragmentCount; ++i)
            FreeValueBuffer(node.fragments[i].bytes);
        std::free(node.fragments);
    }
    node.fragments = nullptr;
    node.fragmentCount = 0;
    node.fragmentCapacity = 0;
}

}  // namespace pgkit
