// Tags of the dictionary's elements as users write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pgtool {

struct Tag {
    uint16_t group = 0;
    uint16_t element = 0;
};

// The dictionary's element identifier of what has no row of its own.
constexpr uint32_t kNoIdentifier = 0xFFFFFFFF;

// A tag, "0010,0020" in hexadecimal, with parentheses around it or without.
std::optional<Tag> ParseTag(std::string text);

// The tag of a name of the dictionary, case ignored.
std::optional<Tag> FindTagByName(const std::string& name);

}  // namespace pgtool
