// How files are called that grow beside the one they are going to replace.
#pragma once

#include <string>
#include <string_view>

namespace pgkit::platform {

inline std::string ReplacementName(const std::string& stem, unsigned number) {
    return stem + ".new" + std::to_string(number);
}

// Whether a name is one of those: the stem, ".new" and digits.
inline bool IsReplacementName(std::string_view name, std::string_view stem) {
    if (!name.starts_with(stem)) return false;
    name.remove_prefix(stem.size());
    if (!name.starts_with(".new")) return false;
    name.remove_prefix(4);
    return !name.empty() && name.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace pgkit::platform
