// All elements that the tables have.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pgkit/cpp/tag.hpp"

namespace pgtool {

// The tags that are in the tables, those of repeating groups by their first group, in ascending
// order.
const std::vector<pgkit::tag>& KnownTags();

// Their names, in either spelling.
std::vector<std::string> ElementNames();

// The name of the built-in tables; empty when they have none.
std::string BuiltInName(pgkit::tag tag);

}  // namespace pgtool
