#include "hierarchy_output.h"

#include <array>

namespace pgtool {

FileOfLeaf FileOf(const PGX_DicomDirLeafNode& leaf, Medium& medium) {
    const bool names =
        leaf.record->FindNode(0x0004, 0x1500) != nullptr &&
        std::string(leaf.referencedFileId).find_first_not_of("\\ ") != std::string::npos;
    if (!names) return {LeafFile::None, ""};
    const FoundFile found = medium.Find(leaf.referencedFileId);
    switch (found.state) {
        case FileState::Present:
            return {LeafFile::Present, found.path};
        case FileState::Missing:
            return {LeafFile::Missing, ""};
        default:
            return {LeafFile::Outside, ""};
    }
}

const char* NameOfType(const PGX_DicomDirLeafNode& leaf) {
    constexpr std::array<const char*, 8> kNames = {"other",        "image",        "report",
                                                   "key object",   "presentation", "waveform",
                                                   "encapsulated", "raw data"};
    return kNames[static_cast<size_t>(leaf.leafType)];
}

}  // namespace pgtool
