// Printable names of tags, for whoever copies them into a buffer.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pgkit {

// What stands in the place of the name of a tag that has none.
inline constexpr std::string_view kUnknownTag = "<Unknown Tag>";

// The name of pgGetTagPrintableName. The text of a private entry lasts until the private
// dictionary changes.
std::optional<std::string_view> TagName(uint16_t group, uint16_t element);

}  // namespace pgkit
