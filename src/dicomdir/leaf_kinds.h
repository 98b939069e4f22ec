// The kinds of leaves: one row for each, with all that depends on it. Whoever reads, makes or
// writes a leaf follows its row; a new kind is a new row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "dicomdir/keys.h"
#include "pgkit/directory_records.h"
#include "sopclass/sop_class_tables.h"

namespace pgkit {

// The SOP class of directory files, whose records and files are no leaves.
inline constexpr std::string_view kMediaStorageDirectory = "1.2.840.10008.1.3.10";

struct LeafKind {
    PgLeafType type;
    // The Directory Record Type of its records. A longer one that begins with it is of the kind,
    // too.
    std::string_view recordType = {};
    // The SOP classes whose instances are of this kind: those of a category, or one.
    SopCategory category = SopCategory::None;
    std::string_view sopClass = {};
    // Writers that know no other type call everything an IMAGE. Whether the kind is then told by
    // the SOP class, and what the modality of the series becomes by that, null to leave it.
    bool isToldAmongImages = false;
    const char* modalityAmongImages = nullptr;

    size_t size;  // of an object
    std::unique_ptr<Leaf> (*make)();
    // The keys that leaves of this kind have beside those of every leaf (level_keys.h).
    std::span<const TextKey<Leaf>> texts = {};
    std::span<const NumberKey> numbers = {};
    std::span<const SequenceKey> sequences = {};
    void*& (*icon)(Leaf& leaf) = nullptr;  // null when they have none
};

// That of a PgLeafType, and of an existing leaf. One of an unknown type is a plain leaf, which has
// no keys of a kind.
const LeafKind& KindOfType(int32_t leafType);
inline const LeafKind& KindOf(const Leaf& leaf) { return KindOfType(leaf.leafType); }

// That of an instance by its SOP class; an image where no other kind fits.
const LeafKind& KindOfClass(std::string_view sopClass);

// What a record becomes by its type, which comes without blanks at both ends, and for an IMAGE by
// its SOP class. A record that is not to be shown has no kind.
struct RecordKind {
    const LeafKind* kind = nullptr;
    const char* seriesModality = nullptr;  // what the series becomes by it, null to leave it
};
RecordKind KindOfRecord(PGX_Node& record, std::string_view recordType);

// Whether a report says that it was verified: only then it tells when.
bool IsVerified(const PGX_DicomDirReportNode& report);

// The content items that say more about the title of a document: of a Content Sequence only these
// are keys.
bool ModifiesConcept(PGX_Node& item);

}  // namespace pgkit
