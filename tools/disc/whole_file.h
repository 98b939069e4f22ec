// A file that is written at once.
#pragma once

#include <string>
#include <string_view>

namespace pgtool {

// Returns the reason why not, or an empty text.
[[nodiscard]] std::string WriteWholeFile(const std::string& path, std::string_view bytes);

}  // namespace pgtool
