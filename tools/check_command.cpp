// pgtool check: whether files may be on a medium.
#include <cstdio>
#include <memory>
#include <string>

#include "acceptance.h"
#include "commands.h"
#include "library_path.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/patient_list.h"
#include "pgkit/profiles.h"
#include "standard_streams.h"

namespace pgtool {

namespace {

// The files so far, as one medium would hold them.
class JudgedFiles {
  public:
    explicit JudgedFiles(const std::string& profile) : profile_(profile) {
        options_.flags = PG_DICOMDIR_NO_LIST;
    }
    ~JudgedFiles() { pgEmptyPatientList(&patients_); }
    JudgedFiles(const JudgedFiles&) = delete;
    JudgedFiles& operator=(const JudgedFiles&) = delete;

    uint32_t Add(const std::string& file) {
        const DivertedOutput diverted;
        const std::string path = LibraryPath(file);
        const std::string directory = path.substr(0, path.rfind('\\'));
        return pgAddFile(&patients_, directory.c_str(), path.c_str(), profile_.c_str(), &options_);
    }

  private:
    std::string profile_;
    PgDicomdirOptions options_ = {};
    PGX_List patients_;
};

int Check(const Arguments& files, const std::string& profile) {
    if (!profile.empty() && pgxIsProfile(profile.c_str()) == 0) {
        return Misuse(kCheckCommand, "unknown profile: " + profile);
    }

    JudgedFiles judged(profile);
    int status = kDone;
    for (const std::string& file : files) {
        const uint32_t code = judged.Add(file);
        std::printf("%s: %s\n", file.c_str(), DescribeAcceptance(code).c_str());
        if (code != PG_ACCEPTED) status = kFailed;
    }
    return status;
}

struct CheckRequest {
    Arguments files;
    std::string profile;
};

Work DefineCheck(OptionSet& options) {
    const auto request = std::make_shared<CheckRequest>();
    options.Operands(&request->files, 1, kAnyNumber, "a file is expected");
    options.Text("--profile", "NAME", &request->profile,
                 "the media application profile, such as STD-GEN-CD; without one every DICOM file "
                 "with the identifiers of a DICOMDIR is accepted");
    return [request] { return Check(request->files, request->profile); };
}

}  // namespace

const Command kCheckCommand = {
    "check", "check FILE... [--profile NAME]", "tell whether files may be on a medium",
    "Prints a line for each: the file, its acceptance code, and what that means. The files\n"
    "are judged together, as those of one medium: an instance that came before is refused.\n"
    "Exit status 0 means that all files are accepted.\n",
    DefineCheck};

}  // namespace pgtool
