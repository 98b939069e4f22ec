// What the standard says of each type of directory record (PS3.3, annex F).
#pragma once

#include <string_view>
#include <vector>

#include "pgkit/cpp/tag.hpp"

namespace pgtool {

// What the type of the record above must be.
enum class RecordPlace { Root, BelowPatient, BelowStudy, BelowSeries, Anywhere };

struct RecordRule {
    const char* type;
    RecordPlace place;
    bool refersToFile;             // a record of this type without a file is of no use
    std::vector<pgkit::tag> keys;  // of type 1
};

// Null for a type that the standard does not have.
const RecordRule* RuleOf(std::string_view type);

}  // namespace pgtool
