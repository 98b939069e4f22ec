#include <pgkit/pgkit.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "input.h"
#include "reading_back.h"
#include "scratch_files.h"
#include "support/open_report.h"
#include "support/save_modes.h"
#include "support/tree.h"
#include "support/tree_comparison.h"
#include "targets.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

using namespace pgkit_test;

// Gives bytes in pieces.
struct Giver {
    std::span<const uint8_t> left;
    size_t piece;

    static size_t Give(void* context, void* out, size_t size) {
        auto& self = *static_cast<Giver*>(context);
        const size_t count = std::min({size, self.piece, self.left.size()});
        if (count > 0) std::memcpy(out, self.left.data(), count);
        self.left = self.left.subspan(count);
        return count;
    }
};

size_t Take(void* context, const void* bytes, size_t size) {
    const auto* const from = static_cast<const uint8_t*>(bytes);
    auto& taken = *static_cast<pgkit_test::Bytes*>(context);
    taken.insert(taken.end(), from, from + size);
    return size;
}

struct Reported {
    PgxOpenReport report = NewReport();
    DataSet root;
};

bool HasEncapsulated(PGX_Node& root) {
    return std::ranges::any_of(NodesOf(root),
                               [](const PGX_Node* node) { return node->encapsulated != 0; });
}

// Lengths that no value has.
bool HasClaims(PGX_Node& root) {
    return std::ranges::any_of(NodesOf(root), [](const PGX_Node* node) {
        return node->length == 0xFFFFFFFF && node->valueRep != VR_SQ;
    });
}

void RequireSame(const Reported& a, const Reported& b, const char* what) {
    Require((a.root == nullptr) == (b.root == nullptr), std::string("both trees: ") + what);
    if (a.root == nullptr || HasEncapsulated(*a.root)) return;
    Require(std::memcmp(&a.report, &b.report, sizeof a.report) == 0,
            std::string("the same report: ") + what);
    // Of a length that is a mere claim memory has what there is.
    if (HasClaims(*a.root) || !IsWorthCopying(*a.root) || !IsWorthCopying(*b.root)) return;
    const std::string difference = FirstDifference(*a.root, *b.root);
    Require(difference.empty(), std::string("the same tree: ") + what + ": " + difference);
}

void RequireSameSaves(PGX_Node& root, int32_t mode) {
    const std::string path = ScratchPath("saved");
    // What the first save makes of the tree is there for all that follow.
    if (pgxSaveToMemory(&root, mode, nullptr, 0) < 0) return;
    Require(root.SaveDataSetAsEx(path.c_str(), mode) == 0, "a file can be written");
    const pgkit_test::Bytes expected = ReadFile(path);
    pgkit_test::Bytes taken;
    Require(pgxSaveTo(&root, mode, Take, &taken) == 0 && taken == expected,
            "a function gets what a file gets");
    pgkit_test::Bytes saved(expected.size() + 1, 0x7E);
    const int64_t size = pgxSaveToMemory(&root, mode, saved.data(), saved.size());
    Require(size == static_cast<int64_t>(expected.size()) && saved.back() == 0x7E,
            "memory gets as much as a file");
    saved.pop_back();
    Require(saved == expected, "memory gets what a file gets");
}

}  // namespace

void Elsewhere(Bytes bytes) {
    constexpr int32_t kModes[] = {kAsRead, kPart10Implicit | PG_UNDEFINED_LENGTHS, kPart10Big,
                                  kExplicitLittle};
    Input input(bytes);
    const uint32_t flags = input.U16() & (PG_OPEN_UN_AS_STREAM | PG_OPEN_UN_BY_INSPECTION);
    const uint32_t options = input.Byte() % 2;
    const int32_t mode = input.Pick(kModes);
    const size_t piece = size_t{1} + input.U16();
    const bool isOfFile = input.Byte() % 2 == 0;
    const std::string path = WriteScratch("elsewhere", input.Rest());
    Reported ofFile, ofMemory, ofFunction;
    ofFile.report.options = ofMemory.report.options = ofFunction.report.options = options;
    ofFile.root.reset(
        pgxOpenFile(path.c_str(), 64, flags | PG_OPEN_PAST_PIXEL_DATA, &ofFile.report));
    ofMemory.root.reset(
        pgxOpenMemory(input.Rest().data(), input.Rest().size(), flags, &ofMemory.report));
    Giver giver{input.Rest(), piece};
    ofFunction.root.reset(pgxOpenFrom(Giver::Give, &giver, flags, &ofFunction.report));
    RequireSame(ofMemory, ofFunction, "memory and function");
    RequireSame(ofFile, ofMemory, "file and memory");
    PGX_Node* const root = (isOfFile ? ofFile : ofMemory).root.get();
    if (root != nullptr && IsWorthCopying(*root)) RequireSameSaves(*root, mode);
}

}  // namespace pgkit_fuzz
