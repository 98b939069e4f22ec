// The flat functions that change a directory file: the hierarchy of its records grows as in a
// creation, and what is new becomes records among those that stay.
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/firewall.h"
#include "base/text.h"
#include "codec/write_result.h"
#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/creation_flags.h"
#include "dicomdir/create/generated_values.h"
#include "dicomdir/create/hierarchy_builder.h"
#include "dicomdir/create/new_records.h"
#include "dicomdir/create/record_tree.h"
#include "dicomdir/create/standard_leaves.h"
#include "dicomdir/object_list.h"
#include "pgkit/dicomdir_update.h"
#include "pgkit/patient_list.h"

namespace pgkit {

namespace {

constexpr uint32_t kNoUpdate = 0xFFFFFFFF;

// Leaves of new files have no record, or one of keys that is not in the tree.
bool IsNewLeaf(const Leaf& leaf) {
    return leaf.record == nullptr || (leaf.flags & PG_LEAF_OWNS_KEYS) != 0;
}

// File IDs compare without case, and a slash separates like a backslash.
std::string Comparable(const char* name) {
    std::string id = ToUpper(TrimBlanks(name));
    for (char& c : id) {
        if (c == '/') c = '\\';
    }
    return id;
}

Study* FindStudy(PGX_List& patients, std::string_view uid) {
    for (Patient& patient : Patients(patients)) {
        for (Study& study : Studies(patient.studies)) {
            if (KeyOf(study) == uid) return &study;
        }
    }
    return nullptr;
}

class DirectoryUpdate {
  public:
    DirectoryUpdate(std::string folder, std::string_view profile, const PgDicomdirOptions* options)
        : folder_(std::move(folder)),
          profile_(profile),
          options_(options != nullptr ? *options : PgDicomdirOptions{}) {}
    ~DirectoryUpdate() { DestroyObjects<Leaf>(rootLeaves_); }
    DirectoryUpdate(const DirectoryUpdate&) = delete;
    DirectoryUpdate& operator=(const DirectoryUpdate&) = delete;

    [[nodiscard]] PgxUpdateProblem Open() {
        const PgxUpdateProblem problem = tree_.Open(folder_);
        if (problem == PGX_UPDATE_STARTED) CollectFileIds();
        return problem;
    }
    PgAcceptanceCode Add(const FileToAdd& file);
    bool RemoveStudy(std::string_view uid);
    [[nodiscard]] uint32_t Write();

  private:
    struct Line {
        PgAcceptanceCode code;
        std::string path;
    };

    PgAcceptanceCode Refuse(PgAcceptanceCode code, const FileToAdd& file);
    void CollectFileIds();
    void FillMissing();
    void AddRecords();
    PGX_Node& RecordOf(Patient& patient, Study& study, Series& series);
    NodeTree NewRecordOf(Leaf& leaf);
    void WriteList();

    std::string folder_;
    std::string profile_;
    PgDicomdirOptions options_;
    RecordTree tree_;
    PGX_List rootLeaves_;
    std::optional<HierarchyBuilder> builder_;  // until the hierarchy is changed otherwise
    std::unordered_set<std::string> fileIds_;
    bool isWhole_ = true;  // no removal has failed on the way
    std::vector<Line> refusals_;
    std::vector<std::string> accepted_;
};

PgAcceptanceCode DirectoryUpdate::Add(const FileToAdd& file) {
    if (!builder_) builder_.emplace(tree_.Patients(), profile_, options_, nullptr, &rootLeaves_);
    const auto [id, isNew] = fileIds_.insert(Comparable(file.referencedName));
    if (!isNew) return Refuse(PG_INSTANCE_KNOWN, file);
    const PgAcceptanceCode code = builder_->Add(file).code;
    if (code == PG_ACCEPTED) return code;
    fileIds_.erase(id);
    return Refuse(code, file);
}

PgAcceptanceCode DirectoryUpdate::Refuse(PgAcceptanceCode code, const FileToAdd& file) {
    refusals_.push_back({code, file.fullPath});
    return code;
}

bool DirectoryUpdate::RemoveStudy(std::string_view uid) {
    if (uid.empty()) return false;
    builder_.reset();
    isWhole_ = false;
    bool isRemoved = tree_.RemoveStudies(uid);
    while (Study* const study = FindStudy(tree_.Patients(), uid)) {
        pgRemoveStudy(&tree_.Patients(), study);
        isRemoved = true;
    }
    tree_.ForgetRemoved();
    CollectFileIds();
    isWhole_ = true;
    return isRemoved;
}

void DirectoryUpdate::CollectFileIds() {
    fileIds_ = tree_.FileIds();
    ForEachLeaf(tree_.Patients(), rootLeaves_, [this](const Leaf& leaf) {
        if (IsNewLeaf(leaf)) fileIds_.insert(Comparable(leaf.referencedFileId));
    });
}

uint32_t DirectoryUpdate::Write() {
    builder_.reset();
    if (!isWhole_) return kOutOfMemory;
    if (!refusals_.empty() && Has(options_, PG_DICOMDIR_ALL_OR_NOTHING))
        return PG_CREATION_FILES_REFUSED;
    if (options_.fillMissingKeys != 0) FillMissing();
    AddRecords();
    if (tree_.IsEmpty() && Has(options_, PG_DICOMDIR_NEVER_EMPTY))
        return PG_CREATION_NOTHING_ACCEPTED;
    DirectoryFile file(folder_);
    file.RemoveStrays();
    if (!file.Create()) return kCannotCreate;
    const uint32_t result = tree_.Save(file);
    if (result != kWritten) return result;
    file.RemoveStrays();
    // Without memory for its lines the list is as it was; the directory file is there.
    if (!Has(options_, PG_DICOMDIR_NO_LIST)) Guarded([this] { WriteList(); });
    return result;
}

// Of records that are there already nothing changes.
void DirectoryUpdate::FillMissing() {
    FillMissingKeys(tree_.Patients());
    if (!Has(options_, PG_DICOMDIR_STANDARD_RECORDS)) return;
    ForEachLeaf(tree_.Patients(), rootLeaves_, [](Leaf& leaf) {
        if (IsNewLeaf(leaf)) FillMissingKeys(leaf);
    });
}

void DirectoryUpdate::AddRecords() {
    for (Patient& patient : Patients(tree_.Patients())) {
        for (Study& study : Studies(patient.studies)) {
            for (Series& series : AllSeries(study.series)) {
                for (Leaf& leaf : Leaves(series.leaves)) {
                    if (!IsNewLeaf(leaf)) continue;
                    tree_.AddLeaf(RecordOf(patient, study, series), NewRecordOf(leaf));
                }
            }
        }
    }
    for (Leaf& leaf : Leaves(rootLeaves_))
        tree_.AddRootLeaf(NewRecordOf(leaf));
}

// That of the series, whose parents have records, too.
PGX_Node& DirectoryUpdate::RecordOf(Patient& patient, Study& study, Series& series) {
    if (patient.record == nullptr) patient.record = &tree_.AddPatient(NewPatientRecord(patient));
    if (study.record == nullptr) {
        study.record = &tree_.AddBelow(*patient.record, NewStudyRecord(study));
    }
    if (series.record == nullptr) {
        series.record = &tree_.AddBelow(*study.record, NewSeriesRecord(series));
    }
    return *series.record;
}

NodeTree DirectoryUpdate::NewRecordOf(Leaf& leaf) {
    accepted_.emplace_back(leaf.referencedFileId);
    return NewLeafRecord(leaf, options_.storeFileSize != 0);
}

void DirectoryUpdate::WriteList() {
    AcceptanceList list(folder_);
    list.StayOpen();
    for (const Line& line : refusals_)
        list.Append(line.code, line.path);
    for (const std::string& fileId : accepted_)
        list.Append(PG_ACCEPTED, fileId);
}

using OwnUpdate = std::unique_ptr<DirectoryUpdate>;

DirectoryUpdate* UpdateOf(void* handle) { return static_cast<DirectoryUpdate*>(handle); }

DirectoryUpdate* StartUpdate(const char* folder, const char* profile,
                             const PgDicomdirOptions* options, int32_t* problem) {
    const auto tell = [problem](PgxUpdateProblem found) {
        if (problem != nullptr) *problem = found;
        return found;
    };
    tell(folder == nullptr ? PGX_UPDATE_NO_DICOMDIR : PGX_UPDATE_NO_MEMORY);
    if (folder == nullptr) return nullptr;
    auto update = std::make_unique<DirectoryUpdate>(WithoutTrailingSeparator(folder),
                                                    OrEmpty(profile), options);
    return tell(update->Open()) == PGX_UPDATE_STARTED ? update.release() : nullptr;
}

uint32_t AddTo(DirectoryUpdate* update, const char* referencedName, const char* fullPath) {
    if (update == nullptr) return kNoUpdate;
    if (referencedName == nullptr || fullPath == nullptr) return PG_INVALID_FILE_NAME;
    return update->Add({referencedName, fullPath});
}

uint32_t EndUpdate(OwnUpdate update) { return update == nullptr ? kNoUpdate : update->Write(); }

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;
using pgkit::UpdateOf;

void* pgxStartDicomdirUpdate(const char* directory, const char* profile,
                             const PgDicomdirOptions* options, int32_t* problem) {
    return Guarded([=] { return pgkit::StartUpdate(directory, profile, options, problem); });
}

uint32_t pgxUpdateAddFile(void* update, const char* referencedName, const char* fullPath) {
    return Guarded([=] { return pgkit::AddTo(UpdateOf(update), referencedName, fullPath); },
                   PG_NOT_A_DATA_SET);
}

int32_t pgxUpdateRemoveStudy(void* update, const char* studyInstanceUid) {
    return Guarded([=] {
        const std::string_view uid = pgkit::TrimBlanks(pgkit::OrEmpty(studyInstanceUid));
        return update != nullptr && UpdateOf(update)->RemoveStudy(uid) ? 1 : 0;
    });
}

uint32_t pgxEndDicomdirUpdate(void* update) {
    return Guarded([=] { return pgkit::EndUpdate(pgkit::OwnUpdate(UpdateOf(update))); },
                   pgkit::kOutOfMemory);
}

void pgxCancelDicomdirUpdate(void* update) {
    Guarded([=] { const pgkit::OwnUpdate cancelled(UpdateOf(update)); });
}
