#include "verify/file_checks.h"

#include <optional>
#include <unordered_map>
#include <utility>

#include "data_set.h"
#include "medium.h"
#include "profile_names.h"
#include "progress_line.h"
#include "real_path.h"
#include "tags.h"
#include "verify/record_checks.h"

namespace pgtool {

namespace {

class FileChecks {
  public:
    FileChecks(const Directory& directory, const VerifyOptions& options, MediumFiles& files,
               Findings& findings)
        : directory_(directory),
          options_(options),
          files_(files),
          findings_(findings),
          medium_(files.directoryFile, Medium::Links::Inside) {}

    void Check(size_t record) {
        record_ = record;
        const pgkit::element fileId = About().item.find(tags::kFileId);
        const std::string id = BytesOf(fileId);
        if (id.find_first_not_of(std::string_view(" \\\0", 3)) == std::string::npos) return;
        if (const std::optional<std::string> file = FileOf(id)) CheckFile(*file);
    }

  private:
    const DirectoryRecord& About() const { return directory_.Records()[record_]; }

    void Note(FindingKind kind, std::string message, std::string file = "") {
        findings_.Add(directory_.About(record_, kind, std::move(message), std::move(file)));
    }

    // The path below the medium of the file with an ID.
    std::optional<std::string> FileOf(std::string id) {
        while (id.ends_with(' ') || id.ends_with('\0'))
            id.pop_back();
        // As a browse does: one backslash in front means nothing.
        const FoundFile found = medium_.Find(std::string_view(id).substr(id.starts_with('\\')));
        const auto real =
            found.state == FileState::Present ? medium_.RealPathOf(found.path) : std::nullopt;
        if (found.state == FileState::Outside) {
            Note(FindingKind::Outside, "its file " + id + " leads out of the medium");
        } else if (!real || !IsBelow(*real, files_.root)) {
            Note(FindingKind::MissingFile, "its file " + id + " is missing");
        } else {
            return files_.InnerPathOf(*real);
        }
        return std::nullopt;
    }

    void CheckFile(const std::string& file) {
        const auto [first, isNew] = firstOfFile_.try_emplace(file, record_);
        if (!isNew) {
            Note(FindingKind::DuplicateFile,
                 "record " + std::to_string(first->second + 1) + " refers to " + file + " already",
                 file);
            return;
        }
        files_.used.insert(file);
        progress_.Show(std::to_string(files_.used.size()) + " files");
        // The one kind of document on media that is no DICOM file.
        if (About().type != "HL7 STRUC DOC") CheckContent(file);
    }

    void CheckContent(const std::string& file) {
        // The library would take it for a separator, and open another file.
        if (file.find('\\') != std::string::npos) {
            Note(FindingKind::Unreadable, "there is a backslash in the name of " + file, file);
            return;
        }
        const std::string path = files_.PathOf(file);
        if (!IsDicomFile(path)) {
            const bool isReadable = CanBeRead(path);
            Note(isReadable ? FindingKind::NotDicom : FindingKind::Unreadable,
                 file + (isReadable ? " is no DICOM file" : " cannot be read"), file);
            return;
        }
        std::string damage;
        const auto opened = Open(path, {kLoadedOfFile, PG_OPEN_SKIP_FRAGMENTS, false, &damage});
        if (!opened) {
            Note(FindingKind::Unreadable, opened.error().message, file);
            return;
        }
        if (!damage.empty()) Note(FindingKind::CutShort, damage, file);
        CheckClaims(*opened, file);
        if (!options_.profile.empty() &&
            !IsAllowed(options_.profile, *opened, KeyText(*opened, tags::kTransferSyntax))) {
            Note(FindingKind::Profile,
                 "the profile " + options_.profile + " does not allow " + file, file);
        }
    }

    void CheckClaims(const pgkit::data_set& opened, const std::string& file) {
        // A directory file has its UIDs in the File Meta Information only.
        const bool isDirectory = IsDirectoryFile(opened);
        const pgkit::item& record = About().item;
        Claim(opened, isDirectory ? tags::kMediaStorageClass : tags::kSopClass,
              record.find(tags::kFileClass), FindingKind::SopClass, file);
        Claim(opened, isDirectory ? tags::kMediaStorageInstance : tags::kSopInstance,
              record.find(tags::kFileInstance), FindingKind::SopInstance, file);
        Claim(opened, tags::kTransferSyntax, record.find(tags::kFileSyntax),
              FindingKind::TransferSyntax, file);
        if (!isDirectory) CheckAncestors(opened, file);
    }

    // What a record lacks has been found there.
    void Claim(const pgkit::data_set& opened, pgkit::tag tag, const pgkit::element& claimed,
               FindingKind kind, const std::string& file) {
        if (!TextOfKey(claimed).empty()) Compare(opened, tag, claimed, kind, file);
    }

    void CheckAncestors(const pgkit::data_set& opened, const std::string& file) {
        size_t steps = 0;
        for (size_t above = About().parent; above != kNoRecord && steps < kLevels; ++steps) {
            const DirectoryRecord& record = directory_.Records()[above];
            if (record.type == kSeriesRecord) {
                Claim(opened, tags::kSeriesUid, record.item.find(tags::kSeriesUid),
                      FindingKind::Series, file);
            } else if (record.type == kStudyRecord) {
                Claim(opened, tags::kStudyUid, StudyUidOf(record), FindingKind::Study, file);
            } else if (record.type == kPatientRecord &&
                       !KeyText(opened, tags::kPatientId).empty()) {
                // Files may have none, and records may not: one was made up then.
                Claim(opened, tags::kPatientId, record.item.find(tags::kPatientId),
                      FindingKind::Patient, file);
            }
            above = record.parent;
        }
    }

    void Compare(const pgkit::data_set& opened, pgkit::tag tag, const pgkit::element& claimed,
                 FindingKind kind, const std::string& file) {
        const pgkit::element actual = opened.find(tag);
        if (TextOfKey(actual) == TextOfKey(claimed)) return;
        const std::string value = Shown(actual);
        Note(kind,
             file + " has " + (value.empty() ? "no " + NameOf(tag) : NameOf(tag) + " " + value) +
                 ", not " + (Shown(claimed).empty() ? "none" : Shown(claimed)),
             file);
    }

    std::string Shown(const pgkit::element& element) const {
        const std::string text = TextOfKey(element);
        return options_.rawTexts && !text.empty() ? BytesOf(element) : text;
    }

    // Records of the standard are never nested deeper.
    static constexpr size_t kLevels = 8;

    const Directory& directory_;
    const VerifyOptions& options_;
    MediumFiles& files_;
    Findings& findings_;
    Medium medium_;
    ProgressLine progress_;
    std::unordered_map<std::string, size_t> firstOfFile_;
    size_t record_ = 0;
};

}  // namespace

void CheckFiles(const Directory& directory, const VerifyOptions& options, MediumFiles& files,
                Findings& findings) {
    FileChecks checks(directory, options, files, findings);
    for (size_t i = 0; i < directory.Records().size(); ++i) {
        if (directory.Records()[i].isInUse) checks.Check(i);
    }
}

}  // namespace pgtool
