// Name comparison where the operating system offers none that ignores symbols.
#pragma once

#include <cstdint>
#include <string_view>

namespace pgkit::platform {

// Compares two texts of the Windows code page 1252 (ISO 8859-1 and more) by the weights that
// Windows gives their letters and digits. Symbols, blanks and control characters count as absent,
// case and diacritics do not matter, ligatures count as their letters; superscript digits and
// ordinal indicators sort behind the plain character. Returns -1, 0 or 1.
int32_t CollateNames(std::string_view a, std::string_view b);

}  // namespace pgkit::platform
