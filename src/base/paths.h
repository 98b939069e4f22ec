// Paths as texts. A slash separates like a backslash, on every platform.
#pragma once

#include <string>
#include <string_view>

namespace pgkit {

constexpr std::string_view kSeparators = "\\/";

constexpr bool IsSeparator(char c) { return kSeparators.find(c) != std::string_view::npos; }

// Takes the first component off a path, and the separator behind it.
constexpr std::string_view TakeComponent(std::string_view& path) {
    const std::string_view component = path.substr(0, path.find_first_of(kSeparators));
    path.remove_prefix(component.size() < path.size() ? component.size() + 1 : path.size());
    return component;
}

// Whether the standard has a path for a File ID (PS3.10, section 8.2).
constexpr bool IsStandardFileId(std::string_view path) {
    constexpr size_t kMostComponents = 8;
    constexpr size_t kLongestComponent = 8;
    // A separator at the end has nothing behind it.
    if (path.empty() || IsSeparator(path.back())) return false;
    size_t components = 0;
    while (!path.empty()) {
        const std::string_view component = TakeComponent(path);
        if (++components > kMostComponents) return false;
        if (component.empty() || component.size() > kLongestComponent) return false;
        for (const char c : component) {
            const bool isAllowed = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
            if (!isAllowed) return false;
        }
    }
    return true;
}

// The part of a path in front of its last separator; all of it when it has none.
constexpr std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.find_last_of(kSeparators));
}

// The folder that a file is in, by which paths to its neighbours begin. A bare name is in the
// current one, be it that of a drive.
inline std::string FolderOfFile(std::string_view path) {
    if (path.find_last_of(kSeparators) != std::string_view::npos)
        return std::string(FolderOf(path));
    const bool hasDrive = path.size() > 1 && path[1] == ':';
    return std::string(hasDrive ? path.substr(0, 2) : std::string_view()) + ".";
}

}  // namespace pgkit
