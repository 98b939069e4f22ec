// pgtool mkdir: the DICOMDIR of a directory.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "acceptance.h"
#include "commands.h"
#include "data_set.h"
#include "library_path.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/profiles.h"
#include "progress_line.h"
#include "standard_streams.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kMaxIcon = 256;
constexpr size_t kMaxFileSetId = 16;  // that of its VR

struct Judged {
    AcceptanceSummary summary;
    ProgressLine progress;

    void Count(uint32_t code) {
        summary.Count(code);
        progress.Show(std::to_string(summary.Files()) + " files");
    }
};

int32_t CountFile(const PgDicomdirScanReason* reason) {
    static_cast<Judged*>(reason->userData)->Count(reason->acceptanceCode);
    return 0;
}

struct Request {
    std::string directory;
    std::string profile;
    std::string fileSetId;
    std::string offshore;  // where the files are; empty for the directory itself
    PgDicomdirOptions options = {};
};

// Where a name has a backslash, which is none of its characters for the library.
bool HasBackslash(const std::string& path) { return path.find('\\') != std::string::npos; }

// The files below a directory in the byte order of their paths, which are relative to it and have
// slashes. Directories that the library cannot enter are among them.
std::vector<std::string> FilesBelow(const std::string& directory, bool descends,
                                    std::error_code& error) {
    std::vector<std::string> files;
    fs::recursive_directory_iterator entry(directory, fs::directory_options::skip_permission_denied,
                                           error);
    while (!error && entry != fs::recursive_directory_iterator()) {
        std::error_code unknown;
        const std::string path = entry->path().lexically_relative(directory).generic_string();
        const bool isClosed = HasBackslash(path) && entry->is_directory(unknown);
        if (entry->is_regular_file(unknown) || (isClosed && descends)) files.push_back(path);
        if (!descends || isClosed) entry.disable_recursion_pending();
        entry.increment(error);
    }
    std::sort(files.begin(), files.end());
    return files;
}

uint32_t CreateOffshore(const Request& request, const std::vector<std::string>& files,
                        Judged& judged) {
    void* const creation = pgStartCreateOffshoreDicomdir(LibraryPath(request.directory).c_str(),
                                                         nullptr, &request.options);
    std::string directory = LibraryPath(request.offshore);
    if (directory.ends_with('\\')) directory.pop_back();
    for (const std::string& file : files) {
        std::string name = file;
        std::replace(name.begin(), name.end(), '/', '\\');
        const std::string path = directory + "\\" + name;
        // What has no name for the library is refused and listed by it, and not looked for.
        if (HasBackslash(file)) name.clear();
        judged.Count(pgAddFileToOffshoreDicomdir(creation, name.c_str(), path.c_str()));
    }
    return pgEndCreateOffshoreDicomdir(creation);
}

uint32_t CreateInPlace(const Request& request, Judged& judged) {
    return pgCreateDicomdirEx(LibraryPath(request.directory).c_str(), request.profile.c_str(),
                              &request.options, CountFile, &judged);
}

int Create(const Request& request) {
    const bool isOffshore = !request.offshore.empty();
    std::vector<std::string> files;
    if (isOffshore) {
        std::error_code error;
        files = FilesBelow(request.offshore,
                           (request.options.flags & PG_DICOMDIR_NO_RECURSION) == 0, error);
        if (error) return Fail(kMkdirCommand, "cannot read the directory " + request.offshore);
    }
    AcceptanceSummary summary;
    uint32_t result = 0;
    {
        const DivertedOutput diverted;
        Judged judged;
        result =
            isOffshore ? CreateOffshore(request, files, judged) : CreateInPlace(request, judged);
        summary = judged.summary;
    }
    summary.Print();
    if (result == 0) return kDone;
    if (result == PG_CREATION_NOTHING_ACCEPTED) {
        return Fail(kMkdirCommand, "nothing is accepted: no DICOMDIR is written");
    }
    return Fail(kMkdirCommand, request.directory + "/DICOMDIR: " + DescribeSaveResult(result));
}

// Why a request cannot be fulfilled; empty when it can.
std::string ComplaintAbout(const Request& request) {
    if (request.options.iconSize > kMaxIcon) return "--icons: at most 256 pixels";
    if (request.options.seriesIcons != 0 && request.options.iconSize == 0) {
        return "--series-icons needs --icons";
    }
    if (!request.profile.empty() && pgxIsProfile(request.profile.c_str()) == 0) {
        return "unknown profile: " + request.profile;
    }
    if (request.fileSetId.size() > kMaxFileSetId) return "--file-set-id: at most 16 characters";
    if (request.offshore.empty()) return "";
    if (!request.profile.empty()) return "--offshore knows no --profile";
    return request.options.fillMissingKeys != 0 ? "--offshore knows no --fill-missing" : "";
}

// What the options say, in the form of the library's.
struct MkdirOptions {
    Request request;
    Arguments directories;
    bool seriesIcons = false;
    bool fileSize = false;
    bool fillMissing = false;
    bool noRecurse = false;
    bool noList = false;
    bool allowEmpty = false;
};

int Mkdir(MkdirOptions& given) {
    Request& request = given.request;
    request.directory = given.directories[0];
    if (request.directory.empty()) return Misuse(kMkdirCommand, "a directory is expected");
    request.fileSetId.copy(request.options.fileSetId, kMaxFileSetId);
    request.options.seriesIcons = given.seriesIcons;
    request.options.storeFileSize = given.fileSize;
    request.options.fillMissingKeys = given.fillMissing;
    if (given.noRecurse) request.options.flags |= PG_DICOMDIR_NO_RECURSION;
    if (given.noList) request.options.flags |= PG_DICOMDIR_NO_LIST;
    if (!given.allowEmpty) request.options.flags |= PG_DICOMDIR_NEVER_EMPTY;
    const std::string complaint = ComplaintAbout(request);
    return complaint.empty() ? Create(request) : Misuse(kMkdirCommand, complaint);
}

Work DefineMkdir(OptionSet& options) {
    const auto given = std::make_shared<MkdirOptions>();
    options.Operands(&given->directories, 1, 1, "a directory is expected");
    options.Text("--profile", "NAME", &given->request.profile,
                 "accept what this media application profile allows, such as STD-GEN-CD; without "
                 "it every DICOM file");
    options.Number("--icons", "N", &given->request.options.iconSize,
                   "images have icons of at most N pixels in square, up to 256");
    options.Switch("--series-icons", &given->seriesIcons, "series have the icon of an image, too");
    options.Switch("--file-size", &given->fileSize, "records say how large their files are");
    options.Switch("--fill-missing", &given->fillMissing,
                   "make up patient IDs, study IDs, dates and times, and series numbers where they "
                   "are empty");
    options.Text("--file-set-id", "ID", &given->request.fileSetId, "up to 16 characters");
    options.Switch("--no-recurse", &given->noRecurse, "stay out of subdirectories");
    options.Switch("--no-list", &given->noList, "write no dcmdir.lst");
    options.Switch("--allow-empty", &given->allowEmpty,
                   "write a DICOMDIR without records when nothing is accepted");
    options.Text("--offshore", "FILES", &given->request.offshore,
                 "the files are below the directory FILES; DIR gets the DICOMDIR, which refers to "
                 "them by their paths below FILES");
    return [given] { return Mkdir(*given); };
}

}  // namespace

const Command kMkdirCommand = {
    "mkdir",
    "mkdir DIR [--profile NAME] [--icons N] [--series-icons] [--file-size]\n"
    "             [--fill-missing] [--file-set-id ID] [--no-recurse] [--no-list]\n"
    "             [--allow-empty] [--offshore FILES]",
    "make the DICOMDIR of a directory",
    "Writes DIR/DICOMDIR with a record for every accepted file below DIR, and lists what\n"
    "became of each file in DIR/dcmdir.lst. Prints a line for each acceptance code that\n"
    "occurred: the code, its meaning, and the number of files. The new DICOMDIR takes the\n"
    "place of the one that is there as a whole; that one stays when nothing is accepted,\n"
    "which is exit status 1, and when writing fails.\n",
    DefineMkdir};

}  // namespace pgtool
