#include "mkdir_update.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "data_set.h"
#include "file_tally.h"
#include "files_below.h"
#include "library_path.h"
#include "standard_streams.h"
#include "system_path.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

struct CancelUpdate {
    void operator()(void* update) const { pgxCancelDicomdirUpdate(update); }
};
using OwnUpdate = std::unique_ptr<void, CancelUpdate>;

std::string DicomdirOf(const UpdateRequest& request) { return request.directory + "/DICOMDIR"; }

std::string Describe(const UpdateRequest& request, int32_t problem) {
    switch (problem) {
        case PGX_UPDATE_NO_DICOMDIR:
            return CannotOpen(DicomdirOf(request));
        case PGX_UPDATE_NOT_A_DICOMDIR:
            return DicomdirOf(request) + " is no DICOMDIR";
        case PGX_UPDATE_DAMAGED:
            return DicomdirOf(request) + " is damaged: make it anew";
        default:
            return DicomdirOf(request) + ": out of memory";
    }
}

// Null, with the complaint printed, when there is nothing to be changed.
OwnUpdate Start(const Command& command, const UpdateRequest& request) {
    int32_t problem = PGX_UPDATE_NO_MEMORY;
    OwnUpdate update(pgxStartDicomdirUpdate(LibraryPath(request.directory).c_str(),
                                            request.profile.c_str(), &request.options, &problem));
    if (update == nullptr) Fail(command, Describe(request, problem));
    return update;
}

int End(const Command& command, const UpdateRequest& request, OwnUpdate update, uint32_t refused) {
    uint32_t result = 0;
    {
        const DivertedOutput diverted;
        result = pgxEndDicomdirUpdate(update.release());
    }
    switch (result) {
        case 0:
            return kDone;
        case PG_CREATION_NOTHING_ACCEPTED:
            return Fail(command, "nothing would be left: the DICOMDIR stays as it is");
        case PG_CREATION_FILES_REFUSED:
            return Fail(command, "refused files: " + std::to_string(refused) +
                                     "; the DICOMDIR stays as it is");
        default:
            return Fail(command, DicomdirOf(request) + ": " + DescribeSaveResult(result));
    }
}

// The paths below the medium, with slashes, of a file, or of all files in a directory.
std::vector<std::string> FilesOf(const UpdateRequest& request, const std::string& path,
                                 std::string& complaint) {
    const std::optional<std::string> inside = PathInside(request.directory, path);
    std::error_code error;
    if (!fs::exists(SystemPath(path), error)) {
        complaint = CannotOpen(path);
    } else if (!inside) {
        complaint = path + " is outside of " + request.directory;
    }
    if (!complaint.empty()) return {};
    if (!fs::is_directory(SystemPath(path), error)) return {*inside};
    const bool descends = (request.options.flags & PG_DICOMDIR_NO_RECURSION) == 0;
    std::vector<std::string> files = FilesBelow(path, descends, error);
    if (error) complaint = "cannot read the directory " + path;
    if (*inside == ".") return files;
    for (std::string& file : files)
        file.insert(0, *inside + "/");
    return files;
}

uint32_t AddOne(const UpdateRequest& request, void* update, const std::string& file) {
    const std::string path = LibraryPath(request.directory + "/" + file);
    // What has no name for the library is refused by it, and not looked for.
    const std::string name = HasBackslash(file) ? "" : WithBackslashes(file);
    return pgxUpdateAddFile(update, name.c_str(), path.c_str());
}

}  // namespace

int AddToMedium(const Command& command, const UpdateRequest& request, const Arguments& files) {
    OwnUpdate update = Start(command, request);
    if (update == nullptr) return kFailed;
    std::vector<std::string> all;
    int status = kDone;
    for (const std::string& path : files) {
        std::string complaint;
        const std::vector<std::string> found = FilesOf(request, path, complaint);
        if (!complaint.empty()) status = Fail(command, complaint);
        all.insert(all.end(), found.begin(), found.end());
    }
    if (status != kDone) return status;
    uint32_t accepted = 0;
    uint32_t refused = 0;
    {
        FileTally judged;
        {
            const DivertedOutput diverted;
            for (const std::string& file : all)
                judged.Count(file, AddOne(request, update.get(), file));
        }
        judged.Print(command);
        accepted = judged.Accepted();
        refused = judged.Refused();
    }
    const bool isStrict = (request.options.flags & PG_DICOMDIR_ALL_OR_NOTHING) != 0;
    if (accepted == 0 && !isStrict) {
        return Fail(command, "nothing is accepted: the DICOMDIR stays as it is");
    }
    return End(command, request, std::move(update), refused);
}

int RemoveFromMedium(const Command& command, const UpdateRequest& request,
                     const Arguments& studies) {
    OwnUpdate update = Start(command, request);
    if (update == nullptr) return kFailed;
    int status = kDone;
    const std::set<std::string> uids(studies.begin(), studies.end());
    for (const std::string& uid : uids) {
        const bool isRemoved = pgxUpdateRemoveStudy(update.get(), uid.c_str()) != 0;
        if (!isRemoved) status = Fail(command, "no such study: " + uid);
    }
    if (status != kDone) return status;
    status = End(command, request, std::move(update), 0);
    if (status == kDone) std::printf("studies removed: %zu\n", uids.size());
    return status;
}

}  // namespace pgtool
