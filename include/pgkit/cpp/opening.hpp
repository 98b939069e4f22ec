// pgkit, the C++ layer (data_set.hpp): why a file could not be opened. Nothing here is for programs
// to call.
#ifndef PGKIT_CPP_OPENING_HPP
#define PGKIT_CPP_OPENING_HPP

#include <sys/stat.h>
#include <cerrno>
#include <cstdio>
#include <string>

#include "pgkit/cpp/result.hpp"

// Compilers of Microsoft's kind would rather have other names for these.
#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4996)
#endif

namespace pgkit {
inline namespace v1 {
namespace detail {

inline error cannot_read(failure kind, const std::string& path, const char* reason) {
    return {kind, "cannot read " + path + ": " + reason};
}

// As the library reads paths, on every system: backslashes separate, too, unless they are part of a
// name that is there.
inline bool find_file(std::string& path, struct stat& found) {
    if (stat(path.c_str(), &found) == 0) return true;
    std::string other = path;
    for (char& c : other)
        if (c == '\\') c = '/';
    if (other == path || stat(other.c_str(), &found) != 0) return false;
    path = other;
    return true;
}

// Nothing was read from a file: is it one, and does the system let us read it? Only regular files
// are opened for that: others might make us wait.
inline error why_not_read(const std::string& path, const char* what_it_is_not) {
    struct stat found;
    std::string existing = path;
    if (!find_file(existing, found)) {
        const bool is_missing = errno == ENOENT || errno == ENOTDIR;
        return is_missing ? cannot_read(failure::no_such_file, path, "no such file")
                          : cannot_read(failure::cannot_open, path, "it cannot be opened");
    }
    if ((found.st_mode & S_IFMT) == S_IFDIR)
        return cannot_read(failure::cannot_open, path, "it is a directory");
    if ((found.st_mode & S_IFMT) != S_IFREG)
        return cannot_read(failure::cannot_open, path, "it is no file");
    std::FILE* const stream = std::fopen(existing.c_str(), "rb");
    if (stream == nullptr) {
        return cannot_read(failure::cannot_open, path,
                           errno == EACCES ? "permission denied" : "it cannot be opened");
    }
    std::fclose(stream);
    return cannot_read(failure::not_a_data_set, path, what_it_is_not);
}

}  // namespace detail
}  // namespace v1
}  // namespace pgkit

#if defined(_MSC_VER)
#pragma warning(pop)
#endif

#endif
