#include <pgkit/pgkit.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "input.h"
#include "reading_back.h"
#include "scratch_files.h"
#include "support/save_modes.h"
#include "support/tree.h"
#include "support/tree_comparison.h"
#include "targets.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

using namespace pgkit_test;

pgkit_test::Bytes Saved(PGX_Node& root, const char* name, int32_t mode) {
    const std::string path = ScratchPath(name);
    if (root.SaveDataSetAsEx(path.c_str(), mode) != 0) return {};
    return pgkit_test::ReadFile(path);
}

}  // namespace

void RoundTrip(Bytes bytes) {
    Input input(bytes);
    constexpr int32_t kModes[] = {kAsRead,
                                  kPart10Explicit,
                                  kPart10Implicit,
                                  kPart10Big,
                                  kPart10Explicit | PG_UNDEFINED_LENGTHS,
                                  kPart10Implicit | PG_UNDEFINED_LENGTHS,
                                  kPart10Big | PG_UNDEFINED_LENGTHS};
    constexpr uint32_t kLimits[] = {0, 64, 0xFFFFFFFF};
    const int32_t mode = input.Pick(kModes);
    const uint32_t limit = input.Pick(kLimits);
    const std::string path = WriteScratch("original", input.Rest());
    const pgkit_test::DataSet original(pgOpenDataSetFile(path.c_str(), limit));
    if (original == nullptr || !HasContent(*original) || !IsWorthCopying(*original)) return;
    if (mode != 0 && original->FindNode(0x0002, 0x0010) == nullptr)
        original->AddPart10Elements(nullptr);
    // Native from the first save on, a private syntax obeys the mode only then; and fragments that
    // are copied with their offset table may get a table that counts.
    // A group that was in two runs, with a length for each, may be one without what is left out.
    const bool isBare = mode == 0 && (original->syntaxFlags & PG_META) == 0;
    const bool settlesLater = HasPrivateSyntax(*original) || HasUnindexedFragments(*original) ||
                              HasElementsToLeaveOut(*original, isBare);

    const pgkit_test::Bytes first = Saved(*original, "first", mode);
    // A value that the file holds only in part cannot be saved.
    if (first.empty()) return;
    const pgkit_test::DataSet reread =
        RequireReadsBack(*original, ScratchPath("first"), mode, limit);
    if (reread == nullptr || settlesLater || IsUndeclared(*original, mode) ||
        IsAmbiguous(*original, *reread)) {
        return;
    }
    Require(Saved(*reread, "second", mode) == first, "saving again gives the same bytes");
}

}  // namespace pgkit_fuzz
