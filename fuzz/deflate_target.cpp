#include <pgkit/pgkit.h>

#include <algorithm>
#include <string>

#include "input.h"
#include "reading_back.h"
#include "scratch_files.h"
#include "support/deflated.h"
#include "targets.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

// The deflated bytes are padded; what stands in front of them may be odd where it was.
bool HasOddMetaInformation(PGX_Node& root) {
    return std::ranges::any_of(NodesOf(root), [](const PGX_Node* node) {
        return node->group == 0x0002 && node->length % 2 != 0;
    });
}

}  // namespace

// Saved as it was read, it is deflated again.
void Deflate(Bytes bytes) {
    constexpr uint32_t kLimits[] = {0, 64, 0xFFFFFFFF};
    Input input(bytes);
    const uint32_t limit = input.Pick(kLimits);
    const bool isDeflated = input.Byte() % 2 != 0;
    const pgkit_test::Bytes content(input.Rest().begin(), input.Rest().end());
    const pgkit_test::Bytes deflated = isDeflated ? content : pgkit_test::Deflated(content);
    const std::string path = WriteScratch("deflated", pgkit_test::DeflatedFile(deflated));
    const pgkit_test::DataSet root(pgOpenDataSetFile(path.c_str(), limit));
    if (root == nullptr || !HasContent(*root) || !IsWorthCopying(*root)) return;
    const std::string saved = ScratchPath("deflated_again");
    if (root->SaveDataSetAsEx(saved.c_str(), 0) != 0) return;
    Require(pgkit_test::ReadFile(saved).size() % 2 == 0 || HasOddMetaInformation(*root),
            "a deflated file has an even size");
    RequireReadsBack(*root, saved, 0, limit);
}

}  // namespace pgkit_fuzz
