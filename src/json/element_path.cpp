#include "json/element_path.h"

#include <string_view>

#include "dictionary/current_table.h"

namespace pgkit {

void AppendTagToPath(std::string& path, uint16_t group, uint16_t element) {
    if (const auto current = FindCurrentElement(group, element);
        current && !current->keyword.empty()) {
        path += current->keyword;
        return;
    }
    const TagDigits digits = DigitsOfTag(group, element);
    path.append(digits.text, sizeof digits.text);
}

void AppendIndexToPath(std::string& path, size_t index) {
    path += '[';
    path += std::to_string(index);
    path += ']';
}

TagDigits DigitsOfTag(uint16_t group, uint16_t element) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    TagDigits digits;
    for (size_t i = 0; i < 4; ++i) {
        digits.text[i] = kHex[(group >> (12 - 4 * i)) & 15];
        digits.text[4 + i] = kHex[(element >> (12 - 4 * i)) & 15];
    }
    return digits;
}

}  // namespace pgkit
