#include "verify/verification.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "creation_limits.h"
#include "data_set.h"
#include "medium.h"
#include "real_path.h"
#include "system_path.h"
#include "tags.h"
#include "verify/directory.h"
#include "verify/file_checks.h"
#include "verify/file_id_rules.h"
#include "verify/links.h"
#include "verify/medium_walk.h"
#include "verify/other_files.h"
#include "verify/record_checks.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kDirectoryName = "DICOMDIR";

// Where the medium is, and its DICOMDIR, by real paths.
std::string Locate(const std::string& operand, Verification& result) {
    std::error_code error;
    const bool isDirectory = fs::is_directory(SystemPath(operand), error);
    const std::string folder = SystemPath(operand).parent_path().string();
    const auto root = RealPath(isDirectory ? operand : folder.empty() ? "." : folder);
    if (!root || !fs::exists(SystemPath(operand), error)) return CannotOpen(operand);
    // The library would take it for a separator, and read somewhere else.
    if (root->find('\\') != std::string::npos) {
        return "cannot verify " + operand + ": there is a backslash in its path";
    }
    result.files.root = *root;
    const std::string name = isDirectory ? kDirectoryName : SystemPath(operand).filename().string();
    const FoundFile found = Medium(result.files.PathOf(name), Medium::Links::Inside).Find(name);
    if (found.state == FileState::Present) {
        result.files.directoryFile = RealPath(found.path).value_or("");
    }
    result.directoryIsInside = found.state != FileState::Outside;
    return "";
}

uint32_t LargestIcon(const Directory& directory) {
    uint32_t largest = 0;
    for (const DirectoryRecord& record : directory.Records()) {
        const pgkit::item icon = record.item.find(tags::kIcon)[0];
        for (const pgkit::tag tag : {tags::kRows, tags::kColumns})
            largest = std::max(largest, icon.find(tag).number<uint32_t>().value_or(0));
    }
    return std::min(largest, kLargestIcon);
}

void CheckDirectory(const VerifyOptions& options, Verification& result) {
    Directory directory(result.files.directoryFile, result.findings);
    if (!directory.IsOpen()) return;
    result.records = directory.Records().size();
    const std::string fileSetId = KeyText(directory.Root(), tags::kFileSetId);
    if (fileSetId.size() <= kLongestFileSetId) result.former.fileSetId = fileSetId;
    result.former.iconSize = LargestIcon(directory);
    CheckLinks(directory, result.findings);
    CheckRecords(directory, result.findings);
    CheckFiles(directory, options, result.files, result.findings);
}

}  // namespace

std::string Verify(const std::string& operand, const VerifyOptions& options, Verification& result) {
    std::string reason = Locate(operand, result);
    if (!reason.empty()) return reason;
    result.former.profile = options.profile;
    if (!result.directoryIsInside) {
        result.findings.Add(
            AboutDirectory(FindingKind::Outside, "it is a link that leads out of the medium"));
    } else if (result.files.directoryFile.empty()) {
        result.findings.Add(AboutDirectory(FindingKind::Directory, "there is none"));
    } else {
        CheckDirectory(options, result);
    }
    result.all = FilesOnMedium(result.files, result.findings);
    CheckOtherFiles(result.all, result.files, result.findings);
    return "";
}

}  // namespace pgtool
