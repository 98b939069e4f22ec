// Places in data sets as texts: "ReferencedSeriesSequence[0].SeriesInstanceUID".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pgkit {

// Adds the keyword of today's standard, or eight hexadecimal digits.
void AppendTagToPath(std::string& path, uint16_t group, uint16_t element);

// Adds "[index]".
void AppendIndexToPath(std::string& path, size_t index);

// The tag in eight upper-case digits.
struct TagDigits {
    char text[8];
};
TagDigits DigitsOfTag(uint16_t group, uint16_t element);

}  // namespace pgkit
