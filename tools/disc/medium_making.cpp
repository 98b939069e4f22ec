#include "disc/medium_making.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>
#include <vector>

#include "acceptance.h"
#include "commands.h"
#include "data_set.h"
#include "disc/copying.h"
#include "disc/interruption.h"
#include "disc/size.h"
#include "disc/web_site.h"
#include "disc/whole_file.h"
#include "library_path.h"
#include "pgkit/dicomdir_creation.h"
#include "standard_streams.h"
#include "system_path.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kInstances = "DICOM";
constexpr const char* kDirectoryFile = "/DICOMDIR";
// The DICOMDIR while there is something else to be written: whoever finds a DICOMDIR may take the
// medium for complete.
constexpr const char* kUnfinished = "/PGTOOL.DIR";

struct RefusedFile {
    std::string file;  // "DICOM/PAT00001/..."
    uint32_t code;
};

int32_t NoteRefused(const PgDicomdirScanReason* reason) {
    const std::string folder = WithSlashes(reason->subdirectory);
    if (reason->acceptanceCode != PG_ACCEPTED && folder.starts_with(kInstances)) {
        static_cast<std::vector<RefusedFile>*>(reason->userData)
            ->push_back({folder + "/" + reason->fileName, reason->acceptanceCode});
    }
    return Interruption::Came() ? 1 : 0;
}

std::string RenameIn(const std::string& folder, const char* from, const char* to) {
    std::error_code error;
    fs::rename(SystemPath(folder + from), SystemPath(folder + to), error);
    return error ? folder + from + ": " + error.message() : "";
}

class MediumMaker {
  public:
    MediumMaker(const DiscRequest& request, const Survey& survey, const MediumPlan& plan,
                const std::string& folder)
        : request_(request),
          survey_(survey),
          catalogue_(survey.catalogue),
          plan_(plan),
          folder_(folder) {}

    MadeMedium Make(MediumNumber number, const std::function<void()>& progress) {
        const std::string fileSetId = FileSetIdOf(request_.fileSetId, number);
        Copy(progress);
        if (Goes()) WriteDirectory(fileSetId);
        if (Goes()) WriteTexts(fileSetId, number);
        if (Goes()) Measure();
        return made_;
    }

  private:
    bool Goes() const { return made_.complaint.empty() && !Interruption::Came(); }

    void Refuse(const std::string& reason) {
        ++made_.failures;
        Fail(kDiscCommand, reason);
    }

    void Copy(const std::function<void()>& progress) {
        std::error_code error;
        std::string last;
        for (const size_t index : plan_.instances) {
            if (!Goes()) return;
            progress();
            const DiscInstance& instance = catalogue_.Instances()[index];
            const std::string folder = folder_ + "/" + catalogue_.FolderOf(instance);
            if (folder != last) fs::create_directories(SystemPath(folder), error);
            if (error) {
                made_.complaint = folder + ": " + error.message();
                return;
            }
            last = folder;
            CopyOne(instance, folder_ + "/" + catalogue_.FileOf(instance));
        }
        if (stored_ == 0 && Goes()) made_.complaint = "nothing could be copied";
    }

    void CopyOne(const DiscInstance& instance, const std::string& target) {
        const CopyResult result = copier_.Transfer(instance, target);
        if (result.complaint.empty()) {
            ++stored_;
        } else if (result.isTargetsFault) {
            made_.complaint = result.complaint;
        } else {
            std::error_code ignored;
            fs::remove(SystemPath(target), ignored);
            Refuse(result.complaint);
        }
    }

    // The DICOMDIR refers to what is there, as the library judges it.
    void WriteDirectory(const std::string& fileSetId) {
        PgDicomdirOptions options = {};
        options.iconSize = request_.iconSize;
        options.fillMissingKeys = 1;
        fileSetId.copy(options.fileSetId, sizeof options.fileSetId - 1);
        options.flags =
            PG_DICOMDIR_NO_LIST | PG_DICOMDIR_NEVER_EMPTY | PG_DICOMDIR_STANDARD_RECORDS;
        std::vector<RefusedFile> refused;
        uint32_t result = 0;
        {
            const DivertedOutput diverted;
            result = pgCreateDicomdirEx(LibraryPath(folder_).c_str(), request_.profile.c_str(),
                                        &options, NoteRefused, &refused);
        }
        RemoveRefused(refused);
        made_.complaint = DescribeCreation(result, folder_ + kDirectoryFile);
        if (made_.complaint.empty())
            made_.complaint = RenameIn(folder_, kDirectoryFile, kUnfinished);
    }

    // What no record refers to does not belong on the medium.
    void RemoveRefused(const std::vector<RefusedFile>& refused) {
        if (refused.empty()) return;
        std::map<std::string, const DiscInstance*> sources;
        for (const size_t index : plan_.instances) {
            const DiscInstance& instance = catalogue_.Instances()[index];
            sources[catalogue_.FileOf(instance)] = &instance;
        }
        for (const auto& [file, code] : refused) {
            const auto source = sources.find(file);
            Refuse((source == sources.end() ? file : source->second->path) +
                   ": not stored: " + DescribeAcceptance(code));
            std::error_code error;
            fs::path path = SystemPath(folder_ + "/" + file);
            // And the folders that were made for it alone.
            while (path != SystemPath(folder_) && fs::remove(path, error))
                path = path.parent_path();
            --stored_;
        }
    }

    // From the DICOMDIR as every program reads it.
    void WriteTexts(const std::string& fileSetId, MediumNumber number) {
        const DivertedOutput diverted;
        const auto directory = pgkit::directory::open(folder_ + kUnfinished);
        if (!directory) {
            made_.complaint = directory.error().message;
            return;
        }
        made_.content = ContentOf(*directory);
        if (made_.content.instances != stored_) {
            made_.complaint = folder_ + kDirectoryFile + ": it lists " +
                              std::to_string(made_.content.instances) + " of " +
                              std::to_string(stored_) + " instances";
            return;
        }
        made_.complaint = WriteWholeFile(
            folder_ + "/README.TXT", ReadmeText(fileSetId, number, made_.content, request_.hasWeb));
        if (!Goes() || !request_.hasWeb) return;
        made_.complaint =
            WebSite(folder_, *directory, survey_).Write(fileSetId, number, made_.content);
    }

    static MediumContent ContentOf(const pgkit::directory& directory) {
        MediumContent content;
        content.common = content.instances = directory.common_records().size();
        for (const pgkit::patient patient : directory.patients()) {
            ++content.patients;
            for (const pgkit::study study : patient.studies()) {
                ++content.studies;
                for (const pgkit::series series : study.series()) {
                    ++content.series;
                    content.instances += series.leaves().size();
                }
            }
        }
        return content;
    }

    void Measure() {
        std::error_code error;
        for (fs::recursive_directory_iterator entry(SystemPath(folder_), error);
             !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            std::error_code unknown;
            made_.bytes +=
                entry->is_directory(unknown) ? kSector : InSectors(entry->file_size(unknown));
        }
        if (request_.size != 0 && made_.bytes > request_.size) {
            made_.complaint = folder_ + ": it has become " + DescribeSize(made_.bytes) +
                              ", more than a medium holds";
        }
    }

    const DiscRequest& request_;
    const Survey& survey_;
    const Catalogue& catalogue_;
    const MediumPlan& plan_;
    const std::string& folder_;
    Copier copier_;
    size_t stored_ = 0;
    MadeMedium made_;
};

}  // namespace

MadeMedium MakeMedium(const DiscRequest& request, const Survey& survey, const MediumPlan& plan,
                      MediumNumber number, const std::string& folder,
                      const std::function<void()>& progress) {
    return MediumMaker(request, survey, plan, folder).Make(number, progress);
}

std::string FinishMedium(const std::string& folder) {
    return RenameIn(folder, kUnfinished, kDirectoryFile);
}

}  // namespace pgtool
