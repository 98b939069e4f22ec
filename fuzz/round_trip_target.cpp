#include <pgkit/pgkit.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "input.h"
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

constexpr int32_t kModes[] = {kAsRead,
                              kPart10Explicit,
                              kPart10Implicit,
                              kPart10Big,
                              kPart10Explicit | PG_UNDEFINED_LENGTHS,
                              kPart10Implicit | PG_UNDEFINED_LENGTHS,
                              kPart10Big | PG_UNDEFINED_LENGTHS};
constexpr uint32_t kLimits[] = {0, 64, 0xFFFFFFFF};
constexpr uint32_t kEncodingBits =
    PG_EXPLICIT_VR | PG_IMPLICIT_VR | PG_LITTLE_ENDIAN | PG_BIG_ENDIAN;

// Trees whose written form means something else to a reader, by the rules of reading and writing
// themselves. Everything else must come back.

// Read by its first word, written by its whole text; two private syntaxes are read as native ones
// and saved as the explicit VR little endian that every unknown syntax stands for.
bool IsSyntaxAmbiguous(PGX_Node& syntax) {
    if (syntax.length > 66) return true;  // which may be gigabytes, and nothing but a claim
    const std::string uid = pgkit_test::TextOf(&syntax).c_str();
    return uid.find_first_not_of("0123456789.") != std::string::npos || uid.size() > 64 ||
           uid == "1.2.840.113619.5.2" || uid == "1.2.840.113704.7.0.4.5";
}

// File Meta Information is read while its tags ascend; it has no sequences and one syntax.
bool IsMetaAmbiguous(const PGX_Node& root) {
    uint16_t last = 0;
    bool hasSyntax = false;
    for (PGX_Node* element = root.first; element != nullptr; element = element->next) {
        if (element->group != 0x0002) return false;
        if (element->element < last || element->valueRep == VR_SQ) return true;
        last = element->element;
        if (last != 0x0010) continue;
        if (hasSyntax || IsSyntaxAmbiguous(*element)) return true;
        hasSyntax = true;
    }
    return false;
}

bool IsMetaOf(const PGX_Node* node, const PGX_Node& root) {
    for (const PGX_Node* element = root.first; element != nullptr && element->group == 0x0002;
         element = element->next)
        if (element == node) return true;
    return false;
}

bool IsAmbiguous(PGX_Node& root) {
    if (IsMetaAmbiguous(root)) return true;
    bool hasContent = false;
    for (PGX_Node* node : NodesOf(root)) {
        if (node->nodeType != NT_DataElement) continue;
        hasContent = hasContent || node->group > 0x0002;
        // Items and delimiters in the place of elements.
        if (node->group == 0xFFFE) return true;
        // In front of File Meta Information, which then is not read as such.
        if (node->group < 0x0002) return true;
        // Without a table it is copied as far as it can be followed.
        if (node->encapsulated != 0 && node->fragmentCount == 0) return true;
        // In big endian, what follows File Meta Information would seem to be more of it.
        if (node->group == 0x0200) return true;
        // Written little endian and explicit, or not at all, wherever it stands.
        if (node->group == 0x0002 && !IsMetaOf(node, root)) return true;
    }
    // A file that ends behind its File Meta Information is refused.
    return !hasContent;
}

// Where no VRs are written: elements that are sequences to the dictionary and not in the file, or
// the other way round; UIDs, whose padding is no part of the value; and fragments, whose header has
// the explicit form everywhere.
bool IsAmbiguousWithoutVrs(PGX_Node& root) {
    for (const PGX_Node* node : NodesOf(root)) {
        if (node->nodeType != NT_DataElement) continue;
        const uint32_t known = pgFindValueRepresentation(node->group, node->element);
        if (known != VR_Unknown && (known == VR_SQ) != (node->valueRep == VR_SQ)) return true;
        if ((known == VR_UI) != (node->valueRep == VR_UI)) return true;
        if (node->encapsulated != 0) return true;
    }
    return false;
}

// Items of fragments are read as little endian, which every syntax with fragments is, and written
// in the byte order that was asked for.
bool IsAmbiguousInBigEndian(PGX_Node& root) {
    const std::vector<PGX_Node*> nodes = NodesOf(root);
    return std::ranges::any_of(nodes, [](const PGX_Node* node) {
        return node->nodeType == NT_DataElement && node->encapsulated != 0;
    });
}

pgkit_test::Bytes Saved(PGX_Node& root, const char* name, int32_t mode) {
    const std::string path = ScratchPath(name);
    if (root.SaveDataSetAsEx(path.c_str(), mode) != 0) return {};
    return pgkit_test::ReadFile(path);
}

}  // namespace

void RoundTrip(Bytes bytes) {
    Input input(bytes);
    const int32_t mode = input.Pick(kModes);
    const uint32_t limit = input.Pick(kLimits);
    const std::string path = WriteScratch("original", input.Rest());
    const pgkit_test::DataSet original(pgOpenDataSetFile(path.c_str(), limit));
    if (original == nullptr || original->first == nullptr || IsAmbiguous(*original)) return;
    if (mode != 0 && original->FindNode(0x0002, 0x0010) == nullptr)
        original->AddPart10Elements(nullptr);

    const pgkit_test::Bytes first = Saved(*original, "first", mode);
    // A value that the file holds only in part cannot be saved.
    if (first.empty()) return;
    const uint32_t flags =
        (mode == 0 ? original->syntaxFlags : static_cast<uint32_t>(mode)) & kEncodingBits;
    const pgkit_test::DataSet reread(
        pgOpenDataSetFileEx(ScratchPath("first").c_str(), limit, flags));
    Require(reread != nullptr, "what was saved can be read");
    if ((reread->syntaxFlags & PG_IMPLICIT_VR) != 0 && IsAmbiguousWithoutVrs(*original)) return;
    if ((reread->syntaxFlags & PG_BIG_ENDIAN) != 0 && IsAmbiguousInBigEndian(*original)) return;
    const std::string difference = pgkit_test::FirstDifference(*original, *reread);
    Require(difference.empty(), difference);
    Require(Saved(*reread, "second", mode) == first, "saving again gives the same bytes");
}

}  // namespace pgkit_fuzz
