#include "disc/survey.h"

#include <utility>

#include "commands.h"
#include "disc/candidate.h"
#include "disc/interruption.h"
#include "disc/same_content.h"
#include "progress_line.h"

namespace pgtool {

namespace {

class Surveyor {
  public:
    explicit Surveyor(const DiscRequest& request) : request_(request) {}

    void Visit(const Input& input) {
        progress_.Show(std::to_string(++files_) + " files read");
        Candidate candidate = ReadCandidate(input.path, request_);
        if (!candidate.complaint.empty()) Complain(candidate.complaint);
        switch (candidate.kind) {
            case Candidate::Kind::Instance:
                return Take(std::move(candidate));
            case Candidate::Kind::Directory:
                ++survey_.directories;
                return;
            case Candidate::Kind::NoDicom:
                ++survey_.noDicom;
                return;
            case Candidate::Kind::Refused:
                return;
        }
    }

    void Complain(const std::string& reason) {
        ++survey_.failures;
        Fail(kDiscCommand, reason);
    }

    Survey Result() && { return std::move(survey_); }

  private:
    void Take(Candidate candidate) {
        const std::string& path = candidate.instance.path;
        if (const DiscInstance* const known = survey_.catalogue.Find(candidate.keys.instance)) {
            if (HaveSameContent(known->path, path)) {
                ++survey_.duplicates;
            } else {
                Complain(path + ": not stored: it has the SOP Instance UID of " + known->path +
                         ", and other content");
            }
            return;
        }
        if (candidate.isCommon) {
            survey_.catalogue.AddCommon(candidate.keys, std::move(candidate.instance));
            return;
        }
        const Catalogue::Added added =
            survey_.catalogue.Add(candidate.keys, std::move(candidate.instance));
        NoteMissing(candidate, added);
    }

    // As the library does, by the first instance of each.
    void NoteMissing(const Candidate& candidate, const Catalogue::Added& added) {
        MissingKeys& missing = survey_.missing;
        const InstanceKeys& keys = candidate.keys;
        if (added.isNewPatient && keys.patientId.empty()) ++missing.patientIds;
        if (added.isNewStudy && candidate.lacksStudyId) missing.studyIds.insert(keys.study);
        if (added.isNewStudy && candidate.lacksStudyDate) missing.studyDates.insert(keys.study);
        if (added.isNewStudy && candidate.lacksStudyTime) missing.studyTimes.insert(keys.study);
        if (added.isNewSeries && candidate.lacksSeriesNumber) {
            missing.seriesNumbers.insert(keys.series);
        }
    }

    const DiscRequest& request_;
    Survey survey_;
    size_t files_ = 0;
    ProgressLine progress_;
};

}  // namespace

Survey TakeSurvey(const DiscRequest& request) {
    Surveyor surveyor(request);
    const auto visit = [&](const Input& input) {
        surveyor.Visit(input);
        return !Interruption::Came();
    };
    WalkInputs(request.sources, visit,
               [&](const std::string& reason) { surveyor.Complain(reason); });
    return std::move(surveyor).Result();
}

}  // namespace pgtool
