#include "codec/save_target.h"

#include <algorithm>
#include <new>
#include <span>
#include <vector>

#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Compares the files of a tree's nodes with the target.
class Sources {
  public:
    explicit Sources(const platform::FileIdentity& target) : target_(target) {}

    // Whether bytes that the node needs are still to be read from the target.
    bool Needs(const PGX_Node& node) {
        if (node.nodeType != NT_DataElement) return false;
        if (node.encapsulated != 0) return HasUnloadedFragment(node) && IsTarget(node.file);
        if (node.value != nullptr || node.length == 0) return false;
        if (node.contentFile != nullptr && platform::IdentityOf(node.contentFile) == target_) {
            return true;
        }
        return node.valueRep != VR_SQ && IsTarget(node.file);
    }

    // A tree has one stream, or a few: that of the node before is nearly always this one.
    bool IsTarget(FILE* file) {
        if (file == nullptr) return false;
        if (file != last_) {
            last_ = file;
            lastIsTarget_ = platform::IdentityOf(file) == target_;
        }
        return lastIsTarget_;
    }

  private:
    static bool HasUnloadedFragment(const PGX_Node& pixelData) {
        if (pixelData.fragments == NotIndexedMarker()) return true;
        if (!HasFragmentTable(pixelData)) return false;
        const std::span fragments(pixelData.fragments, pixelData.fragmentCount);
        return std::ranges::any_of(fragments, [](const FragmentEntry& entry) {
            return entry.bytes == nullptr && entry.length != 0;
        });
    }

    const platform::FileIdentity target_;
    FILE* last_ = nullptr;
    bool lastIsTarget_ = false;
};

// Reads a value into its node, where writing would find it in full: the last byte of one of odd
// length may be missing. False otherwise.
bool Load(PGX_Node& element) {
    const uint32_t available = AvailableLength(element);
    if (element.length - available > 1) return false;
    ValueBuffer value(NewValueBuffer(element.length));
    if (value == nullptr) throw std::bad_alloc();
    if (FetchValue(element, 0, value.get(), available) < available) return false;
    element.value = value.release();
    return true;
}

// Whether the tree still needs the target. The File Meta Information is never loaded when a file is
// opened, and small: it is loaded now rather than be what the file is kept for.
bool IsSource(PGX_Node& root, const platform::FileIdentity& target) {
    Sources sources(target);
    std::vector<PGX_Node*> meta;
    const bool isNeeded = AnyInTree(root, [&](PGX_Node& node) {
        if (node.group != kMetaGroup || node.encapsulated != 0) return sources.Needs(node);
        const bool isUnread = node.value == nullptr && node.length != 0;
        if (isUnread && sources.IsTarget(node.file)) meta.push_back(&node);
        return node.file == nullptr && sources.Needs(node);
    });
    return isNeeded ||
           !std::all_of(meta.begin(), meta.end(), [](PGX_Node* element) { return Load(*element); });
}

}  // namespace

SaveTarget::SaveTarget(const char* path, PGX_Node& root) : path_(path) {
    const std::optional<platform::FileIdentity> existing = platform::IdentityOf(path);
    isSource_ = existing && IsSource(root, *existing);
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
