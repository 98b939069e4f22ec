// pgtool mkdir: the DICOMDIR of a directory.
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "acceptance.h"
#include "commands.h"
#include "creation_limits.h"
#include "data_set.h"
#include "file_tally.h"
#include "files_below.h"
#include "library_path.h"
#include "mkdir_update.h"
#include "pgkit/dicomdir_creation.h"
#include "profile_names.h"
#include "standard_streams.h"

namespace pgtool {

namespace {

int32_t CountFile(const PgDicomdirScanReason* reason) {
    const std::string folder = reason->subdirectory;
    const std::string path = (folder.empty() ? "" : folder + "\\") + reason->fileName;
    static_cast<FileTally*>(reason->userData)->Count(path, reason->acceptanceCode);
    return 0;
}

struct Request {
    std::string directory;
    std::string profile;
    std::string fileSetId;
    std::string offshore;  // where the files are; empty for the directory itself
    PgDicomdirOptions options = {};
};

uint32_t CreateOffshore(const Request& request, const std::vector<std::string>& files,
                        FileTally& judged) {
    void* const creation = pgStartCreateOffshoreDicomdir(LibraryPath(request.directory).c_str(),
                                                         nullptr, &request.options);
    std::string directory = LibraryPath(request.offshore);
    if (directory.ends_with('\\')) directory.pop_back();
    for (const std::string& file : files) {
        std::string name = WithBackslashes(file);
        const std::string path = directory + "\\" + name;
        // What has no name for the library is refused and listed by it, and not looked for.
        if (HasBackslash(file)) name.clear();
        judged.Count(file, pgAddFileToOffshoreDicomdir(creation, name.c_str(), path.c_str()));
    }
    return pgEndCreateOffshoreDicomdir(creation);
}

uint32_t CreateInPlace(const Request& request, FileTally& judged) {
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
    uint32_t result = 0;
    uint32_t refused = 0;
    {
        FileTally judged;
        {
            const DivertedOutput diverted;
            result = isOffshore ? CreateOffshore(request, files, judged)
                                : CreateInPlace(request, judged);
        }
        judged.Print(kMkdirCommand);
        refused = judged.Refused();
    }
    switch (result) {
        case 0:
            return kDone;
        case PG_CREATION_FILES_REFUSED:
            return Fail(kMkdirCommand,
                        "refused files: " + std::to_string(refused) + "; no DICOMDIR is written");
        default:
            return Fail(kMkdirCommand, DescribeCreation(result, request.directory + "/DICOMDIR"));
    }
}

// Why a request cannot be fulfilled; empty when it can.
std::string ComplaintAbout(const Request& request) {
    if (request.options.iconSize > kLargestIcon) return "--icons: at most 256 pixels";
    if (request.options.seriesIcons != 0 && request.options.iconSize == 0) {
        return "--series-icons needs --icons";
    }
    std::string aboutProfile = ComplaintAboutProfile(request.profile);
    if (!aboutProfile.empty()) return aboutProfile;
    if (request.fileSetId.size() > kLongestFileSetId) return "--file-set-id: at most 16 characters";
    if (request.offshore.empty()) return "";
    if (!request.profile.empty()) return "--offshore knows no --profile";
    return request.options.fillMissingKeys != 0 ? "--offshore knows no --fill-missing" : "";
}

// What the options say, in the form of the library's.
struct MkdirOptions {
    Request request;
    Arguments operands;  // the directory, then what is added or removed
    bool adds = false;
    bool removes = false;
    bool standardRecords = false;
    bool strict = false;
    bool strictNames = false;
    bool seriesIcons = false;
    bool fileSize = false;
    bool fillMissing = false;
    bool noRecurse = false;
    bool noList = false;
    bool allowEmpty = false;
};

uint32_t FlagsOf(const MkdirOptions& given) {
    uint32_t flags = 0;
    if (given.standardRecords) flags |= PG_DICOMDIR_STANDARD_RECORDS;
    if (given.strict) flags |= PG_DICOMDIR_ALL_OR_NOTHING;
    if (given.strictNames) flags |= PG_DICOMDIR_STRICT_NAMES;
    if (given.noRecurse) flags |= PG_DICOMDIR_NO_RECURSION;
    if (given.noList) flags |= PG_DICOMDIR_NO_LIST;
    if (!given.allowEmpty) flags |= PG_DICOMDIR_NEVER_EMPTY;
    return flags;
}

int Update(const MkdirOptions& given) {
    const Request& request = given.request;
    const UpdateRequest update = {request.directory, request.profile, request.options};
    const Arguments what(given.operands.begin() + 1, given.operands.end());
    return given.adds ? AddToMedium(kMkdirCommand, update, what)
                      : RemoveFromMedium(kMkdirCommand, update, what);
}

// Why an existing DICOMDIR cannot be changed so; empty when it can, or is not to be changed.
std::string ComplaintAboutUpdate(const MkdirOptions& given) {
    const bool hasMore = given.operands.size() > 1;
    if (!given.adds && !given.removes) return hasMore ? "a directory is expected" : "";
    if (given.adds && given.removes) return "--add and --remove are two commands";
    if (!hasMore) return given.adds ? "--add: a file is expected" : "--remove: a UID is expected";
    const bool isPlain = given.request.offshore.empty() && given.request.fileSetId.empty();
    return isPlain ? "" : "--add and --remove know neither --offshore nor --file-set-id";
}

int Mkdir(MkdirOptions& given) {
    Request& request = given.request;
    request.directory = given.operands[0];
    if (request.directory.empty()) return Misuse(kMkdirCommand, "a directory is expected");
    request.fileSetId.copy(request.options.fileSetId, kLongestFileSetId);
    request.options.seriesIcons = given.seriesIcons;
    request.options.storeFileSize = given.fileSize;
    request.options.fillMissingKeys = given.fillMissing;
    request.options.flags = FlagsOf(given);
    std::string complaint = ComplaintAboutUpdate(given);
    if (complaint.empty()) complaint = ComplaintAbout(request);
    if (!complaint.empty()) return Misuse(kMkdirCommand, complaint);
    return given.adds || given.removes ? Update(given) : Create(request);
}

Work DefineMkdir(OptionSet& options) {
    const auto given = std::make_shared<MkdirOptions>();
    options.Operands(&given->operands, 1, kAnyNumber, "a directory is expected");
    options.Switch(
        "--add", &given->adds,
        "add the files, which are in DIR, to the DICOMDIR that is there, and all files of "
        "directories; files that it lists are not listed again");
    options.Switch("--remove", &given->removes,
                   "take the studies of these UIDs out of the DICOMDIR that is there; their files "
                   "stay");
    options.Text("--profile", "NAME", &given->request.profile,
                 "accept what this media application profile allows, such as STD-GEN-CD; without "
                 "it every DICOM file");
    options.Switch("--standard-records", &given->standardRecords,
                   "records have the types and keys that today's standard has for what is no image "
                   "(RT DOSE, VALUE MAP and so on); without it most of that is listed as IMAGE");
    options.Switch("--strict", &given->strict,
                   "when a file is refused no DICOMDIR is written, and the exit status is 1");
    options.Switch("--strict-names", &given->strictNames,
                   "refuse files whose names are no File IDs (up to 8 components of 8 characters "
                   "A-Z, 0-9, _), with code 1; without it they are warned about");
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
    "mkdir DIR [--add FILE... | --remove STUDY-UID...] [--profile NAME]\n"
    "             [--standard-records] [--strict] [--strict-names] [--icons N]\n"
    "             [--series-icons] [--file-size] [--fill-missing] [--file-set-id ID]\n"
    "             [--no-recurse] [--no-list] [--allow-empty] [--offshore FILES]",
    "make the DICOMDIR of a directory",
    "Writes DIR/DICOMDIR with a record for every accepted file below DIR, and lists what\n"
    "became of each file in DIR/dcmdir.lst. Prints a line for each acceptance code that\n"
    "occurred: the code, its meaning, and the number of files. The new DICOMDIR takes the\n"
    "place of the one that is there as a whole; that one stays when nothing is accepted,\n"
    "which is exit status 1, and when writing fails.\n"
    "--add and --remove change the DICOMDIR that is there. Records that stay keep all they\n"
    "have, private elements too; the options that concern files hold for those that are\n"
    "added. When a file is not in DIR, a study is not listed, or the DICOMDIR is missing or\n"
    "damaged, nothing is changed.\n",
    DefineMkdir};

}  // namespace pgtool
