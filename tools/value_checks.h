// What values have to look like, by PS3.5.
#pragma once

#include <cstdint>
#include <string>

#include "pgkit/cpp/tag.hpp"

namespace pgtool {

// Whether a text, with "\" between its values, keeps the rules of a value representation, and has
// as many values as the element may have. Returns the reason why not, or an empty text. An empty
// text is a value of every element. Numbers of binary value representations are checked where they
// are stored.
std::string ComplaintAboutValue(pgkit::tag tag, uint32_t valueRep, const std::string& utf8);

}  // namespace pgtool
