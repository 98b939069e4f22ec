#include "base/text.h"

#include <algorithm>

namespace pgkit {

std::string_view TrimBlanks(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ToUpper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return ToUpper(c); });
    return upper;
}

char* NewText(std::string_view text) {
    char* copy = new char[text.size() + 1];
    text.copy(copy, text.size());
    copy[text.size()] = '\0';
    return copy;
}

}  // namespace pgkit
