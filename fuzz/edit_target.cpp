#include <pgkit/pgkit.h>

#include <string>
#include <vector>

#include "input.h"
#include "reading_back.h"
#include "scratch_files.h"
#include "support/save_modes.h"
#include "support/tree.h"
#include "targets.h"
#include "tree_nodes.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

using namespace pgkit_test;

constexpr uint32_t kSaveModes[] = {kAsRead,
                                   kPart10Explicit,
                                   kPart10Implicit,
                                   kPart10Big,
                                   kPart10Explicit | PG_UNDEFINED_LENGTHS,
                                   kPart10Implicit | PG_UNDEFINED_LENGTHS,
                                   kExplicitLittle,
                                   PG_UNDEFINED_LENGTHS};
constexpr uint32_t kMaxEdits = 64;
constexpr uint32_t kMaxFragments = 16;

PGX_Node* PickNode(PGX_Node& root, Input& input) {
    const std::vector<PGX_Node*> nodes = NodesOf(root);
    return nodes[input.Below(static_cast<uint32_t>(nodes.size()))];
}

// The data set that a node is, or that holds it.
PGX_Node* PickDataSet(PGX_Node& root, Input& input) {
    std::vector<PGX_Node*> dataSets;
    for (PGX_Node* node : NodesOf(root)) {
        if (node->nodeType == NT_DataSet) dataSets.push_back(node);
    }
    return dataSets[input.Below(static_cast<uint32_t>(dataSets.size()))];
}

void Insert(PGX_Node& root, Input& input) {
    const uint16_t group = input.U16();
    const uint16_t element = input.U16();
    const std::string value = input.Text(input.Byte());
    PickDataSet(root, input)
        ->InsertNode(group, element, value.data(), static_cast<uint32_t>(value.size()));
}

void AddOrReplace(PGX_Node& root, Input& input) {
    const uint32_t id = input.Below(3800);
    const std::string value = input.Text(input.Byte());
    PickDataSet(root, input)
        ->AddOrReplaceNode(id, value.data(), static_cast<uint32_t>(value.size()));
}

void Remove(PGX_Node& root, Input& input) {
    PGX_Node* const parent = PickNode(root, input);
    std::vector<PGX_Node*> children;
    for (PGX_Node* child = parent->first; child != nullptr; child = child->next)
        children.push_back(child);
    if (children.empty()) return;
    parent->RemoveNode(children[input.Below(static_cast<uint32_t>(children.size()))]);
}

void SetValue(PGX_Node& root, Input& input) {
    PGX_Node* const node = PickNode(root, input);
    // A root that was given a value would no longer know the file that is to be closed.
    if (node->nodeType != NT_DataElement) return;
    const std::string value = input.Text(input.Byte());
    node->SetValue(value.data(), static_cast<uint32_t>(value.size()));
}

void AddItem(PGX_Node& root, Input& input) {
    PGX_Node* const sequence = PickNode(root, input);
    if (sequence->valueRep != VR_SQ) return;
    PGX_Node* const item = pgAllocateDataSetNode();
    if (input.Byte() % 2 == 0) {
        sequence->SeqAddHead(item);
    } else {
        sequence->SeqAddTail(item);
    }
    Require(sequence->SeqGetHead() != nullptr, "a sequence with an item has a head");
}

void InsertCopy(PGX_Node& root, Input& input) {
    PGX_Node* const original = PickNode(root, input);
    if (original->nodeType != NT_DataElement || !IsWorthCopying(root)) return;
    PickDataSet(root, input)->InsertNode(original->DuplicateNode(1));
}

void SetGroupLengths(PGX_Node& root, Input& input) {
    const uint32_t mode = input.Pick(kSaveModes);
    if (input.Byte() % 2 == 0) {
        root.AddGroupLengths(mode);
    } else {
        root.UpdateGroupLengths(mode);
    }
}

void InsertFragments(PGX_Node& root, Input& input) {
    const uint32_t count = input.Byte() % kMaxFragments;
    PGX_Node* const pixelData = PickDataSet(root, input)->InsertEncodedPixelDataNode(count);
    for (uint32_t i = 0; i < count && pixelData != nullptr; ++i) {
        const std::string bytes = input.Text(input.Byte());
        pixelData->SetEncodedPixelData(i, static_cast<uint32_t>(bytes.size()), bytes.data());
    }
}

void AddMeta(PGX_Node& root, Input&) { root.AddPart10Elements(nullptr); }

constexpr void (*kEdits[])(PGX_Node& root, Input& input) = {
    Insert,     AddOrReplace,    Remove,          SetValue, AddItem,
    InsertCopy, SetGroupLengths, InsertFragments, AddMeta};

}  // namespace

void Edit(Bytes bytes) {
    Input input(bytes);
    const uint32_t mode = input.Pick(kSaveModes);
    const uint32_t limit = input.Byte();
    const std::string path = WriteScratch("edited", input.Rest());
    pgkit_test::DataSet root(pgOpenDataSetFile(path.c_str(), limit));
    if (root == nullptr) root.reset(pgAllocateDataSetNode());
    for (uint32_t i = 0; i < kMaxEdits && !input.IsEmpty(); ++i)
        input.Pick(kEdits)(*root, input);

    if (IsWorthCopying(*root)) root->Dump(ScratchPath("dump").c_str());
    const std::string saved = ScratchPath("saved");
    const bool isWritten = root->SaveDataSetAsEx(saved.c_str(), static_cast<int32_t>(mode)) == 0;
    // Without File Meta Information nothing says how a file is to be read.
    const bool wasRead = root->file != nullptr;
    const uint32_t used = mode == kAsRead && wasRead ? root->syntaxFlags : mode;
    // What is inserted behind Pixel Data that readers cannot index is there, and not read.
    if (!isWritten || (used & PG_META) == 0 || HasUnindexedFragments(*root) || !HasContent(*root) ||
        HasMissingValue(*root)) {
        if (isWritten) pgkit_test::DataSet(pgOpenDataSetFile(saved.c_str(), 64));
        return;
    }
    RequireReadsBack(*root, saved, static_cast<int32_t>(mode), 64);
}

}  // namespace pgkit_fuzz
