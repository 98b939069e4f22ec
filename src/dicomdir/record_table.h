// The directory records of a DICOMDIR: the items of its Directory Record Sequence, numbered in file
// order, with the elements that link them and the place of each in the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "pgkit/node.h"

namespace pgkit {

using RecordNumber = uint32_t;

struct DirectoryRecord {
    PGX_Node* item;
    PGX_Node* nextRecord;  // the element that links the next one, null when there is none
    PGX_Node* lowerLevel;  // that of the first record below, likewise
};

class RecordTable {
  public:
    // The records from an item on; none for null.
    explicit RecordTable(PGX_Node* firstItem);

    size_t Count() const { return records_.size(); }
    // Of the file that they were read from; 0 when there is none.
    uint64_t FileSize() const { return fileSize_; }
    // What the table takes for each record, with room to sort them.
    static constexpr size_t kMemoryPerRecord = 48;

    const DirectoryRecord& operator[](RecordNumber number) const { return records_[number]; }

    // The first record that begins at an offset of the file, which is where its item tag stands.
    std::optional<RecordNumber> FindOffset(uint32_t offset) const;

    // The number of a record of this table.
    std::optional<RecordNumber> Find(const PGX_Node& item) const;

    // How many bytes of the file the record takes.
    uint64_t Extent(RecordNumber number) const;

  private:
    // Where the first element of a record stands.
    struct Position {
        uint32_t position;
        RecordNumber number;
    };

    std::vector<DirectoryRecord> records_;
    std::vector<Position> positions_;  // ascending, those of equal records in file order
    uint64_t fileSize_ = 0;
};

}  // namespace pgkit
