// A DICOMDIR as it stands in its file: records and links, before anybody believes them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pgkit/data_set.hpp"
#include "verify/finding.h"

namespace pgtool {

struct DirectoryRecord {
    pgkit::item item;
    std::string type;  // (0004,1430) in UTF-8
    uint32_t offset;   // where the item begins in the file
    bool isInUse;
    bool isReached = false;     // from the root
    size_t parent = kNoRecord;  // the index of the record above, when a link leads here
};

// Record Type values with a meaning of their own.
inline constexpr const char* kPatientRecord = "PATIENT";
inline constexpr const char* kStudyRecord = "STUDY";
inline constexpr const char* kSeriesRecord = "SERIES";

class Directory {
  public:
    // Opens the file and notes what is wrong with it as a whole. Without records when it is no
    // DICOMDIR: IsOpen tells.
    Directory(const std::string& path, Findings& findings);

    bool IsOpen() const { return static_cast<bool>(root_); }
    const pgkit::data_set& Root() const { return root_; }
    std::vector<DirectoryRecord>& Records() { return records_; }
    const std::vector<DirectoryRecord>& Records() const { return records_; }

    // The index of the record that begins at an offset, else kNoRecord.
    size_t FindOffset(uint32_t offset) const;

    // A finding about a record, by its index, or about its file.
    Finding About(size_t record, FindingKind kind, std::string message,
                  std::string file = "") const;

  private:
    void ReadRecords();
    void CheckHead(Findings& findings) const;

    pgkit::data_set root_;
    std::vector<DirectoryRecord> records_;
    std::vector<std::pair<uint32_t, size_t>> byOffset_;  // ascending
};

// Whether a data set is a DICOMDIR, by its File Meta Information.
bool IsDirectoryFile(const pgkit::item& root);

// The text of a key in UTF-8, without blanks around it; empty where there is none. An element of a
// long value is none.
std::string KeyText(const pgkit::item& item, pgkit::tag tag);
std::string TextOfKey(const pgkit::element& element);

// "(0008,0060) Modality".
std::string NameOf(pgkit::tag tag);

}  // namespace pgtool
