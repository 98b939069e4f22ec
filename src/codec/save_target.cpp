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

platform::FileHandle SaveTarget::Create() {
    if (!isSource_) return platform::FileHandle(platform::CreateBinary(path_));
    return replacement_.Create(path_) ? replacement_.TakeStream() : nullptr;
}

platform::FileHandle SaveTarget::OpenForUpdate() const {
    return platform::FileHandle(platform::OpenForUpdate(WrittenPath()));
}

WriteResult SaveTarget::PutInPlace() {
    using enum platform::FileReplacement::Outcome;
    if (!isSource_) return kWritten;
    switch (replacement_.PutInPlace()) {
        case InPlace:
            return kWritten;
        case NotOnDisk:
            return kWriteFailed;
        default:
            return kCannotCreate;
    }
}

}  // namespace pgkit
