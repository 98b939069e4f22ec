// Leaves: which class a directory record becomes, and its keys as the fields of that class.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "dicomdir/browse_limits.h"
#include "pgkit/directory_records.h"
#include "pgkit/node.h"

namespace pgkit {

// What a record is by its type and, for an image, by its SOP class.
struct LeafKind {
    PgLeafType type;
    const char* seriesModality = nullptr;  // what the series becomes by it, null to leave it
};

// Nothing for a record that is not to be shown. recordType is its Directory Record Type without
// blanks at both ends.
std::optional<LeafKind> ClassifyLeaf(PGX_Node& record, const char* recordType);

// What stands in the place of a missing Referenced File ID.
inline constexpr char kNoReferencedFileId[] = "No.ReferencedFileID";

// A new leaf of the class for its type with the keys of the record. The full path begins with
// folder. Null when the browse may not take so much memory.
std::unique_ptr<PGX_DicomDirLeafNode> ReadLeaf(PGX_Node& record, PgLeafType type,
                                               const char* recordType, const char* instanceUid,
                                               const char* folder, BrowseLimits& limits);

}  // namespace pgkit
