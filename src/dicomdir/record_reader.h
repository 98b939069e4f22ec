// Records of a directory file as hierarchy objects: their keys as the fields of new objects.
#pragma once

#include <memory>
#include <string_view>

#include "bitmap/bitmap_handle.h"
#include "dicomdir/browse_limits.h"
#include "dicomdir/leaf_kinds.h"
#include "pgkit/directory_records.h"
#include "pgkit/node.h"

namespace pgkit {

// The upper three levels. The icon of a series is read by itself: a series that was found already
// needs none.
void ReadPatient(PGX_Node& record, Patient& patient);
void ReadStudy(PGX_Node& record, Study& study);
void ReadSeries(PGX_Node& record, Series& series);

// A bitmap of the record's Icon Image Sequence, null when it has none that can be shown, or none
// that the browse may still take.
BitmapHandle ReadIcon(PGX_Node& record, BrowseLimits& limits);

// What stands in the place of a missing Referenced File ID.
inline constexpr char kNoReferencedFileId[] = "No.ReferencedFileID";

// A new leaf of a kind. The type and the instance UID of its record, without blanks at both ends,
// are known already. The full path begins with folder. Null when the browse may not take so much
// memory.
std::unique_ptr<Leaf> ReadLeaf(PGX_Node& record, const LeafKind& kind, std::string_view recordType,
                               std::string_view instanceUid, std::string_view folder,
                               BrowseLimits& limits);

}  // namespace pgkit
