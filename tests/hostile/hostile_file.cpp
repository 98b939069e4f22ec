#include "hostile/hostile_file.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "support/save_modes.h"
#include "support/temp_dir.h"

namespace pgkit_test {

namespace {

constexpr int32_t kModes[] = {
    kPart10Explicit,
    kPart10Explicit | PG_UNDEFINED_LENGTHS,
    kImplicitLittle,
    kExplicitBig,
};

void ReadElement(PGX_Node& element) {
    char text[256];
    for (const int32_t size : {0, 1, 7, 255})
        element.GetStringValue(text, size);
    element.GetTagName(text);
    element.GetUSValue();
    element.GetULValue();
    element.GetSSValue();
    element.GetDSIntValue();
    element.GetDSDoubleValue();
    element.GetPixelData(0xFFFFFFFF, sizeof text, text);
    uint32_t length = 0;
    uint32_t offset = 0;
    element.GetEncodedPixelInfo(0xFFFFFFFF, &length, &offset);
    element.GetEncodedPixelInfo(0, &length, &offset);
}

// A copy has its values in memory, at their full lengths, and is written with them: where a file
// merely claims gigabytes, that is what is written.
bool ClaimsTooMuch(const PGX_Node& root) {
    for (const PGX_Node* node = root.first; node != nullptr; node = node->next) {
        if (node->valueRep != VR_SQ && node->length != kUndefined && node->length > 0x1000000) {
            return true;
        }
        for (const PGX_Node* item = node->first; item != nullptr; item = item->next) {
            if (ClaimsTooMuch(*item)) return true;
        }
    }
    return false;
}

void UseTree(PGX_Node& root, const TempDir& output) {
    ReadEverything(&root);
    root.Dump(output.Path("dump").c_str());
    PGX_Node* copy = root.DuplicateNode(0);
    const bool savesCopy = !ClaimsTooMuch(*copy);
    for (const int32_t mode : kModes) {
        if (savesCopy) copy->SaveDataSetAsEx(output.Path("copy").c_str(), mode);
        root.SaveDataSetAsEx(output.Path("tree").c_str(), mode);
    }
    pgFreeNodeHierarchy(copy);
}

}  // namespace

void ReadEverything(PGX_Node* dataSet) {
    std::vector<PGX_Node*> pending{dataSet};
    while (!pending.empty()) {
        PGX_Node* node = pending.back();
        pending.pop_back();
        if (node->nodeType == NT_DataElement) ReadElement(*node);
        if (node->next != nullptr) pending.push_back(node->next);
        if (node->first != nullptr) pending.push_back(node->first);
    }
}

std::string UseFile(const std::string& path) {
    const TempDir output;
    std::string description;
    ExpectCheap(std::filesystem::file_size(path) + kMemoryAllowance, [&] {
        for (const uint32_t maxLoadLength : {kLoadAll, 0u}) {
            const DataSet root(pgOpenDataSetFile(path.c_str(), maxLoadLength));
            description = Describe(root.get());
            if (root != nullptr) UseTree(*root, output);
        }
    });
    return description;
}

std::string UseBytes(const Bytes& bytes) {
    const TempDir directory;
    return UseFile(directory.Write("hostile", bytes));
}

}  // namespace pgkit_test
