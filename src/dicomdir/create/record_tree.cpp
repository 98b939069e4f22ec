#include "dicomdir/create/record_tree.h"

#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "base/identity.h"
#include "base/text.h"
#include "dataset/long_lists.h"
#include "dicomdir/elements.h"
#include "dicomdir/leaf_kinds.h"
#include "dicomdir/object_list.h"
#include "dicomdir/record_links.h"
#include "dicomdir/record_reader.h"
#include "dicomdir/record_table.h"
#include "pgkit/open_report.h"
#include "pgkit/patient_list.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

std::optional<std::vector<uint8_t>> ReadWhole(const std::string& path) {
    uint64_t size = 0;
    const platform::FileHandle file(platform::OpenForReading(path.c_str(), size));
    // Links have 32 bits.
    if (file == nullptr || size > std::numeric_limits<uint32_t>::max()) return std::nullopt;
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) return std::nullopt;
    return bytes;
}

// ---- Links: elements that are pending, with the record that they lead to ------------------------

PGX_Node* TargetOf(const PGX_Node* link) {
    return link == nullptr || link->offsetPending == 0 ? nullptr : link->offsetTarget;
}

// A save finds the offsets of targets; where there is none it leaves the value alone.
void PointAt(PGX_Node& link, PGX_Node* target) {
    constexpr uint32_t kNone = 0;
    if (target == nullptr && link.SetValue(&kNone, sizeof kNone) == 0) throw std::bad_alloc();
    link.offsetPending = 1;
    link.offsetTarget = target;
}

// A record may lack the element where it links nothing.
PGX_Node& LinkIn(PGX_Node& dataSet, Tag tag) {
    PGX_Node* link = FindElement(dataSet, tag);
    if (link == nullptr) {
        PutNumber<uint32_t>(dataSet, tag, 0);
        link = FindElement(dataSet, tag);
        PointAt(*link, nullptr);
    }
    return *link;
}

PGX_Node* NextOf(PGX_Node& record) { return TargetOf(FindElement(record, tags::kNextRecordLink)); }
PGX_Node* FirstBelow(PGX_Node& record) {
    return TargetOf(FindElement(record, tags::kLowerLevelLink));
}

// Whether the element links nothing, or a record, which it is then marked with.
bool Resolve(const RecordTable& records, PGX_Node* link) {
    if (link == nullptr) return true;
    const uint32_t offset = link->GetULValue();
    const std::optional<RecordNumber> target = records.FindOffset(offset);
    if (offset != 0 && !target) return false;
    PointAt(*link, offset == 0 ? nullptr : records[*target].item);
    return true;
}

// ---- Keys ---------------------------------------------------------------------------------------

bool IsOfType(PGX_Node& record, std::string_view type) {
    char text[65];
    ReadTrimmedText(record, tags::kRecordType, text);
    return text == type;
}

// As a browse reads it.
bool IsStudy(PGX_Node& record, std::string_view uid) {
    if (!IsOfType(record, "STUDY")) return false;
    Study study;
    ReadStudy(record, study);
    return study.studyInstanceUid == uid;
}

}  // namespace

PgxUpdateProblem RecordTree::Open(const std::string& folder) {
    const auto bytes = ReadWhole(folder + "\\" + kDicomdirName);
    if (!bytes) return PGX_UPDATE_NO_DICOMDIR;
    PgxOpenReport report = {};
    report.size = sizeof report;
    directory_.dataSet = pgxOpenMemory(bytes->data(), bytes->size(), 0, &report);
    if (report.result == PGX_OPEN_NO_MEMORY) return PGX_UPDATE_NO_MEMORY;
    if (directory_.dataSet == nullptr) return PGX_UPDATE_NOT_A_DICOMDIR;
    CopyToField(directory_.folder, folder);
    char sopClass[65];
    ReadTrimmedText(Root(), tags::kMediaStorageSopClassUid, sopClass);
    if (sopClass != kMediaStorageDirectory) return PGX_UPDATE_NOT_A_DICOMDIR;
    if (report.result != PGX_OPEN_COMPLETE) return PGX_UPDATE_DAMAGED;
    return Link(Root());
}

// Offsets become links, and the hierarchy is built along them.
PgxUpdateProblem RecordTree::Link(PGX_Node& root) {
    sequence_ = FindElement(root, tags::kRecordSequence);
    if (sequence_ == nullptr) return PGX_UPDATE_DAMAGED;
    const RecordTable table(sequence_->first);
    bool isSound = ResolveLinks(table);
    for (RecordNumber number = 0; number < table.Count(); ++number) {
        PGX_Node& record = *table[number].item;
        isSound = Resolve(table, FindElement(record, tags::kSharedRecordLink)) && isSound;
        records_.push_back(&record);
    }
    isSound = Resolve(table, FindElement(root, tags::kFirstRootRecord)) && isSound;
    if (!isSound) return PGX_UPDATE_DAMAGED;
    firstLink_ = &LinkIn(root, tags::kFirstRootRecord);
    const bool isLost = TargetOf(firstLink_) == nullptr && !records_.empty();
    if (isLost) return PGX_UPDATE_DAMAGED;
    BrowseHierarchy();
    return PGX_UPDATE_STARTED;
}

// A browse takes everything at the root for a patient.
void RecordTree::BrowseHierarchy() {
    if (records_.empty()) {
        directory_.patientList = new PGX_List;
        return;
    }
    directory_.Browse(nullptr, nullptr);
    std::vector<Patient*> others;
    for (Patient& patient : pgkit::Patients(Patients())) {
        if (patient.studies.count == 0 && !IsOfType(*patient.record, "PATIENT")) {
            others.push_back(&patient);
        }
    }
    for (Patient* const other : others)
        pgRemovePatient(&Patients(), other);
}

bool RecordTree::IsEmpty() { return TargetOf(firstLink_) == nullptr; }

std::unordered_set<std::string> RecordTree::FileIds() const {
    std::unordered_set<std::string> ids;
    for (PGX_Node* const record : records_) {
        char text[512];
        ReadTrimmedText(*record, tags::kReferencedFileId, text);
        if (text[0] != '\0') ids.insert(ToUpper(text));
    }
    return ids;
}

// ---- Removal ------------------------------------------------------------------------------------

bool RecordTree::RemoveStudies(std::string_view uid) {
    const auto before = Reachable();
    std::vector<PGX_Node*> doomed;
    for (PGX_Node* const record : records_) {
        if (before.contains(record) && IsStudy(*record, uid)) doomed.push_back(record);
    }
    std::vector<PGX_Node*> childless;
    for (PGX_Node* const study : doomed)
        Unlink(*study, childless);
    for (size_t i = 0; i < childless.size(); ++i)
        Unlink(*childless[i], childless);
    RemoveAllOf(before);
    return !doomed.empty();
}

// Whatever leads to the record leads to the next one. Adds the records that have nothing below them
// any more.
void RecordTree::Unlink(PGX_Node& record, std::vector<PGX_Node*>& childless) {
    PGX_Node* next = NextOf(record);
    if (next == &record) next = nullptr;
    const auto leadPast = [&](PGX_Node* link) {
        if (TargetOf(link) != &record) return false;
        PointAt(*link, next);
        return next == nullptr;
    };
    leadPast(firstLink_);
    for (PGX_Node* const other : records_) {
        if (other == &record) continue;
        leadPast(FindElement(*other, tags::kNextRecordLink));
        if (leadPast(FindElement(*other, tags::kLowerLevelLink))) childless.push_back(other);
    }
}

std::unordered_set<const PGX_Node*> RecordTree::Reachable() const {
    std::unordered_set<const PGX_Node*> seen;
    std::vector<PGX_Node*> pending{TargetOf(firstLink_)};
    while (!pending.empty()) {
        PGX_Node* const record = pending.back();
        pending.pop_back();
        if (record == nullptr || !seen.insert(record).second) continue;
        pending.push_back(NextOf(*record));
        pending.push_back(FirstBelow(*record));
        pending.push_back(TargetOf(FindElement(*record, tags::kSharedRecordLink)));
    }
    return seen;
}

// Of those that could be reached before the ones that no longer can go. What nobody reached anyway
// stays, and links nothing that goes.
void RecordTree::RemoveAllOf(const std::unordered_set<const PGX_Node*>& before) {
    const auto after = Reachable();
    const auto goes = [&](const PGX_Node* record) {
        return before.contains(record) && !after.contains(record);
    };
    for (PGX_Node* const record : records_) {
        for (const Tag tag :
             {tags::kNextRecordLink, tags::kLowerLevelLink, tags::kSharedRecordLink}) {
            PGX_Node* const link = FindElement(*record, tag);
            if (!goes(record) && goes(TargetOf(link))) PointAt(*link, nullptr);
        }
    }
    records_.clear();
    for (PGX_Node** link = &sequence_->first; *link != nullptr;) {
        PGX_Node* const record = *link;
        if (!goes(record)) {
            records_.push_back(record);
            link = &record->next;
            continue;
        }
        *link = std::exchange(record->next, nullptr);
        const NodeTree removed(record);
    }
    // Lengths are counted by what is in a sequence, when there is something.
    if (sequence_->first == nullptr) sequence_->length = 0;
    ForgetLongLists();
    places_.clear();
}

// Parents may have been read from several records of the same key.
void RecordTree::ForgetRemoved() {
    const std::unordered_set<const PGX_Node*> kept(records_.begin(), records_.end());
    const auto forget = [&](PGX_Node*& record) {
        if (record != nullptr && !kept.contains(record)) record = nullptr;
    };
    for (Patient& patient : pgkit::Patients(Patients())) {
        forget(patient.record);
        for (Study& study : Studies(patient.studies)) {
            forget(study.record);
            for (Series& series : AllSeries(study.series))
                forget(series.record);
        }
    }
    ForEachLeaf(Patients(), [&](Leaf& leaf) {
        const bool isRead = leaf.record != nullptr && (leaf.flags & PG_LEAF_OWNS_KEYS) == 0;
        if (isRead && !kept.contains(leaf.record)) leaf.record = &Root();
    });
}

// ---- Addition -----------------------------------------------------------------------------------

PGX_Node& RecordTree::AddPatient(NodeTree record) {
    return Add(*firstLink_, std::move(record), Place::BehindParents);
}

PGX_Node& RecordTree::AddBelow(PGX_Node& parent, NodeTree record) {
    return Add(LinkIn(parent, tags::kLowerLevelLink), std::move(record), Place::BehindParents);
}

void RecordTree::AddLeaf(PGX_Node& parent, NodeTree record) {
    Add(LinkIn(parent, tags::kLowerLevelLink), std::move(record), Place::AtEnd);
}

void RecordTree::AddRootLeaf(NodeTree record) {
    places_.erase(firstLink_);
    Add(*firstLink_, std::move(record), Place::AtEnd);
    places_.erase(firstLink_);
}

PGX_Node& RecordTree::Add(PGX_Node& firstLink, NodeTree item, Place place) {
    PGX_Node& link = FindPlace(firstLink, place);
    PGX_Node& next = LinkIn(*item, tags::kNextRecordLink);
    PointAt(LinkIn(*item, tags::kLowerLevelLink), nullptr);
    PGX_Node** const end = records_.empty() ? &sequence_->first : &records_.back()->next;
    PGX_Node& record = *item.release();
    *end = &record;
    records_.push_back(&record);
    places_[&firstLink] = &next;
    PointAt(next, TargetOf(&link));
    PointAt(link, &record);
    return record;
}

// The link that is to lead to a new record. Chains may run in circles.
PGX_Node& RecordTree::FindPlace(PGX_Node& firstLink, Place place) {
    const auto known = places_.find(&firstLink);
    if (known != places_.end()) return *known->second;
    PGX_Node* found = &firstLink;
    std::unordered_set<const PGX_Node*> seen;
    for (PGX_Node* record = TargetOf(&firstLink); record != nullptr; record = NextOf(*record)) {
        if (!seen.insert(record).second) break;
        const bool isBehind = place == Place::AtEnd || FirstBelow(*record) != nullptr;
        if (isBehind) found = &LinkIn(*record, tags::kNextRecordLink);
    }
    return *found;
}

// ---- Writing ------------------------------------------------------------------------------------

uint32_t RecordTree::Save(DirectoryFile& file) {
    PGX_Node* last = TargetOf(firstLink_);
    std::unordered_set<const PGX_Node*> seen;
    while (last != nullptr && NextOf(*last) != nullptr && seen.insert(last).second)
        last = NextOf(*last);
    PointAt(LinkIn(Root(), tags::kLastRootRecord), last);
    const auto replace = [this](Tag tag, std::string_view text) {
        Root().AddOrReplaceNode(tag.group, tag.element, text.data(),
                                static_cast<uint32_t>(text.size()));
    };
    replace(tags::kImplementationClassUid, kImplementationClassUid);
    replace(tags::kImplementationVersionName, kDirectoryFileImplementation);
    return file.Save(Root());
}

}  // namespace pgkit
