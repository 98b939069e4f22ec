#include "codec/save_target.h"

#include "dataset/tree_walk.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Whether a value of the tree is still read from the file.
bool ReadsFrom(PGX_Node& root, const platform::FileIdentity& file) {
    // A tree has one stream, or a few: that of the node before is nearly always this one.
    FILE* other = nullptr;
    return AnyInTree(root, [&](const PGX_Node& node) {
        if (node.file != nullptr && node.file != other) {
            other = node.file;
            if (platform::IdentityOf(node.file) == file) return true;
        }
        return node.contentFile != nullptr && platform::IdentityOf(node.contentFile) == file;
    });
}

}  // namespace

SaveTarget::SaveTarget(const char* path, PGX_Node& root) : path_(path) {
    const std::optional<platform::FileIdentity> existing = platform::IdentityOf(path);
    isSource_ = existing && ReadsFrom(root, *existing);
}

SaveTarget::~SaveTarget() {
    if (!replacement_.empty()) platform::RemoveFile(replacement_.c_str());
}

platform::FileHandle SaveTarget::Create() {
    return platform::FileHandle(isSource_ ? platform::CreateReplacement(path_, replacement_)
                                          : platform::CreateBinary(path_));
}

platform::FileHandle SaveTarget::OpenForUpdate() const {
    return platform::FileHandle(platform::OpenForUpdate(WrittenPath()));
}

WriteResult SaveTarget::PutInPlace() {
    if (!isSource_) return kWritten;
    if (!platform::FlushToDisk(replacement_.c_str())) return kWriteFailed;
    if (!platform::ReplaceWith(path_, replacement_.c_str())) return kCannotCreate;
    replacement_.clear();
    return kWritten;
}

}  // namespace pgkit
