#include "hierarchy_output.h"

#include <array>
#include <string_view>

#include "data_set.h"
#include "tags.h"

namespace pgtool {

namespace {

FileOfLeaf Find(std::string_view fileId, Medium& medium) {
    const FoundFile found = medium.Find(fileId);
    switch (found.state) {
        case FileState::Present:
            return {LeafFile::Present, found.path};
        case FileState::Missing:
            return {LeafFile::Missing, ""};
        default:
            return {LeafFile::Outside, ""};
    }
}

}  // namespace

FileOfLeaf FileOf(const PGX_DicomDirLeafNode& leaf, Medium& medium) {
    const bool names =
        leaf.record->FindNode(0x0004, 0x1500) != nullptr &&
        std::string(leaf.referencedFileId).find_first_not_of("\\ ") != std::string::npos;
    if (!names) return {LeafFile::None, ""};
    return Find(leaf.referencedFileId, medium);
}

CommonInstance ReadCommon(const pgkit::item& record, Medium& medium) {
    CommonInstance instance{UnpaddedBytesOf(record, tags::kRecordType),
                            record.find(tags::kContentLabel).text(),
                            UnpaddedBytesOf(record, tags::kFileId),
                            UnpaddedBytesOf(record, tags::kFileInstance),
                            UnpaddedBytesOf(record, tags::kFileClass),
                            UnpaddedBytesOf(record, tags::kFileSyntax),
                            {LeafFile::None, ""}};
    if (instance.name.empty()) instance.name = record.find(tags::kHangingProtocolName).text();
    if (!instance.fileId.empty()) instance.file = Find(instance.fileId, medium);
    return instance;
}

const char* NameOfType(const PGX_DicomDirLeafNode& leaf) {
    constexpr std::array<const char*, 8> kNames = {"other",        "image",        "report",
                                                   "key object",   "presentation", "waveform",
                                                   "encapsulated", "raw data"};
    return kNames[static_cast<size_t>(leaf.leafType)];
}

}  // namespace pgtool
