// Values as people write them.
#pragma once

#include <string>
#include <string_view>

namespace pgtool {

// "Doe, Jane Q." of "Doe^Jane^Q."; groups of a name in other scripts stand behind it.
std::string ShownName(std::string_view name);

// "2004-01-19" of "20040119", "15:04:05" of "150405.123", "2004-01-19 15:04:05" of both together.
// Anything else stays as it is.
std::string ShownDate(std::string_view date);
std::string ShownTime(std::string_view time);
std::string ShownDateTime(std::string_view dateTime);

}  // namespace pgtool
