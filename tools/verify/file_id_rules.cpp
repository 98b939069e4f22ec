#include "verify/file_id_rules.h"

#include <algorithm>

#include "words.h"

namespace pgtool {

namespace {

constexpr size_t kMostComponents = 8;
constexpr size_t kLongestComponent = 8;
constexpr size_t kMostShown = 64;

bool MayStandInFileId(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The value of an element has an even length: one blank may fill it up. Some fill with a NUL.
std::string_view WithoutPadding(std::string_view value) {
    if (value.size() % 2 == 0 && (value.ends_with(' ') || value.ends_with('\0')))
        value.remove_suffix(1);
    return value;
}

}  // namespace

bool IsFileIdComponent(std::string_view component) {
    return !component.empty() && component.size() <= kLongestComponent &&
           std::all_of(component.begin(), component.end(), MayStandInFileId);
}

std::string ComplaintAboutFileId(std::string_view value) {
    const auto components = Split(WithoutPadding(value), '\\');
    if (components.size() > kMostComponents) {
        return "its File ID has " + std::to_string(components.size()) + " components, more than 8";
    }
    for (const std::string_view component : components) {
        if (IsFileIdComponent(component)) continue;
        if (component.empty()) return "its File ID has an empty component";
        return "\"" + std::string(component.substr(0, kMostShown)) +
               "\" is no component of a File ID (up to 8 of A-Z, 0-9 and _)";
    }
    return "";
}

}  // namespace pgtool
