#include "verify/directory.h"

#include <algorithm>
#include <utility>

#include "data_set.h"
#include "directory_links.h"
#include "tags.h"
#include "uids.h"
#include "words.h"

namespace pgtool {

namespace {

constexpr uint32_t kLoadedToVerify = 0x20000;
// No key that anybody compares is longer.
constexpr uint32_t kLongestKey = 0x2000;

// Of the file-set itself, type 1.
constexpr pgkit::tag kHeadKeys[] = {tags::kFirstRecord, tags::kLastRecord, tags::kConsistencyFlag};

}  // namespace

Directory::Directory(const std::string& path, Findings& findings) {
    std::string damage;
    auto opened = Open(path, {kLoadedToVerify, 0, false, &damage});
    if (!opened) {
        findings.Add(AboutDirectory(FindingKind::Directory, opened.error().message));
        return;
    }
    if (!IsDirectoryFile(*opened)) {
        findings.Add(AboutDirectory(FindingKind::Directory, path + " is not a DICOMDIR"));
        return;
    }
    root_ = *std::move(opened);
    if (!damage.empty()) findings.Add(AboutDirectory(FindingKind::CutShort, damage));
    ReadRecords();
    CheckHead(findings);
}

void Directory::ReadRecords() {
    for (const pgkit::item item : root_.find(tags::kRecordSequence).items()) {
        const uint32_t offset = item.node()->fileOffset - kItemHeaderSize;
        const auto flag = item.find(tags::kInUseFlag).number<uint32_t>();
        byOffset_.emplace_back(offset, records_.size());
        records_.push_back({item, KeyText(item, tags::kRecordType), offset, !(flag && *flag == 0)});
    }
    std::stable_sort(byOffset_.begin(), byOffset_.end());
}

void Directory::CheckHead(Findings& findings) const {
    const std::string syntax = KeyText(root_, tags::kTransferSyntax);
    if (syntax != uids::kExplicitLittle) {
        findings.Add(AboutDirectory(FindingKind::TransferSyntax,
                                    "its transfer syntax is " +
                                        (syntax.empty() ? std::string("not stated") : syntax) +
                                        ", not Explicit VR Little Endian"));
    }
    for (const pgkit::tag tag : kHeadKeys) {
        if (root_.find(tag).number<uint32_t>()) continue;
        findings.Add(AboutDirectory(FindingKind::MissingKey, NameOf(tag) + " is missing"));
    }
    const auto flag = root_.find(tags::kConsistencyFlag).number<uint32_t>();
    if (flag && *flag != 0) {
        findings.Add(AboutDirectory(FindingKind::Consistency, NameOf(tags::kConsistencyFlag) +
                                                                  " says that something is wrong"));
    }
}

size_t Directory::FindOffset(uint32_t offset) const {
    const auto found = std::lower_bound(byOffset_.begin(), byOffset_.end(),
                                        std::pair<uint32_t, size_t>(offset, 0));
    return found == byOffset_.end() || found->first != offset ? kNoRecord : found->second;
}

Finding Directory::About(size_t record, FindingKind kind, std::string message,
                         std::string file) const {
    const DirectoryRecord& about = records_[record];
    return {kind, record + 1, about.type, about.offset, std::move(file), std::move(message)};
}

bool IsDirectoryFile(const pgkit::item& root) {
    return KeyText(root, tags::kMediaStorageClass) == uids::kMediaStorageDirectory;
}

std::string KeyText(const pgkit::item& item, pgkit::tag tag) { return TextOfKey(item.find(tag)); }

std::string TextOfKey(const pgkit::element& element) {
    return !element || element.length() > kLongestKey ? ""
                                                      : std::string(WithoutBlanks(element.text()));
}

std::string NameOf(pgkit::tag tag) {
    const std::string keyword = tag.keyword();
    return tag.text() + (keyword.empty() ? "" : " " + keyword);
}

}  // namespace pgtool
