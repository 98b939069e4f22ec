#include <pgkit/pgkit.h>

#include <cstring>
#include <string>
#include <vector>

#include "input.h"
#include "scratch_files.h"
#include "support/save_modes.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

constexpr uint32_t kMaxSteps = 256;

void UseValue(PGX_Node* node, Input& input) {
    char text[65];
    std::memset(text, '\x7E', sizeof text);
    pgKitGetStringValue(node, text, 63);
    Require(text[64] == '\x7E', "a text stays in its buffer");
    pgKitGetUSValue(node);
    pgKitGetULValue(node);
    pgKitGetSSValue(node);
    pgKitGetDSIntValue(node);
    pgKitGetDSDoubleValue(node);
    // A root that was given a value would no longer know the file that is to be closed.
    if (pgKitGetNodeType(node) != NT_DataElement) return;
    const std::string value = input.Text(input.Byte() % 16);
    pgKitSetValue(node, value.data(), static_cast<uint32_t>(value.size()));
}

void AddSomething(PGX_Node* node, Input& input) {
    switch (input.Byte() % 4) {
        case 0:
            pgKitInsertNodeWithElementId(node, input.Below(3800), nullptr, 0);
            break;
        case 1:
            pgKitAddGroupLengths(node, input.Byte());
            break;
        case 2:
            pgKitUpdateGroupLengths(node, input.Byte());
            break;
        default:
            pgKitAddPart10Elements(node, nullptr);
    }
}

// Moves through the tree by the links alone, as a caller does who cannot see the class.
void Walk(PGX_Node* root, Input& input) {
    std::vector<PGX_Node*> parents;
    PGX_Node* node = root;
    for (uint32_t step = 0; step < kMaxSteps && !input.IsEmpty(); ++step) {
        const uint8_t choice = input.Byte() % 8;
        if (choice < 2 && pgKitGetFirst(node) != nullptr) {
            parents.push_back(node);
            node = pgKitGetFirst(node);
        } else if (choice < 5 && node != root && pgKitGetNext(node) != nullptr) {
            node = pgKitGetNext(node);
        } else if (choice == 5 && !parents.empty()) {
            node = parents.back();
            parents.pop_back();
        } else if (choice == 6) {
            AddSomething(node, input);
        } else {
            UseValue(node, input);
        }
    }
}

}  // namespace

void Accessors(Bytes bytes) {
    Input input(bytes);
    Input choices(bytes.last(std::min<size_t>(bytes.size(), 1024)));
    const std::string path = WriteScratch("accessors", input.Rest());
    PGX_Node* const root = pgKitOpenDataSetFile(path.c_str(), choices.Byte());
    if (root == nullptr) return;
    Walk(root, choices);
    pgKitSaveDataSetAsEx(root, ScratchPath("saved").c_str(), pgkit_test::kPart10Explicit);
    pgKitCloseDataSet(root);
}

}  // namespace pgkit_fuzz
