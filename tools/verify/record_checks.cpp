#include "verify/record_checks.h"

#include <string>
#include <unordered_map>
#include <utility>

#include "data_set.h"
#include "tags.h"
#include "value_kinds.h"
#include "verify/file_id_rules.h"
#include "verify/record_rules.h"

namespace pgtool {

namespace {

// Of every record, and of every one that refers to a file.
constexpr pgkit::tag kRecordKeys[] = {tags::kNextRecord, tags::kInUseFlag, tags::kLowerRecord,
                                      tags::kRecordType};
constexpr pgkit::tag kFileKeys[] = {tags::kFileClass, tags::kFileInstance, tags::kFileSyntax};

// Blanks fill nothing.
bool IsFilled(const pgkit::item& record, pgkit::tag tag) {
    constexpr uint32_t kLongestBlank = 1024;
    const pgkit::element element = record.find(tag);
    if (element.is_sequence()) return !element.items().empty();
    if (element.length() == 0) return false;
    if (KindOf(element.vr()) != ValueKind::Text || element.length() > kLongestBlank) return true;
    return element.text().find_first_not_of(" \\") != std::string::npos;
}

const char* TypeAbove(RecordPlace place) {
    switch (place) {
        case RecordPlace::BelowPatient:
            return kPatientRecord;
        case RecordPlace::BelowStudy:
            return kStudyRecord;
        default:
            return kSeriesRecord;
    }
}

class RecordChecks {
  public:
    RecordChecks(const Directory& directory, Findings& findings)
        : directory_(directory), findings_(findings) {}

    void Check(size_t record) {
        record_ = record;
        for (const pgkit::tag tag : kRecordKeys)
            Require(tag);
        const RecordRule* const rule = RuleOf(About().type);
        if (rule == nullptr) {
            if (!About().type.empty()) Note(FindingKind::RecordType, "its type is unknown");
        } else {
            CheckPlace(*rule);
            for (const pgkit::tag tag : rule->keys)
                Require(tag);
        }
        CheckFileReference(rule);
        CheckIdentity();
    }

  private:
    const DirectoryRecord& About() const { return directory_.Records()[record_]; }

    void Note(FindingKind kind, std::string message) {
        findings_.Add(directory_.About(record_, kind, std::move(message)));
    }

    void Require(pgkit::tag tag) {
        const pgkit::item& item = About().item;
        if (IsFilled(item, tag)) return;
        Note(FindingKind::MissingKey,
             NameOf(tag) + (item.contains(tag) ? " is empty" : " is missing"));
    }

    // Of a record that nothing leads to nobody knows what is above.
    void CheckPlace(const RecordRule& rule) {
        if (!About().isReached || rule.place == RecordPlace::Anywhere) return;
        const bool isAtRoot = About().parent == kNoRecord;
        const std::string above = isAtRoot ? "" : directory_.Records()[About().parent].type;
        // What hangs below private records is their maker's matter.
        if (above == "PRIVATE") return;
        if (rule.place == RecordPlace::Root) {
            if (!isAtRoot) Note(FindingKind::RecordType, "it is not at the root");
        } else if (isAtRoot || above != TypeAbove(rule.place)) {
            const std::string where = isAtRoot ? "at the root" : "below a record of type " + above;
            Note(FindingKind::RecordType,
                 "it is " + where + ", not below one of type " + TypeAbove(rule.place));
        }
    }

    void CheckFileReference(const RecordRule* rule) {
        const pgkit::item& item = About().item;
        if (!IsFilled(item, tags::kFileId)) {
            if (rule != nullptr && rule->refersToFile) {
                Note(FindingKind::MissingKey,
                     NameOf(tags::kFileId) + " is missing: it has no file");
            }
            return;
        }
        for (const pgkit::tag tag : kFileKeys)
            Require(tag);
        const std::string complaint = ComplaintAboutFileId(BytesOf(item.find(tags::kFileId)));
        if (!complaint.empty()) Note(FindingKind::FileId, complaint);
    }

    // One patient, study, series or instance has one record.
    void CheckIdentity() {
        const DirectoryRecord& record = About();
        if (record.type == kPatientRecord) {
            CheckIsFirst("patient", KeyText(record.item, tags::kPatientId) + "\n" +
                                        KeyText(record.item, tags::kPatientName));
        } else if (record.type == kStudyRecord) {
            CheckIsFirst("study", TextOfKey(StudyUidOf(record)));
        } else if (record.type == kSeriesRecord) {
            CheckIsFirst("series", KeyText(record.item, tags::kSeriesUid));
        } else {
            CheckIsFirst("instance", KeyText(record.item, tags::kFileInstance));
        }
    }

    void CheckIsFirst(const char* what, const std::string& identity) {
        if (identity.empty() || identity == "\n") return;
        const auto [first, isNew] =
            firstOfIdentity_.try_emplace(std::string(what) + " " + identity, record_);
        if (isNew) return;
        Note(FindingKind::DuplicateRecord, "record " + std::to_string(first->second + 1) +
                                               " is of the same " + what + " already");
    }

    const Directory& directory_;
    Findings& findings_;
    size_t record_ = 0;
    std::unordered_map<std::string, size_t> firstOfIdentity_;
};

}  // namespace

void CheckRecords(const Directory& directory, Findings& findings) {
    RecordChecks checks(directory, findings);
    for (size_t i = 0; i < directory.Records().size(); ++i) {
        if (directory.Records()[i].isInUse) checks.Check(i);
    }
}

pgkit::element StudyUidOf(const DirectoryRecord& study) {
    const pgkit::element uid = study.item.find(tags::kFileInstance);
    return TextOfKey(uid).empty() ? study.item.find(tags::kStudyUid) : uid;
}

}  // namespace pgtool
