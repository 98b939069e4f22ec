// The comparison of patient names for the library's own use.
#pragma once

#include <cstdint>
#include <string_view>

namespace pgkit {

// What pgComparePatientNames gives. Throws std::bad_alloc, where that cannot tell its failure from
// an order.
int32_t ComparePatientNames(std::string_view a, std::string_view b);

}  // namespace pgkit
