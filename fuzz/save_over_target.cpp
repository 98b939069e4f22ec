#include <pgkit/pgkit.h>

#include <string>

#include "input.h"
#include "reading_back.h"
#include "scratch_files.h"
#include "support/save_modes.h"
#include "support/tree_comparison.h"
#include "targets.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

using namespace pgkit_test;

}  // namespace

// The tree is compared with one that was read from a copy of the file: what it gives after the file
// is another one is what it would have given before.
void SaveOver(Bytes bytes) {
    Input input(bytes);
    constexpr int32_t kModes[] = {kAsRead, kPart10Explicit, kPart10Implicit, kPart10Big,
                                  kPart10Explicit | PG_UNDEFINED_LENGTHS};
    constexpr uint32_t kLimits[] = {0, 8, 64, 0xFFFFFFFF};
    const int32_t mode = input.Pick(kModes);
    const uint32_t limit = input.Pick(kLimits);
    const bool isEdited = input.Byte() % 2 != 0;
    const std::string path = WriteScratch("source", input.Rest());
    const DataSet copy(pgOpenDataSetFile(WriteScratch("copy", input.Rest()).c_str(), limit));
    const DataSet root(pgOpenDataSetFile(path.c_str(), limit));
    if (root == nullptr || copy == nullptr || !HasContent(*root)) return;
    if (!IsWorthCopying(*root)) return;
    for (PGX_Node* const tree : {root.get(), copy.get()}) {
        if (mode != 0 && tree->FindNode(0x0002, 0x0010) == nullptr)
            tree->AddPart10Elements(nullptr);
        if (isEdited) tree->AddOrReplaceNode(0x0010, 0x4000, "edited", 6);
    }
    for (int times = 0; times < 2; ++times) {
        if (root->SaveDataSetAsEx(path.c_str(), mode) != 0) return;
        RequireReadsBack(*copy, path, mode, limit);
        const std::string difference = FirstDifference(*copy, *root);
        Require(difference.empty(), "the tree has changed: " + difference);
    }
}

}  // namespace pgkit_fuzz
