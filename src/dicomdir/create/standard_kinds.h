// The kinds of directory records that today's standard (PS3.3 Annex F) has for what is no image,
// and the keys of each. One row for each kind; which SOP classes are of it says
// standard_classes.inc.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "dictionary/tags.h"
#include "pgkit/directory_records.h"

namespace pgkit {

// By what the standard calls the types. Of those that say when a key has to be there both mean
// here: when the file has a value for it.
enum class KeyType : uint8_t {
    Type1,   // with a value
    Type1C,  // with a value, or left out
    Type2    // with a value, or empty
};

struct StandardKey {
    Tag tag;
    KeyType type;
    // What a text of type 1 becomes on demand in files that lack it; dates and times are those of
    // the creation, sequences are not made up.
    std::string_view madeUp = "UNKNOWN";
};

struct StandardKind {
    std::string_view recordType;
    PgLeafType leafType = PG_LEAF_OTHER;
    // Whether the records belong to no patient and stand beside those of the patients.
    bool isAtRoot = false;
    // Whether Instance Number, which all leaves have, is a key of type 1.
    bool isNumbered = false;
    // All others.
    std::span<const StandardKey> keys = {};
};

// Null for images, and for what is not known.
const StandardKind* StandardKindOf(std::string_view sopClass);
// That of a record type; null for those that are none of these.
const StandardKind* StandardKindOfRecord(std::string_view recordType);

inline bool StandsAtRoot(std::string_view sopClass) {
    const StandardKind* const kind = StandardKindOf(sopClass);
    return kind != nullptr && kind->isAtRoot;
}

}  // namespace pgkit
