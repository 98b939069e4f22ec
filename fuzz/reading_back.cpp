#include "reading_back.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "support/tree_comparison.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

constexpr uint32_t kEncodingBits =
    PG_EXPLICIT_VR | PG_IMPLICIT_VR | PG_LITTLE_ENDIAN | PG_BIG_ENDIAN;

template <typename Predicate>
bool AnyElement(PGX_Node& root, Predicate predicate) {
    const std::vector<PGX_Node*> nodes = NodesOf(root);
    return std::ranges::any_of(nodes, [&](PGX_Node* node) {
        return node->nodeType == NT_DataElement && predicate(*node);
    });
}

// How a tree is saved in a mode, where the file does not say it.
uint32_t FlagsOfBare(PGX_Node& root, uint32_t mode) {
    const bool isAsRead = mode == root.syntaxFlags;
    const auto isEncapsulated = [](const PGX_Node& element) { return element.encapsulated != 0; };
    if (isAsRead && (mode & PG_IMPLICIT_VR) != 0 && AnyElement(root, isEncapsulated))
        return PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
    return mode & kEncodingBits;
}

// A bare data set passes for a file with a preamble when its bytes fall that way.
bool LooksLikePart10(const std::string& path) {
    const pgkit_test::Bytes bytes = pgkit_test::ReadFile(path);
    constexpr std::string_view kPrefix = "DICM";
    return bytes.size() >= 132 && std::equal(kPrefix.begin(), kPrefix.end(), bytes.begin() + 128);
}

}  // namespace

bool HasContent(PGX_Node& root) {
    for (PGX_Node* element = root.first; element != nullptr; element = element->next) {
        const bool isNone = element->group == 0xFFFF && element->element == 0xFFFF;
        if (element->group != 0x0002 && element->group != 0xFFFE && !isNone) return true;
    }
    return false;
}

bool HasPrivateSyntax(PGX_Node& root) {
    return AnyElement(root, [](PGX_Node& element) {
        if (element.group != 0x0002 || element.element != 0x0010) return false;
        // Its length may be anything; what counts is the beginning.
        char text[64] = {};
        element.GetStringValue(text, sizeof text - 1);
        const std::string_view uid = text;
        return uid.find("1.2.840.113619.5.2") != uid.npos ||
               uid.find("1.2.840.113704.7.0.4.5") != uid.npos;
    });
}

bool HasElementsToLeaveOut(PGX_Node& root, bool isBare) {
    return AnyElement(root, [&](const PGX_Node& element) {
        return (isBare && element.group == 0x0002) || element.group >= 0xFFFE;
    });
}

bool IsUndeclared(PGX_Node& root, int32_t mode) {
    constexpr uint32_t kTakenForGranted = PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
    const uint32_t used = mode == 0 ? root.syntaxFlags : static_cast<uint32_t>(mode);
    if ((used & PG_META) == 0 || (used & kEncodingBits) == kTakenForGranted) return false;
    const PGX_Node* element = root.first;
    while (element != nullptr && element->group < 0x0002)
        element = element->next;
    uint16_t last = 0;
    for (; element != nullptr && element->group == 0x0002 && element->element >= last;
         element = element->next) {
        last = element->element;
        if (last == 0x0010) return false;
    }
    return true;
}

bool HasUnindexedFragments(PGX_Node& root) {
    return AnyElement(root, [](const PGX_Node& element) {
        return element.encapsulated != 0 && element.fragmentCount == 0;
    });
}

bool HasMissingValue(PGX_Node& root) {
    return AnyElement(root, [](const PGX_Node& element) {
        return element.length != 0 && element.value == nullptr && element.file == nullptr &&
               element.encapsulated == 0 && element.valueRep != VR_SQ;
    });
}

bool IsAmbiguous(PGX_Node& original, const PGX_Node& reread) {
    if ((reread.syntaxFlags & PG_EXPLICIT_VR) != 0) return false;
    return AnyElement(original, [](const PGX_Node& element) {
        const uint32_t known = pgFindValueRepresentation(element.group, element.element);
        return (known != VR_Unknown && (known == VR_SQ) != (element.valueRep == VR_SQ)) ||
               (known == VR_UI) != (element.valueRep == VR_UI);
    });
}

pgkit_test::DataSet RequireReadsBack(PGX_Node& original, const std::string& path, int32_t mode,
                                     uint32_t limit) {
    const uint32_t used = mode == 0 ? original.syntaxFlags : static_cast<uint32_t>(mode);
    const bool isBare = (used & PG_META) == 0;
    if (isBare && LooksLikePart10(path)) return nullptr;
    const uint32_t flags = isBare ? FlagsOfBare(original, used) : used & kEncodingBits;
    pgkit_test::DataSet reread(pgOpenDataSetFileEx(path.c_str(), limit, flags));
    if (IsUndeclared(original, mode)) return reread;
    Require(reread != nullptr, "what was saved can be read");
    if (IsAmbiguous(original, *reread)) return reread;
    const std::string difference = pgkit_test::FirstDifference(original, *reread);
    Require(difference.empty(), difference);
    return reread;
}

}  // namespace pgkit_fuzz
