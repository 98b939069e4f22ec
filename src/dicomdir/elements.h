// Elements of a data set by their tags: texts and numbers that are read with a bound, and values
// that are put into data sets that are made. Those that put throw std::bad_alloc.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "base/text.h"
#include "dataset/find_element.h"
#include "dictionary/tags.h"
#include "pgkit/node.h"

namespace pgkit {

// Fills a field with a text, cut to fit and to that many characters. A missing element reads as the
// text for that; one that is there without a value reads as an empty text.
void ReadText(PGX_Node& dataSet, Tag tag, std::span<char> field, const char* absent = "",
              size_t longest = SIZE_MAX);

// Takes the blanks at both ends off.
void TrimField(std::span<char> field);

// The text without the blanks at both ends; it is cut first.
inline void ReadTrimmedText(PGX_Node& dataSet, Tag tag, std::span<char> field,
                            const char* absent = "") {
    ReadText(dataSet, tag, field, absent);
    TrimField(field);
}

// A number that is written as text, and one in binary, which is 0 when it is missing.
int32_t ReadInteger(PGX_Node& dataSet, Tag tag, int32_t absent);
uint16_t ReadUnsignedShort(PGX_Node& dataSet, Tag tag, uint16_t absent = 0);

void PutBytes(PGX_Node& dataSet, Tag tag, const void* data, uint32_t size);
void PutText(PGX_Node& dataSet, Tag tag, std::string_view text);
template <typename Number>
void PutNumber(PGX_Node& dataSet, Tag tag, Number number) {
    PutBytes(dataSet, tag, &number, sizeof number);
}

}  // namespace pgkit
