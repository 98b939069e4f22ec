#include "codec/save_target.h"

#include "dataset/tree_walk.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Looks for a value of the tree in one file.
class SourceSearch {
  public:
    explicit SourceSearch(const platform::FileIdentity& file) : file_(file) {}

    bool Found() const { return found_; }

    WalkStep Enter(PGX_Node& node, size_t) {
        found_ = ReadsFromStream(node) || ReadsFromContentFile(node);
        return found_ ? WalkStep::Unwind : WalkStep::Continue;
    }

    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
    // A tree has one stream, or a few: that of the node before is nearly always this one.
    bool ReadsFromStream(const PGX_Node& node) {
        if (node.file == nullptr || node.file == other_) return false;
        other_ = node.file;
        return platform::IdentityOf(node.file) == file_;
    }

    bool ReadsFromContentFile(const PGX_Node& node) const {
        return node.contentFile != nullptr && platform::IdentityOf(node.contentFile) == file_;
    }

    platform::FileIdentity file_;
    FILE* other_ = nullptr;
    bool found_ = false;
};

bool ReadsFrom(PGX_Node& root, const platform::FileIdentity& file) {
    SourceSearch search(file);
    WalkTree(root, search);
    return search.Found();
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
