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
    const auto digit = [kHex](unsigned number) { return kHex[number & 15]; };
    return {{digit(group >> 12u), digit(group >> 8u), digit(group >> 4u), digit(group),
             digit(element >> 12u), digit(element >> 8u), digit(element >> 4u), digit(element)}};
}

}  // namespace pgkit
