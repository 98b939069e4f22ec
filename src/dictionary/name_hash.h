// Names of elements are looked up without regard to case.
#pragma once

#include <algorithm>
#include <string_view>

#include "base/row_index.h"
#include "base/text.h"

namespace pgkit {

constexpr size_t kMaxElementNameLength = 127;

constexpr uint32_t NameHash(std::string_view name) {
    return HashText(name, [](char c) { return ToUpper(c); });
}

inline bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ToUpper(x) == ToUpper(y); });
}

}  // namespace pgkit
