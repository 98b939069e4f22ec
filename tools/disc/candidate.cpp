#include "disc/candidate.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include "data_set.h"
#include "disc/readable_path.h"
#include "pgkit/standard_records.h"
#include "profile_names.h"
#include "system_path.h"
#include "tags.h"
#include "uids.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;
using Kind = Candidate::Kind;

// Values of fewer bytes are read with the header.
constexpr uint32_t kLoadedOnSurvey = 128;

// Whether the library makes up a value: it takes blanks for one.
bool IsMadeUp(const pgkit::item& root, pgkit::tag tag) {
    const auto bytes = root.find(tag).bytes();
    return bytes.empty() || bytes.front() == 0;
}

// The library leaves the values of the File Meta Information in the file: each costs some calls of
// the system, so they are read where nothing else tells.
std::string SopClassOf(const pgkit::item& root) {
    const std::string own = UnpaddedBytesOf(root, tags::kSopClass);
    return own.empty() ? UnpaddedBytesOf(root, tags::kMediaStorageClass) : own;
}

bool IsDirectory(const pgkit::item& root) {
    return root.contains(tags::kRecordSequence) ||
           SopClassOf(root).starts_with(uids::kMediaStorageDirectory);
}

// Whether the File Meta Information stands behind a preamble and "DICM": the positions of values
// tell.
bool HasPrefix(const pgkit::data_set& root) {
    constexpr uint32_t kPrefix = 132;
    return !root.empty() && root.begin()->node()->fileOffset > kPrefix;
}

// What a data set of which nothing says it is encoded in.
const char* FoundSyntax(const pgkit::data_set& root) {
    const uint32_t flags = root.node()->syntaxFlags;
    if ((flags & PG_LITTLE_ENDIAN) == 0) return uids::kExplicitBig;
    return (flags & PG_IMPLICIT_VR) != 0 ? uids::kImplicitLittle : uids::kExplicitLittle;
}

bool MayBeRecoded(const std::string& syntax) {
    return syntax == uids::kImplicitLittle || syntax == uids::kDeflated ||
           syntax == uids::kExplicitBig;
}

const char* WhatIsMissing(const Candidate& candidate, const pgkit::item& root) {
    if (SopClassOf(root).empty()) return "SOP Class UID";
    if (candidate.keys.instance.empty()) return "SOP Instance UID";
    if (candidate.isCommon) return nullptr;
    if (candidate.keys.study.empty()) return "Study Instance UID";
    return candidate.keys.series.empty() ? "Series Instance UID" : nullptr;
}

// Whether instances of a SOP class belong to no patient.
bool IsCommon(const std::string& sopClass) {
    char type[32];
    return pgxRecordTypeOf(sopClass.c_str(), type, sizeof type) != 0 &&
           pgxIsRootRecordType(type) == 1;
}

void ReadKeys(const pgkit::item& root, Candidate& candidate) {
    candidate.isCommon = IsCommon(SopClassOf(root));
    candidate.keys = {
        UnpaddedBytesOf(root, tags::kPatientId), UnpaddedBytesOf(root, tags::kPatientName),
        UnpaddedBytesOf(root, tags::kStudyUid), UnpaddedBytesOf(root, tags::kSeriesUid),
        UnpaddedBytesOf(root, tags::kSopInstance)};
    candidate.lacksStudyId = IsMadeUp(root, tags::kStudyId);
    candidate.lacksStudyDate = IsMadeUp(root, tags::kStudyDate);
    candidate.lacksStudyTime = IsMadeUp(root, tags::kStudyTime);
    candidate.lacksSeriesNumber = IsMadeUp(root, tags::kSeriesNumber);
    candidate.instance.isImage = root.contains(tags::kRows);
}

// Returns the transfer syntax that the instance will have on the medium, when that matters. What
// cannot be read of a damaged file would be lost if it were written anew.
std::string ChooseTransfer(const pgkit::data_set& root, const DiscRequest& request,
                           Candidate& candidate) {
    Transfer& transfer = candidate.instance.transfer;
    const bool isStated = root.find(tags::kTransferSyntax).length() != 0;
    if (!isStated || !HasPrefix(root)) transfer = Transfer::GivenMeta;
    if (!request.isRecoded && request.profile.empty()) return "";
    const std::string syntax =
        isStated ? UnpaddedBytesOf(root, tags::kTransferSyntax) : FoundSyntax(root);
    if (request.isRecoded && MayBeRecoded(syntax) && candidate.complaint.empty()) {
        transfer = Transfer::Recoded;
    }
    return transfer == Transfer::Recoded ? uids::kExplicitLittle : syntax;
}

Candidate Judge(const pgkit::data_set& root, const DiscRequest& request, Candidate candidate) {
    const auto refuse = [&](const std::string& reason) {
        candidate.kind = Kind::Refused;
        candidate.complaint = reason;
        return candidate;
    };
    ReadKeys(root, candidate);
    const std::string syntax = ChooseTransfer(root, request, candidate);
    if (const char* const missing = WhatIsMissing(candidate, root)) {
        return refuse(candidate.instance.path + ": not stored: it has no " + missing);
    }
    if (!request.profile.empty() && !IsAllowed(request.profile, root, syntax)) {
        const bool mayHelp = !request.isRecoded && MayBeRecoded(syntax);
        return refuse(candidate.instance.path + ": not stored: " + request.profile +
                      " does not allow it" +
                      (mayHelp ? " (perhaps with --transfer-syntax explicit)" : ""));
    }
    candidate.kind = Kind::Instance;
    return candidate;
}

}  // namespace

Candidate ReadCandidate(const std::string& path, const DiscRequest& request) {
    Candidate candidate;
    candidate.instance.path = path;
    std::error_code error;
    const ReadablePath readable(path);
    // The library would wait for a pipe or a device.
    const fs::file_status status = fs::status(SystemPath(path), error);
    if (readable.Path().empty() || (fs::exists(status) && !fs::is_regular_file(status))) {
        candidate.complaint = "cannot open " + path + ": it is no file";
        return candidate;
    }
    const auto root = Open(readable.Path(),
                           {kLoadedOnSurvey, PG_OPEN_SKIP_FRAGMENTS, false, &candidate.complaint});
    if (!root) {
        const bool isOther = root.error().kind == pgkit::failure::not_a_data_set;
        candidate.kind = isOther ? Kind::NoDicom : Kind::Refused;
        candidate.complaint = isOther ? "" : root.error().message;
        return candidate;
    }
    const uintmax_t size = fs::file_size(SystemPath(path), error);
    candidate.instance.bytes = error ? 0 : size;
    if (IsDirectory(*root)) {
        candidate.kind = Kind::Directory;
        candidate.complaint.clear();
        return candidate;
    }
    return Judge(*root, request, std::move(candidate));
}

}  // namespace pgtool
