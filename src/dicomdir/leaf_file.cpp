// The file that a leaf refers to, as it is on the medium.
#include <optional>
#include <string>
#include <string_view>

#include "base/firewall.h"
#include "base/paths.h"
#include "base/text.h"
#include "dicomdir/record_reader.h"
#include "pgkit/paths.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Up and to where one is, also with the blanks and points that some systems drop at the end.
bool LeadsAway(std::string_view component) {
    return component.find_first_not_of(". ") == std::string_view::npos;
}

// The components of a file ID, joined by backslashes; empty when it has none or leads out of the
// folder it is looked up in.
std::string ComponentsOf(std::string_view fileId) {
    std::string names;
    while (!fileId.empty()) {
        const std::string_view component = TakeComponent(fileId);
        if (component.empty()) continue;
        if (LeadsAway(component) || component.find(':') != std::string_view::npos) return {};
        if (!names.empty()) names += '\\';
        names += component;
    }
    return names;
}

// What the full path of a leaf has in front of its file ID; nothing when it was cut.
std::optional<std::string_view> FolderOfLeaf(const PGX_DicomDirLeafNode& leaf) {
    const std::string_view path(leaf.fullPath);
    const std::string end = "\\" + ToUpper(leaf.referencedFileId);
    if (!path.ends_with(end)) return std::nullopt;
    return path.substr(0, path.size() - end.size());
}

std::string FileOf(const PGX_DicomDirLeafNode& leaf, const char* folder) {
    const std::string_view fileId(leaf.referencedFileId);
    const std::optional<std::string_view> place =
        folder != nullptr ? std::string_view(folder) : FolderOfLeaf(leaf);
    const std::string names = ComponentsOf(fileId);
    if (names.empty() || !place || fileId == kNoReferencedFileId) return {};
    return platform::ExistingFile(std::string(*place), names);
}

size_t TellFile(const PGX_DicomDirLeafNode* leaf, const char* folder, char* path, size_t size) {
    CopyBounded(path, size, "");
    return leaf == nullptr ? 0 : CopyBounded(path, size, FileOf(*leaf, folder));
}

}  // namespace

}  // namespace pgkit

int32_t pgxIsFileId(const char* path) {
    return pgkit::Guarded([=] { return path != nullptr && pgkit::IsStandardFileId(path) ? 1 : 0; });
}

size_t pgxLeafFile(PGX_DicomDirLeafNode* leaf, const char* folder, char* path, size_t size) {
    return pgkit::Guarded([=] { return pgkit::TellFile(leaf, folder, path, size); });
}
