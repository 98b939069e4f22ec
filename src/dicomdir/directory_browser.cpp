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
void AddModality(const char* modality, Study& study) {
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

int32_t DirectoryBrowser::BrowseStudies(RecordNumber first, Patient& patient) {
    return WalkChain(HierarchyLevel::Study, first,
                     [&](RecordNumber number) { return HandleStudy(number, patient); });
}

int32_t DirectoryBrowser::BrowseSeries(RecordNumber first, Study& study) {
    return WalkChain(HierarchyLevel::Series, first,
                     [&](RecordNumber number) { return HandleSeries(number, study); });
}

int32_t DirectoryBrowser::BrowseLeaves(RecordNumber first, Series& series) {
    const auto numberOf = [](const Leaf& leaf) { return leaf.instanceNumber; };
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

// The first record below one. Where there is none, the walk of the upper level is broken.
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

// An object without children stays when a broken link is the reason. It is removed when there were
// records below it, but none became an object.
DirectoryBrowser::Outcome DirectoryBrowser::HandlePatient(RecordNumber number, PGX_List& patients) {
    PGX_Node& record = *records_[number].item;
    const auto [patient, isNew] = FindOrAdd<Patient>(record, patients, ReadPatient, patients_);
    if (patient == nullptr) return Outcome::Refused;
    if (isNew) PrintRemark("Patient created %s\n", patient->patientsName);
    const std::optional<RecordNumber> child = Descend(HierarchyLevel::Patient, number);
    if (!child) return Outcome::Broken;
    BrowseStudies(*child, *patient);
    if (patient->studies.count == 0) Remove(*patient, patients, patients_);
    return Outcome::Handled;
}

DirectoryBrowser::Outcome DirectoryBrowser::HandleStudy(RecordNumber number, Patient& patient) {
    PGX_Node& record = *records_[number].item;
    Study* const study = FindOrAdd<Study>(record, patient.studies, ReadStudy, studies_).object;
    if (study == nullptr) return Outcome::Refused;
    const std::optional<RecordNumber> child = Descend(HierarchyLevel::Study, number);
    if (!child) return Outcome::Broken;
    BrowseSeries(*child, *study);
    if (study->series.count == 0) Remove(*study, patient.studies, studies_);
    return Outcome::Handled;
}

DirectoryBrowser::Outcome DirectoryBrowser::HandleSeries(RecordNumber number, Study& study) {
    PGX_Node& record = *records_[number].item;
    if (!IsSeries(record)) return Outcome::Skipped;
    const auto [series, isNew] = FindOrAdd<Series>(record, study.series, ReadSeries, series_);
    if (series == nullptr) return Outcome::Refused;
    if (isNew) {
        AddModality(series->modality, study);
        series->icon = ReadIcon(record, limits_).release();
    }
    const std::optional<RecordNumber> child = Descend(HierarchyLevel::Series, number);
    if (!child) return Outcome::Broken;
    BrowseLeaves(*child, *series);
    if (series->leaves.count == 0) {
        leafOrders_.erase(series);
        Remove(*series, study.series, series_);
    }
    return Outcome::Handled;
}

DirectoryBrowser::Outcome DirectoryBrowser::HandleLeaf(RecordNumber number, Series& series,
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
    if (leaves_.contains(Among(series.leaves, instanceUid))) {
        PrintOut("Instance already found : (%s)\n", instanceUid);
        return Outcome::Handled;
    }
    auto owned = ReadLeaf(record, *found.kind, recordType, instanceUid, directory_.folder, limits_);
    if (owned == nullptr) return Outcome::Refused;
    Leaf& leaf = order.Insert(std::move(owned));
    leaves_.insert(Among(series.leaves, leaf.instanceUid));
    ReportLeaf(leaf);
    return Outcome::Handled;
}

// A new object belongs to the list as soon as it stands in it. Of those that prove to be there
// already the browse has one at a time.
template <typename Object>
DirectoryBrowser::Found<Object> DirectoryBrowser::FindOrAdd(PGX_Node& record, PGX_List& siblings,
                                                            void (*read)(PGX_Node& record,
                                                                         Object& object),
                                                            LevelIndex<Object>& index) {
    if (!limits_.TakeMemory(kMemoryOf<Object>)) return {};
    auto object = std::make_unique<Object>();
    read(record, *object);
    const auto [place, isNew] = index.try_emplace(Among(siblings, KeyOf(*object)), object.get());
    if (!isNew) {
        limits_.ReturnMemory(kMemoryOf<Object>);
        return {place->second, false};
    }
    cells_.Append(siblings, object.get());
    return {object.release(), true};
}

template <typename Object>
void DirectoryBrowser::Remove(Object& object, PGX_List& siblings, LevelIndex<Object>& index) {
    index.erase(Among(siblings, KeyOf(object)));
    cells_.Remove(siblings, &object);
    delete &object;
}

void DirectoryBrowser::ReportLeaf(Leaf& leaf) {
    const int32_t count = ++directory_.leafCount;
    if (directory_.callback == nullptr) return;
    char message[64];
    std::snprintf(message, sizeof message, "%d image%s found", count, count < 2 ? "" : "s");
    PGX_DicomDirCallbackReason reason = {0, leaf.fullPath};
    directory_.CallbackAppli(&reason, message);
}

}  // namespace pgkit
