// pgtool browse: what a medium holds, by its DICOMDIR.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "data_set.h"
#include "hierarchy_output.h"
#include "library_path.h"
#include "medium.h"
#include "pgkit/pgkit.h"
#include "progress_line.h"
#include "standard_streams.h"
#include "text_options.h"
#include "verify/links.h"

namespace pgtool {

namespace {

// Keys and icons are shorter.
constexpr uint32_t kLoadedOnBrowse = 0x20000;

int32_t ShowProgress(PGX_DicomDirCallbackReason*, const char* message, void* progress) {
    static_cast<ProgressLine*>(progress)->Show(message);
    return 0;
}

bool OpenDirectory(PGX_DicomDir& directory, const std::string& path) {
    const DivertedOutput messagesToStandardError;
    return directory.OpenDicomDir(LibraryPath(path).c_str(), kLoadedOnBrowse) != 0;
}

PGX_List* BrowseOpen(PGX_DicomDir& directory) {
    const DivertedOutput messagesToStandardError;
    ProgressLine progress;
    return directory.Browse(ShowProgress, &progress);
}

// What of a damaged directory cannot be read: kinds of findings that cost records.
bool LosesRecords(FindingKind kind) {
    switch (kind) {
        case FindingKind::CutShort:
        case FindingKind::Link:
        case FindingKind::Circle:
        case FindingKind::Unreached:
            return true;
        default:
            return false;
    }
}

// False when something cannot be read, which is told.
bool TellDamage(const std::string& path) {
    Findings findings;
    Directory directory(path, findings);
    CheckLinks(directory, findings);
    bool isSound = true;
    for (const Finding& finding : findings.Sorted()) {
        if (!LosesRecords(finding.kind)) continue;
        isSound = false;
        Fail(kBrowseCommand, finding.kind == FindingKind::CutShort ? finding.message
                                                                   : path + ": " + LineOf(finding));
    }
    return isSound;
}

struct BrowseRequest {
    Arguments paths;
    TextOptions texts;
    bool json = false;
    bool files = false;
};

int Print(const Hierarchy& hierarchy, Medium& medium, const BrowseRequest& request) {
    int status = kDone;
    if (request.json) {
        PrintJson(hierarchy, medium);
    } else if (request.files) {
        PrintFiles(hierarchy, medium, request.texts,
                   [&](const std::string& reason) { status = Fail(kBrowseCommand, reason); });
    } else {
        PrintTree(hierarchy, medium, request.texts.raw);
    }
    return status;
}

int Browse(const BrowseRequest& request) {
    std::string complaint =
        request.json ? UseTextOptionsForJson(request.texts) : UseTextOptions(request.texts);
    if (complaint.empty() && request.json && request.files)
        complaint = "--json or --files, not both";
    if (!complaint.empty()) return Misuse(kBrowseCommand, complaint);

    const std::string path = DirectoryFileOf(request.paths[0]);
    PGX_DicomDir directory;
    if (!OpenDirectory(directory, path)) return Fail(kBrowseCommand, CannotOpen(path));
    if (directory.IsDicomDir() == 0) return Fail(kBrowseCommand, path + " is not a DICOMDIR");
    const std::vector<pgkit::item> common = pgkit::detail::take_root_records(&directory);
    PGX_List* const patients = BrowseOpen(directory);
    Medium medium(path);
    const int status = Print({*patients, common}, medium, request);
    return TellDamage(path) ? status : kFailed;
}

Work DefineBrowse(OptionSet& options) {
    const auto request = std::make_shared<BrowseRequest>();
    options.Operands(&request->paths, 1, 1, "exactly one DICOMDIR is expected");
    options.Switch("--json", &request->json,
                   "print the same as JSON in UTF-8: the members are named as the fields of the "
                   "library's objects; fullPath is a path that opens where the file is there");
    options.Switch("--files", &request->files,
                   "print only the paths of the files, one on each line; those that are missing or "
                   "outside are errors");
    AddTextOptions(options, request->texts);
    return [request] { return Browse(*request); };
}

}  // namespace

const Command kBrowseCommand = {
    "browse", "browse DICOMDIR|DIRECTORY [--json | --files]", "list what a DICOMDIR refers to",
    "Prints the patients, studies, series and instances that a DICOMDIR, or the one in a\n"
    "directory, refers to, as a tree with their numbers at the end. Texts are shown in UTF-8,\n"
    "by the character set of each record, control characters as escapes. A file is missing\n"
    "when the directory of the DICOMDIR has none of that name; case does not matter, nor do\n"
    "blanks around the name. An ID that leads outside of that directory is called so and not\n"
    "looked up. What belongs to no patient (palettes, hanging protocols) follows behind the\n"
    "patients. Of a damaged DICOMDIR the part is printed that can be read; what the library\n"
    "reports, and what cannot be read, goes to the standard error stream, and the exit status\n"
    "is 1. Missing files do not fail the command.\n",
    DefineBrowse};

}  // namespace pgtool
