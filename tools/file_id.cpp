#include "file_id.h"
#include "words.h"

#include <algorithm>

namespace pgtool {

namespace {

constexpr std::string_view kIdSeparators = "/\\";

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// "\\SERVER\SHARE" has one backslash left.
bool IsAbsolute(std::string_view id) {
    if (id.empty()) return false;
    return kIdSeparators.find(id[0]) != kIdSeparators.npos ||
           (id.size() > 1 && id[1] == ':' && IsLetter(id[0]));
}

}  // namespace

std::optional<std::vector<std::string_view>> PathOnMedium(std::string_view referencedFileId) {
    std::string_view rest = WithoutBlanks(referencedFileId);
    if (IsAbsolute(rest)) return std::nullopt;
    std::vector<std::string_view> components;
    while (!rest.empty()) {
        const size_t end = std::min(rest.find_first_of(kIdSeparators), rest.size());
        const std::string_view component = WithoutBlanks(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (component == "..") {
            if (components.empty()) return std::nullopt;
            components.pop_back();
        } else if (!component.empty() && component != ".") {
            components.push_back(component);
        }
    }
    return components;
}

}  // namespace pgtool
