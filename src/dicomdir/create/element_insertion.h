// Adds elements to the data sets of a DICOMDIR that is made. All throw std::bad_alloc.
#pragma once

#include <cstdint>
#include <string_view>

#include "pgkit/node.h"

namespace pgkit {

void PutBytes(PGX_Node& dataSet, uint16_t group, uint16_t element, const void* data, uint32_t size);
void PutText(PGX_Node& dataSet, uint16_t group, uint16_t element, std::string_view text);
template <typename Number>
void PutNumber(PGX_Node& dataSet, uint16_t group, uint16_t element, Number number) {
    PutBytes(dataSet, group, element, &number, sizeof number);
}

}  // namespace pgkit
