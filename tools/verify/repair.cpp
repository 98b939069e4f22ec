#include "verify/repair.h"

#include "data_set.h"
#include "library_path.h"
#include "pgkit/dicomdir_creation.h"
#include "profile_names.h"
#include "progress_line.h"
#include "standard_streams.h"
#include "tags.h"
#include "verify/directory.h"
#include "verify/other_files.h"

namespace pgtool {

namespace {

PgDicomdirOptions CreationOptions(const RepairOptions& options) {
    PgDicomdirOptions creation = {};
    creation.iconSize = options.iconSize;
    creation.flags = PG_DICOMDIR_NO_LIST | PG_DICOMDIR_NEVER_EMPTY;
    options.fileSetId.copy(creation.fileSetId, sizeof creation.fileSetId - 1);
    return creation;
}

// The creation that is told the files does not ask for the profile.
bool IsAllowedFile(const std::string& path, const std::string& profile) {
    if (profile.empty()) return true;
    const auto opened = Open(path, {kLoadedOfFile, PG_OPEN_SKIP_FRAGMENTS});
    return !opened || IsAllowed(profile, *opened, KeyText(*opened, tags::kTransferSyntax));
}

class Creation {
  public:
    Creation(const MediumFiles& files, const RepairOptions& options, AcceptanceSummary& summary)
        : files_(files), options_(options), summary_(summary) {
        const PgDicomdirOptions creation = CreationOptions(options);
        handle_ =
            pgStartCreateOffshoreDicomdir(LibraryPath(files.root).c_str(), nullptr, &creation);
    }

    void Add(const std::string& file) {
        // The library would take the backslash for a separator, and read another file.
        if (file.find('\\') != std::string::npos) return summary_.Count(PG_INVALID_FILE_NAME);
        const std::string path = files_.PathOf(file);
        uint32_t code = PG_PROFILE_REFUSES;
        if (IsAllowedFile(path, options_.profile)) {
            code = pgAddFileToOffshoreDicomdir(handle_, WithBackslashes(file).c_str(),
                                               LibraryPath(path).c_str());
        }
        summary_.Count(code);
        progress_.Show(std::to_string(summary_.Files()) + " files");
    }

    uint32_t End() { return pgEndCreateOffshoreDicomdir(handle_); }

  private:
    const MediumFiles& files_;
    const RepairOptions& options_;
    AcceptanceSummary& summary_;
    ProgressLine progress_;
    void* handle_;
};

}  // namespace

std::string Repair(const std::vector<std::string>& all, const MediumFiles& files,
                   const RepairOptions& options, AcceptanceSummary& summary) {
    const DivertedOutput messagesToStandardError;
    const Companions companions(all, files);
    Creation creation(files, options, summary);
    for (const std::string& file : all) {
        const std::string path = files.PathOf(file);
        if (path == files.directoryFile || companions.Contains(file) || !IsDicomFile(path))
            continue;
        creation.Add(file);
    }
    return DescribeCreation(creation.End(), "DICOMDIR");
}

}  // namespace pgtool
