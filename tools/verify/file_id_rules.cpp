#include "verify/file_id_rules.h"

#include "pgkit/paths.h"
#include "words.h"

namespace pgtool {

namespace {

constexpr size_t kMostComponents = 8;
constexpr size_t kMostShown = 64;

// The value of an element has an even length: one blank may fill it up. Some fill with a NUL.
std::string_view WithoutPadding(std::string_view value) {
    if (value.size() % 2 == 0 && (value.ends_with(' ') || value.ends_with('\0')))
        value.remove_suffix(1);
    return value;
}

}  // namespace

// In a path a slash separates; in a File ID it is a character, and a wrong one.
bool IsFileIdComponent(std::string_view component) {
    constexpr std::string_view kNever("/\0", 2);
    return component.find_first_of(kNever) == component.npos &&
           pgxIsFileId(std::string(component).c_str()) != 0;
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
