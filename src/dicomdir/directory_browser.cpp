#include "dicomdir/directory_browser.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "base/diagnostics.h"
#include "dataset/tree_size.h"
#include "dicomdir/record_links.h"
#include "dicomdir/record_reader.h"

namespace pgkit {

namespace {

// What is printed about the links of each level.
struct LevelMessages {
    const char* nextNotFound;
    const char* nextOfSkippedNotFound;
    const char* childNotFound;
    const char* childless;
};

constexpr std::array<LevelMessages, kHierarchyLevels> kMessages = {{
    {"Next Patient not found ", nullptr, "First Study item not found at ", "Patient without Study"},
    {"Next Study not found", nullptr, "First Series item not found at ", "Study without Series"},
    {"Next Series item not found", "Next Series not found", "First Image item not found at ",
     "Series without Image"},
    {"Next Leaf item not found", nullptr, nullptr, nullptr},
}};

const LevelMessages& MessagesOf(HierarchyLevel level) {
    return kMessages[static_cast<size_t>(level)];
}

void ReportBreak(const char* message) { PrintOut("DICOMDIR parsing error: %s\n", message); }

bool IsSeries(PGX_Node& record) {
    char type[65];
    ReadText(record, tags::kRecordType, type);
    return std::string_view(type) == "SERIES";
}

// The modality of a study is that of its series, as long as they have the same.
void AddModality(const char* modality, PGX_DicomDirStudyNode& study) {
    const std::string_view known(study.modality);
    if (known.empty()) {
        CopyToField(study.modality, modality);
    } else if (known != modality) {
        CopyToField(study.modality, "...");
    }
}

// An object of the upper levels with its list cell and its share of the indexes, at most.
template <typename Object>
constexpr uint64_t kMemoryOf = HeapBlock(sizeof(Object)) + 512;

// For each record: the table, the guard, and room in the index of the leaves.
constexpr uint64_t kMemoryPerRecord =
    RecordTable::kMemoryPerRecord + BrowseGuard::kMemoryPerRecord + 16;

// A tree that was made in memory has no file to be compared with; the memory is the host's.
BrowseLimits LimitsFor(const RecordTable& records, PGX_Node* dataSet) {
    const uint64_t treeSize = dataSet == nullptr ? 0 : TreeSize(*dataSet);
    const uint64_t fileSize = records.FileSize() > 0 ? records.FileSize() : treeSize;
    return {records.Count(), fileSize, treeSize + kMemoryPerRecord * records.Count()};
}

}  // namespace

DirectoryBrowser::DirectoryBrowser(PGX_DicomDir& directory, PGX_Node* firstItem)
    : directory_(directory),
      records_(firstItem),
      limits_(LimitsFor(records_, directory.dataSet)),
      guard_(records_, limits_) {
    leaves_.reserve(records_.Count());
}

int32_t DirectoryBrowser::BrowsePatients(RecordNumber first, PGX_List& patients) {
    return WalkChain(HierarchyLevel::Patient, first,
                     [&](RecordNumber number) { return HandlePatient(number, patients); });
}

int32_t DirectoryBrowser::BrowseStudies(RecordNumber first, PGX_DicomDirPatientNode& patient) {
    return WalkChain(HierarchyLevel::Study, first,
                     [&](RecordNumber number) { return HandleStudy(number, patient); });
}

int32_t DirectoryBrowser::BrowseSeries(RecordNumber first, PGX_DicomDirStudyNode& study) {
    return WalkChain(HierarchyLevel::Series, first,
                     [&](RecordNumber number) { return HandleSeries(number, study); });
}

int32_t DirectoryBrowser::BrowseLeaves(RecordNumber first, PGX_DicomDirSeriesNode& series) {
    const auto numberOf = [](const PGX_DicomDirLeafNode& leaf) { return leaf.instanceNumber; };
    LeafOrder& order =
        leafOrders_.try_emplace(&series, series.leaves, numberOf, Ties::BehindGreatest)
            .first->second;
    return WalkChain(HierarchyLevel::Leaf, first,
                     [&](RecordNumber number) { return HandleLeaf(number, series, order); });
}

template <typename Handle>
int32_t DirectoryBrowser::WalkChain(HierarchyLevel level, RecordNumber first, Handle handle) {
    guard_.BeginWalk(level);
    for (RecordNumber number = first; guard_.Admit(level, number);) {
        const Outcome outcome = handle(number);
        if (outcome == Outcome::Broken) return 0;
        if (outcome == Outcome::Refused) return 1;
        const Link next = FollowLink(records_, records_[number].nextRecord);
        if (next.kind == Link::Kind::None) return 1;
        if (next.kind == Link::Kind::Lost) {
            const LevelMessages& messages = MessagesOf(level);
            ReportBreak(outcome == Outcome::Skipped ? messages.nextOfSkippedNotFound
                                                    : messages.nextNotFound);
            return 0;
        }
        number = next.target;
    }
    return 1;
}

// The first record of the level below one; without it the walk of the one's level is broken.
std::optional<RecordNumber> DirectoryBrowser::Descend(HierarchyLevel level, RecordNumber number) {
    const Link child = FollowLink(records_, records_[number].lowerLevel);
    if (child.kind == Link::Kind::Found) return child.target;
    const LevelMessages& messages = MessagesOf(level);
    if (child.kind == Link::Kind::Lost) {
        PrintOut("DICOMDIR parsing error: %s%u\n", messages.childNotFound, child.offset);
    }
    ReportBreak(messages.childless);
    return std::nullopt;
}

// An object that a break leaves without children stays, one whose children all proved to be nothing
// does not.
DirectoryBrowser::Outcome DirectoryBrowser::HandlePatient(RecordNumber number, PGX_List& patients) {
    const PatientIndex::iterator found = FindOrAddPatient(*records_[number].item, patients);
    if (found == patients_.end()) return Outcome::Refused;
    PGX_DicomDirPatientNode& patient = **found;
    const std::optional<RecordNumber> child = Descend(HierarchyLevel::Patient, number);
    if (!child) return Outcome::Broken;
    BrowseStudies(*child, patient);
    if (patient.studies.count == 0) RemovePatient(found, patients);
    return Outcome::Handled;
}

DirectoryBrowser::Outcome DirectoryBrowser::HandleStudy(RecordNumber number,
                                                        PGX_DicomDirPatientNode& patient) {
    PGX_DicomDirStudyNode* const found = FindOrAddStudy(*records_[number].item, patient);
    if (found == nullptr) return Outcome::Refused;
    PGX_DicomDirStudyNode& study = *found;
    const std::optional<RecordNumber> child = Descend(HierarchyLevel::Study, number);
    if (!child) return Outcome::Broken;
    BrowseSeries(*child, study);
    if (study.series.count == 0) RemoveStudy(study, patient);
    return Outcome::Handled;
}

DirectoryBrowser::Outcome DirectoryBrowser::HandleSeries(RecordNumber number,
                                                         PGX_DicomDirStudyNode& study) {
    PGX_Node& record = *records_[number].item;
    if (!IsSeries(record)) return Outcome::Skipped;
    PGX_DicomDirSeriesNode* const found = FindOrAddSeries(record, study);
    if (found == nullptr) return Outcome::Refused;
    PGX_DicomDirSeriesNode& series = *found;
    const std::optional<RecordNumber> child = Descend(HierarchyLevel::Series, number);
    if (!child) return Outcome::Broken;
    BrowseLeaves(*child, series);
    if (series.leaves.count == 0) RemoveSeries(series, study);
    return Outcome::Handled;
}

DirectoryBrowser::Outcome DirectoryBrowser::HandleLeaf(RecordNumber number,
                                                       PGX_DicomDirSeriesNode& series,
                                                       LeafOrder& order) {
    PGX_Node& record = *records_[number].item;
    char recordType[65];
    ReadTrimmedText(record, tags::kRecordType, recordType);
    const RecordKind found = KindOfRecord(record, recordType);
    if (found.kind == nullptr) {
        PrintOut("[Refused Private/Invalid LeafType] Skipping record type %s\n", recordType);
        return Outcome::Handled;
    }
    if (found.seriesModality != nullptr) CopyToField(series.modality, found.seriesModality);
    char instanceUid[65];
    ReadTrimmedText(record, tags::kReferencedSopInstanceUid, instanceUid);
    if (leaves_.contains({&series, instanceUid})) {
        PrintOut("Instance already found : (%s)\n", instanceUid);
        return Outcome::Handled;
    }
    auto owned = ReadLeaf(record, *found.kind, recordType, instanceUid, directory_.folder, limits_);
    if (owned == nullptr) return Outcome::Refused;
    PGX_DicomDirLeafNode& leaf = order.Insert(std::move(owned));
    leaves_.insert({&series, leaf.instanceUid});
    ReportLeaf(leaf);
    return Outcome::Handled;
}

// In the three that follow, the new object belongs to the list as soon as it stands in it. They
// give none when the browse may not take the memory of another object. Of those that prove to be
// there already it has one at a time.

PatientIndex::iterator DirectoryBrowser::FindOrAddPatient(PGX_Node& record, PGX_List& patients) {
    if (!limits_.TakeMemory(kMemoryOf<PGX_DicomDirPatientNode>)) return patients_.end();
    auto patient = std::make_unique<PGX_DicomDirPatientNode>();
    ReadPatient(record, *patient);
    const auto [found, isNew] = patients_.insert(patient.get());
    if (!isNew) {
        limits_.ReturnMemory(kMemoryOf<PGX_DicomDirPatientNode>);
        return found;
    }
    cells_.Append(patients, patient.get());
    PrintOut("Patient created %s\n", patient.release()->patientsName);
    return found;
}

PGX_DicomDirStudyNode* DirectoryBrowser::FindOrAddStudy(PGX_Node& record,
                                                        PGX_DicomDirPatientNode& patient) {
    if (!limits_.TakeMemory(kMemoryOf<PGX_DicomDirStudyNode>)) return nullptr;
    auto study = std::make_unique<PGX_DicomDirStudyNode>();
    ReadStudy(record, *study);
    const ChildKey key = {&patient, study->studyInstanceUid};
    const auto [found, isNew] = studies_.try_emplace(key, study.get());
    if (!isNew) {
        limits_.ReturnMemory(kMemoryOf<PGX_DicomDirStudyNode>);
        return found->second;
    }
    cells_.Append(patient.studies, study.get());
    return study.release();
}

PGX_DicomDirSeriesNode* DirectoryBrowser::FindOrAddSeries(PGX_Node& record,
                                                          PGX_DicomDirStudyNode& study) {
    if (!limits_.TakeMemory(kMemoryOf<PGX_DicomDirSeriesNode>)) return nullptr;
    auto owned = std::make_unique<PGX_DicomDirSeriesNode>();
    ReadSeries(record, *owned);
    const ChildKey key = {&study, owned->seriesInstanceUid};
    const auto [found, isNew] = series_.try_emplace(key, owned.get());
    if (!isNew) {
        limits_.ReturnMemory(kMemoryOf<PGX_DicomDirSeriesNode>);
        return found->second;
    }
    cells_.Append(study.series, owned.get());
    PGX_DicomDirSeriesNode& series = *owned.release();
    AddModality(series.modality, study);
    series.icon = ReadIcon(record, limits_).release();
    return &series;
}

void DirectoryBrowser::ReportLeaf(PGX_DicomDirLeafNode& leaf) {
    const int32_t count = ++directory_.leafCount;
    if (directory_.callback == nullptr) return;
    char message[64];
    std::snprintf(message, sizeof message, "%d image%s found", count, count < 2 ? "" : "s");
    PGX_DicomDirCallbackReason reason = {0, leaf.fullPath};
    directory_.CallbackAppli(&reason, message);
}

void DirectoryBrowser::RemovePatient(PatientIndex::iterator found, PGX_List& patients) {
    PGX_DicomDirPatientNode* patient = *found;
    patients_.erase(found);
    cells_.Remove(patients, patient);
    delete patient;
}

void DirectoryBrowser::RemoveStudy(PGX_DicomDirStudyNode& study, PGX_DicomDirPatientNode& patient) {
    studies_.erase({&patient, study.studyInstanceUid});
    cells_.Remove(patient.studies, &study);
    delete &study;
}

void DirectoryBrowser::RemoveSeries(PGX_DicomDirSeriesNode& series, PGX_DicomDirStudyNode& study) {
    series_.erase({&study, series.seriesInstanceUid});
    leafOrders_.erase(&series);
    cells_.Remove(study.series, &series);
    delete &series;
}

}  // namespace pgkit
