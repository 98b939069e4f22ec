// What is wrong with a medium.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pgtool {

// The names of the kinds, in JSON, are in finding.cpp.
enum class FindingKind {
    Directory,       // the DICOMDIR cannot be read, or is none
    CutShort,        // the DICOMDIR, or a file, ends too early or cannot be read any further
    TransferSyntax,  // of the DICOMDIR: it is another than media have; of a file: than its record's
    Consistency,     // the DICOMDIR says of itself that something is wrong
    Link,            // an offset leads to no record
    Circle,          // an offset leads back
    SharedRecord,    // two offsets lead to one record
    LastRecord,      // the offset of the last record of the root is another one's
    Unreached,       // a record that no link leads to
    InUseFlag,       // neither in use nor not
    RecordType,      // unknown, or in the wrong place
    MissingKey,      // of type 1
    FileId,          // a Referenced File ID that does not conform
    MissingFile,     // a record's file is not there
    Outside,         // a Referenced File ID, or a link of the file system, leads out of the medium
    Unreadable,      // a file or a directory cannot be read
    NotDicom,        // a record's file is no DICOM file
    SopClass,        // a file is another than its record says: by its SOP class,
    SopInstance,     //   its SOP instance,
    Patient,         //   its patient,
    Study,           //   its study,
    Series,          //   its series
    DuplicateRecord,  // two records of one patient, study, series or instance
    DuplicateFile,    // two records refer to one file
    Profile,          // a file that the profile does not allow
    Orphan            // a DICOM file that no record refers to
};

// In the order of the records; what is said of the whole directory comes first, files without a
// record last.
constexpr size_t kWholeDirectory = 0;
constexpr size_t kNoRecord = SIZE_MAX;

struct Finding {
    FindingKind kind;
    size_t record;        // by its place in the file, from 1; or one of the two constants
    std::string type;     // of the record
    uint32_t offset;      // of the record
    std::string file;     // its path below the medium, with slashes; empty when it is not about one
    std::string message;  // UTF-8 without a full stop, not escaped
};

// A finding about the directory as a whole, and one about a file, or a directory, of no record.
Finding AboutDirectory(FindingKind kind, std::string message);
Finding AboutFile(const std::string& file, FindingKind kind, std::string message);

// Collects findings. Hostile directories have as many as they have records: what is beyond a bound
// is only counted.
class Findings {
  public:
    void Add(Finding finding);
    bool IsEmpty() const { return count_ == 0; }
    size_t Count() const { return count_; }
    // Those that were kept, in their order.
    std::vector<Finding> Sorted() const;

  private:
    std::vector<Finding> findings_;
    size_t count_ = 0;
};

// "missing-file".
const char* NameOf(FindingKind kind);

// "record 4 (IMAGE at 1234): the file is missing".
std::string LineOf(const Finding& finding);

}  // namespace pgtool
