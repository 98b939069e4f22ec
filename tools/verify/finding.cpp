#include "verify/finding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pgtool {

namespace {

constexpr size_t kMostKept = 100000;

constexpr std::array<const char*, 26> kNames = {
    "directory",   "cut-short",     "transfer-syntax",  "consistency",      "link",
    "circle",      "shared-record", "last-record",      "unreached-record", "in-use-flag",
    "record-type", "missing-key",   "file-id",          "missing-file",     "outside",
    "unreadable",  "not-dicom",     "sop-class",        "sop-instance",     "patient",
    "study",       "series",        "duplicate-record", "duplicate-file",   "profile",
    "orphan"};
static_assert(kNames.size() == static_cast<size_t>(FindingKind::Orphan) + 1);

}  // namespace

Finding AboutDirectory(FindingKind kind, std::string message) {
    return {kind, kWholeDirectory, "", 0, "", std::move(message)};
}

Finding AboutFile(const std::string& file, FindingKind kind, std::string message) {
    return {kind, kNoRecord, "", 0, file, std::move(message)};
}

void Findings::Add(Finding finding) {
    ++count_;
    if (findings_.size() < kMostKept) findings_.push_back(std::move(finding));
}

std::vector<Finding> Findings::Sorted() const {
    std::vector<Finding> sorted = findings_;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Finding& a, const Finding& b) { return a.record < b.record; });
    return sorted;
}

const char* NameOf(FindingKind kind) { return kNames[static_cast<size_t>(kind)]; }

std::string LineOf(const Finding& finding) {
    if (finding.record == kNoRecord) return finding.file + ": " + finding.message;
    if (finding.record == kWholeDirectory) return "DICOMDIR: " + finding.message;
    const std::string type = finding.type.empty() ? "no type" : finding.type;
    return "record " + std::to_string(finding.record) + " (" + type + " at " +
           std::to_string(finding.offset) + "): " + finding.message;
}

}  // namespace pgtool
