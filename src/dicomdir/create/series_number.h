// Series Number (0020,0011) as an integer, which orders the series of a study.
#pragma once

#include <cstdint>

namespace pgkit {

// The number that a text begins with, as "%d" reads it: blanks and a sign may come first. 0 when
// there is none; the nearest number where it does not fit.
int32_t LeadingInteger(const char* text);

}  // namespace pgkit
