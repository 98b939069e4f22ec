#include <pgkit/pgkit.h>

#include <string>
#include <vector>

#include "input.h"
#include "scratch_files.h"
#include "support/tree.h"
#include "targets.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

// All that have a meaning.
constexpr uint32_t kFlags = PG_OPEN_SKIP_FRAGMENTS | PG_OPEN_FORCE_EXPLICIT_VR |
                            PG_OPEN_FORCE_IMPLICIT_VR | PG_OPEN_FORCE_LITTLE_ENDIAN |
                            PG_OPEN_FORCE_BIG_ENDIAN | PG_OPEN_UN_AS_STREAM |
                            PG_OPEN_UN_BY_INSPECTION;
// What a host would make room for.
constexpr uint32_t kMaxValue = 1 << 16;

// A text getter writes its terminating zero, and nothing behind the size it is told.
void GetText(PGX_Node& element, int32_t size) {
    std::vector<char> text(static_cast<size_t>(size) + 1, '\x7E');
    if (element.GetStringValue(text.data(), size) != 0) {
        Require(text.back() == '\x7E' || text.back() == '\0', "text beyond its buffer");
    }
}

void GetValues(PGX_Node& element) {
    char name[1024];
    element.GetTagName(name);
    element.GetUSValue();
    element.GetULValue();
    element.GetSSValue();
    element.GetDSIntValue();
    element.GetDSDoubleValue();
    for (const int32_t size : {1, 2, 64})
        GetText(element, size);
    if (element.length > kMaxValue) return;
    std::vector<uint8_t> value(size_t{element.length} + 1);
    element.GetValue(value.data());
}

void GetFragments(PGX_Node& element) {
    uint32_t length = 0;
    uint32_t offset = 0;
    for (uint32_t i = 0; element.GetEncodedPixelInfo(i, &length, &offset) != 0; ++i) {
        Require(i < element.fragmentCount, "fragment behind the last");
        if (length > kMaxValue) continue;
        std::vector<uint8_t> bytes(length);
        element.GetFileData(bytes.data(), offset, length);
    }
}

}  // namespace

void Read(Bytes bytes) {
    Input input(bytes);
    const uint32_t flags = input.U16() & kFlags;
    constexpr uint32_t kLimits[] = {0, 1, 22, 64, 0x10000, 0xFFFFFFFF};
    const uint32_t limit = input.Pick(kLimits);
    const std::string path = WriteScratch("read", input.Rest());
    const pgkit_test::DataSet root(pgOpenDataSetFileEx(path.c_str(), limit, flags));
    pgIsDicomFile(path.c_str());
    if (root == nullptr) return;
    for (PGX_Node* node : NodesOf(*root)) {
        if (node->nodeType != NT_DataElement) continue;
        GetValues(*node);
        if (node->IsEncodedPixelData() != 0) GetFragments(*node);
    }
    if (!IsWorthCopying(*root)) return;
    root->Dump(ScratchPath("dump").c_str());
    const pgkit_test::DataSet copy(root->DuplicateNode(0));
    Require(copy != nullptr && NodesOf(*copy).size() == NodesOf(*root).size(),
            "a copy has as many nodes");
}

}  // namespace pgkit_fuzz
