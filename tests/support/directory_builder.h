// Composes DICOMDIR files record by record, with right links or deliberately wrong ones.
//
//   DirectoryBuilder directory;
//   const size_t patient = directory.Patient("4711", "DOE^JOHN");
//   const size_t study = directory.Study(patient, "1.2");
//   const size_t series = directory.Series(study, "1.2.3", "CT");
//   directory.Image(series, "1.2.3.4", 1, "IMG\\X1");
//   directory[series].lowerOffset = 12;
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/temp_dir.h"

namespace pgkit_test {

struct DirectoryRecordSpec {
    struct Key {
        std::string vr;
        std::string value;
    };
    std::map<uint32_t, Key> keys;  // by tag

    // Links to other records; a raw offset goes before them.
    std::optional<size_t> next;
    std::optional<size_t> lower;
    std::optional<uint32_t> nextOffset;
    std::optional<uint32_t> lowerOffset;
    bool hasNext = true;  // whether the offset element is there at all
    bool hasLower = true;

    // A text, filled up to an even length with the pad character of its VR; or any bytes.
    DirectoryRecordSpec& Set(uint16_t group, uint16_t element, std::string_view vr,
                             std::string_view value);
    DirectoryRecordSpec& Remove(uint16_t group, uint16_t element);
};

class DirectoryBuilder {
  public:
    // Each adds a record behind its last sibling and returns its number.
    size_t Patient(std::string_view id, std::string_view name);
    size_t Study(size_t patient, std::string_view uid);
    size_t Series(size_t study, std::string_view uid, std::string_view modality);
    size_t Image(size_t series, std::string_view uid, int instanceNumber,
                 std::string_view fileId = "IMG");
    // A record of any type below another one; at the root for no parent.
    size_t Child(std::optional<size_t> parent, std::string_view type);

    DirectoryRecordSpec& operator[](size_t record) { return records_[record]; }
    size_t Count() const { return records_.size(); }

    // The order of the records in the file; at first that of their making.
    std::vector<size_t> fileOrder;
    // In place of the offset of the first record.
    std::optional<uint32_t> rootOffset;
    bool hasRootOffset = true;
    bool hasSequence = true;
    // The other keys of type 1 in front of the records, which readers do without: the offset of the
    // last record of the root, and the File-set Consistency Flag.
    bool hasAllHeadKeys = false;
    std::optional<uint32_t> lastRootOffset;
    uint16_t consistencyFlag = 0;
    std::string sopClassUid = "1.2.840.10008.1.3.10";

    Bytes Build() const;
    // Where the item of a record stands in the file.
    uint32_t OffsetOf(size_t record) const;

  private:
    std::vector<uint32_t> Offsets() const;
    std::optional<size_t> LastOfRoot() const;

    std::vector<DirectoryRecordSpec> records_;
    std::map<std::optional<size_t>, size_t> lastChildren_;
};

}  // namespace pgkit_test
