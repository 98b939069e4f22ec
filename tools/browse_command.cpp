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

int Browse(const std::string& operand, bool asJson) {
    const std::string path = DirectoryFileOf(operand);
    PGX_DicomDir directory;
    if (!OpenDirectory(directory, path)) return Fail(kBrowseCommand, CannotOpen(path));
    if (directory.IsDicomDir() == 0) return Fail(kBrowseCommand, path + " is not a DICOMDIR");
    PGX_List* patients = BrowseOpen(directory);
    Medium medium(path);
    if (asJson) {
        PrintJson(*patients, medium);
    } else {
        PrintTree(*patients, medium);
    }
    return kDone;
}

struct BrowseRequest {
    Arguments paths;
    bool asJson = false;
};

Work DefineBrowse(OptionSet& options) {
    const auto request = std::make_shared<BrowseRequest>();
    options.Operands(&request->paths, 1, 1, "exactly one DICOMDIR is expected");
    options.Switch(
        "--json", &request->asJson,
        "print the same as JSON in UTF-8: the members are named as the fields of the "
        "library's objects; texts of the character set ISO_IR 192 are taken as UTF-8, of "
        "all others as ISO 8859-1, byte for byte");
    return [request] { return Browse(request->paths[0], request->asJson); };
}

}  // namespace

const Command kBrowseCommand = {
    "browse", "browse DICOMDIR|DIRECTORY [--json]", "list what a DICOMDIR refers to",
    "Prints the patients, studies, series and instances that a DICOMDIR, or the one in a\n"
    "directory, refers to, as a tree with their numbers at the end. A file is missing when\n"
    "the directory of the DICOMDIR has none of that name; case does not matter, nor do\n"
    "blanks around the name. An ID that leads outside of that directory is called so and not\n"
    "looked up. What the library reports about the DICOMDIR goes to the\n"
    "standard error stream. Missing files and damaged directories do not fail the command.\n",
    DefineBrowse};

}  // namespace pgtool
