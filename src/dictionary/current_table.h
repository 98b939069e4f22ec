// The tables of the standard's current edition: constant rows, and indexes made by the compiler.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace pgkit {

// Texts are zero-terminated.
struct CurrentElement {
    uint32_t tag;  // the first one of a range
    uint8_t valueRep;
    std::string_view multiplicity;
    std::string_view keyword;  // a few retired elements have lost theirs
};

// What the edition says of a tag: the row of the tag itself, or of the range that covers it. Ranges
// cover even groups only, since odd ones are private.
std::optional<CurrentElement> FindCurrentElement(uint16_t group, uint16_t element);

// The rows one after the other, ranges behind the tags of one place; none beyond the last one.
std::optional<CurrentElement> CurrentElementAt(size_t index);

// The element of a keyword, case ignored.
std::optional<CurrentElement> FindCurrentKeyword(std::string_view keyword);

struct CurrentUid {
    const char* uid;
    const char* keyword;
    const char* name;
};

// Null when the edition does not list it.
const CurrentUid* FindCurrentUid(std::string_view uid);

}  // namespace pgkit
