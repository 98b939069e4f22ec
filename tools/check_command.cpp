// pgtool check: whether files may be on a medium.
#include <cstdio>
#include <memory>
#include <string>

#include "acceptance.h"
#include "commands.h"
#include "data_set.h"
#include "inputs.h"
#include "library_path.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/patient_list.h"
#include "profile_names.h"
#include "standard_streams.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

// The files so far, as one medium would hold them.
class FileJudge {
  public:
    explicit FileJudge(const std::string& profile) : profile_(profile) {
        options_.flags = PG_DICOMDIR_NO_LIST;
    }
    ~FileJudge() { pgEmptyPatientList(&patients_); }
    FileJudge(const FileJudge&) = delete;
    FileJudge& operator=(const FileJudge&) = delete;

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

struct CheckRequest {
    InputOptions inputs;
    std::string profile;
};

class CheckedFiles {
  public:
    explicit CheckedFiles(const std::string& profile) : judge_(profile) {}

    void Add(const Input& input) {
        const uint32_t code = judge_.Add(input.path);
        if (input.isFound && code == PG_NOT_DICOM_PART_10) {
            ++others_;
            return;
        }
        std::printf("%s: %s\n", WithEscapes(input.path).c_str(), DescribeAcceptance(code).c_str());
        if (code != PG_ACCEPTED) hasFailed_ = true;
        if (code == PG_NOT_DICOM_PART_10 && !CanBeOpened(input.path)) {
            Complain(CannotOpen(input.path));
        }
    }

    void Complain(const std::string& reason) {
        hasFailed_ = true;
        Fail(kCheckCommand, reason);
    }

    int SumUp() const {
        if (others_ != 0) std::fprintf(stderr, "pgtool check: %zu other files\n", others_);
        return hasFailed_ ? kFailed : kDone;
    }

  private:
    static bool CanBeOpened(const std::string& path) {
        return pgkit::detail::why_not_read(path, "").kind == pgkit::failure::not_a_data_set;
    }

    FileJudge judge_;
    bool hasFailed_ = false;
    size_t others_ = 0;
};

int Check(const CheckRequest& request) {
    std::string complaint = ComplaintAbout(request.inputs);
    if (complaint.empty()) complaint = ComplaintAboutProfile(request.profile);
    if (!complaint.empty()) return Misuse(kCheckCommand, complaint);
    CheckedFiles files(request.profile);
    const auto visit = [&](const Input& input) {
        files.Add(input);
        return std::ferror(stdout) == 0;
    };
    WalkInputs(request.inputs, visit, [&](const std::string& reason) { files.Complain(reason); });
    return files.SumUp();
}

Work DefineCheck(OptionSet& options) {
    const auto request = std::make_shared<CheckRequest>();
    AddInputs(options, request->inputs);
    options.Text("--profile", "NAME", &request->profile,
                 "the media application profile, such as STD-GEN-CD; without one every DICOM file "
                 "with the identifiers of a DICOMDIR is accepted");
    return [request] { return Check(*request); };
}

}  // namespace

const Command kCheckCommand = {
    "check", "check FILE... [-r] [--profile NAME]", "tell whether files may be on a medium",
    "Prints a line for each: the file, its acceptance code, and what that means. The files\n"
    "are judged together, as those of one medium: an instance that came before is refused.\n"
    "Exit status 0 means that all files are accepted. Files in directories that are no DICOM\n"
    "files are only counted, on the standard error stream.\n",
    DefineCheck};

}  // namespace pgtool
